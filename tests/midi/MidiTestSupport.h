#pragma once

#include "midi/StepSink.h"
#include "part/Part.h"
#include "part/Pattern.h"

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

namespace miditest {

/** Collects everything a step engine sends. */
class RecordingSink : public midi::StepSink
{
public:
    void send(const midi::StepMessage& message) override { messages.push_back(message); }
    std::vector<midi::StepMessage> messages;
};

/** One cell to put into a pattern: track 0..7, row 0..63. */
struct CellAt
{
    int track;
    int row;
    part::CellKind kind;
    std::uint8_t value = 0;
    std::uint8_t octave = 0;
};

inline part::Pattern makePattern(std::initializer_list<CellAt> cells)
{
    part::Pattern pattern;
    for (const CellAt& c : cells)
        pattern.setCell(c.track, c.row, {c.kind, c.value, c.octave});
    return pattern;
}

inline part::PartChord makeChord(std::initializer_list<music::NoteValue> notes, std::uint8_t length,
                                 std::uint16_t pattern = 0)
{
    part::PartChord chord;
    chord.name = "chord";
    chord.setNotes(notes);
    chord.length = length;
    chord.pattern = pattern;
    return chord;
}

/**
 * A part with base octave 5, so that chord notes 0..11 sound in the octave of middle C
 * (0 -> 60), and the given patterns.
 */
inline part::Part makePart(std::vector<part::Pattern> patterns,
                           std::initializer_list<part::PartChord> chords)
{
    part::Part p;
    p.setBaseOctave(5);
    for (part::Pattern& pattern : patterns)
        p.patterns().append(std::move(pattern));
    for (const part::PartChord& chord : chords)
        p.append(chord);
    return p;
}

/** A chord-note cell. */
inline CellAt chordNote(int track, int row, std::uint8_t index)
{
    return {track, row, part::CellKind::ChordNote, index, 0};
}
inline CellAt offAt(int track, int row)
{
    return {track, row, part::CellKind::Off, 0, 0};
}

/** An event of a track chunk, read back by the tests' own small parser. */
struct ReadEvent
{
    std::uint32_t time = 0; // absolute, in ticks
    std::uint8_t status = 0;
    std::vector<std::uint8_t> bytes; // what follows the status (meta: type, then payload)

    friend bool operator==(const ReadEvent&, const ReadEvent&) = default;
};

/** Readable failure output for GoogleTest. */
void PrintTo(const ReadEvent& event, std::ostream* out);

/**
 * Reads the track chunks of a format 1 file written without running status. Written apart from
 * the writer on purpose (it knows only channel, meta and system exclusive events). An empty
 * result when the bytes don't parse.
 */
std::vector<std::vector<ReadEvent>> readTracks(const std::vector<std::uint8_t>& file);

/** A fresh, empty folder below the system's temporary folder, named for this process. */
std::filesystem::path scratchFolder(const std::string& name);

/** The bytes of a text, for comparisons. */
inline std::vector<std::uint8_t> bytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

} // namespace miditest
