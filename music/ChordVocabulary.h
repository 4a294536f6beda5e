#pragma once

#include "music/KnownChordType.h"

#include <vector>

namespace music {

class ChordTypeList;

/**
 * The chord types the chord namer recognises: a built-in table of the common types with their
 * conventional symbols ("", "m", "7", "maj7", "m7b5", "add9", "13" ...), followed by the types of
 * the user's chord-type list that the table does not hold.
 *
 * A user type with exactly the tones of a built-in type is merged into it (its index is kept in
 * `userTypes`), as are user types with the same tones as each other ("add2" and "add9"); a type
 * only the user knows is named with the user's name and gets kUserTypeCommonness. Types whose
 * construction string does not parse are left out.
 */
class ChordVocabulary
{
public:
    /** The commonness score term of a type that only the user's list holds. */
    static constexpr int kUserTypeCommonness = 8;

    /** The built-in table only. */
    ChordVocabulary();
    /** The built-in table and the types of `userTypes`. */
    explicit ChordVocabulary(const ChordTypeList& userTypes);

    const std::vector<KnownChordType>& types() const { return m_types; }
    /** The names of the user's types, by their index in the list given. */
    const std::vector<std::string>& userTypeNames() const { return m_userTypeNames; }

private:
    std::vector<KnownChordType> m_types;
    std::vector<std::string> m_userTypeNames;
};

} // namespace music
