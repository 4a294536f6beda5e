#include "song_reference.h"
#include "song_test_support.h"

#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"
#include "part/Part.h"
#include "song/BuzzNote.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/FileErrorCode.h"
#include "song/MemoryMachineCatalog.h"
#include "song/PartWriter.h"
#include "song/SongReader.h"
#include "song/SpecDataStore.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace songtest;
using song::BuzzSong;
using song::FileErrorCode;
using Rows = std::vector<std::uint8_t>;

music::Result readWith(const std::string& bytes, BuzzSong& song,
                       song::UnknownMachineHandler* handler = nullptr)
{
    song::MemoryMachineCatalog catalog = referenceCatalog();
    return song::SongReader(catalog, handler).readBytes(bytes, song);
}

/** The fields of a machine the reader fills, for comparison in one go. */
auto fields(const song::SongMachine& m)
{
    return std::make_tuple(m.name, m.type, m.dllName, m.x, m.y, m.data, m.attributes, m.globalState,
                           m.trackCount, m.trackState, m.databaseIndex, m.globalRowSize,
                           m.trackRowSize);
}

TEST(SongReader, ReadsEveryFieldOfAHandBuiltSong)
{
    using Attributes = std::vector<song::MachineAttribute>;
    BuzzSong song;
    const music::Result result = readWith(referenceSong(), song);
    ASSERT_TRUE(result.ok()) << result.code();
    ASSERT_EQ(song.directory().size(), 31u);
    ASSERT_EQ(song.machineCount(), 2u);
    ASSERT_EQ(song.parameterSets().size(), 2u);
    ASSERT_EQ(song.parameterWindows().size(), 1u);
    EXPECT_EQ(std::make_tuple(song.magic(), song.sectionCount(), song.versionText(), song.songEnd(),
                              song.loopEnd()),
              std::make_tuple("Buzz", 11u, "Buzz 1.3 test", 64u, 32u));
    EXPECT_EQ(std::make_tuple(song.directory()[0].name, song.directory()[0].offset,
                              song.directory()[11].name),
              std::make_tuple("BVER", 380u, std::string(4, '\0')));
    // clang-format off
    EXPECT_EQ(fields(song.machines()[0]),
              std::make_tuple("Master", 0, "", 0x3F800000u, 0xBF000000u, Rows{}, Attributes{},
                              Rows{0x00, 0x40, 126, 0, 4}, 0, Rows{}, 0u, 5, 0));
    EXPECT_EQ(fields(song.machines()[1]),
              std::make_tuple("Lead", 1, "TestGen", 0x3E000000u, 0x3D000000u, Rows{1, 2, 3},
                              Attributes{{"Mode", -5}}, Rows{0x40, 0x00, 0x01}, 2,
                              Rows{0, 0x80, 0, 0x80}, 1u, 3, 2));
    EXPECT_EQ(song.connections(), (std::vector<song::SongConnection>{{1, 0, 0x4000, 0x4000}}));
    const Rows input = {1, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x20, 0x00, 0x40};
    EXPECT_EQ(song.patternBlocks(), (std::vector<song::MachinePatterns>{
        {0, {{"00", 2, {input}, Rows(10, 0xFF), {}}}},
        {2, {{"Intro", 2, {}, {0x10, 0xFF, 0xFF, 0xFF, 0x00, 0x02},
              {0x41, 0x60, 0, 0xFF, 0, 0xFF, 0x45, 0xFF}}}}}));
    EXPECT_EQ(song.sequences(), (std::vector<song::SongSequence>{
        {1, 1, 1, {{0, 16}, {16, 16}, {32, 1}}}, {0, 1, 1, {}}}));
    EXPECT_EQ(song.midiBindings(), (std::vector<song::MidiBinding>{{"Lead", {1, 2, 3, 4, 5}}}));
    EXPECT_EQ(std::make_tuple(song.parameterWindowFlag(), song.parameterWindows()[0].machineName,
                              song.parameterWindows()[0].data[43]),
              std::make_tuple(1, "Lead", 44));
    EXPECT_EQ(song.parameterSets()[1], (song::MachineParameterSet{"Lead", "TestGen", 2, 2, {
        {2, "Cutoff", 0, 0xFE, 0xFF, 2, 0x40}, {3, "Glide", 0, 0xFFFE, 0xFFFF, 2, 0x100},
        {0, "Note", 0, 0, 0, 0, 0}, {2, "Velocity", 0, 0xFE, 0xFF, 2, 0x80}}}));
    // clang-format on
    EXPECT_EQ(song.waves(), (std::vector<song::WaveEntry>{{3, "Kick"}}));
    EXPECT_EQ(song.waveTable().size(), wavtSection().size());
    EXPECT_TRUE(song.hasWaveData());
    EXPECT_EQ(std::string(song.waveData().begin(), song.waveData().end()), "wave data bytes");
    ASSERT_EQ(song.rawSections().size(), 1u);
    EXPECT_EQ(song.rawSections()[0].name, "BLAH");
    EXPECT_EQ(song.rawSections()[0].bytes, (Rows{'h', 'e', 'l', 'l', 'o'}));
}

