#include "song_reference.h"
#include "song_test_support.h"

#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"
#include "song/BuzzNote.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/FileErrorCode.h"
#include "song/MemoryMachineCatalog.h"
#include "song/SongReader.h"
#include "song/SpecDataStore.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace songtest;
using song::BuzzSong;
using song::FileErrorCode;

music::Result readWith(const std::string& bytes, BuzzSong& song,
                       song::UnknownMachineHandler* handler = nullptr)
{
    song::MemoryMachineCatalog catalog = referenceCatalog();
    return song::SongReader(catalog, handler).readBytes(bytes, song);
}

TEST(SongReader, ReadsEveryFieldOfAHandBuiltSong)
{
    BuzzSong song;
    const music::Result result = readWith(referenceSong(), song);
    ASSERT_TRUE(result.ok()) << result.code();

    EXPECT_EQ(song.magic(), "Buzz");
    EXPECT_EQ(song.sectionCount(), 11u);
    ASSERT_EQ(song.directory().size(), 31u);
    EXPECT_EQ(song.directory()[0].name, "BVER");
    EXPECT_EQ(song.directory()[0].offset, 380u);
    EXPECT_EQ(song.directory()[11].name, std::string(4, '\0'));
    EXPECT_EQ(song.versionText(), "Buzz 1.3 test");

    ASSERT_EQ(song.machineCount(), 2u);
    const song::SongMachine& master = song.machines()[0];
    EXPECT_TRUE(master.isMaster());
    EXPECT_EQ(master.name, "Master");
    EXPECT_EQ(master.dllName, "");
    EXPECT_EQ(master.x, 0x3F800000u);
    EXPECT_EQ(master.y, 0xBF000000u);
    EXPECT_EQ(master.globalState, (std::vector<std::uint8_t>{0x00, 0x40, 126, 0, 4}));
    EXPECT_EQ(master.databaseIndex, 0u);
    EXPECT_EQ(master.globalRowSize, 5);

    const song::SongMachine& lead = song.machines()[1];
    EXPECT_EQ(lead.name, "Lead");
    EXPECT_EQ(lead.type, 1);
    EXPECT_EQ(lead.dllName, "TestGen");
    EXPECT_EQ(lead.data, (std::vector<std::uint8_t>{1, 2, 3}));
    ASSERT_EQ(lead.attributes.size(), 1u);
    EXPECT_EQ(lead.attributes[0].name, "Mode");
    EXPECT_EQ(lead.attributes[0].value, -5);
    EXPECT_EQ(lead.globalState, (std::vector<std::uint8_t>{0x40, 0x00, 0x01}));
    EXPECT_EQ(lead.trackCount, 2);
    EXPECT_EQ(lead.trackState, (std::vector<std::uint8_t>{0, 0x80, 0, 0x80}));
    EXPECT_EQ(lead.databaseIndex, 1u);
    EXPECT_EQ(lead.globalRowSize, 3);
    EXPECT_EQ(lead.trackRowSize, 2);

    ASSERT_EQ(song.connections().size(), 1u);
    EXPECT_EQ(song.connections()[0], (song::SongConnection{1, 0, 0x4000, 0x4000}));

    ASSERT_EQ(song.patternBlocks().size(), 2u);
    const song::SongPattern& p0 = song.patternBlocks()[0].patterns.at(0);
    EXPECT_EQ(p0.name, "00");
    EXPECT_EQ(p0.rows, 2);
    ASSERT_EQ(p0.inputs.size(), 1u);
    EXPECT_EQ(p0.inputs[0].size(), 10u);
    EXPECT_EQ(p0.inputs[0][0], 1);
    EXPECT_EQ(p0.globalRows.size(), 10u);
    EXPECT_EQ(song.patternBlocks()[1].trackCount, 2);
    const song::SongPattern& intro = song.patternBlocks()[1].patterns.at(0);
    EXPECT_EQ(intro.name, "Intro");
    EXPECT_EQ(intro.globalRows, (std::vector<std::uint8_t>{0x10, 0xFF, 0xFF, 0xFF, 0x00, 0x02}));
    EXPECT_EQ(intro.trackRows,
              (std::vector<std::uint8_t>{0x41, 0x60, 0, 0xFF, 0, 0xFF, 0x45, 0xFF}));

    EXPECT_EQ(song.songEnd(), 64u);
    EXPECT_EQ(song.loopEnd(), 32u);
    ASSERT_EQ(song.sequences().size(), 2u);
    EXPECT_EQ(song.sequences()[0].machine, 1);
    EXPECT_EQ(song.sequences()[0].events,
              (std::vector<song::SequenceEvent>{{0, 16}, {16, 16}, {32, 1}}));
    EXPECT_TRUE(song.sequences()[1].events.empty());

    ASSERT_EQ(song.midiBindings().size(), 1u);
    EXPECT_EQ(song.midiBindings()[0].machineName, "Lead");
    EXPECT_EQ(song.midiBindings()[0].bytes, (std::array<std::uint8_t, 5>{1, 2, 3, 4, 5}));
    EXPECT_EQ(song.parameterWindowFlag(), 1);
    ASSERT_EQ(song.parameterWindows().size(), 1u);
    EXPECT_EQ(song.parameterWindows()[0].machineName, "Lead");
    EXPECT_EQ(song.parameterWindows()[0].data[43], 44);

    ASSERT_EQ(song.parameterSets().size(), 2u);
    const song::MachineParameterSet& set = song.parameterSets()[1];
    EXPECT_EQ(set.machineName, "Lead");
    EXPECT_EQ(set.dllName, "TestGen");
    EXPECT_EQ(set.globalCount, 2u);
    EXPECT_EQ(set.trackCount, 2u);
    ASSERT_EQ(set.parameters.size(), 4u);
    EXPECT_EQ(set.parameters[1].name, "Glide");
    EXPECT_EQ(set.parameters[1].maximum, 0xFFFE);
    EXPECT_EQ(set.parameters[3].defaultValue, 0x80);

    EXPECT_EQ(song.waves(), (std::vector<song::WaveEntry>{{3, "Kick"}}));
    EXPECT_EQ(song.waveTable().size(), wavtSection().size());
    EXPECT_TRUE(song.hasWaveData());
    EXPECT_EQ(std::string(song.waveData().begin(), song.waveData().end()), "wave data bytes");
    ASSERT_EQ(song.rawSections().size(), 1u);
    EXPECT_EQ(song.rawSections()[0].name, "BLAH");
    EXPECT_EQ(std::string(song.rawSections()[0].bytes.begin(), song.rawSections()[0].bytes.end()),
              "hello");
}

