// Writing a part into a song, checked by saving the song with the writer, reading it back with
// the reader and comparing note bytes against values worked out by hand
// (note byte = octave * 16 + pitch class + 1, note-off 255).

#include "song_test_support.h"

#include "music/RandomSource.h"
#include "music/SafeFileWriter.h"
#include "part/Part.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/PartWriter.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace songtest;
using part::CellKind;
using part::PatternCell;
using song::BuzzSong;
using song::PartWriteOptions;
using song::PartWriter;
using song::PartWriteStatus;

// Machines of the test song, in MACH order.
constexpr std::size_t kSynth = 1; // track Note, Wave, Volume; 1..3 tracks
constexpr std::size_t kDrone = 2; // global Note; track Volume; 1..2 tracks
constexpr std::size_t kNoise = 3; // no note parameter

// Parameter indices of the synth (global Cutoff first).
constexpr std::size_t kSynthNote = 1;
constexpr std::size_t kSynthWave = 2;
constexpr int kWaveNoValue = 0;

int code(int pitchClass, int octave)
{
    return octave * 16 + pitchClass + 1;
}
constexpr int kOff = 255;

std::vector<song::MachineDatabaseEntry> entries()
{
    return {
        masterEntry(),
        entry("TestSynth", 1,
              {{"Cutoff", 2, false, 0xFF, 0x40},
               {"Note", 0, true, 0, 0},
               {"Wave", 2, true, kWaveNoValue, 1},
               {"Volume", 2, true, 0xFF, 0x80}},
              1, 3),
        entry("TestDrone", 1, {{"note", 0, false, 0, 0}, {"Volume", 2, true, 0xFF, 0x80}}, 1, 2),
        entry("TestNoise", 1, {{"Volume", 2, true, 0xFF, 0x80}}, 1, 1)};
}

/** A song folder with its machine database; songs are read back through it. */
class PartWriterTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string ini = std::to_string(entries().size()) + "\n";
        for (const song::MachineDatabaseEntry& e : entries())
            ini += song::MachineDatabase::formatEntry(e);
        ASSERT_TRUE(music::writeFileSafely(m_folder.path() / "machines.ini", ini));

        // Master, Synth, Drone and Noise, each connected to the master, read back once so that
        // every machine is resolved the way a loaded song is.
        BuzzSong built;
        const char* const names[] = {"Master", "Synth", "Drone", "Noise"};
        for (const song::MachineDatabaseEntry& e : entries()) {
            song::SongMachine& m = built.machines().emplace_back();
            m.name = names[built.machineCount() - 1];
            m.type = e.type;
            m.dllName = e.type == 0 ? "" : e.dllName;
            m.trackCount = e.type == 0 ? 0 : 1;
            m.globalState.assign(e.globalRowSize, 0);
            m.trackState.assign(std::size_t{e.trackRowSize} * m.trackCount, 0);
            built.patternBlocks().push_back({m.trackCount, {}});
        }
        built.connections() = {
            {1, 0, 0x4000, 0x4000}, {2, 0, 0x4000, 0x4000}, {3, 0, 0x4000, 0x4000}};
        m_song = roundTrip(built);
    }

    /** Writes the song with our writer and reads it back with our reader. */
    BuzzSong roundTrip(const BuzzSong& song)
    {
        const auto path = m_folder.path() / "song.bmx";
        EXPECT_TRUE(song::SongWriter::write(song, path).ok());
        song::DataFolderMachineCatalog catalog(m_folder.path());
        BuzzSong read;
        const music::Result result = song::SongReader(catalog, nullptr).read(path, read);
        EXPECT_TRUE(result.ok()) << result.message() << " code " << result.code();
        return read;
    }

    /** Writes `part` into the song, then replaces the song by its written-and-read copy. */
    song::PartWriteResult write(const part::Part& part, const PartWriteOptions& options,
                                std::size_t machine = kSynth)
    {
        const song::PartWriteResult result = PartWriter::write(m_song, machine, part, options);
        m_song = roundTrip(m_song);
        return result;
    }

    int note(std::size_t pattern, std::size_t track, std::size_t row, std::size_t machine = kSynth,
             std::size_t parameter = kSynthNote) const
    {
        return m_song.cellValue(machine, pattern, row, track, parameter).value_or(-1);
    }
    /** The note column of the synth's first track in `pattern`, rows 0 to count - 1. */
    std::vector<int> notes(std::size_t pattern, std::size_t count) const
    {
        std::vector<int> column;
        for (std::size_t row = 0; row < count; ++row)
            column.push_back(note(pattern, 0, row));
        return column;
    }
    std::vector<std::string> patternNames() const
    {
        return column(m_song.patternBlocks()[kSynth].patterns, &song::SongPattern::name);
    }
    std::vector<song::SequenceEvent> events() const
    {
        return m_song.sequences()[m_song.sequencesOf(kSynth).back()].events;
    }

    TempFolder m_folder{"part-writer"};
    BuzzSong m_song;
};

