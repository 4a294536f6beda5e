#pragma once

#include "music/Note.h"
#include "song/BuzzSong.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace song {

/** A note cell a transformation left alone because the result would leave the tracker's range. */
struct NoteOutOfRange
{
    std::size_t machine = 0;
    std::size_t pattern = 0;
    std::size_t row = 0;
    std::size_t track = 0;     // 0 for a global note parameter
    std::size_t parameter = 0; // index in the machine's description
    std::uint8_t note = 0;     // the tracker's note byte, unchanged

    bool operator==(const NoteOutOfRange&) const = default;
};

/** What a transformation of notes did. */
struct NoteTransformReport
{
    std::size_t changed = 0; // note cells that got a new note
    std::vector<NoteOutOfRange> outOfRange;

    /** One line per cell left alone: machine, pattern, row, track and note, as a user reads it. */
    std::vector<std::string> describe(const BuzzSong& song) const;
};

/** The notes the tracker can play: C-0 to B-9 (note bytes 1 to 156 with pitch classes 0..11). */
inline constexpr int kHighestTrackerNote = 119; // B-9 as octave * 12 + pitch class

/**
 * Moves every note of the machines' patterns by `semitones` half-notes (negative: down). Every
 * parameter of type note counts. Empty cells, note-offs and bytes that are no note stay as they
 * are; a note that would leave C-0..B-9 stays as it is and is reported, never wrapped.
 */
NoteTransformReport transposeNotes(BuzzSong& song, const std::vector<std::size_t>& machines,
                                   int semitones);

/**
 * Mirrors every note of the machines' patterns around `centre` (octave * 12 + pitch class, as
 * music::NoteValue counts): a note n becomes 2 * centre - n, so the centre stays and a note a
 * major third above it lands a major third below. Same rules as transposeNotes otherwise.
 */
NoteTransformReport invertNotes(BuzzSong& song, const std::vector<std::size_t>& machines,
                                music::NoteValue centre);

/** A tracker note byte as musicians read it: "C-4", "F#5"; "off" for a note-off. */
std::string trackerNoteName(std::uint8_t note);

} // namespace song