TEST(SongReader, AcceptsTheMagicInAnyCaseAndRejectsOtherFiles)
{
    const struct
    {
        std::string magic;
        int code;
    } cases[] = {{"buzz", 0}, {"BuZz", 0}, {"RIFF", 666}, {"Buz ", 666}};
    for (const auto& c : cases) {
        BuzzSong song;
        const music::Result r =
            readWith(songFile(referenceSections(), std::nullopt, c.magic), song);
        EXPECT_EQ(r.code(), c.code) << c.magic;
        if (c.code == 666) {
            EXPECT_EQ(r.message(), "Error:\nno Buzzfile");
        }
    }
}

TEST(SongReader, TruncatedHeaderFailsWithItsCode)
{
    const std::string file = referenceSong();
    const struct
    {
        std::size_t length;
        int code;
    } cases[] = {{0, 4}, {3, 4}, {4, 4}, {7, 4}, {8, 1}, {100, 1}, {379, 1}};
    for (const auto& c : cases) {
        BuzzSong song;
        EXPECT_EQ(readWith(file.substr(0, c.length), song).code(), c.code) << c.length;
    }
}

/**
 * Each case puts one section last in the file and cuts the file inside it, or replaces the
 * section by damaged bytes, and expects that step's code.
 */
TEST(SongReader, DamagedSectionsFailWithTheirOwnCode)
{
    const struct
    {
        const char* what;
        std::string section;
        std::string bytes; // replaces the section when not empty
        std::size_t keep;  // bytes of the section kept when `bytes` is empty
        int code;
    } cases[] = {
        {"connection count", "CONN", "", 1, FileErrorCode::kConnectionCount},
        {"connection", "CONN", "", 5, FileErrorCode::kConnection},
        {"huge connection count", "CONN", Bytes().u16(0xFFFF).u16(1).data(), 0,
         FileErrorCode::kConnection},
        {"machine count", "MACH", "", 1, FileErrorCode::kMachineRecord},
        {"machine name", "MACH", "", 4, FileErrorCode::kMachineRecord},
        {"DLL name", "MACH", "", 40, FileErrorCode::kMachineRecord},
        {"machine data", "MACH", "", 58, FileErrorCode::kMachineRecord},
        {"attribute value", "MACH", "", 70, FileErrorCode::kAttribute},
        {"track state", "MACH", "", 79, FileErrorCode::kMachineRecord},
        {"huge machine data", "MACH",
         Bytes().u16(1).str("M").u8(0).u32(0).u32(0).u32(0x7FFFFFFF).data(), 0,
         FileErrorCode::kMachineRecord},
        {"song length", "SEQU", "", 13, FileErrorCode::kSongLength},
        {"sequence header", "SEQU", "", 16, FileErrorCode::kSequenceHeader},
        {"sequence widths", "SEQU", "", 20, FileErrorCode::kSequenceHeader},
        {"sequence events", "SEQU", "", 25, FileErrorCode::kSequenceEvent},
        {"huge event count", "SEQU",
         Bytes().u32(0).u32(0).u32(0).u16(1).u16(1).u32(0xFFFFFFFF).u8(2).u8(2).data(), 0,
         FileErrorCode::kSequenceEvent},
        {"event width 3", "SEQU",
         Bytes().u32(0).u32(0).u32(0).u16(1).u16(1).u32(1).u8(1).u8(3).u16(0).data(), 0,
         FileErrorCode::kEventWidth},
        {"event width 0", "SEQU",
         Bytes().u32(0).u32(0).u32(0).u16(1).u16(1).u32(1).u8(1).u8(0).u16(0).data(), 0,
         FileErrorCode::kEventWidthZero},
        {"MIDI probe", "MIDI", "", 0, FileErrorCode::kMidiProbe},
        {"MIDI entry", "MIDI", "", 7, FileErrorCode::kMidiEntry},
        {"PDLG flag", "PDLG", "", 0, FileErrorCode::kPdlg},
        {"PDLG probe", "PDLG", "", 1, FileErrorCode::kPdlg},
        {"PDLG entry", "PDLG", "", 20, FileErrorCode::kPdlg},
        {"pattern block header", "PATT", "", 3, FileErrorCode::kPatternBlockHeader},
        {"pattern name", "PATT", "", 5, FileErrorCode::kPatternHeader},
        {"pattern rows", "PATT", "", 8, FileErrorCode::kPatternHeader},
        {"pattern input block", "PATT", "", 12, FileErrorCode::kPatternRows},
        {"pattern global rows", "PATT", "", 20, FileErrorCode::kPatternRows},
        {"pattern track rows", "PATT", "", 52, FileErrorCode::kPatternRows},
        {"huge pattern", "PATT",
         Bytes().u16(0).u16(0).u16(1).u16(0xFFFF).str("P").u16(0xFFFF).data(), 0,
         FileErrorCode::kPatternRows},
        {"parameter-set count", "PARA", "", 3, FileErrorCode::kParameterSetCount},
        {"parameter set", "PARA", "", 16, FileErrorCode::kParameterSet},
        {"parameter description", "PARA", "", 40, FileErrorCode::kParameterDescription},
        {"huge description count", "PARA",
         Bytes().u32(1).str("M").str("D").u32(0xFFFFFFFF).u32(0xFFFFFFFF).data(), 0,
         FileErrorCode::kParameterDescription},
        {"raw section past the end", "BLAH", "", 2, FileErrorCode::kDirectoryEntry},
        {"waves table past the end", "WAVT", "", 2, FileErrorCode::kDirectoryEntry},
    };
    for (const auto& c : cases) {
        std::vector<Section> sections;
        Section last;
        for (const Section& s : referenceSections()) {
            if (s.name == c.section)
                last = s;
            else
                sections.push_back(s);
        }
        std::string file;
        if (!c.bytes.empty()) {
            last.bytes = c.bytes;
            sections.push_back(last);
            file = songFile(sections);
        } else {
            sections.push_back(last);
            file = songFile(sections);
            file.resize(file.size() - last.bytes.size() + c.keep);
        }
        BuzzSong song;
        song.setVersionText("untouched");
        const music::Result r = readWith(file, song);
        EXPECT_EQ(r.code(), c.code) << c.what;
        EXPECT_EQ(song.versionText(), "untouched") << c.what << ": a failed read changed the song";
    }
}