/** A part with one pattern whose cells are given as (track, row, cell), and one chord on it. */
part::Part partWith(const std::vector<music::NoteValue>& notes,
                    const std::vector<std::tuple<int, int, PatternCell>>& cells,
                    std::uint8_t baseOctave = 4, std::uint8_t length = 16)
{
    part::Part p;
    p.setBaseOctave(baseOctave);
    part::Pattern pattern;
    for (const auto& [track, row, cell] : cells)
        pattern.setCell(track, row, cell);
    p.patterns().append(pattern);
    part::PartChord chord;
    chord.name = "C";
    chord.noteCount = static_cast<std::uint8_t>(notes.size());
    std::ranges::copy(notes, chord.notes.begin());
    chord.length = length;
    p.append(chord);
    return p;
}

PartWriteOptions flags(bool append, bool makeSequence, bool nameByNotes = false)
{
    PartWriteOptions options;
    options.append = append;
    options.makeSequence = makeSequence;
    options.nameByNotes = nameByNotes;
    return options;
}

PatternCell chordNote(int index, std::uint8_t octaveByte = 0)
{
    return {CellKind::ChordNote, static_cast<std::uint8_t>(index), octaveByte};
}
PatternCell fixedNote(int pitchClass, std::uint8_t octave = 0)
{
    return {CellKind::FixedNote, static_cast<std::uint8_t>(pitchClass), octave};
}

TEST_F(PartWriterTest, OnlyUsedTracksAreWrittenInOrderFromMachineTrackZero)
{
    // Track 1 holds notes but is switched off; track 2 only holds an off cell; track 3 is used;
    // track 4 has a note only after the chord's 16 rows.
    part::Part p = partWith({0, 4, 7}, {{0, 0, chordNote(1)},
                                        {1, 0, {CellKind::Off, 0, 0}},
                                        {2, 0, chordNote(0)},
                                        {2, 4, chordNote(2)},
                                        {2, 8, {CellKind::Off, 0, 0}},
                                        {3, 16, chordNote(0)}});
    PartWriteOptions options;
    options.render.tracks[0] = false;
    EXPECT_EQ(PartWriter::usedTracks(p, options.render), std::vector<int>{2});

    const auto result = write(p, options);
    EXPECT_EQ(result.messages, std::vector<std::string>{"done"});
    ASSERT_EQ(m_song.patternCount(kSynth), 1u);
    EXPECT_EQ(m_song.machines()[kSynth].trackCount, 1);
    EXPECT_EQ(m_song.patternBlocks()[kSynth].patterns[0].rows, 16);
    EXPECT_EQ(notes(0, 9), (std::vector<int>{code(0, 4), 0, 0, 0, code(7, 4), 0, 0, 0, kOff}));
}

/** Options with this index option and, when `limit`, the upper note limit C4. */
PartWriteOptions render(part::IndexOption option, bool limit = false)
{
    PartWriteOptions options;
    options.render.indexOption = option;
    options.render.limitActive = limit;
    options.render.limitOctave = 4;
    return options;
}

