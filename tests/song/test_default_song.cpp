// The shipped default song (data/default.bmx): the song a newcomer starts from, built here from the
// song model and written by the program's own writer, so it is valid by construction. The test
// DefaultSong.ShippedFileMatchesItsBuilder compares data/default.bmx with these bytes; run it with
// TM_WRITE_DEFAULTS=1 to rewrite the file after a change here.
#include "song_test_support.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "song/MemoryMachineCatalog.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

using song::BuzzSong;
using song::MachineDatabase;
using song::MachineDatabaseEntry;
using song::MachineParameterSet;
using song::ParameterDescription;

namespace {

const std::filesystem::path kData = std::filesystem::path(TM_SOURCE_DIR) / "data";
constexpr const char* kDynamiteDll = "MadBrain's Dynamite 6";
constexpr const char* kDynamiteName = "Dynamite6";
constexpr std::uint16_t kDynamiteTracks = 4; // the demo part plays up to four notes at once
constexpr std::int32_t kStateFlag = 2;       // the tracker keeps the value as machine state
constexpr std::uint16_t kUnity = 0x4000;     // connection amplitude 1.0, panning centre

ParameterDescription param(std::uint8_t type, std::string name, std::int32_t minimum,
                           std::int32_t maximum, std::int32_t noValue, std::int32_t defaultValue,
                           std::int32_t flags = kStateFlag)
{
    return {type, std::move(name), minimum, maximum, noValue, flags, defaultValue};
}

/** The master as the tracker describes it: volume 0 is full level. */
MachineParameterSet masterParameters()
{
    return {"Master",
            "Master",
            3,
            0,
            {param(3, "Volume", 0, 0x4000, 0xFFFF, 0), param(3, "BPM", 16, 512, 0xFFFF, 126),
             param(2, "TPB", 1, 32, 0xFF, 4)}};
}

/** The polyphonic generator as it describes itself: 25 global and 2 track parameters. */
MachineParameterSet dynamiteParameters()
{
    MachineParameterSet set{kDynamiteName, kDynamiteDll, 25, 2, {}};
    auto& p = set.parameters;
    p = {param(2, "Coarse tune", 1, 0xFF, 0, 0x80),     param(2, "Fine tune", 1, 0xFF, 0, 0x80),
         param(2, "Amplification", 1, 0xFF, 0, 0x20),   param(2, "Env Attack", 0, 0xFE, 0xFF, 4),
         param(2, "Env Decay", 1, 0xFF, 0, 0xFF),       param(2, "Routing", 0, 10, 0xFF, 0),
         param(3, "Release_____", 1, 0xFFFF, 0, 0xF000)};
    const std::int32_t pipeLengths[] = {0xFE, 0xFF, 0x100, 0x101, 0x102, 0x100};
    for (int pipe = 1; pipe <= 6; ++pipe) {
        p.push_back(
            param(3, "Pipe" + std::to_string(pipe) + " Length", 1, 1023, 0, pipeLengths[pipe - 1]));
        p.push_back(param(3, std::string(10, ' ') + "FBack", 1, 0xFFFF, 0, 0xF000));
        p.push_back(param(3, "_____Filter___", 1, 0xFFFF, 0, 0x4000));
    }
    p.push_back(param(0, "Note", 1, 156, 0, 0x80, 0)); // a note is an event, not state
    p.push_back(param(2, "Volume", 0, 0xFE, 0xFF, 0x80));
    return set;
}

/** The database entry of the generator: its own descriptions, with the DLL's name and tracks. */
MachineDatabaseEntry dynamiteEntry()
{
    MachineDatabaseEntry e = *song::SongReader::entryFromParameterSet(dynamiteParameters(), 1, 0);
    e.shortName = kDynamiteName;
    e.minTracks = 1;
    e.maxTracks = 32;
    return e;
}

/** One row of machine state: state parameters at their defaults, the others at their no-value. */
std::vector<std::uint8_t> stateRow(const MachineParameterSet& set, bool global)
{
    std::vector<std::uint8_t> row;
    for (std::size_t i = 0; i < set.parameters.size(); ++i) {
        if ((i < set.globalCount) != global)
            continue;
        const ParameterDescription& d = set.parameters[i];
        const std::int32_t value = (d.flags & kStateFlag) != 0 ? d.defaultValue : d.noValue;
        row.push_back(static_cast<std::uint8_t>(value & 0xFF));
        if (d.type == 3)
            row.push_back(static_cast<std::uint8_t>((value >> 8) & 0xFF));
    }
    return row;
}

song::SongMachine machineOf(const MachineParameterSet& set, const MachineDatabaseEntry& entry,
                            std::uint16_t tracks, float x, float y)
{
    song::SongMachine m;
    m.name = set.machineName;
    m.type = entry.type;
    m.dllName = entry.type == 0 ? "" : entry.dllName;
    m.x = std::bit_cast<std::uint32_t>(x);
    m.y = std::bit_cast<std::uint32_t>(y);
    m.globalState = stateRow(set, true);
    m.trackCount = tracks;
    const std::vector<std::uint8_t> track = stateRow(set, false);
    for (std::uint16_t t = 0; t < tracks; ++t)
        m.trackState.insert(m.trackState.end(), track.begin(), track.end());
    m.description = entry;
    m.globalRowSize = entry.globalRowSize;
    m.trackRowSize = entry.trackRowSize;
    return m;
}

/**
 * The master and one Dynamite 6 with four tracks feeding it at full level, one empty sequence for
 * the generator, no patterns, 16 ticks looped whole, at 126 BPM and 4 ticks per beat. The song
 * carries the parameter descriptions of both machines, so that a database without the generator
 * can still learn it. The waves table and the wave data are the two zero bytes (no waves) that
 * the tracker itself writes for a song without waves, and the empty song info (BLAH) it always
 * writes is kept as a section of its own.
 */
BuzzSong defaultSong()
{
    const MachineParameterSet master = masterParameters();
    const MachineParameterSet dynamite = dynamiteParameters();
    const MachineDatabaseEntry masterEntry = MachineDatabase::builtInEntries()[0];

    BuzzSong s;
    s.machines() = {machineOf(master, masterEntry, 0, 0.0f, 0.0f),
                    machineOf(dynamite, dynamiteEntry(), kDynamiteTracks, -0.5f, 0.0f)};
    s.patternBlocks() = {{0, {}}, {kDynamiteTracks, {}}};
    s.connections() = {{1, 0, kUnity, kUnity}};
    s.addSequence(1);
    s.setSongLength(16, 0, 16);
    s.parameterSets() = {master, dynamite};
    s.setParameterWindowFlag(1);
    s.setWaveTable({0, 0});
    s.setWaveData({0, 0});
    s.setHasWaveData(true);
    s.rawSections() = {{"BLAH", {0, 0, 0, 0}}};
    return s;
}

std::string defaultSongBytes()
{
    std::string bytes;
    const music::Result r = song::SongWriter::toBytes(defaultSong(), bytes);
    EXPECT_TRUE(r.ok()) << r.message();
    return bytes;
}

/** A catalog holding what the shipped machines.ini holds; reading through it writes nothing. */
song::MemoryMachineCatalog shippedCatalog()
{
    MachineDatabase db;
    EXPECT_TRUE(db.load(kData).ok());
    return song::MemoryMachineCatalog(db.entries());
}

/** The shipped default song read with the shipped database and nobody to ask. */
music::Result readShippedSong(BuzzSong& song)
{
    song::MemoryMachineCatalog catalog = shippedCatalog();
    return song::SongReader(catalog, nullptr).read(kData / "default.bmx", song);
}

TEST(DefaultSong, ShippedFileMatchesItsBuilder)
{
    const std::string bytes = defaultSongBytes();
    ASSERT_FALSE(bytes.empty());
    if (std::getenv("TM_WRITE_DEFAULTS") != nullptr) {
        ASSERT_TRUE(music::writeFileSafely(kData / "default.bmx", bytes));
    }
    EXPECT_EQ(music::readFileBytes(kData / "default.bmx"), bytes)
        << "data/default.bmx is stale: rerun this test with TM_WRITE_DEFAULTS=1";
}

TEST(DefaultSong, ShippedFileHasTheSectionsTheTrackerExpects)
{
    // Read from the raw bytes, independently of the song reader: the directory lists the sections
    // back to back from offset 380 up to the end of the file, and the waves table, the wave data
    // (a wave count of 0 each) and the song info (a text length of 0) are present.
    const auto bytes = music::readFileBytes(kData / "default.bmx");
    ASSERT_TRUE(bytes.has_value());
    const auto u32 = [&](std::size_t at) {
        std::uint32_t v = 0;
        for (std::size_t i = 0; i < 4; ++i)
            v |= std::uint32_t{static_cast<std::uint8_t>((*bytes)[at + i])} << (8 * i);
        return v;
    };
    ASSERT_GE(bytes->size(), 380u);
    EXPECT_EQ(bytes->substr(0, 4), "Buzz");
    const struct
    {
        const char* name;
        std::uint32_t size; // 0: not checked
    } expected[] = {{"BVER", 35}, {"PARA", 0}, {"CONN", 10}, {"WAVT", 2}, {"CWAV", 2}, {"PATT", 8},
                    {"SEQU", 20}, {"MIDI", 1}, {"PDLG", 2},  {"MACH", 0}, {"BLAH", 4}};
    ASSERT_EQ(u32(4), std::size(expected));
    std::uint32_t offset = 380;
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const std::size_t entry = 8 + 12 * i;
        SCOPED_TRACE(expected[i].name);
        EXPECT_EQ(bytes->substr(entry, 4), expected[i].name);
        EXPECT_EQ(u32(entry + 4), offset);
        if (expected[i].size != 0) {
            EXPECT_EQ(u32(entry + 8), expected[i].size);
        }
        offset += u32(entry + 8);
    }
    EXPECT_EQ(offset, bytes->size());
    for (const char* empty : {"WAVT", "CWAV", "BLAH"}) {
        const std::size_t at = bytes->find(empty) + 4;
        const std::uint32_t start = u32(at);
        EXPECT_EQ(bytes->substr(start, u32(at + 4)), std::string(u32(at + 4), '\0')) << empty;
    }
}

