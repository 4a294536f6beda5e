#include "midi/MidiFileExporter.h"
#include "MidiTestSupport.h"
#include "music/RandomSource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include <string>
#include <tuple>
#include <vector>

using midi::MidiExportOptions;
using midi::MidiFile;
using midi::MidiFileExporter;
using namespace miditest;
using part::kNoIndex;
using Bytes = std::vector<std::uint8_t>;
/** Time, status and note of a note event; velocities carry a random jitter. */
using Notes = std::vector<std::tuple<std::uint32_t, int, int>>;

namespace {

MidiExportOptions options(std::uint16_t tpb, std::uint16_t bpm = 120, bool writeBpm = false,
                          std::uint16_t first = kNoIndex, std::uint16_t last = kNoIndex)
{
    MidiExportOptions o;
    o.ticksPerBeat = tpb;
    o.beatsPerMinute = bpm;
    o.writeBpm = writeBpm;
    o.rangeFirst = first;
    o.rangeLast = last;
    return o;
}

std::vector<std::vector<ReadEvent>> exportAndRead(const part::Part& p, const MidiExportOptions& o)
{
    MidiFile file;
    EXPECT_TRUE(MidiFileExporter(o).build(p, file).ok());
    return readTracks(file.toBytes());
}

/** The note events of a track (the track name and end left out). */
Notes notesOf(const std::vector<ReadEvent>& track)
{
    Notes notes;
    for (const ReadEvent& e : track)
        if (e.status < 0xF0)
            notes.emplace_back(e.time, e.status, e.bytes.at(0));
    return notes;
}

} // namespace

TEST(MidiFileExporter, OneSilentChordGivesTheWellKnownBytes)
{
    const part::Part p = makePart({part::Pattern()}, {makeChord({0, 4, 7}, 4)});
    MidiFile file;
    ASSERT_TRUE(MidiFileExporter(options(4)).build(p, file).ok());

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
    const int on = 0x90, off = 0x80;
    // The cells of a chord of four rows, its note events, the time of the note track's end.
    // clang-format off
    const std::vector<std::tuple<std::vector<CellAt>, Notes, std::uint32_t>> cases = {
        // a note on the first row, held to the end
        {{chordNote(0, 0, 0)}, {{0, on, 60}, {96, off, 60}}, 96},
        // the first row silent: the next event comes one step late
        {{chordNote(0, 1, 0)}, {{48, on, 60}, {120, off, 60}}, 120},
        // the events of one step share its time
        {{chordNote(0, 0, 0), chordNote(1, 2, 1), chordNote(2, 2, 2), {0, 3, part::CellKind::Off}},
         {{0, on, 60}, {48, on, 64}, {48, on, 67}, {72, off, 60}, {96, off, 64}, {96, off, 67}},
         96},
        // a replaced note ends where the new one starts
        {{chordNote(0, 0, 0), chordNote(0, 1, 2)},
         {{0, on, 60}, {24, off, 60}, {24, on, 67}, {96, off, 67}}, 96},
        {{}, {}, 0}}; // no notes at all
    // clang-format on
    for (const auto& [cells, expected, end] : cases) {
        SCOPED_TRACE(testing::PrintToString(expected));
        const auto tracks =
            exportAndRead(makePart({makePattern(cells)}, {makeChord({0, 4, 7}, 4)}), options(4));
        ASSERT_EQ(tracks.size(), 2u);
        EXPECT_EQ(notesOf(tracks[1]), expected);
        EXPECT_EQ(tracks[1].back(), (ReadEvent{end, 0xFF, {0x2F}}));
        EXPECT_EQ(tracks[0].back().time, 120u);
    }
}

TEST(MidiFileExporter, WritesTheChosenRangeOnTheChosenChannel)
{
    const part::Part p = makePart({makePattern({chordNote(0, 0, 0)})},
                                  {makeChord({0}, 2), makeChord({2}, 3), makeChord({4}, 4)});
    // First and last chord, the tempo track's end at (L + 1) steps, the notes.
    // clang-format off
    const std::vector<std::tuple<std::uint16_t, std::uint16_t, std::uint32_t, Notes>> cases = {
        {1, 1, 4 * 24, {{0, 0x95, 62}, {72, 0x85, 62}}},
        {kNoIndex, kNoIndex, 10 * 24, {{0, 0x95, 60}, {48, 0x85, 60}, {48, 0x95, 62},
                                       {120, 0x85, 62}, {120, 0x95, 64}, {216, 0x85, 64}}},
        {1, kNoIndex, 8 * 24, {{0, 0x95, 62}, {72, 0x85, 62}, {72, 0x95, 64}, {168, 0x85, 64}}},
        {kNoIndex, 0, 3 * 24, {{0, 0x95, 60}, {48, 0x85, 60}}}};
    // clang-format on
    for (const auto& [first, last, tempoTrackEnd, expected] : cases) {
        SCOPED_TRACE(std::to_string(first) + ".." + std::to_string(last));
        MidiExportOptions o = options(4, 120, false, first, last);
        o.channel = 5;
        const auto tracks = exportAndRead(p, o);
        ASSERT_EQ(tracks.size(), 2u);
        EXPECT_EQ(tracks[0].back().time, tempoTrackEnd);
        EXPECT_EQ(notesOf(tracks[1]), expected);
    }
}