TEST(SongReader, RejectsOtherMagicAndTruncatedHeadersWithTheirCodes)
{
    const std::string file = referenceSong();
    std::string machBeyond = file; // directory entry 2 is MACH: point it past the end
    const auto beyond = static_cast<std::uint32_t>(file.size() + 10);
    std::memcpy(machBeyond.data() + 8 + 2 * 12 + 4, &beyond, 4);
    const struct
    {
        const char* what;
        std::string bytes;
        int code;
    } cases[] = {
        {"MACH section past the end", machBeyond, FileErrorCode::kMachineSeek},
        {"lower case magic", songFile(referenceSections(), std::nullopt, "buzz"), 0},
        {"mixed case magic", songFile(referenceSections(), std::nullopt, "BuZz"), 0},
        {"RIFF", songFile(referenceSections(), std::nullopt, "RIFF"), 666},
        {"Buz ", songFile(referenceSections(), std::nullopt, "Buz "), 666},
        {"empty", "", 4},
        {"3 bytes", file.substr(0, 3), 4},
        {"magic only", file.substr(0, 4), 4},
        {"7 bytes", file.substr(0, 7), 4},
        {"no directory", file.substr(0, 8), 1},
        {"part of the directory", file.substr(0, 100), 1},
        {"directory one byte short", file.substr(0, 379), 1},
    };
    for (const auto& c : cases) {
        BuzzSong song;
        const music::Result r = readWith(c.bytes, song);
        EXPECT_EQ(r.code(), c.code) << c.what;
        if (c.code == 666) {
            EXPECT_EQ(r.message(), "Error:\nno Buzzfile");
        }
    }
}

/**
 * Each case puts one section last in the file and cuts the file inside it, or replaces the
 * section by damaged bytes, and expects that step's code.
 */