TEST(SongReader, MachSectionBeyondTheEndFailsWith30)
{
    std::vector<Section> sections = referenceSections();
    std::string file = songFile(sections);
    // Directory entry 2 is MACH: point it past the end of the file.
    const std::uint32_t beyond = static_cast<std::uint32_t>(file.size() + 10);
    std::memcpy(file.data() + 8 + 2 * 12 + 4, &beyond, 4);
    BuzzSong song;
    EXPECT_EQ(readWith(file, song).code(), FileErrorCode::kMachineSeek);
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
    EXPECT_EQ(song.directory().size(), 31u);
    EXPECT_EQ(song.directory()[3].name, "CONN");
    // Without PATT every machine still gets an (empty) pattern block.
    ASSERT_EQ(song.patternBlocks().size(), 2u);
    EXPECT_EQ(song.patternBlocks()[1].trackCount, 2);

    // A count above 31 searches all 31 entries.
    BuzzSong all;
    EXPECT_TRUE(readWith(songFile(referenceSections(), 1000u), all).ok());
    EXPECT_EQ(all.rawSections().size(), 1u);
}

TEST(SongReader, SectionNamesMatchIgnoringCase)
{
    std::vector<Section> sections = referenceSections();
    for (Section& s : sections)
        s.name = music::toLower(s.name);
    BuzzSong song;
    ASSERT_TRUE(readWith(songFile(sections), song).ok());
    EXPECT_EQ(song.connections().size(), 1u);
    EXPECT_EQ(song.waves().size(), 1u);
    ASSERT_EQ(song.rawSections().size(), 1u);
    EXPECT_EQ(song.rawSections()[0].name, "blah");
}

