#include "song_reference.h"
#include "song_test_support.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "song/MemoryMachineCatalog.h"
#include "song/SongEdits.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace songtest;
using song::BuzzSong;

BuzzSong readReference()
{
    song::MemoryMachineCatalog catalog = referenceCatalog();
    BuzzSong song;
    EXPECT_TRUE(song::SongReader(catalog, nullptr).readBytes(referenceSong(), song).ok());
    return song;
}

/** Writes the song and reads it back with the reference catalog. */
music::Result writeAndReread(const BuzzSong& song, BuzzSong& reread)
{
    TempFolder folder("edits");
    const auto path = folder.path() / "edited.bmx";
    if (music::Result r = song::SongWriter::write(song, path); !r)
        return r;
    song::MemoryMachineCatalog catalog = referenceCatalog();
    return song::SongReader(catalog, nullptr).read(path, reread);
}

/**
 * The master and four generators A, B, C, D (machines 1 to 4) connected 1->0, 2->0, 3->0, 4->3,
 * each with one pattern, a sequence, a parameter set and a parameter window.
 */
BuzzSong fiveMachineSong()
{
    BuzzSong song = readReference();
    song::SongMachine lead = song.machines()[1];
    song.machines().resize(1);
    song.patternBlocks().resize(1);
    song.patternBlocks()[0].patterns.clear();
    song.sequences().clear();
    song.parameterSets().resize(1);
    song.parameterWindows().clear();
    song.midiBindings().clear();
    song.connections() = {{1, 0, 0x4000, 0x4000},
                          {2, 0, 0x4000, 0x4000},
                          {3, 0, 0x4000, 0x4000},
                          {4, 3, 0x4000, 0x4000}};
    for (const char* name : {"A", "B", "C", "D"}) {
        song::SongMachine m = lead;
        m.name = name;
        song.machines().push_back(m);
        song.patternBlocks().push_back({lead.trackCount, {}});
        song::MachineParameterSet set = readReference().parameterSets()[1];
        set.machineName = name;
        song.parameterSets().push_back(set);
        song.parameterWindows().push_back({name, {}});
    }
    for (std::size_t m = 0; m < song.machineCount(); ++m) {
        EXPECT_TRUE(song.createPattern(m, "P" + std::to_string(m), 4));
        if (m > 0) {
            const std::size_t s = song.addSequence(m);
            song.sequences()[s].events = {{0, 16}};
        }
    }
    song.midiBindings() = {{"\x02", {}}, {"B", {}}};
    return song;
}

std::vector<std::uint16_t> inputSources(const BuzzSong& song, std::size_t machine)
{
    std::vector<std::uint16_t> sources;
    for (const auto& input : song.patternBlocks()[machine].patterns.at(0).inputs)
        sources.push_back(static_cast<std::uint16_t>(input[0] | input[1] << 8));
    return sources;
}

TEST(RemoveMachine, RenumbersEveryReferenceAndStaysReadable)
{
    BuzzSong song = fiveMachineSong();
    ASSERT_EQ(inputSources(song, 0), (std::vector<std::uint16_t>{1, 2, 3}));
    ASSERT_EQ(inputSources(song, 3), (std::vector<std::uint16_t>{4}));

    song::removeMachine(song, 2);

    ASSERT_EQ(song.machineCount(), 4u);
    EXPECT_EQ(song.machines()[2].name, "C");
    EXPECT_EQ(song.connections(),
              (std::vector<song::SongConnection>{
                  {1, 0, 0x4000, 0x4000}, {2, 0, 0x4000, 0x4000}, {3, 2, 0x4000, 0x4000}}));
    ASSERT_EQ(song.patternBlocks().size(), 4u);
    EXPECT_EQ(song.patternBlocks()[2].patterns.at(0).name, "P3");
    EXPECT_EQ(inputSources(song, 0), (std::vector<std::uint16_t>{1, 2}));
    EXPECT_EQ(inputSources(song, 2), (std::vector<std::uint16_t>{3}));
    std::vector<std::uint16_t> sequenceMachines;
    for (const auto& s : song.sequences())
        sequenceMachines.push_back(s.machine);
    EXPECT_EQ(sequenceMachines, (std::vector<std::uint16_t>{1, 2, 3}));
    EXPECT_EQ(song.findParameterSet("B"), BuzzSong::kNameNotFound);
    EXPECT_EQ(song.parameterSets().size(), 4u);
    EXPECT_EQ(song.parameterWindows().size(), 3u);
    // MIDI bindings go by the index's character code, not by name.
    ASSERT_EQ(song.midiBindings().size(), 1u);
    EXPECT_EQ(song.midiBindings()[0].machineName, "B");

    BuzzSong reread;
    const music::Result r = writeAndReread(song, reread);
    ASSERT_TRUE(r.ok()) << r.code();
    expectSameModel(song, reread);
}