TEST(SongReader, DamagedSectionsFailWithTheirOwnCode)
{
    using E = song::FileErrorCode;
    // Sequences of one machine with this event count and widths, no events.
    const auto sequence = [](std::int64_t events, int positionWidth, int eventWidth) {
        Bytes b;
        b.u32(0).u32(0).u32(0).u16(1).u16(1).u32(events);
        return b.u8(positionWidth).u8(eventWidth).data();
    };
    const std::string hugeMachineData =
        Bytes().u16(1).str("M").u8(0).u32(0).u32(0).u32(0x7FFFFFFF).data();
    const std::string hugePattern =
        Bytes().u16(0).u16(0).u16(1).u16(0xFFFF).str("P").u16(0xFFFF).data();
    const std::string hugeDescriptions =
        Bytes().u32(1).str("M").str("D").u32(0xFFFFFFFF).u32(0xFFFFFFFF).data();
    const struct
    {
        const char* what;
        std::string section;
        std::string bytes; // replaces the section when not empty
        std::size_t keep;  // bytes of the section kept when `bytes` is empty
        int code;
    } cases[] = {
        // clang-format off
        {"connection count", "CONN", "", 1, E::kConnectionCount},
        {"connection", "CONN", "", 5, E::kConnection},
        {"huge connection count", "CONN", Bytes().u16(0xFFFF).u16(1).data(), 0, E::kConnection},
        {"machine count", "MACH", "", 1, E::kMachineRecord},
        {"machine name", "MACH", "", 4, E::kMachineRecord},
        {"DLL name", "MACH", "", 40, E::kMachineRecord},
        {"machine data", "MACH", "", 58, E::kMachineRecord},
        {"attribute value", "MACH", "", 70, E::kAttribute},
        {"track state", "MACH", "", 79, E::kMachineRecord},
        {"huge machine data", "MACH", hugeMachineData, 0, E::kMachineRecord},
        {"song length", "SEQU", "", 13, E::kSongLength},
        {"sequence header", "SEQU", "", 16, E::kSequenceHeader},
        {"sequence widths", "SEQU", "", 20, E::kSequenceHeader},
        {"sequence events", "SEQU", "", 25, E::kSequenceEvent},
        {"huge event count", "SEQU", sequence(0xFFFFFFFF, 2, 2), 0, E::kSequenceEvent},
        {"event width 3", "SEQU", sequence(1, 1, 3) + std::string(2, '\0'), 0, E::kEventWidth},
        {"event width 0", "SEQU", sequence(1, 1, 0) + std::string(2, '\0'), 0, E::kEventWidthZero},
        {"MIDI probe", "MIDI", "", 0, E::kMidiProbe},
        {"MIDI entry", "MIDI", "", 7, E::kMidiEntry},
        {"PDLG flag", "PDLG", "", 0, E::kPdlg},
        {"PDLG probe", "PDLG", "", 1, E::kPdlg},
        {"PDLG entry", "PDLG", "", 20, E::kPdlg},
        {"pattern block header", "PATT", "", 3, E::kPatternBlockHeader},
        {"pattern name", "PATT", "", 5, E::kPatternHeader},
        {"pattern rows", "PATT", "", 8, E::kPatternHeader},
        {"pattern input block", "PATT", "", 12, E::kPatternRows},
        {"pattern global rows", "PATT", "", 20, E::kPatternRows},
        {"pattern track rows", "PATT", "", 52, E::kPatternRows},
        {"huge pattern", "PATT", hugePattern, 0, E::kPatternRows},
        {"parameter-set count", "PARA", "", 3, E::kParameterSetCount},
        {"parameter set", "PARA", "", 16, E::kParameterSet},
        {"parameter description", "PARA", "", 40, E::kParameterDescription},
        {"huge description count", "PARA", hugeDescriptions, 0, E::kParameterDescription},
        {"raw section past the end", "BLAH", "", 2, E::kDirectoryEntry},
        {"waves table past the end", "WAVT", "", 2, E::kDirectoryEntry},
        // clang-format on
    };
    for (const auto& c : cases) {
        std::vector<Section> sections = sectionsWithout({c.section});
        Section last{c.section, c.bytes};
        for (const Section& s : referenceSections()) {
            if (s.name == c.section && c.bytes.empty())
                last.bytes = s.bytes;
        }
        sections.push_back(last);
        std::string file = songFile(sections);
        if (c.bytes.empty())
            file.resize(file.size() - last.bytes.size() + c.keep);
        BuzzSong song;
        song.setVersionText("untouched");
        EXPECT_EQ(readWith(file, song).code(), c.code) << c.what;
        EXPECT_EQ(song.versionText(), "untouched") << c.what << ": a failed read changed the song";
    }
}

TEST(SongReader, SearchesOnlyTheFirstSectionCountEntriesButConsumesAll31)
{
    // With a count of 3 only BVER, PARA and MACH are read: no connections, patterns or raw
    // sections.
    BuzzSong song;
    ASSERT_TRUE(readWith(songFile(referenceSections(), 3u), song).ok());
    EXPECT_EQ(song.machineCount(), 2u);
    EXPECT_TRUE(song.connections().empty());
    EXPECT_TRUE(song.rawSections().empty());
    EXPECT_EQ(song.directory()[3].name, "CONN");
    // Without PATT every machine still gets an (empty) pattern block.
    ASSERT_EQ(song.patternBlocks().size(), 2u);
    EXPECT_EQ(song.patternBlocks()[1].trackCount, 2);

    // A count above 31 searches all 31 entries.
    BuzzSong all;
    EXPECT_TRUE(readWith(songFile(referenceSections(), 1000u), all).ok());
    EXPECT_EQ(all.rawSections().size(), 1u);
}