TEST_F(PartWriterTest, EachCellWritesTheNoteItsIndexOctaveShiftAndLimitGive)
{
    constexpr auto kExtend = part::IndexOption::ExtendChord;
    constexpr auto kUp = part::kShiftUp;
    const PartWriteOptions limit = render(kExtend, true);
    const struct
    {
        const char* what;
        std::vector<music::NoteValue> notes;
        PatternCell cell;
        std::uint8_t setting, baseOctave;
        PartWriteOptions options;
        int expected;
    } cases[] = {
        // clang-format off
        {"base", {0}, chordNote(0), 0, 4, {}, code(0, 4)},
        {"B-2", {0}, chordNote(0), 8, 4, {}, code(0, 2)},
        {"B-1", {0}, chordNote(0), 9, 4, {}, code(0, 3)},
        {"B+1", {0}, chordNote(0), 10, 4, {}, code(0, 5)},
        {"B+2", {0}, chordNote(0), 11, 4, {}, code(0, 6)},
        {"setting 3 replaces the octave of a chord note", {12}, chordNote(0), 3, 1, {}, code(0, 4)},
        {"setting 3 leaves a fixed note on the base", {0}, fixedNote(9), 3, 2, {}, code(9, 2)},
        {"fixed note with its own octave", {0}, fixedNote(9, 7), 8, 2, {}, code(9, 7)},
        {"fixed note follows B+1", {0}, fixedNote(2), 10, 2, {}, code(2, 3)},
        {"below octave 0 wraps and is capped", {0}, chordNote(0), 8, 1, {}, code(0, 9)},
        {"chord note an octave up carries", {14}, chordNote(0), 0, 4, {}, code(2, 5)},
        {"capped at 9", {60}, chordNote(0), 0, 8, {}, code(0, 9)},
        {"shift up onto a free pitch", {0, 4, 7}, chordNote(0, kUp), 0, 4, {}, code(2, 4)},
        {"shift up a half-note from G: back", {0, 4, 7}, chordNote(1, kUp), 0, 4, {}, code(4, 4)},
        {"shift down", {0, 4, 9}, chordNote(2, part::kShiftDown), 0, 4, {}, code(7, 4)},
        // The writer reads the index option its own way: Ignore writes a note-off.
        {"index beyond the chord: fifth note, E an octave up", {0, 4, 7}, chordNote(4), 0, 4,
         render(kExtend), code(4, 5)},
        {"index beyond the chord, OffEvent", {0, 4, 7}, chordNote(4), 0, 4,
         render(part::IndexOption::OffEvent), 0},
        {"index beyond the chord, Ignore", {0, 4, 7}, chordNote(4), 0, 4,
         render(part::IndexOption::Ignore), kOff},
        // The upper limit C4 allows the limit itself but nothing above.
        {"E6 under C4", {4, 0, 1, 11}, chordNote(0), 0, 6, limit, code(4, 3)},
        {"C4 equals the limit", {4, 0, 1, 11}, chordNote(1), 0, 4, limit, code(0, 4)},
        {"C#4 just above", {4, 0, 1, 11}, chordNote(2), 0, 4, limit, code(1, 3)},
        {"B3 below stays", {4, 0, 1, 11}, chordNote(3), 0, 3, limit, code(11, 3)},
        {"fixed E in octave 6", {4, 0, 1, 11}, fixedNote(4, 6), 0, 4, limit, code(4, 3)},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        SetUp();
        part::Part p = partWith(c.notes, {{0, 0, c.cell}}, c.baseOctave);
        p.patterns().pattern(0).setTrackOctave(0, c.setting);
        write(p, c.options);
        EXPECT_EQ(note(0, 0, 0), c.expected);
        if (c.expected == 0 || c.expected == kOff) { // no wave goes with a note-off or nothing
            EXPECT_EQ(note(0, 0, 0, kSynth, kSynthWave), kWaveNoValue);
        }
    }
}

TEST_F(PartWriterTest, ShiftOntoAForbiddenPitchClassFallsBack)
{
    part::Part p = partWith({0, 7}, {{0, 0, chordNote(0, part::kShiftUp)}});
    part::PitchClassFlags flags = part::kAllPitchClassesAllowed;
    flags[2] = 0; // D
    p.setPitchClassFlags(flags);
    write(p, {});
    EXPECT_EQ(note(0, 0, 0), code(0, 4));
}

