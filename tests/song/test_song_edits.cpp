#include "song_reference.h"
#include "song_test_support.h"

#include "song/SongEdits.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace songtest;
using song::BuzzSong;
using Values = std::vector<std::uint16_t>;

/**
 * The master and four generators A, B, C, D (machines 1 to 4) connected 1->0, 2->0, 3->0, 4->3,
 * each with one pattern, a sequence, a parameter set and a parameter window.
 */
BuzzSong fiveMachineSong()
{
    BuzzSong song = readReference();
    const song::SongMachine lead = song.machines()[1];
    const song::MachineParameterSet set = song.parameterSets()[1];
    song.machines().resize(1);
    song.patternBlocks() = {{0, {}}};
    song.sequences().clear();
    song.parameterSets().resize(1);
    song.parameterWindows().clear();
    song.connections() = {{1, 0, 0x4000, 0x4000},
                          {2, 0, 0x4000, 0x4000},
                          {3, 0, 0x4000, 0x4000},
                          {4, 3, 0x4000, 0x4000}};
    for (const char* name : {"A", "B", "C", "D"}) {
        song.machines().push_back(lead);
        song.machines().back().name = name;
        song.patternBlocks().push_back({lead.trackCount, {}});
        song.parameterSets().push_back(set);
        song.parameterSets().back().machineName = name;
        song.parameterWindows().push_back({name, {}});
    }
    for (std::size_t m = 0; m < song.machineCount(); ++m) {
        EXPECT_TRUE(song.createPattern(m, "P" + std::to_string(m), 4));
        if (m > 0)
            song.sequences()[song.addSequence(m)].events = {{0, 16}};
    }
    song.midiBindings() = {{"\x02", {}}, {"B", {}}};
    return song;
}

/** The source machine of every input block of the machine's first pattern. */
Values inputSources(const BuzzSong& song, std::size_t machine)
{
    return column(song.patternBlocks()[machine].patterns.at(0).inputs, [](const auto& input) {
        return static_cast<std::uint16_t>(input[0] | input[1] << 8);
    });
}

TEST(RemoveMachine, RenumbersEveryReferenceAndStaysReadable)
{
    BuzzSong song = fiveMachineSong();
    ASSERT_EQ(inputSources(song, 0), (Values{1, 2, 3}));
    ASSERT_EQ(inputSources(song, 3), (Values{4}));

    ASSERT_TRUE(song::removeMachine(song, 2).ok());

    EXPECT_EQ(column(song.machines(), &song::SongMachine::name),
              (std::vector<std::string>{"Master", "A", "C", "D"}));
    EXPECT_EQ(song.connections(),
              (std::vector<song::SongConnection>{
                  {1, 0, 0x4000, 0x4000}, {2, 0, 0x4000, 0x4000}, {3, 2, 0x4000, 0x4000}}));
    ASSERT_EQ(song.patternBlocks().size(), 4u);
    EXPECT_EQ(song.patternBlocks()[2].patterns.at(0).name, "P3");
    EXPECT_EQ(inputSources(song, 0), (Values{1, 2}));
    EXPECT_EQ(inputSources(song, 2), (Values{3}));
    EXPECT_EQ(column(song.sequences(), &song::SongSequence::machine), (Values{1, 2, 3}));
    EXPECT_EQ(column(song.parameterSets(), &song::MachineParameterSet::machineName),
              (std::vector<std::string>{"Master", "A", "C", "D"}));
    EXPECT_EQ(song.parameterWindows().size(), 3u);
    // MIDI bindings go by the index's character code, not by name.
    EXPECT_EQ(song.midiBindings(), (std::vector<song::MidiBinding>{{"B", {}}}));
    expectRoundTrip(song);
}

TEST(RemoveMachine, RefusesTheMasterAndMissingMachinesWithAMessage)
{
    const struct
    {
        std::size_t machine;
        std::string message;
    } cases[] = {{0, song::kMasterCannotBeRemoved}, {7, "The song has no machine 7."}};
    for (const auto& c : cases) {
        BuzzSong song = readReference();
        const music::Result r = song::removeMachine(song, c.machine);
        EXPECT_FALSE(r.ok());
        EXPECT_EQ(r.message(), c.message);
        expectSameModel(song, readReference());
    }
}

TEST(RemoveMachine, RemovingTheOnlySourceLeavesTheMasterWithoutInputs)
{
    BuzzSong song = readReference();
    ASSERT_TRUE(song::removeMachine(song, 1).ok());
    EXPECT_TRUE(song.connections().empty());
    EXPECT_TRUE(song.patternBlocks()[0].patterns[0].inputs.empty());
    EXPECT_EQ(song.sequences().size(), 1u) << "the sequence of the master stays";
    expectRoundTrip(song);
}

