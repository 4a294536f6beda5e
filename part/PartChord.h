#pragma once

#include "music/Note.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string>

namespace part {

/** One chord of a part: its notes in chord order and the pattern that renders it. */
struct PartChord
{
    static constexpr int kMaxNotes = 7;
    /** The editor's "Def Length" at start, in rows. */
    static constexpr std::uint8_t kDefaultLength = 32;

    std::string name;
    /** 0..7; only the first noteCount entries of notes are meaningful. */
    std::uint8_t noteCount = 0;
    /** Note values (octave * 12 + pitch class); the order matters, cells address notes by it. */
    std::array<music::NoteValue, kMaxNotes> notes{};
    /** Index into the part's pattern list. */
    std::uint16_t pattern = 0;
    /** Rows 0..length-1 of the pattern are played for this chord. */
    std::uint8_t length = kDefaultLength;

    /** Sets the notes from the front (at most 7 are kept). */
    void setNotes(std::initializer_list<music::NoteValue> values)
    {
        noteCount = 0;
        notes = {};
        for (music::NoteValue v : values) {
            if (noteCount == kMaxNotes)
                break;
            notes[noteCount++] = v;
        }
    }

    friend bool operator==(const PartChord&, const PartChord&) = default;
};

} // namespace part
