#pragma once

#include "music/ChordType.h"
#include "music/Result.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace music {

/**
 * The ordered list of chord types that chord collections are generated from, and its ".ccl" file:
 * the magic line, the number of types, then name and construction string of each type, every line
 * ending in a single line feed.
 *
 * The reader keeps the count to its low 8 bits, so a list of more than 255 types is written whole
 * but reads back only as far as the count modulo 256 says; the file format has always had that
 * limit and other programs' files depend on it.
 */
class ChordTypeList
{
public:
    static constexpr std::string_view kMagic = "Tonalmancer_ConstructChords";
    /** The list in the data folder that the type dialogs load and "Defaults" restores. */
    static constexpr const char* kDefaultFileName = "default.ccl";
    static constexpr std::string_view kErrorOpening = "Error opening file.";
    static constexpr std::string_view kNotValid = "Seems to be no valid file.";
    static constexpr std::string_view kInvalidConstruction = "No valid construction string";
    static constexpr std::size_t kMaxCount = 65535; // the count is 16-bit in memory

    const std::vector<ChordType>& types() const { return m_types; }
    /** The entry count; 16-bit in memory. */
    std::uint16_t count() const { return static_cast<std::uint16_t>(m_types.size()); }
    bool isEmpty() const { return m_types.empty(); }
    const ChordType& at(std::size_t index) const { return m_types.at(index); }

    /**
     * Appends a type. The construction text is filtered first: only digits, "#", ";" and the
     * lower-case letters "b", "h", "t" are kept, so "1; b3; 5;" is stored as "1;b3;5;". No check
     * of the result is made here (see `addChecked`). False when the list is full.
     */
    bool add(std::string name, std::string_view construction);
    /**
     * As `add`, but refuses with "No valid construction string" unless the text as typed parses
     * to at least one interval (as the `intervals` command parses it: blanks are dropped, any
     * other character outside the symbols refuses the text). This is what defining a new type
     * does. The stored text is the filtered one, so "1; b3; 5;" is stored as "1;b3;5;".
     */
    Result addChecked(std::string name, std::string_view construction);
    void remove(std::size_t index);
    void rename(std::size_t index, std::string name);
    /** Orders the types by name, ignoring case; equal names keep their order. */
    void sortByName(bool upwards);
    /**
     * Orders the types by their notes on one root, compared lowest note first (as the chord
     * database sorts chords); a construction that does not parse counts as no notes.
     */
    void sortByNotes(bool upwards);
    void clear() { m_types.clear(); }

    /** Keeps only the characters a construction string may hold. */
    static std::string filterConstruction(std::string_view text);

    /** Replaces the list with the types read from file bytes. */
    Result read(std::string_view bytes);
    /** Reads a file; "Error opening file." when it cannot be read (the list is then empty). */
    Result load(const std::filesystem::path& path);
    /** The file bytes of the list. */
    std::string toBytes() const;
    /** Saves through a temporary file, so a failed save leaves the old file as it was. */
    Result save(const std::filesystem::path& path) const;

private:
    std::vector<ChordType> m_types;
};

} // namespace music