/** A song whose machine 1 has `patterns` patterns p0, p1, ... and one sequence of these values. */
BuzzSong songWithSequence(std::size_t patterns, const Values& values)
{
    BuzzSong song = readReference();
    song.clearPatterns(1);
    for (std::size_t i = 0; i < patterns; ++i)
        EXPECT_TRUE(song.createPattern(1, "p" + std::to_string(i), 2));
    song.removeSequencesOf(1);
    const std::size_t s = song.addSequence(1);
    for (std::size_t i = 0; i < values.size(); ++i)
        song.sequences()[s].events.push_back({static_cast<std::uint16_t>(i * 16), values[i]});
    return song;
}

TEST(RemovePatterns, KeepSequencesPointingAtTheSamePatterns)
{
    using Edit = std::function<void(BuzzSong&)>;
    const Edit remove0 = [](BuzzSong& s) { song::removePattern(s, 1, 0); };
    const Edit remove1 = [](BuzzSong& s) { song::removePattern(s, 1, 1); };
    const Edit remove3 = [](BuzzSong& s) { song::removePattern(s, 1, 3); };
    const Edit remove0and2 = [](BuzzSong& s) { song::removePatterns(s, 1, {0, 2}); };
    const Edit unused = [](BuzzSong& s) { song::removeUnusedPatterns(s, 1); };
    const struct
    {
        const char* what;
        std::size_t patterns;
        Values before;
        Edit edit;
        Values after;
        std::vector<std::string> names;
    } cases[] = {
        // clang-format off
        {"remove pattern 1", 3, {16, 17, 18, 17}, remove1, {16, 17}, {"p0", "p2"}},
        {"control codes stay", 3, {0, 17, 1, 18}, remove0, {0, 16, 1, 17}, {"p1", "p2"}},
        {"remove selected 0 and 2", 3, {16, 17, 18, 17}, remove0and2, {16, 16}, {"p1"}},
        {"remove unused keeps pattern 2 only", 4, {18, 18}, unused, {16, 16}, {"p2"}},
        {"remove unused between used ones", 3, {18, 16, 18}, unused, {17, 16, 17}, {"p0", "p2"}},
        {"every pattern used", 3, {16, 17, 18}, unused, {16, 17, 18}, {"p0", "p1", "p2"}},
        {"pattern out of range", 3, {16}, remove3, {16}, {"p0", "p1", "p2"}},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        BuzzSong song = songWithSequence(c.patterns, c.before);
        c.edit(song);
        EXPECT_EQ(
            column(song.sequences()[song.sequencesOf(1).at(0)].events, &song::SequenceEvent::value),
            c.after);
        EXPECT_EQ(column(song.patternBlocks()[1].patterns, &song::SongPattern::name), c.names);
        expectRoundTrip(song);
    }
}

TEST(RemovePatterns, RemoveAllDropsPatternsAndSequencesOfThatMachineOnly)
{
    BuzzSong song = songWithSequence(3, {16, 17});
    song.addSequence(0);
    song::removeAllPatterns(song, 1);
    EXPECT_EQ(song.patternCount(1), 0u);
    EXPECT_TRUE(song.sequencesOf(1).empty());
    EXPECT_EQ(song.sequencesOf(0).size(), 2u);
    EXPECT_EQ(song.patternCount(0), 1u);
}