TEST_F(PartWriterTest, WaveFollowsTheWaveMode)
{
    const struct
    {
        std::uint8_t mode;
        bool ignore;
        int track0, track1;
    } cases[] = {
        {0, false, 10 + 2, 10 + 1}, // + chord-note index
        {1, false, 10 + 0, 10 + 1}, // + machine track
        {7, false, 10, 10},         // base wave only
        {0, true, kWaveNoValue, kWaveNoValue},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.mode));
        SetUp();
        PartWriteOptions options;
        options.waveMode = c.mode;
        options.baseWave = 10;
        options.ignoreWave = c.ignore;
        write(partWith({0, 4, 7}, {{1, 0, chordNote(2)}, {3, 0, chordNote(1)}}), options);
        EXPECT_EQ(note(0, 0, 0, kSynth, kSynthWave), c.track0);
        EXPECT_EQ(note(0, 1, 0, kSynth, kSynthWave), c.track1);
        EXPECT_EQ(note(0, 1, 0), code(4, 4));
    }
}

TEST_F(PartWriterTest, TooManyTracksWarnsAndDropsTheLastUsedTracks)
{
    part::Part p = partWith(
        {0, 4, 7, 11},
        {{0, 0, chordNote(0)}, {2, 0, chordNote(1)}, {5, 0, chordNote(2)}, {7, 0, chordNote(3)}});
    const auto result = write(p, {});
    EXPECT_EQ(result.status, PartWriteStatus::Done);
    EXPECT_EQ(result.messages,
              (std::vector<std::string>{"Machine only supports 3 tracks.", "done"}));
    EXPECT_EQ(m_song.machines()[kSynth].trackCount, 3);
    EXPECT_EQ(note(0, 2, 0), code(7, 4));
}

TEST_F(PartWriterTest, NothingChangesWithoutNoteParameterChordsOrUsedTracks)
{
    const BuzzSong before = m_song;
    const auto failed = write(partWith({0}, {{0, 0, chordNote(0)}}), {}, kNoise);
    EXPECT_EQ(failed.status, PartWriteStatus::Failed);
    EXPECT_EQ(failed.messages, std::vector<std::string>{"Error:\t unable to find Noteparameter"});
    expectSameModel(before, m_song);

    part::Part empty;
    empty.patterns().append(part::Pattern());
    part::Part silent = partWith({0}, {{0, 0, {CellKind::Off, 0, 0}}});
    for (const part::Part* p : {&empty, &silent}) {
        const auto result = PartWriter::write(m_song, kSynth, *p, {});
        EXPECT_EQ(result.status, PartWriteStatus::NothingToDo);
        EXPECT_TRUE(result.messages.empty());
    }
    EXPECT_EQ(PartWriter::write(m_song, 99, silent, {}).status, PartWriteStatus::NothingToDo);
    expectSameModel(before, m_song);
}

TEST_F(PartWriterTest, GlobalNoteParameterWritesGlobalRowsAndZeroTracks)
{
    const auto result =
        write(partWith({0, 4}, {{0, 0, chordNote(0)}, {1, 2, chordNote(1)}}), {}, kDrone);
    EXPECT_TRUE(result.ok());
    EXPECT_EQ(m_song.machines()[kDrone].trackCount, 0);
    EXPECT_EQ(note(0, 0, 0, kDrone, 0), code(0, 4));
    EXPECT_EQ(note(0, 0, 2, kDrone, 0), code(4, 4));
}

TEST_F(PartWriterTest, AppendingCannotRaiseTracksBeyondTheMaximumForAGlobalNote)
{
    const auto result = write(
        partWith({0, 4, 7}, {{0, 0, chordNote(0)}, {1, 0, chordNote(1)}, {2, 0, chordNote(2)}}),
        flags(true, false), kDrone);
    EXPECT_EQ(result.messages, std::vector<std::string>{"Error:\t unable to set tracks"});
    EXPECT_EQ(m_song.patternCount(kDrone), 0u);
}