TEST(RemoveMachine, RemovingTheOnlySourceLeavesTheMasterWithoutInputs)
{
    BuzzSong song = readReference();
    song::removeMachine(song, 1);
    EXPECT_TRUE(song.connections().empty());
    EXPECT_TRUE(song.patternBlocks()[0].patterns[0].inputs.empty());
    EXPECT_EQ(song.sequences().size(), 1u) << "the sequence of the master stays";
    BuzzSong reread;
    ASSERT_TRUE(writeAndReread(song, reread).ok());
    expectSameModel(song, reread);
}

TEST(RemoveMachine, IndexOutOfRangeChangesNothing)
{
    BuzzSong song = readReference();
    song::removeMachine(song, 7);
    EXPECT_EQ(song.machineCount(), 2u);
    EXPECT_EQ(song.connections().size(), 1u);
}

/** A song whose machine 1 has `patterns` patterns and one sequence with these values. */
BuzzSong songWithSequence(std::size_t patterns, std::vector<std::uint16_t> values)
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

std::vector<std::uint16_t> sequenceValues(const BuzzSong& song)
{
    std::vector<std::uint16_t> values;
    for (const auto& e : song.sequences()[song.sequencesOf(1).at(0)].events)
        values.push_back(e.value);
    return values;
}

std::vector<std::string> patternNames(const BuzzSong& song)
{
    std::vector<std::string> names;
    for (const auto& p : song.patternBlocks()[1].patterns)
        names.push_back(p.name);
    return names;
}