TEST(Trim, CutsAfterTheLastNoteDropsSilentTracksAndKeepsNotesInTheirTracks)
{
    const struct
    {
        const char* what;
        std::uint16_t rows;
        std::vector<std::pair<std::size_t, std::size_t>> notes; // (row, track)
        std::uint16_t rowsAfter, tracksAfter;
    } cases[] = {
        {"last note on row 9 of 16", 16, {{9, 0}, {2, 1}}, 10, 2},
        {"note only in track 1", 8, {{3, 1}}, 4, 1},
        {"no notes keeps the length, drops every track", 8, {}, 8, 0},
        {"note on the last row", 4, {{3, 0}, {0, 1}}, 4, 2},
        {"notes of track 1 move to track 0", 8, {{1, 1}, {2, 1}}, 3, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        BuzzSong song = readReference();
        song.clearPatterns(1);
        ASSERT_TRUE(song.createPattern(1, "t", c.rows));
        for (const auto& [row, track] : c.notes)
            ASSERT_TRUE(song.setCellValue(1, 0, row, track, 2, 0x41));
        // Velocity (not a note) on the last row must not keep the row or track alive.
        song.setCellValue(1, 0, c.rows - 1u, 1, 3, 0x20);
        song::trimPatterns(song, 1);
        const song::SongPattern& p = song.patternBlocks()[1].patterns[0];
        EXPECT_EQ(p.rows, c.rowsAfter);
        EXPECT_EQ(song.machines()[1].trackCount, c.tracksAfter);
        EXPECT_EQ(song.patternBlocks()[1].trackCount, c.tracksAfter);
        EXPECT_EQ(p.trackRows.size(), std::size_t{c.rowsAfter} * 2 * c.tracksAfter);
        EXPECT_EQ(song.machines()[1].trackState.size(), 2u * c.tracksAfter);
        EXPECT_EQ(p.globalRows.size(), std::size_t{c.rowsAfter} * 3);
        for (const auto& [row, track] : c.notes) {
            EXPECT_EQ(song.cellValue(1, 0, row, c.tracksAfter == 2 ? track : 0, 2), 0x41) << row;
        }
        expectRoundTrip(song);
    }
}

TEST(SongCells, AddressEveryParameterOfEveryTrack)
{
    BuzzSong song = readReference();
    // The hand-built pattern "Intro": track 0 row 0 note C-4 (0x41), track 1 row 1 E-4 (0x45).
    EXPECT_EQ(song.cellValue(1, 0, 0, 0, 2), 0x41);
    EXPECT_EQ(song.cellValue(1, 0, 0, 0, 3), 0x60);
    EXPECT_EQ(song.cellValue(1, 0, 1, 1, 2), 0x45);
    EXPECT_EQ(song.cellValue(1, 0, 1, 0, 1), 0x0200); // Glide, a word, row 1
    EXPECT_EQ(song.cellValue(1, 0, 0, 0, 0), 0x10);
    // Out of range: row, track, parameter, pattern, machine.
    EXPECT_FALSE(song.cellValue(1, 0, 2, 0, 0));
    EXPECT_FALSE(song.cellValue(1, 0, 0, 2, 2));
    EXPECT_FALSE(song.cellValue(1, 0, 0, 0, 4));
    EXPECT_FALSE(song.cellValue(1, 1, 0, 0, 0));
    EXPECT_FALSE(song.cellValue(2, 0, 0, 0, 0));
    EXPECT_FALSE(song.setCellValue(1, 0, 0, 5, 2, 1));
    ASSERT_TRUE(song.setCellValue(1, 0, 1, 1, 1, 0x1234));
    EXPECT_EQ(song.cellValue(1, 0, 1, 1, 1), 0x1234);
    ASSERT_TRUE(song.setCellValue(1, 0, 1, 1, 3, 0x7F));
    EXPECT_EQ(song.patternBlocks()[1].patterns[0].trackRows.back(), 0x7F);
}

TEST(SongCells, NewPatternHoldsNoValuesAndOneInputBlockPerConnection)
{
    BuzzSong song = readReference();
    ASSERT_EQ(song.createPattern(1, "new", 3), 1u);
    const song::SongPattern& lead = song.patternBlocks()[1].patterns[1];
    EXPECT_EQ(lead.globalRows, (std::vector<std::uint8_t>(9, 0xFF)));
    EXPECT_EQ(lead.trackRows,
              (std::vector<std::uint8_t>{0, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF, 0, 0xFF}));

    const auto master = song.createPattern(0, "m", 2);
    ASSERT_TRUE(master);
    const song::SongPattern& p = song.patternBlocks()[0].patterns[*master];
    EXPECT_EQ(p.inputs, (std::vector<std::vector<std::uint8_t>>{
                            {1, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}}));
    EXPECT_EQ(p.globalRows.size(), 10u);
    EXPECT_EQ(song.findPattern(0, "m"), *master);
    EXPECT_EQ(song.findPattern(0, "missing"), BuzzSong::kNameNotFound);

    // A pattern of 0 rows has 2-byte input blocks and no rows.
    const auto empty = song.createPattern(0, "zero", 0);
    ASSERT_TRUE(empty);
    EXPECT_EQ(song.patternBlocks()[0].patterns[*empty].inputs[0].size(), 2u);
    expectRoundTrip(song);
}

TEST(SongCells, TrackCountGrowsWithDefaultsAndShrinksEveryPattern)
{
    BuzzSong song = readReference();
    ASSERT_TRUE(song.setTrackCount(1, 4));
    EXPECT_EQ(song.machines()[1].trackState,
              (std::vector<std::uint8_t>{0, 0x80, 0, 0x80, 0, 0x80, 0, 0x80}));
    EXPECT_EQ(song.patternBlocks()[1].trackCount, 4);
    // Existing tracks keep their notes; new tracks hold the no-values.
    EXPECT_EQ(song.patternBlocks()[1].patterns[0].trackRows,
              (std::vector<std::uint8_t>{0x41, 0x60, 0, 0xFF, 0, 0xFF, 0x45, 0xFF, 0, 0xFF, 0, 0xFF,
                                         0, 0xFF, 0, 0xFF}));

    ASSERT_TRUE(song.setTrackCount(1, 1));
    EXPECT_EQ(song.patternBlocks()[1].patterns[0].trackRows,
              (std::vector<std::uint8_t>{0x41, 0x60, 0, 0xFF}));
    EXPECT_EQ(song.machines()[1].trackState.size(), 2u);

    EXPECT_FALSE(song.setTrackCount(1, 17)) << "the machine allows 16 tracks";
    EXPECT_EQ(song.machines()[1].trackCount, 1);
    expectRoundTrip(song);
}

} // namespace