TEST(MidiFileExporter, StepLengthComesFromTicksPerBeatAndTempoIsOptional)
{
    const part::Part p = makePart({part::Pattern()}, {makeChord({0}, 4)});
    const ReadEvent signature{0, 0xFF, {0x58, 4, 4, 24, 8}};
    const ReadEvent tempo120{0, 0xFF, {0x51, 0x07, 0xA1, 0x20}};
    const ReadEvent tempo7{0, 0xFF, {0x51, 0x82, 0xCA, 0x24}};
    // TPB, BPM, whether it is written, the tempo track (ending at 5 steps of 96 / TPB ticks).
    const std::vector<std::tuple<std::uint16_t, std::uint16_t, bool, std::vector<ReadEvent>>>
        cases = {
            {5, 120, false, {signature, {95, 0xFF, {0x2F}}}},
            {4, 120, true, {signature, tempo120, {120, 0xFF, {0x2F}}}},
            {96, 7, true, {signature, tempo7, {5, 0xFF, {0x2F}}}},
            {1, 0, false, {signature, {480, 0xFF, {0x2F}}}},
        };
    for (const auto& [tpb, bpm, writeBpm, tempoTrack] : cases)
        EXPECT_EQ(exportAndRead(p, options(tpb, bpm, writeBpm)).at(0), tempoTrack)
            << "TPB " << tpb << ", BPM " << bpm;
}

TEST(MidiFileExporter, RefusesWhatCannotMakeAFileWithTheMessageForIt)
{
    const part::Part p = makePart({part::Pattern()}, {makeChord({0}, 4), makeChord({0}, 4)});
    const part::Part empty = part::Part::makeNew();
    part::Part tooLong = makePart({part::Pattern()}, {});
    for (int i = 0; i < 44000; ++i)
        tooLong.append(makeChord({0}, 64)); // 2,816,000 steps of 96 ticks: beyond 28 bits
    const std::string slow = "Beats per minute must be at least 4 to be written to a MIDI file.";
    const std::vector<std::tuple<const part::Part*, MidiExportOptions, std::string>> cases = {
        {&empty, options(4), "The part has no chords."},
        {&p, options(0), "Ticks per beat must be 1 to 96."},
        {&p, options(97), "Ticks per beat must be 1 to 96."},
        {&p, options(4, 0, true), slow},
        {&p, options(4, 3, true), slow},
        {&p, options(4, 120, false, 1, 0), "The range holds no chords."},
        {&p, options(4, 120, false, 5, 7), "The range holds no chords."},
        {&tooLong, options(1), "The part is too long for a MIDI file."},
    };
    for (const auto& [input, settings, message] : cases) {
        MidiFile file;
        const auto result = MidiFileExporter(settings).build(*input, file);
        EXPECT_FALSE(result.ok()) << message;
        EXPECT_EQ(result.message(), message);
    }
}

TEST(MidiFileExporter, VelocitiesOutsideADataByteAreClampedAndASettingAbove127IsLowered)
{
    // The velocity setting and the velocity byte of the closing note off. The note on follows
    // the rule V - r (one message), which 128 and 1 take out of a data byte's 1..127; 128 is
    // used once and then lowered to 127.
    const std::vector<std::array<int, 2>> cases = {{128, 126}, {1, 0}, {80, 79}};
    const part::Part p = makePart({makePattern({chordNote(0, 0, 0)})}, {makeChord({0}, 2)});
    for (const auto& [velocity, off] : cases) {
        music::RandomSource::seed(3);
        const int r = music::RandomSource::random(3);
        music::RandomSource::seed(3);
        MidiExportOptions o = options(4);
        o.velocity = velocity;
        MidiFile file;
        MidiFileExporter exporter(o);
        ASSERT_TRUE(exporter.build(p, file).ok());
        EXPECT_EQ(exporter.options().velocity, std::min(velocity, 127)) << "kept as the setting";

        const auto tracks = readTracks(file.toBytes());
        ASSERT_EQ(tracks.size(), 2u);
        ASSERT_EQ(tracks[1].size(), 4u); // name, on, off, end
        const auto on = static_cast<std::uint8_t>(std::clamp(velocity - r, 1, 127));
        EXPECT_EQ(tracks[1][1], (ReadEvent{0, 0x90, {60, on}})) << velocity;
        EXPECT_EQ(tracks[1][2], (ReadEvent{48, 0x80, {60, std::uint8_t(off)}})) << velocity;
    }
}