TEST_F(PartWriterTest, ReplacingRemovesOldPatternsAndLeavesOneEmptySequence)
{
    ASSERT_TRUE(m_song.createPattern(kSynth, "Old", 8));
    m_song.sequences()[m_song.addSequence(kSynth)].events = {{0, 16}};
    m_song.sequences()[m_song.addSequence(kSynth)].events = {{8, 16}};

    write(partWith({0}, {{0, 0, chordNote(0)}}), {});
    EXPECT_EQ(patternNames(), std::vector<std::string>{"C"});
    ASSERT_EQ(m_song.sequencesOf(kSynth).size(), 1u);
    EXPECT_TRUE(events().empty());
}

/** A part of one chord per name, each `length` rows of pattern 0 (C, C#, D, ...). */
part::Part chordsPart(const std::vector<std::string>& names, std::uint8_t length = 4)
{
    part::Part p = partWith({0}, {{0, 0, chordNote(0)}}, 4, length);
    p.clearChords();
    for (std::size_t c = 0; c < names.size(); ++c) {
        part::PartChord chord;
        chord.name = names[c];
        chord.setNotes({static_cast<music::NoteValue>(c % 12)});
        chord.length = length;
        p.append(chord);
    }
    return p;
}

TEST_F(PartWriterTest, PatternNamesAreFreeAndFollowTheNamingOption)
{
    part::PartChord chord;
    chord.name = "Nameless";
    EXPECT_EQ(PartWriter::notesName(chord), "Nameless") << "a chord without notes keeps its name";
    chord.setNotes({48, 52, 55});
    EXPECT_EQ(PartWriter::notesName(chord), "C4 E4 G4");

    const struct
    {
        const char* what;
        part::Part part;
        PartWriteOptions options;
        std::vector<std::string> names;
    } cases[] = {
        {"taken names get a counter",
         chordsPart({"Am", "Am"}),
         flags(true, false),
         {"Am", "Am-2", "Am-3"}},
        {"names by notes",
         partWith({0, 4, 7}, {{0, 0, chordNote(0)}}),
         flags(false, false, true),
         {"C0 E0 G0"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        SetUp();
        ASSERT_TRUE(m_song.createPattern(kSynth, "Am", 4));
        write(c.part, c.options);
        EXPECT_EQ(patternNames(), c.names);
    }
}

TEST_F(PartWriterTest, SequenceWidthsGrowWithChordCountAndTotalLength)
{
    const struct
    {
        int chords;
        std::uint8_t length, positionWidth, eventWidth;
    } cases[] = {
        {112, 2, 1, 1}, // 224 rows
        {113, 2, 1, 2}, // the song writer widens values beyond 112 patterns
        {121, 1, 1, 2}, // 121 chords
        {51, 5, 1, 1},  // 255 rows
        {64, 4, 2, 1},  // 256 rows
        {130, 64, 2, 2} // positions beyond one byte, values beyond one byte
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.chords) + " x " + std::to_string(c.length));
        SetUp();
        std::vector<std::string> names;
        for (int i = 0; i < c.chords; ++i)
            names.push_back("P" + std::to_string(1000 + i)); // sorted as created
        const auto result = write(chordsPart(names, c.length), flags(false, true));
        ASSERT_TRUE(result.ok());
        const song::SongSequence& s = m_song.sequences()[m_song.sequencesOf(kSynth).back()];
        EXPECT_EQ(std::tie(s.positionWidth, s.eventWidth), std::tie(c.positionWidth, c.eventWidth));
        // The song grows to hold the whole sequence, and its loop with it.
        const auto total = static_cast<std::uint32_t>(c.chords * c.length);
        EXPECT_EQ(std::make_pair(m_song.songEnd(), m_song.loopEnd()), std::make_pair(total, total));
        const std::vector<song::SequenceEvent> e = events();
        ASSERT_EQ(e.size(), static_cast<std::size_t>(c.chords));
        for (int i = 0; i < c.chords; i += 7) {
            EXPECT_EQ(e[static_cast<std::size_t>(i)].position,
                      static_cast<std::uint16_t>(i * c.length));
            EXPECT_EQ(e[static_cast<std::size_t>(i)].value, 16 + i);
        }
    }
}