TEST(DefaultSong, ShippedDatabaseKnowsTheGeneratorExactlyAsItDescribesItself)
{
    MachineDatabase db;
    ASSERT_TRUE(db.load(kData).ok());
    const std::size_t index = db.findByDllName(kDynamiteDll);
    ASSERT_NE(index, MachineDatabase::kNotFound);
    EXPECT_EQ(MachineDatabase::formatEntry(db.entry(index)),
              MachineDatabase::formatEntry(dynamiteEntry()));
}

TEST(DefaultSong, OpensWithTheShippedDatabaseWithoutAskingAnything)
{
    BuzzSong s;
    const music::Result r = readShippedSong(s);
    ASSERT_TRUE(r.ok()) << r.message() << " code " << r.code();

    ASSERT_EQ(s.machineCount(), 2u);
    const song::SongMachine& master = s.machines()[0];
    const song::SongMachine& synth = s.machines()[1];
    EXPECT_TRUE(master.isMaster());
    // Volume 0 (full), 126 BPM, 4 ticks per beat, words little-endian.
    EXPECT_EQ(master.globalState, (std::vector<std::uint8_t>{0, 0, 126, 0, 4}));
    EXPECT_EQ(std::make_tuple(synth.name, synth.dllName, synth.trackCount),
              std::make_tuple(kDynamiteName, kDynamiteDll, kDynamiteTracks));
    EXPECT_EQ(synth.description.dllName, kDynamiteDll);
    // Each track starts without a note at volume 0x80.
    EXPECT_EQ(synth.trackState, (std::vector<std::uint8_t>{0, 0x80, 0, 0x80, 0, 0x80, 0, 0x80}));
    EXPECT_NE(synth.x, master.x) << "the machines must not sit on top of each other";
    EXPECT_EQ(s.connections(), (std::vector<song::SongConnection>{{1, 0, kUnity, kUnity}}));
    ASSERT_EQ(s.sequencesOf(1).size(), 1u);
    EXPECT_EQ(std::make_tuple(s.patternCount(1), s.songEnd(), s.loopEnd()),
              std::make_tuple(std::size_t{0}, 16u, 16u));
}

