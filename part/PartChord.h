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
    /** A pattern has 64 rows, so a chord plays at most 64; a longer length would be silence. */
    static constexpr std::uint8_t kMaxLength = 64;

    /** A length in rows brought into 0..64. */
    static constexpr std::uint8_t cappedLength(int rows)
    {
        return static_cast<std::uint8_t>(rows < 0 ? 0 : (rows > kMaxLength ? kMaxLength : rows));
    }

    std::string name;
    /** 0..7; only the first noteCount entries of notes are meaningful. */
    std::uint8_t noteCount = 0;
    /** Note values (octave * 12 + pitch class); the order matters, cells address notes by it. */
    std::array<music::NoteValue, kMaxNotes> notes{};
    /** Index into the part's pattern list. */
    std::uint16_t pattern = 0;
    /**
     * Rows 0..length-1 of the pattern are played for this chord; 0..64. The part, its files and
     * the editor keep it there (setLength, Part::append and insert, the readers); renderers read
     * rows(), which holds even for a value assigned here directly.
     */
    std::uint8_t length = kDefaultLength;

    void setLength(int rows) { length = cappedLength(rows); }
    /** The number of rows played: the length, at most 64. */
    int rows() const { return cappedLength(length); }

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