TEST(SongReader, SongWithoutWaveSectionsGetsEmptyDefaults)
{
    BuzzSong song;
    ASSERT_TRUE(readWith(songFile(sectionsWithout({"WAVT", "CWAV"})), song).ok());
    EXPECT_TRUE(song.waves().empty());
    EXPECT_EQ(song.waveTable(), (std::vector<std::uint8_t>{0, 0}));
    EXPECT_TRUE(song.waveData().empty());
    EXPECT_TRUE(song.hasWaveData());
}

TEST(SongReader, WaveSectionNamedWaveIsTheWaveData)
{
    std::vector<Section> sections = referenceSections();
    sections.back().name = "WAVE";
    BuzzSong song;
    ASSERT_TRUE(readWith(songFile(sections), song).ok());
    EXPECT_EQ(song.waveData().size(), 15u);
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
    // The layout of a song saved with two parameter windows open.
    Bytes pdlg;
    pdlg.u8(1);
    for (const char* name : {"Lead", "Master"}) {
        pdlg.str(name);
        for (int i = 0; i < 44; ++i)
            pdlg.u8(0x2C + i);
    }
    pdlg.u8(0);
    std::vector<Section> sections = referenceSections();
    for (Section& s : sections) {
        if (s.name == "PDLG")
            s.bytes = pdlg.data();
    }
    BuzzSong song;
    ASSERT_TRUE(readWith(songFile(sections), song).ok());
    ASSERT_EQ(song.parameterWindows().size(), 2u);
    EXPECT_EQ(song.parameterWindows()[0].machineName, "Lead");
    EXPECT_EQ(song.parameterWindows()[1].machineName, "Master");
    EXPECT_EQ(song.parameterWindows()[1].data[0], 0x2C);
}