TEST(DefaultSong, TheDatabaseEntryAgreesWithTheTrackersDemoSong)
{
    std::filesystem::path corpus = TM_SONG_CORPUS_DEFAULT;
    for (const char* name : {"TM_SONG_CORPUS_DEFAULT", "TM_SONG_CORPUS"}) {
        if (const char* value = std::getenv(name); value != nullptr && *value != '\0')
            corpus = value;
    }
    const std::filesystem::path song = corpus / "neil_MadBrains_Dynamite6_demo.bmx";
    if (!std::filesystem::exists(song))
        GTEST_SKIP() << "song corpus not found (set TM_SONG_CORPUS): " << song;

    // The demo's other machines are learned in memory; the generator must resolve as shipped.
    song::MemoryMachineCatalog catalog = shippedCatalog();
    songtest::ScriptedHandler handler;
    handler.learn = true;
    BuzzSong demo;
    const music::Result r = song::SongReader(catalog, &handler).read(song, demo);
    ASSERT_TRUE(r.ok()) << r.message() << " code " << r.code();
    EXPECT_EQ(
        std::count(handler.learnQuestions.begin(), handler.learnQuestions.end(), kDynamiteName), 0);

    const std::size_t set = demo.findParameterSet(kDynamiteName);
    ASSERT_NE(set, BuzzSong::kNameNotFound);
    const MachineParameterSet& described = demo.parameterSets()[set];
    const std::size_t index = catalog.findByDllName(kDynamiteDll);
    ASSERT_NE(index, MachineDatabase::kNotFound);
    const MachineDatabaseEntry& shipped = catalog.entry(index);
    ASSERT_EQ(described.globalCount, shipped.globalParameterCount);
    ASSERT_EQ(described.parameters.size(), shipped.parameters.size());
    for (std::size_t i = 0; i < shipped.parameters.size(); ++i) {
        SCOPED_TRACE("parameter " + std::to_string(i) + " \"" + shipped.parameters[i].name + "\"");
        EXPECT_EQ(described.parameters[i].name, shipped.parameters[i].name);
        EXPECT_EQ(described.parameters[i].type, shipped.parameters[i].type);
        EXPECT_EQ(described.parameters[i].noValue, shipped.parameters[i].noValue);
        EXPECT_EQ(described.parameters[i].defaultValue, shipped.parameters[i].defaultValue);
    }
    // And so does our own copy of the descriptions, down to the ranges and flags.
    EXPECT_EQ(described.parameters, dynamiteParameters().parameters);
}

} // namespace