TEST(SongReader, SectionNamesMatchIgnoringCaseAndWaveIsTheWaveData)
{
    std::vector<Section> sections = referenceSections();
    for (Section& s : sections)
        s.name = music::toLower(s.name);
    sections.back().name = "WAVE";
    BuzzSong song;
    ASSERT_TRUE(readWith(songFile(sections), song).ok());
    EXPECT_EQ(song.connections().size(), 1u);
    EXPECT_EQ(song.waves().size(), 1u);
    EXPECT_EQ(song.waveData().size(), 15u);
    ASSERT_EQ(song.rawSections().size(), 1u);
    EXPECT_EQ(song.rawSections()[0].name, "blah");
}

TEST(SongReader, KeepsAtMostSixteenUnknownSections)
{
    std::vector<Section> sections = referenceSections();
    for (int i = 0; i < 18; ++i)
        sections.push_back(
            {"X" + std::to_string(10 + i) + "Y", std::string(static_cast<std::size_t>(i), 'r')});
    BuzzSong song;
    ASSERT_TRUE(readWith(songFile(sections), song).ok());
    ASSERT_EQ(song.rawSections().size(), 16u);
    EXPECT_EQ(song.rawSections()[0].name, "BLAH");
    EXPECT_EQ(song.rawSections()[15].name, "X24Y");
}

TEST(SongReader, ReadsTwoParameterWindowsOneAfterTheOther)
{
    BuzzSong song;
    ASSERT_TRUE(
        readWith(songFile(sectionsWith("PDLG", pdlgSection({"Lead", "Master"}, 0x2C))), song).ok());
    ASSERT_EQ(song.parameterWindows().size(), 2u);
    EXPECT_EQ(song.parameterWindows()[0].machineName, "Lead");
    EXPECT_EQ(song.parameterWindows()[1].machineName, "Master");
    EXPECT_EQ(song.parameterWindows()[1].data[0], 0x2C);
}

TEST(SongReader, TrimsTrailingBlanksOfDllNamesAndResolvesJeskolaTrackerWithLeadingZero)
{
    song::MachineDatabaseEntry tracker = leadEntry();
    tracker.dllName = "Jeskola Tracker";
    const struct
    {
        std::string dll;
        song::MachineDatabaseEntry entry;
        std::string expected;
    } cases[] = {{"TestGen   ", leadEntry(), "TestGen"},
                 {"0jeskola tracker", tracker, "Jeskola Tracker"}};
    for (const auto& c : cases) {
        song::MemoryMachineCatalog catalog({masterEntry(), c.entry});
        const std::string file = songFile(sectionsWith("MACH", machSection(c.dll)));
        BuzzSong song;
        ASSERT_TRUE(song::SongReader(catalog, nullptr).readBytes(file, song).ok()) << c.dll;
        EXPECT_EQ(song.machines()[1].dllName, c.expected);
    }
}

TEST(SongReader, LastMatchingDatabaseEntryWinsAndTheFirstMachineDataIsRecorded)
{
    song::MachineDatabaseEntry first = leadEntry();
    first.trackRowSize = 7; // would misread the song
    song::MemoryMachineCatalog catalog({masterEntry(), first, leadEntry()});
    BuzzSong song;
    ASSERT_TRUE(song::SongReader(catalog, nullptr).readBytes(referenceSong(), song).ok());
    EXPECT_EQ(song.machines()[1].databaseIndex, 2u);
    EXPECT_TRUE(catalog.hasMachineData("TestGen"));
    EXPECT_FALSE(catalog.hasMachineData("Master"));
    EXPECT_EQ(catalog.machineDataCount(), 1u);
}

