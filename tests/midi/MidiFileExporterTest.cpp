#include "midi/MidiFileExporter.h"
#include "MidiTestSupport.h"
#include "music/RandomSource.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using midi::MidiExportOptions;
using midi::MidiFile;
using midi::MidiFileExporter;
using miditest::chordNote;
using miditest::makeChord;
using miditest::makePart;
using miditest::makePattern;
using miditest::ReadEvent;
using part::kNoIndex;
using Bytes = std::vector<std::uint8_t>;

namespace {

MidiExportOptions optionsWithTpb(std::uint16_t tpb)
{
    MidiExportOptions options;
    options.ticksPerBeat = tpb;
    options.beatsPerMinute = 120;
    return options;
}

std::vector<std::vector<ReadEvent>> exportAndRead(const part::Part& p,
                                                  const MidiExportOptions& options)
{
    MidiFile file;
    MidiFileExporter exporter(options);
    EXPECT_TRUE(exporter.build(p, file).ok());
    return miditest::readTracks(file.toBytes());
}

/** Time, status and note of the note events of a track (the track name and end left out). */
struct Note
{
    std::uint32_t time;
    std::uint8_t status;
    std::uint8_t note;
    friend bool operator==(const Note&, const Note&) = default;
};

std::vector<Note> notesOf(const std::vector<ReadEvent>& track)
{
    std::vector<Note> notes;
    for (const ReadEvent& e : track)
        if (e.status < 0xF0)
            notes.push_back({e.time, e.status, e.bytes.at(0)});
    return notes;
}

std::ostream& operator<<(std::ostream& out, const Note& n)
{
    return out << "{" << n.time << ", 0x" << std::hex << int(n.status) << std::dec << ", "
               << int(n.note) << "}";
}

const ReadEvent kEndOfTrackAt0{0, 0xFF, {0x2F}};

} // namespace

TEST(MidiFileExporter, OneSilentChordGivesTheWellKnownBytes)
{
    const part::Part p = makePart({part::Pattern()}, {makeChord({0, 4, 7}, 4)});
    MidiFile file;
    MidiFileExporter exporter(optionsWithTpb(4));
    ASSERT_TRUE(exporter.build(p, file).ok());

    Bytes expected = {0x4D, 0x54, 0x68, 0x64, 0x00, 0x00, 0x00, 0x06, 0x00, 0x01, 0x00, 0x02,
                      0x00, 0x60, 'M',  'T',  'r',  'k',  0x00, 0x00, 0x00, 0x0C, // tempo track
                      0x00, 0xFF, 0x58, 0x04, 0x04, 0x04, 0x18, 0x08, // 4/4, 24 clocks, 8 32nds
                      0x78, 0xFF, 0x2F, 0x00,                         // end at (4 + 1) * 24
                      'M',  'T',  'r',  'k',  0x00, 0x00, 0x00, 0x19, // note track
                      0x00, 0xFF, 0x03, 0x11};
    const std::string name = "Tonalmancer track";
    expected.insert(expected.end(), name.begin(), name.end());
    expected.insert(expected.end(), {0x00, 0xFF, 0x2F, 0x00});
    EXPECT_EQ(file.toBytes(), expected);
}

