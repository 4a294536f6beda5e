#pragma once

#include "part/Part.h"
#include "part/RenderOptions.h"
#include "song/BuzzSong.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace song {

/** The choices of the pattern-writing dialog plus the editor settings the writer reads. */
struct PartWriteOptions
{
    /** "Ignore wave parameter.": the machine is treated as having no wave parameter. */
    bool ignoreWave = false;
    /** "Do not delete existing patterns and sequences." */
    bool append = false;
    /** "Replace chord name by its notes.": names like "C4 E4 G4" (see PartWriter). */
    bool nameByNotes = false;
    /** 0: base wave + chord-note index; 1: base wave + machine track; other: base wave. */
    std::uint8_t waveMode = 0;
    /** "Create a sequence from the part." */
    bool makeSequence = false;
    /** The editor's "Base Wave": the wave number written with every note. */
    int baseWave = 1;
    /**
     * Track switches, index option and upper note limit, as the editor holds them. The song
     * writer reads the index option differently from playback: OffEvent (1) writes nothing for a
     * chord-note index the chord doesn't have and Ignore (2) writes a note-off.
     */
    part::RenderOptions render;
};

/** How writing a part ended. */
enum class PartWriteStatus
{
    NothingToDo, // no chords, no used track or no such machine: the song is unchanged
    Done,        // every chord became a pattern; the last message is "done"
    Failed,      // stopped; the last message says why, patterns made so far stay in the song
};

struct PartWriteResult
{
    PartWriteStatus status = PartWriteStatus::NothingToDo;
    /** The messages to show one after another, in order; empty when there was nothing to do. */
    std::vector<std::string> messages;

    bool ok() const { return status == PartWriteStatus::Done; }
};

/**
 * Writes a part into one machine of a song: one new pattern per chord, holding the notes that the
 * chord's pattern rows give in the machine's "note" parameter (and the wave in its "wave"
 * parameter), and optionally a sequence that plays the new patterns one after another.
 *
 * Only the tracks that are switched on and hold a note cell (chord note, fixed note or chance
 * chord note) within some chord's first length rows are written; the i-th of them becomes machine
 * track i. Without `append` the machine's patterns and sequences are removed first and it gets one
 * new empty sequence; with `append` the new patterns come after the existing ones and, when a
 * sequence is made, its events go into the machine's last sequence (a new one if it has none).
 * When appending or making a sequence, the machine's patterns end up sorted by name (byte order)
 * and every sequence event of the machine follows its pattern. A sequence longer than the song
 * extends the song's end (and its loop end, when the loop ended with the song).
 *
 * Chance cells draw music::RandomSource::random(50) once each, row by row in track order.
 * Nothing is rolled back after a failure: the patterns created so far stay in the song.
 */
class PartWriter
{
public:
    static constexpr const char* kDone = "done";
    static constexpr const char* kNoNoteParameter = "Error:\t unable to find Noteparameter";
    static constexpr const char* kSetTracksFailed = "Error:\t unable to set tracks";
    static constexpr const char* kCreatePatternFailed = "Error:\t unable to create new pattern";
    /** Sequence values above this many chords take two bytes. */
    static constexpr int kMaxChordsForByteValues = 120;
    /** Sequence positions beyond this take two bytes. */
    static constexpr int kMaxByteRows = 255;
    /** An event value that the renumbering reads as 0. */
    static constexpr std::uint16_t kReadAsZero = 8888;

    /** "Machine only supports N tracks." */
    static std::string tracksLimitMessage(int maxTracks);
    /** "Error reading SequencerData\n" + position + "\n" + value. */
    static std::string sequenceErrorMessage(int position, int value);

    /**
     * The pattern name under `nameByNotes`: the chord's own notes (as the part holds them, before
     * any extension) as note names with octaves joined by single blanks, "C4 E4 G4". A chord
     * without notes keeps its name.
     */
    static std::string notesName(const part::PartChord& chord);

    /** The tracks 0..7 that would be written, in order (machine track i gets the i-th). */
    static std::vector<int> usedTracks(const part::Part& part, const part::RenderOptions& options);

    /** Writes `part` into machine `machine` of `song` (nothing when the index is out of range). */
    static PartWriteResult write(BuzzSong& song, std::size_t machine, const part::Part& part,
                                 const PartWriteOptions& options);
};

} // namespace song