TEST(SongReader, TrimsTrailingBlanksOfNames)
{
    std::vector<Section> sections = referenceSections();
    for (Section& s : sections) {
        if (s.name == "MACH")
            s.bytes = machSection("TestGen   ");
    }
    BuzzSong song;
    ASSERT_TRUE(readWith(songFile(sections), song).ok());
    EXPECT_EQ(song.machines()[1].dllName, "TestGen");
}

TEST(SongReader, JeskolaTrackerWithLeadingZeroResolvesAsJeskolaTracker)
{
    std::vector<Section> sections = sectionsWithout({"PARA"});
    for (Section& s : sections) {
        if (s.name == "MACH")
            s.bytes = machSection("0jeskola tracker");
    }
    song::MachineDatabaseEntry tracker = leadEntry();
    tracker.dllName = "Jeskola Tracker";
    song::MemoryMachineCatalog catalog({masterEntry(), tracker});
    BuzzSong song;
    ASSERT_TRUE(song::SongReader(catalog, nullptr).readBytes(songFile(sections), song).ok());
    EXPECT_EQ(song.machines()[1].dllName, "Jeskola Tracker");
}

TEST(SongReader, LastMatchingDatabaseEntryWins)
{
    song::MachineDatabaseEntry first = leadEntry();
    first.trackRowSize = 7; // would misread the song
    song::MemoryMachineCatalog catalog({masterEntry(), first, leadEntry()});
    BuzzSong song;
    ASSERT_TRUE(song::SongReader(catalog, nullptr).readBytes(referenceSong(), song).ok());
    EXPECT_EQ(song.machines()[1].databaseIndex, 2u);
}

TEST(SongReader, RecordsTheFirstMachineDataOfEachDll)
{
    song::MemoryMachineCatalog catalog = referenceCatalog();
    BuzzSong song;
    ASSERT_TRUE(song::SongReader(catalog, nullptr).readBytes(referenceSong(), song).ok());
    EXPECT_TRUE(catalog.hasMachineData("TestGen"));
    EXPECT_FALSE(catalog.hasMachineData("Master"));
    EXPECT_EQ(catalog.machineDataCount(), 1u);
}

// The unknown-machine flow: the generator is missing from the database.
TEST(SongReader, UnknownMachineFlow)
{
    const std::string unknownText =
        "machine unknown\nLead\nTestGen\nplease scan your gear-directory";
    const struct
    {
        const char* what;
        bool songHasPara;
        bool learn;
        int dllsOffered;
        int code;
        std::size_t learnQuestions;
        std::size_t scanOffers;
    } cases[] = {
        {"learned from the song", true, true, 0, 0, 1, 0},
        {"learning declined", true, false, 1, 26, 1, 0},
        {"no description, scan cancelled", false, true, 0, 26, 0, 1},
        {"no description, scan fails", false, true, 1, 26, 0, 1},
    };
    for (const auto& c : cases) {
        song::MemoryMachineCatalog catalog({masterEntry()});
        ScriptedHandler handler;
        handler.learn = c.learn;
        for (int i = 0; i < c.dllsOffered; ++i)
            handler.dlls.push_back("generators/TestGen.dll");
        const std::string file =
            c.songHasPara ? referenceSong() : songFile(sectionsWithout({"PARA"}));
        BuzzSong song;
        const music::Result r = song::SongReader(catalog, &handler).readBytes(file, song);
        EXPECT_EQ(r.code(), c.code) << c.what;
        EXPECT_EQ(handler.learnQuestions.size(), c.learnQuestions) << c.what;
        EXPECT_EQ(handler.scanMessages.size(), c.scanOffers) << c.what;
        if (c.scanOffers > 0) {
            EXPECT_EQ(handler.scanMessages[0], unknownText) << c.what;
        }
        if (c.code == 26) {
            EXPECT_EQ(r.message(), unknownText) << c.what;
        }
        if (c.code == 0) {
            // The learned entry reads the song's rows exactly like the hand-made one.
            EXPECT_EQ(song.machines()[1].globalRowSize, 3);
            EXPECT_EQ(song.machines()[1].trackRowSize, 2);
            EXPECT_EQ(catalog.entries().size(), 2u);
        }
    }
}

