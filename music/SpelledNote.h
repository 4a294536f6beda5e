#pragma once

#include "music/Note.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace music {

/**
 * A note name as musicians write it: a letter and an accidental ("Eb", "F#", "Bbb", "E#").
 *
 * The program's note names elsewhere (lists, chord names of the database, files) use sharps
 * only; spelled notes are the separate, musician-facing spelling of the chord namer.
 */
struct SpelledNote
{
    /** Letters 0..6 for C, D, E, F, G, A, B. */
    std::uint8_t letter = 0;
    /** -2..2: double flat, flat, natural, sharp, double sharp. */
    std::int8_t accidental = 0;

    /** The pitch class the name stands for ("Cb" is 11, "B#" is 0). */
    PitchClass pitchClass() const;
    /** The name in ASCII: "C", "Eb", "F#", "Bbb", "F##". */
    std::string text() const;

    /**
     * Parses a letter (either case) followed by up to two "#" or two "b": "Eb", "f#", "bb" (B
     * flat). Nothing for any other text.
     */
    static std::optional<SpelledNote> parse(std::string_view text);

    /**
     * The note `semitones` above `root` written on the letter `degree - 1` steps above the
     * root's letter (degree 3 of C is some E). Nothing when that would need more than two
     * accidentals.
     */
    static std::optional<SpelledNote> above(SpelledNote root, int semitones, int degree);

    /** The pitch class of a natural letter 0..6. */
    static PitchClass letterPitchClass(int letter);

    friend bool operator==(const SpelledNote&, const SpelledNote&) = default;
};

} // namespace music