TEST(MidiFileExporter, TimesNotesByStepsWithTheSilentFirstStepQuirk)
{
    const std::uint8_t on = 0x90, off = 0x80;
    const struct
    {
        const char* what;
        std::vector<miditest::CellAt> cells;
        std::vector<Note> expected;
        std::uint32_t end; // the note track's end of track
    } cases[] = {
        {"note on the first row, held to the end",
         {chordNote(0, 0, 0)},
         {{0, on, 60}, {96, off, 60}},
         96},
        {"first row silent: the next event comes one step late",
         {chordNote(0, 1, 0)},
         {{48, on, 60}, {120, off, 60}},
         120},
        {"events of one step share its time",
         {chordNote(0, 0, 0), chordNote(1, 2, 1), chordNote(2, 2, 2), miditest::offAt(0, 3)},
         {{0, on, 60}, {48, on, 64}, {48, on, 67}, {72, off, 60}, {96, off, 64}, {96, off, 67}},
         96},
        {"a replaced note ends where the new one starts",
         {chordNote(0, 0, 0), chordNote(0, 1, 2)},
         {{0, on, 60}, {24, off, 60}, {24, on, 67}, {96, off, 67}},
         96},
        {"no notes at all", {}, {}, 0},
    };
    for (const auto& c : cases) {
        part::Pattern pattern;
        for (const auto& cell : c.cells)
            pattern.setCell(cell.track, cell.row, {cell.kind, cell.value, cell.octave});
        const part::Part p = makePart({pattern}, {makeChord({0, 4, 7}, 4)});
        const auto tracks = exportAndRead(p, optionsWithTpb(4));
        ASSERT_EQ(tracks.size(), 2u) << c.what;
        EXPECT_EQ(notesOf(tracks[1]), c.expected) << c.what;
        EXPECT_EQ(tracks[1].back().time, c.end) << c.what;
        EXPECT_EQ(tracks[1].back().bytes, Bytes{0x2F}) << c.what;
        EXPECT_EQ(tracks[0].back().time, 120u) << c.what;
    }
}

TEST(MidiFileExporter, WritesTheChosenRangeOnTheChosenChannel)
{
    const part::Part p = makePart({makePattern({chordNote(0, 0, 0)})},
                                  {makeChord({0}, 2), makeChord({2}, 3), makeChord({4}, 4)});
    const struct
    {
        std::uint16_t first, last;
        std::uint32_t tempoTrackEnd; // (L + 1) * 24
        std::vector<Note> expected;
    } cases[] = {
        {1, 1, 4 * 24, {{0, 0x95, 62}, {72, 0x85, 62}}},
        {kNoIndex,
         kNoIndex,
         10 * 24,
         {{0, 0x95, 60},
          {48, 0x85, 60},
          {48, 0x95, 62},
          {120, 0x85, 62},
          {120, 0x95, 64},
          {216, 0x85, 64}}},
        {1, kNoIndex, 8 * 24, {{0, 0x95, 62}, {72, 0x85, 62}, {72, 0x95, 64}, {168, 0x85, 64}}},
        {kNoIndex, 0, 3 * 24, {{0, 0x95, 60}, {48, 0x85, 60}}},
    };
    for (const auto& c : cases) {
        MidiExportOptions options = optionsWithTpb(4);
        options.channel = 5;
        options.rangeFirst = c.first;
        options.rangeLast = c.last;
        const auto tracks = exportAndRead(p, options);
        ASSERT_EQ(tracks.size(), 2u);
        EXPECT_EQ(tracks[0].back().time, c.tempoTrackEnd) << c.first << ".." << c.last;
        EXPECT_EQ(notesOf(tracks[1]), c.expected) << c.first << ".." << c.last;
    }
}

TEST(MidiFileExporter, StepLengthComesFromTicksPerBeatAndTempoIsOptional)
{
    const part::Part p = makePart({part::Pattern()}, {makeChord({0}, 4)});
    const struct
    {
        std::uint16_t tpb, bpm;
        bool writeBpm;
        std::vector<ReadEvent> tempoTrack;
    } cases[] = {
        {5, 120, false, {{0, 0xFF, {0x58, 4, 4, 24, 8}}, {95, 0xFF, {0x2F}}}}, // 96 / 5 = 19
        {4,
         120,
         true,
         {{0, 0xFF, {0x58, 4, 4, 24, 8}},
          {0, 0xFF, {0x51, 0x07, 0xA1, 0x20}},
          {120, 0xFF, {0x2F}}}},
        {96,
         7,
         true,
         {{0, 0xFF, {0x58, 4, 4, 24, 8}}, {0, 0xFF, {0x51, 0x82, 0xCA, 0x24}}, {5, 0xFF, {0x2F}}}},
        {1, 0, false, {{0, 0xFF, {0x58, 4, 4, 24, 8}}, {480, 0xFF, {0x2F}}}},
    };
    for (const auto& c : cases) {
        MidiExportOptions options = optionsWithTpb(c.tpb);
        options.beatsPerMinute = c.bpm;
        options.writeBpm = c.writeBpm;
        const auto tracks = exportAndRead(p, options);
        ASSERT_EQ(tracks.size(), 2u);
        EXPECT_EQ(tracks[0], c.tempoTrack) << "TPB " << c.tpb << ", BPM " << c.bpm;
    }
    EXPECT_EQ(MidiFileExporter::ticksPerStep(5), 19u);
}