TEST_F(PartWriterTest, AppendingSortsPatternsByNameAndRenumbersEveryEvent)
{
    ASSERT_TRUE(m_song.createPattern(kSynth, "Zeta", 4));
    ASSERT_TRUE(m_song.createPattern(kSynth, "Beta", 4));
    m_song.sequences()[m_song.addSequence(kSynth)].events = {{32, 16}, {40, 1}, {48, 17}};
    m_song.sequences()[m_song.addSequence(kSynth)].events = {{0, 17}, {64, 8888}};

    // Chord values count from the chord (16 + c) and so name Zeta and Beta at first.
    write(chordsPart({"Alpha", "Gamma"}), flags(true, true));
    EXPECT_EQ(patternNames(), (std::vector<std::string>{"Alpha", "Beta", "Gamma", "Zeta"}));
    const std::vector<std::size_t> sequences = m_song.sequencesOf(kSynth);
    ASSERT_EQ(sequences.size(), 2u);
    EXPECT_EQ(m_song.sequences()[sequences[0]].events,
              (std::vector<song::SequenceEvent>{{32, 19}, {40, 1}, {48, 17}}));
    EXPECT_EQ(m_song.sequences()[sequences[1]].events,
              (std::vector<song::SequenceEvent>{{0, 19}, {4, 17}, {64, 0}}));
}

TEST_F(PartWriterTest, DamagedSequenceStopsWithPositionAndValueAndKeepsOrder)
{
    ASSERT_TRUE(m_song.createPattern(kSynth, "Zeta", 4));
    m_song.sequences()[m_song.addSequence(kSynth)].events = {{48, 21}};
    const auto result = write(chordsPart({"Alpha"}), flags(true, false));
    EXPECT_EQ(result.status, PartWriteStatus::Failed);
    EXPECT_EQ(result.messages, std::vector<std::string>{"Error reading SequencerData\n48\n21"});
    EXPECT_EQ(patternNames(), (std::vector<std::string>{"Zeta", "Alpha"}));
}

TEST_F(PartWriterTest, ChanceCellsSoundSometimesAndRepeatWithTheSeed)
{
    std::vector<std::tuple<int, int, PatternCell>> cells;
    for (int r = 0; r < part::kRowCount; ++r)
        cells.emplace_back(0, r, PatternCell{CellKind::ChanceChordNote, 0, 0});
    const part::Part p = partWith({0}, cells, 4, 64);

    std::vector<int> first;
    for (int run = 0; run < 2; ++run) {
        SetUp();
        music::RandomSource::seed(7);
        write(p, {});
        const std::vector<int> notes = this->notes(0, part::kRowCount);
        const auto sounding = std::count(notes.begin(), notes.end(), code(0, 4));
        EXPECT_GT(sounding, 10);
        EXPECT_LT(sounding, 54);
        EXPECT_EQ(sounding + std::count(notes.begin(), notes.end(), 0), 64);
        if (run == 0)
            first = notes;
        else
            EXPECT_EQ(notes, first);
    }
}

TEST_F(PartWriterTest, ChordLengthsAbove64AreCappedAtThePatternsRows)
{
    part::Part p = partWith({0}, {{0, 63, chordNote(0)}}, 4, 100);
    write(p, {});
    ASSERT_EQ(m_song.patternBlocks()[kSynth].patterns[0].rows, 64);
    std::vector<int> expected(64, 0);
    expected[63] = code(0, 4);
    EXPECT_EQ(notes(0, 64), expected);
}

TEST_F(PartWriterTest, ChordOnAMissingPatternWritesAnEmptyPattern)
{
    part::Part p = partWith({0}, {{0, 0, chordNote(0)}});
    part::PartChord lost = p.chord(0);
    lost.name = "Lost";
    lost.pattern = 40;
    p.append(lost);
    EXPECT_TRUE(write(p, {}).ok());
    EXPECT_EQ(patternNames(), (std::vector<std::string>{"C", "Lost"}));
    EXPECT_EQ(note(1, 0, 0), 0);
}

} // namespace