/** A catalog whose DLL scan knows one file: "generators/TestGen.dll" adds the generator. */
class ScanningCatalog : public song::MemoryMachineCatalog
{
public:
    using MemoryMachineCatalog::MemoryMachineCatalog;
    music::Result scanDll(const std::filesystem::path& dll, bool& changed) override
    {
        changed = dll == "generators/TestGen.dll";
        return changed ? learn(leadEntry()) : MemoryMachineCatalog::scanDll(dll, changed);
    }
};

// The unknown-machine flow: the generator is missing from the database. Declining to learn it
// from the song leads to the DLL scan, as for a song that doesn't describe it.
TEST(SongReader, UnknownMachineFlow)
{
    const std::string unknownText =
        "machine unknown\nLead\nTestGen\nplease scan your gear-directory";
    const char* const dll = "generators/TestGen.dll";
    const struct
    {
        const char* what;
        bool hasHandler, songHasPara, learn;
        std::vector<std::filesystem::path> dlls;
        int code;
        std::size_t learnQuestions, scanOffers;
    } cases[] = {
        {"learned from the song", true, true, true, {}, 0, 1, 0},
        {"learning declined, DLL scanned", true, true, false, {dll}, 0, 1, 1},
        {"learning declined, scan cancelled", true, true, false, {}, 26, 1, 1},
        {"no description, DLL scanned", true, false, true, {dll}, 0, 0, 1},
        {"no description, scan cancelled", true, false, true, {}, 26, 0, 1},
        {"no description, scan fails", true, false, true, {"effects/Other.dll"}, 26, 0, 1},
        {"no handler", false, true, true, {}, 26, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ScanningCatalog catalog({masterEntry()});
        ScriptedHandler handler;
        handler.learn = c.learn;
        handler.dlls = c.dlls;
        const std::string file =
            c.songHasPara ? referenceSong() : songFile(sectionsWithout({"PARA"}));
        BuzzSong song;
        const music::Result r =
            song::SongReader(catalog, c.hasHandler ? &handler : nullptr).readBytes(file, song);
        EXPECT_EQ(r.code(), c.code);
        EXPECT_EQ(handler.learnQuestions.size(), c.learnQuestions);
        EXPECT_EQ(handler.scanMessages, std::vector<std::string>(c.scanOffers, unknownText));
        if (c.code == 26) {
            EXPECT_EQ(r.message(), unknownText);
            continue;
        }
        // Learned or scanned, the entry reads the song's rows exactly like the hand-made one.
        EXPECT_EQ(song.machines()[1].globalRowSize, 3);
        EXPECT_EQ(song.machines()[1].trackRowSize, 2);
        ASSERT_EQ(catalog.entries().size(), 2u);
        EXPECT_EQ(catalog.entries()[1].isLearned(), c.scanOffers == 0);
    }
}

// machines.ini describes the generator with one track parameter too few or one global too many.
// Where the song describes its machines (PARA), their layout wins with a warning; where it
// doesn't, the sections don't end where the directory says and nothing is read.
TEST(SongReader, DatabaseEntriesThatDontFitTheSongAreNeverMisread)
{
    song::MachineDatabaseEntry noVelocity = leadEntry();
    noVelocity.parameters.pop_back();
    noVelocity.trackParameterCount = 1;
    noVelocity.trackRowSize = 1;
    song::MachineDatabaseEntry extraGlobal = entry("TestGen", 1,
                                                   {{"Cutoff", 2, false},
                                                    {"Glide", 3, false},
                                                    {"Extra", 2, false},
                                                    {"Note", 0, true},
                                                    {"Velocity", 2, true}},
                                                   1, 16);
    std::string pattPadded = pattSection() + '\0';
    const std::string lead = "Lead (TestGen)";
    const struct
    {
        const char* what;
        song::MachineDatabaseEntry entry;
        std::vector<Section> sections;
        int code;
        std::string inMessage;
    } cases[] = {
        {"track parameter missing, song describes it", noVelocity, referenceSections(), 0, ""},
        {"global parameter too many, song describes it", extraGlobal, referenceSections(), 0, ""},
        {"track parameter missing, no description", noVelocity, sectionsWithout({"PARA"}),
         FileErrorCode::kMachineRecord,
         "Scan the DLLs of these machines again:\nMaster (Master)\n" + lead},
        {"global parameter too many, no description", extraGlobal, sectionsWithout({"PARA"}),
         FileErrorCode::kMachineRecord, lead},
        {"patterns longer than their section says", leadEntry(), sectionsWith("PATT", pattPadded),
         FileErrorCode::kPatternRows,
         "the PATT section holds 56 bytes, but they take 55.\nThe song may be damaged."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        song::MemoryMachineCatalog catalog({masterEntry(), c.entry});
        song::SongReader reader(catalog, nullptr);
        BuzzSong song;
        const music::Result r = reader.readBytes(songFile(c.sections), song);
        EXPECT_EQ(r.code(), c.code) << r.message();
        if (c.code != 0) {
            EXPECT_NE(r.message().find(c.inMessage), std::string::npos) << r.message();
            EXPECT_EQ(song.machineCount(), 0u);
            continue;
        }
        EXPECT_EQ(reader.warnings(),
                  std::vector<std::string>{
                      song::SongReader::parameterMismatchWarning("Lead", "TestGen")});
        expectSameModel(song, readReference());
        EXPECT_EQ(song.machines()[1].description.parameters.size(), 4u);
        EXPECT_EQ(song.machines()[1].description.maxTracks, 16) << "the range stays the database's";
    }
}

TEST(SongReader, LearnedMachinesAndMachineDataPersistInTheDataFolder)
{
    TempFolder data("learn");
    const std::string ini = "1\n" + song::MachineDatabase::formatEntry(masterEntry());
    ASSERT_TRUE(music::writeFileSafely(data.path() / "machines.ini", ini));

    song::DataFolderMachineCatalog catalog(data.path());
    ScriptedHandler handler;
    handler.learn = true;
    BuzzSong song;
    ASSERT_TRUE(song::SongReader(catalog, &handler).readBytes(referenceSong(), song).ok());
    EXPECT_EQ(handler.learnQuestions, (std::vector<std::string>{"Lead"}));

    // A new read finds the learned machine without asking, and the DLL's machine data is stored.
    song::DataFolderMachineCatalog again(data.path());
    ScriptedHandler silent;
    BuzzSong reread;
    ASSERT_TRUE(song::SongReader(again, &silent).readBytes(referenceSong(), reread).ok());
    EXPECT_TRUE(silent.learnQuestions.empty());
    expectSameModel(song, reread);
    song::SpecDataStore store;
    ASSERT_TRUE(store.load(data.path()).ok());
    ASSERT_TRUE(store.contains("TestGen"));
    EXPECT_EQ(store.find("TestGen")->machineData, (Rows{1, 2, 3}));

    // Without machines.ini nothing can be read: the loader's message and code 11.
    TempFolder empty("learn-empty");
    song::DataFolderMachineCatalog none(empty.path());
    const music::Result missing = song::SongReader(none, &handler).readBytes(referenceSong(), song);
    EXPECT_EQ(missing.code(), 11);
    EXPECT_EQ(missing.message(), "machines.ini not found\n please scan the buzz\\gear-directory");
}

TEST(SongReader, LearnedEntryTakesWidthsTypesAndMarksItself)
{
    song::MachineParameterSet set{"M",
                                  "Gen",
                                  2,
                                  1,
                                  {{3, "Volume", 0, 0xFFFE, 0xFFFF, 2, 0x4000},
                                   {9, "Odd", 0, 1, 0, 0, 0},
                                   {0, "Note", 0, 0, 0, 0, 0}}};
    const auto entry = song::SongReader::entryFromParameterSet(set, 1, 3);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->globalRowSize, 2); // the unknown type adds nothing
    EXPECT_EQ(entry->trackRowSize, 1);
    EXPECT_EQ(entry->parameters[0].width, 2);
    EXPECT_EQ(entry->parameters[0].noValue, 0xFFFF);
    EXPECT_EQ(entry->parameters[2].scope, 't');
    EXPECT_TRUE(entry->isLearned());

    // A row wider than the database can hold is not learned.
    set.parameters.assign(200, {3, "W", 0, 0, 0, 0, 0});
    set.globalCount = 200;
    set.trackCount = 0;
    EXPECT_FALSE(song::SongReader::entryFromParameterSet(set, 1, 0));
}

// A learned machine's track range is what the song uses (the machine's tracks or its patterns'),
// so that writing a part with more tracks warns as for a machine scanned from its DLL.
TEST(SongReader, LearnedMachinesTakeTheirTrackRangeFromTheSong)
{
    // The generator's patterns with three tracks while the machine itself has two.
    std::string threeTracks = pattSection();
    threeTracks[31] = 3; // the track count of the generator's pattern block
    threeTracks += Bytes().u8(0).u8(0xFF).u8(0).u8(0xFF).data();
    const struct
    {
        const char* what;
        std::string song;
        std::uint16_t maxTracks;
    } cases[] = {
        {"machine and patterns with two tracks", referenceSong(), 2},
        {"patterns with three", songFile(sectionsWith("PATT", threeTracks)), 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        song::MemoryMachineCatalog catalog({masterEntry()});
        ScriptedHandler handler;
        handler.learn = true;
        BuzzSong song;
        ASSERT_TRUE(song::SongReader(catalog, &handler).readBytes(c.song, song).ok());
        ASSERT_EQ(catalog.entries().size(), 2u);
        EXPECT_EQ(catalog.entries()[1].minTracks, 1);
        EXPECT_EQ(catalog.entries()[1].maxTracks, c.maxTracks);
        EXPECT_EQ(catalog.entries()[1].shortName, "TestGen (learned)");
    }

    // A part playing in four tracks, written into the learned generator of two.
    song::MemoryMachineCatalog catalog({masterEntry()});
    ScriptedHandler handler;
    handler.learn = true;
    BuzzSong song;
    ASSERT_TRUE(song::SongReader(catalog, &handler).readBytes(referenceSong(), song).ok());
    part::Part part;
    part::Pattern pattern;
    for (int track = 0; track < 4; ++track)
        pattern.setCell(track, 0, {part::CellKind::ChordNote, static_cast<std::uint8_t>(track), 0});
    part.patterns().append(pattern);
    part::PartChord chord;
    chord.name = "C6";
    chord.setNotes({0, 4, 7, 9});
    chord.length = 4;
    part.append(chord);
    const song::PartWriteResult written = song::PartWriter::write(song, 1, part, {});
    EXPECT_EQ(written.messages,
              (std::vector<std::string>{"Machine only supports 2 tracks.", "done"}));
}

TEST(SongReader, MissingFileFailsWithoutMessage)
{
    song::MemoryMachineCatalog catalog = referenceCatalog();
    BuzzSong song;
    const music::Result r = song::SongReader(catalog, nullptr).read("/nonexistent/a.bmx", song);
    EXPECT_FALSE(r.ok());
    EXPECT_TRUE(r.message().empty());
}

TEST(BuzzNote, EncodesAndDecodes)
{
    const struct
    {
        int pitchClass, octave, value;
    } encoded[] = {{0, 4, 65}, {11, 9, 156}, {0, 0, 1}, {120, 4, 0}, {3, 120, 0}};
    for (const auto& c : encoded)
        EXPECT_EQ(song::BuzzNote::encode(c.pitchClass, c.octave), c.value);

    const struct
    {
        int value, pitchClass, octave;
    } decoded[] = {{0, 12, 10}, {65, 0, 4}, {156, 11, 9}, {255, 14, 15}, {0x0E, 13, 0}};
    for (const auto& d : decoded) {
        const auto note = song::BuzzNote::decode(static_cast<std::uint8_t>(d.value));
        EXPECT_EQ(note.pitchClass, d.pitchClass) << d.value;
        EXPECT_EQ(note.octave, d.octave) << d.value;
    }
}

} // namespace
