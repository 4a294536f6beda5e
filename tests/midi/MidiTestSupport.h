#pragma once

#include "midi/StepSink.h"
#include "part/Part.h"
#include "part/Pattern.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace miditest {

/** Collects everything a step engine sends. */
struct RecordingSink : midi::StepSink
{
    void send(const midi::StepMessage& message) override { messages.push_back(message); }
    std::vector<midi::StepMessage> messages;
};

/** One cell to put into a pattern: track 0..7, row 0..63. */
struct CellAt
{
    int track, row;
    part::CellKind kind;
    std::uint8_t value = 0, octave = 0;
};

inline part::Pattern makePattern(const std::vector<CellAt>& cells)
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
    chord.setNotes(notes);
    chord.length = length;
    chord.pattern = pattern;
    return chord;
}

/** A part with base octave 5 (chord note 0 sounds as middle C, 60) and the given patterns. */
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

inline CellAt chordNote(int track, int row, std::uint8_t index)
{
    return {track, row, part::CellKind::ChordNote, index, 0};
}

/** An event of a track chunk, read back by the tests' own small parser. */
struct ReadEvent
{
    std::uint32_t time = 0; // absolute, in ticks
    std::uint8_t status = 0;
    std::vector<std::uint8_t> bytes; // what follows the status (meta: type, then payload)

    friend bool operator==(const ReadEvent&, const ReadEvent&) = default;
    friend void PrintTo(const ReadEvent& e, std::ostream* out)
    {
        *out << "{t=" << e.time << " status=" << int(e.status)
             << " bytes=" << ::testing::PrintToString(e.bytes) << '}';
    }
};

/**
 * Reads the track chunks of a format 1 file written without running status. Written apart from
 * the writer on purpose (it knows only channel, meta and system exclusive events). An empty
 * result when the bytes don't parse.
 */
inline std::vector<std::vector<ReadEvent>> readTracks(const std::vector<std::uint8_t>& file)
{
    const auto big32 = [&file](std::size_t at) {
        return std::uint32_t{file[at]} << 24 | std::uint32_t{file[at + 1]} << 16 |
               std::uint32_t{file[at + 2]} << 8 | std::uint32_t{file[at + 3]};
    };
    std::size_t pos = 14;
    std::size_t end = 0; // of the current chunk
    const auto readVarLen = [&](std::uint32_t& value) {
        value = 0;
        for (int i = 0; i < 4 && pos < end; ++i) {
            const std::uint8_t b = file[pos++];
            value = value << 7 | (b & 0x7Fu);
            if (b < 0x80)
                return true;
        }
        return false;
    };
    if (file.size() < 14 || big32(0) != 0x4D546864)
        return {};
    std::vector<std::vector<ReadEvent>> tracks;
    while (pos < file.size()) {
        if (pos + 8 > file.size() || big32(pos) != 0x4D54726B)
            return {};
        end = pos + 8 + big32(pos + 4);
        if (end > file.size())
            return {};
        pos += 8;
        std::vector<ReadEvent>& events = tracks.emplace_back();
        for (std::uint32_t time = 0, delta = 0, length = 0; pos < end; pos += length) {
            if (!readVarLen(delta) || pos >= end)
                return {};
            ReadEvent& e = events.emplace_back(ReadEvent{time += delta, file[pos++], {}});
            if (e.status == 0xFF && pos < end)
                e.bytes.push_back(file[pos++]); // the meta type
            if (e.status < 0x80)
                return {}; // running status: never written
            if (e.status >= 0xF0 && !readVarLen(length))
                return {};
            if (e.status < 0xF0)
                length = (e.status & 0xE0) == 0xC0 ? 1 : 2; // program change, channel pressure
            if (pos + length > end)
                return {};
            const auto from = file.begin() + static_cast<std::ptrdiff_t>(pos);
            e.bytes.insert(e.bytes.end(), from, from + static_cast<std::ptrdiff_t>(length));
        }
    }
    return tracks;
}

/** A fresh, empty folder below the system's temporary folder, its name made unique. */
inline std::filesystem::path scratchFolder(const std::string& name)
{
    const auto dir = std::filesystem::temp_directory_path() /
                     ("tm-midi-" + std::to_string(std::random_device{}()) + "-" + name);
    std::filesystem::create_directories(dir);
    return dir;
}

} // namespace miditest
