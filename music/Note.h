#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace music {

/** A pitch class, 0..11 counted in semitones from C. */
using PitchClass = std::uint8_t;

/** One note: octave * 12 + pitch class. Stored chord notes are below 120 (octaves 0..9). */
using NoteValue = std::uint8_t;

/** The value ("x") that marks an empty note slot; any value of 120 or more counts as empty. */
inline constexpr NoteValue kEmptyNote = 120;
inline constexpr int kPitchClassCount = 12;

/** The note name of a pitch class, sharps only ("C", "C#", ... "B"); the value is taken mod 12. */
std::string_view noteName(int pitchClass);

/** Parses a note name ("C", "c#", "A#"); sharps only. Nothing when the text is no note name. */
std::optional<PitchClass> parseNoteName(std::string_view text);

constexpr NoteValue noteValue(int octave, int pitchClass)
{
    return static_cast<NoteValue>(octave * 12 + pitchClass);
}
constexpr PitchClass pitchClassOf(int value)
{
    return static_cast<PitchClass>(value % 12);
}
constexpr int octaveOf(int value)
{
    return value / 12;
}
constexpr bool isEmptyNote(int value)
{
    return value >= kEmptyNote;
}

/** A note with its octave, as musicians read it: "C4", "F#5". Empty text for an empty slot. */
std::string noteNameWithOctave(int value);

/**
 * The inverse of noteNameWithOctave: "E2" is 28, "f#5" is 66 (octave = value / 12, so C0 is 0).
 * Octaves 0..9; nothing for any other text.
 */
std::optional<NoteValue> parseNoteNameWithOctave(std::string_view text);

} // namespace music