TEST(RemovePatterns, KeepSequencesPointingAtTheSamePatterns)
{
    const struct
    {
        const char* what;
        std::vector<std::uint16_t> before;
        std::function<void(BuzzSong&)> edit;
        std::vector<std::uint16_t> after;
        std::vector<std::string> names;
    } cases[] = {
        {"remove pattern 1",
         {16, 17, 18, 17},
         [](BuzzSong& s) { song::removePattern(s, 1, 1); },
         {16, 17},
         {"p0", "p2"}},
        {"control codes stay",
         {0, 17, 1, 18},
         [](BuzzSong& s) { song::removePattern(s, 1, 0); },
         {0, 16, 1, 17},
         {"p1", "p2"}},
        {"remove selected 0 and 2",
         {16, 17, 18, 17},
         [](BuzzSong& s) {
             song::removePatterns(s, 1, {0, 2});
         },
         {16, 16},
         {"p1"}},
        {"remove unused keeps pattern 2 only",
         {18, 18},
         [](BuzzSong& s) { song::removeUnusedPatterns(s, 1); },
         {16, 16},
         {"p2"}},
        {"remove unused between used ones",
         {18, 16, 18},
         [](BuzzSong& s) { song::removeUnusedPatterns(s, 1); },
         {17, 16, 17},
         {"p0", "p2"}},
        {"remove unused with every pattern used",
         {16, 17, 18},
         [](BuzzSong& s) { song::removeUnusedPatterns(s, 1); },
         {16, 17, 18},
         {"p0", "p1", "p2"}},
        {"pattern out of range",
         {16},
         [](BuzzSong& s) { song::removePattern(s, 1, 3); },
         {16},
         {"p0", "p1", "p2"}},
    };
    for (const auto& c : cases) {
        BuzzSong song = songWithSequence(
            c.what == std::string("remove unused keeps pattern 2 only") ? 4 : 3, c.before);
        c.edit(song);
        EXPECT_EQ(sequenceValues(song), c.after) << c.what;
        EXPECT_EQ(patternNames(song), c.names) << c.what;
        BuzzSong reread;
        EXPECT_TRUE(writeAndReread(song, reread).ok()) << c.what;
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

/** Machine 1 with 2 tracks and one pattern of `rows` rows; notes at (row, track). */
BuzzSong songWithNotes(std::uint16_t rows, const std::vector<std::pair<int, int>>& notes)
{
    BuzzSong song = readReference();
    song.clearPatterns(1);
    EXPECT_TRUE(song.createPattern(1, "t", rows));
    for (const auto& [row, track] : notes)
        EXPECT_TRUE(song.setCellValue(1, 0, static_cast<std::size_t>(row),
                                      static_cast<std::size_t>(track), 2, 0x41));
    return song;
}

TEST(Trim, CutsAfterTheLastNoteAndDropsSilentTracks)
{
    const struct
    {
        const char* what;
        std::uint16_t rows;
        std::vector<std::pair<int, int>> notes;
        std::uint16_t rowsAfter;
        std::uint16_t tracksAfter;
    } cases[] = {
        {"last note on row 9 of 16", 16, {{9, 0}, {2, 1}}, 10, 2},
        {"note only in track 1", 8, {{3, 1}}, 4, 1},
        {"no notes keeps the length, drops every track", 8, {}, 8, 0},
        {"note on the last row", 4, {{3, 0}, {0, 1}}, 4, 2},
    };
    for (const auto& c : cases) {
        BuzzSong song = songWithNotes(c.rows, c.notes);
        // Velocity (not a note) on the last row must not keep the row or track alive.
        song.setCellValue(1, 0, c.rows - 1u, 1, 3, 0x20);
        song::trimPatterns(song, 1);
        const song::SongPattern& p = song.patternBlocks()[1].patterns[0];
        EXPECT_EQ(p.rows, c.rowsAfter) << c.what;
        EXPECT_EQ(song.machines()[1].trackCount, c.tracksAfter) << c.what;
        EXPECT_EQ(song.patternBlocks()[1].trackCount, c.tracksAfter) << c.what;
        EXPECT_EQ(p.trackRows.size(), std::size_t{c.rowsAfter} * 2 * c.tracksAfter) << c.what;
        EXPECT_EQ(song.machines()[1].trackState.size(), 2u * c.tracksAfter) << c.what;
        EXPECT_EQ(p.globalRows.size(), std::size_t{c.rowsAfter} * 3) << c.what;
        BuzzSong reread;
        EXPECT_TRUE(writeAndReread(song, reread).ok()) << c.what;
    }
}

TEST(Trim, KeepsTheNotesInTheirTracks)
{
    BuzzSong song = songWithNotes(8, {{1, 1}, {2, 1}});
    song::trimPatterns(song, 1);
    ASSERT_EQ(song.machines()[1].trackCount, 1);
    EXPECT_EQ(song.cellValue(1, 0, 1, 0, 2), 0x41);
    EXPECT_EQ(song.cellValue(1, 0, 2, 0, 2), 0x41);
    EXPECT_EQ(song.cellValue(1, 0, 0, 0, 2), 0);
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
    const auto leadPattern = song.createPattern(1, "new", 3);
    ASSERT_TRUE(leadPattern);
    EXPECT_EQ(*leadPattern, 1u);
    for (std::size_t row = 0; row < 3; ++row) {
        EXPECT_EQ(song.cellValue(1, 1, row, 0, 0), 0xFF);
        EXPECT_EQ(song.cellValue(1, 1, row, 0, 1), 0xFFFF);
        EXPECT_EQ(song.cellValue(1, 1, row, 1, 2), 0);
        EXPECT_EQ(song.cellValue(1, 1, row, 1, 3), 0xFF);
    }
    const auto masterPattern = song.createPattern(0, "m", 2);
    ASSERT_TRUE(masterPattern);
    const song::SongPattern& p = song.patternBlocks()[0].patterns[*masterPattern];
    ASSERT_EQ(p.inputs.size(), 1u);
    EXPECT_EQ(p.inputs[0],
              (std::vector<std::uint8_t>{1, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(p.globalRows.size(), 10u);
    EXPECT_EQ(song.findPattern(0, "m"), *masterPattern);
    EXPECT_EQ(song.findPattern(0, "missing"), BuzzSong::kNameNotFound);

    // A pattern of 0 rows has 2-byte input blocks and no rows.
    const auto empty = song.createPattern(0, "zero", 0);
    ASSERT_TRUE(empty);
    EXPECT_EQ(song.patternBlocks()[0].patterns[*empty].inputs[0].size(), 2u);
    BuzzSong reread;
    ASSERT_TRUE(writeAndReread(song, reread).ok());
    expectSameModel(song, reread);
}

TEST(SongCells, TrackCountGrowsWithDefaultsAndShrinksEveryPattern)
{
    BuzzSong song = readReference();
    ASSERT_TRUE(song.setTrackCount(1, 4));
    EXPECT_EQ(song.machines()[1].trackState,
              (std::vector<std::uint8_t>{0, 0x80, 0, 0x80, 0, 0x80, 0, 0x80}));
    EXPECT_EQ(song.patternBlocks()[1].trackCount, 4);
    EXPECT_EQ(song.cellValue(1, 0, 0, 0, 2), 0x41) << "existing tracks keep their notes";
    EXPECT_EQ(song.cellValue(1, 0, 1, 1, 2), 0x45);
    EXPECT_EQ(song.cellValue(1, 0, 1, 3, 3), 0xFF) << "new tracks hold the no-value";

    ASSERT_TRUE(song.setTrackCount(1, 1));
    EXPECT_EQ(song.patternBlocks()[1].patterns[0].trackRows,
              (std::vector<std::uint8_t>{0x41, 0x60, 0, 0xFF}));
    EXPECT_EQ(song.machines()[1].trackState.size(), 2u);

    EXPECT_FALSE(song.setTrackCount(1, 17)) << "the machine allows 16 tracks";
    EXPECT_EQ(song.machines()[1].trackCount, 1);
    BuzzSong reread;
    ASSERT_TRUE(writeAndReread(song, reread).ok());
    expectSameModel(song, reread);
}

TEST(SongQueries, FindByNameAndInputs)
{
    const BuzzSong song = fiveMachineSong();
    EXPECT_EQ(song.findMachine("C"), 3u);
    EXPECT_EQ(song.findMachine("c"), BuzzSong::kNameNotFound);
    EXPECT_EQ(song.findMachine("Z"), BuzzSong::kNameNotFound);
    EXPECT_EQ(song.inputsOf(0), (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(song.inputsOf(3), (std::vector<std::size_t>{3}));
    EXPECT_TRUE(song.inputsOf(4).empty());
    EXPECT_EQ(song.sequencesOf(4), (std::vector<std::size_t>{3}));
    EXPECT_EQ(song.findParameterSet("D"), 4u);
    EXPECT_EQ(BuzzSong::findParameter(song.machines()[1].description, "NOTE"), 2u);
    EXPECT_FALSE(BuzzSong::findParameter(song.machines()[1].description, "wave"));
}

} // namespace