TEST(MidiFileExporter, RefusesWhatCannotMakeAFile)
{
    const part::Part p = makePart({part::Pattern()}, {makeChord({0}, 4), makeChord({0}, 4)});
    const struct
    {
        const char* what;
        part::Part part;
        std::uint16_t tpb, bpm;
        bool writeBpm;
        std::uint16_t first, last;
        std::string_view message;
    } cases[] = {
        {"no chords", part::Part::makeNew(), 4, 120, false, kNoIndex, kNoIndex,
         MidiFileExporter::kNoChordsMessage},
        {"TPB 0", p, 0, 120, false, kNoIndex, kNoIndex, MidiFileExporter::kZeroTicksMessage},
        {"TPB above 96", p, 97, 120, false, kNoIndex, kNoIndex,
         MidiFileExporter::kZeroTicksMessage},
        {"BPM 0 written", p, 4, 0, true, kNoIndex, kNoIndex, MidiFileExporter::kSlowTempoMessage},
        {"BPM 3 written", p, 4, 3, true, kNoIndex, kNoIndex, MidiFileExporter::kSlowTempoMessage},
        {"range backwards", p, 4, 120, false, 1, 0, MidiFileExporter::kEmptyRangeMessage},
        {"range beyond the part", p, 4, 120, false, 5, 7, MidiFileExporter::kEmptyRangeMessage},
    };
    for (const auto& c : cases) {
        MidiExportOptions options = optionsWithTpb(c.tpb);
        options.beatsPerMinute = c.bpm;
        options.writeBpm = c.writeBpm;
        options.rangeFirst = c.first;
        options.rangeLast = c.last;
        MidiFile file;
        const auto result = MidiFileExporter(options).build(c.part, file);
        EXPECT_FALSE(result.ok()) << c.what;
        EXPECT_EQ(result.message(), c.message) << c.what;
    }
}

TEST(MidiFileExporter, RefusesAPartLongerThanTheLargestDelta)
{
    part::Part p = makePart({part::Pattern()}, {});
    for (int i = 0; i < 12000; ++i)
        p.append(makeChord({0}, 255)); // 3,060,000 steps of 96 ticks
    MidiExportOptions options = optionsWithTpb(1);
    MidiFile file;
    const auto result = MidiFileExporter(options).build(p, file);
    EXPECT_EQ(result.message(), MidiFileExporter::kTooLongMessage);
}

TEST(MidiFileExporter, VelocityAbove127IsStoredAsItIsAndComesBackAs127)
{
    const part::Part p = makePart({makePattern({chordNote(0, 0, 0)})}, {makeChord({0}, 2)});
    music::RandomSource::seed(3);
    const int r = music::RandomSource::random(3);
    music::RandomSource::seed(3);
    MidiExportOptions options = optionsWithTpb(4);
    options.velocity = 128;
    MidiFile file;
    MidiFileExporter exporter(options);
    ASSERT_TRUE(exporter.build(p, file).ok());
    EXPECT_EQ(exporter.options().velocity, 127) << "the caller keeps this as its setting";

    const auto tracks = miditest::readTracks(file.toBytes());
    ASSERT_EQ(tracks.size(), 2u);
    ASSERT_EQ(tracks[1].size(), 4u); // name, on, off, end
    EXPECT_EQ(tracks[1][1].bytes.at(1), 128 - r) << "stored as it is, even above 127";
    EXPECT_EQ(tracks[1][2].bytes.at(1), 126) << "the closing note off uses 127 - 1";
}
