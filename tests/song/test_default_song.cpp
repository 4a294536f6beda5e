// The shipped default song (data/default.bmx) against its recipe in tools/defaults, and what the
// tracker and the program need of it.
#include "DefaultSongBuilder.h"
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
using namespace defaults;

namespace {

const std::filesystem::path kData = std::filesystem::path(TM_SOURCE_DIR) / "data";

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
    std::string bytes;
    ASSERT_TRUE(defaults::defaultSongBytes(bytes).ok());
    EXPECT_EQ(music::readFileBytes(kData / "default.bmx"), bytes)
        << "data/default.bmx is stale: cmake --build --preset dev --target regenerate-defaults";
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
