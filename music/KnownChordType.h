#pragma once

#include "music/PitchClassSet.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace music {

/**
 * A chord type as the chord namer knows it: its tones as pitch classes above the root, with the
 * degree each tone has (so that it can be spelled and named), and how common the type is.
 */
struct KnownChordType
{
    /** Written after the root in a chord symbol: "m7", "maj7", "" for the major triad. */
    std::string symbol;
    /** Words for the description: "minor seventh". The user's name for a type only they know. */
    std::string name;
    /** The tones above the root, each reduced to a pitch class (0 is the root). */
    PitchClassSet tones;
    /** Per tone (indexed by its pitch class above the root): its degree 1..13, 0 when absent. */
    std::array<std::int8_t, 12> degree{};
    /** Per tone: its interval above the root in semitones as written, 0..21. */
    std::array<std::int8_t, 12> semitones{};
    /** Per tone: its place counting up from the root by degree (root 0, third 1...), else -1. */
    std::array<std::int8_t, 12> position{};
    /**
     * Tones that may be missing from a played chord: the perfect fifth of a type of four or more
     * tones, and the ninth of an eleventh or thirteenth chord.
     */
    PitchClassSet omittable;
    /** How common the type is in music, the score term of the namer (see ChordNamer). */
    int commonness = 0;
    /** False for a type that only the user's chord-type list holds. */
    bool builtIn = true;
    /** The intervals of the tones in semitones as written, ordered by degree: 0, 4, 7, 10. */
    std::vector<int> intervals;
    /** Indices of the user's chord types that have exactly these tones ("maj", "maj(8)"). */
    std::vector<std::size_t> userTypes;

    /** The degree of a tone as text: "5", "b9", "#11", "bb7"; empty when it is no tone. */
    std::string degreeText(int pitchClass) const;

    /** The semitones of a degree without accidental: 3 gives 4 (the major third), 9 gives 14. */
    static int naturalSemitones(int degree);
    /** A degree as text: (7, 10) gives "b7", (9, 15) gives "#9". */
    static std::string degreeText(int degree, int semitones);
};

} // namespace music