TEST(SongReader, UnknownMachineWithoutHandlerFailsWith26)
{
    song::MemoryMachineCatalog catalog({masterEntry()});
    BuzzSong song;
    EXPECT_EQ(song::SongReader(catalog, nullptr).readBytes(referenceSong(), song).code(), 26);
}

TEST(SongReader, LearnedMachinesAndMachineDataPersistInTheDataFolder)
{
    TempFolder data("learn");
    std::string ini = "1\n";
    ini += song::MachineDatabase::formatEntry(masterEntry());
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
    EXPECT_EQ(store.find("TestGen")->machineData, (std::vector<std::uint8_t>{1, 2, 3}));

    // Without machines.ini nothing can be read: the loader's message and code 11.
    TempFolder empty("learn-empty");
    song::DataFolderMachineCatalog none(empty.path());
    const music::Result missing = song::SongReader(none, &handler).readBytes(referenceSong(), song);
    EXPECT_EQ(missing.code(), 11);
    EXPECT_EQ(missing.message(), "machines.ini not found\n please scan the buzz\\gear-directory");
}

TEST(SongReader, LearnedEntryTakesWidthsTypesAndTrackRange)
{
    song::MachineParameterSet set;
    set.dllName = "Gen";
    set.globalCount = 2;
    set.trackCount = 1;
    set.parameters = {{3, "Volume", 0, 0xFFFE, 0xFFFF, 2, 0x4000},
                      {9, "Odd", 0, 1, 0, 0, 0},
                      {0, "Note", 0, 0, 0, 0, 0}};
    const auto entry = song::SongReader::entryFromParameterSet(set, 1, 80);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->globalRowSize, 2); // the unknown type adds nothing
    EXPECT_EQ(entry->trackRowSize, 1);
    EXPECT_EQ(entry->minTracks, 1);
    EXPECT_EQ(entry->maxTracks, 80); // never below what the song uses
    EXPECT_EQ(entry->parameters[0].width, 2);
    EXPECT_EQ(entry->parameters[0].noValue, 0xFFFF);
    EXPECT_EQ(entry->parameters[2].scope, 't');

    set.trackCount = 0;
    set.parameters.pop_back();
    const auto noTracks = song::SongReader::entryFromParameterSet(set, 2, 0);
    ASSERT_TRUE(noTracks);
    EXPECT_EQ(noTracks->minTracks, 0);
    EXPECT_EQ(noTracks->maxTracks, 0);

    // A row wider than the database can hold is not learned.
    set.parameters.assign(200, {3, "W", 0, 0, 0, 0, 0});
    set.globalCount = 200;
    EXPECT_FALSE(song::SongReader::entryFromParameterSet(set, 1, 0));
}

TEST(SongReader, MissingFileFailsWithoutMessage)
{
    song::MemoryMachineCatalog catalog = referenceCatalog();
    BuzzSong song;
    const music::Result r =
        song::SongReader(catalog, nullptr).read("/nonexistent/folder/song.bmx", song);
    EXPECT_FALSE(r.ok());
    EXPECT_TRUE(r.message().empty());
}

TEST(BuzzNote, EncodesAndDecodes)
{
    const struct
    {
        int pitchClass;
        int octave;
        int value;
    } cases[] = {{0, 4, 65}, {11, 9, 156}, {0, 0, 1}, {120, 4, 0}, {3, 120, 0}};
    for (const auto& c : cases)
        EXPECT_EQ(song::BuzzNote::encode(c.pitchClass, c.octave), c.value);

    const struct
    {
        int value;
        int pitchClass;
        int octave;
    } decoded[] = {{0, 12, 10}, {65, 0, 4}, {156, 11, 9}, {255, 14, 15}, {0x0E, 13, 0}};
    for (const auto& d : decoded) {
        const auto note = song::BuzzNote::decode(static_cast<std::uint8_t>(d.value));
        EXPECT_EQ(note.pitchClass, d.pitchClass) << d.value;
        EXPECT_EQ(note.octave, d.octave) << d.value;
    }
}

} // namespace
