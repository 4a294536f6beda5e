#include "song_reference.h"
#include "song_test_support.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "song/FileErrorCode.h"
#include "song/MemoryMachineCatalog.h"
#include "song/SongEdits.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

namespace {

using namespace songtest;
using song::BuzzSong;

/** A written file and its header, decoded by hand. */
struct Written
{
    std::string file;
    std::uint32_t count = 0;
    std::vector<song::SectionEntry> entries{}; // all 31

    std::string bytes(std::size_t entry) const
    {
        return file.substr(entries[entry].offset, entries[entry].size);
    }
};

Written saved(const BuzzSong& song)
{
    TempFolder folder("writer");
    const auto path = folder.path() / "out.bmx";
    const music::Result r = song::SongWriter::write(song, path);
    EXPECT_TRUE(r.ok()) << r.code();
    Written w{.file = music::readFileBytes(path).value_or(std::string(380, '\0'))};
    std::memcpy(&w.count, w.file.data() + 4, 4);
    for (std::size_t i = 0; i < 31; ++i) {
        song::SectionEntry& e = w.entries.emplace_back();
        e.name = w.file.substr(8 + i * 12, 4);
        std::memcpy(&e.offset, w.file.data() + 8 + i * 12 + 4, 4);
        std::memcpy(&e.size, w.file.data() + 8 + i * 12 + 8, 4);
    }
    return w;
}

TEST(SongWriter, WritesSectionsInFixedOrderUnchangedExceptTheBannerAndReadsBackTheSame)
{
    const BuzzSong song = readReference();
    const Written w = saved(song);
    EXPECT_EQ(w.file.substr(0, 4), "Buzz");
    EXPECT_EQ(w.count, 11u);
    const std::vector<std::string> order = {"BVER", "PARA", "CONN", "WAVT", "CWAV", "PATT",
                                            "SEQU", "MIDI", "PDLG", "MACH", "BLAH"};
    std::uint32_t expectedOffset = 380;
    for (std::size_t i = 0; i < 31; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(w.entries[i].name, i < order.size() ? order[i] : std::string(4, '\0'));
        if (i < order.size()) {
            EXPECT_EQ(w.entries[i].offset, expectedOffset) << "sections have no gaps";
            expectedOffset += w.entries[i].size;
        }
    }
    EXPECT_EQ(expectedOffset, w.file.size());
    EXPECT_EQ(w.bytes(0), std::string("Buzz 1.2 BETA Oct  5 2000 01:19:28") + '\0');
    // Everything but the banner comes out as the tracker laid it out.
    for (const Section& s : referenceSections()) {
        const auto at = std::ranges::find(order, s.name) - order.begin();
        if (s.name != "BVER") {
            EXPECT_EQ(w.bytes(static_cast<std::size_t>(at)), s.bytes) << s.name;
        }
    }
    const BuzzSong reread = readReference(w.file);
    expectSameModel(song, reread);
    EXPECT_EQ(reread.versionText(), "Buzz 1.2 BETA Oct  5 2000 01:19:28");
}

TEST(SongWriter, WaveSectionsAreEmptyWithoutWavesAndSkippedWithoutWaveData)
{
    const BuzzSong noWaves = readReference(songFile(sectionsWithout({"WAVT", "CWAV"})));
    EXPECT_TRUE(noWaves.waves().empty());
    EXPECT_TRUE(noWaves.waveData().empty());
    const Written empty = saved(noWaves);
    EXPECT_EQ(empty.entries[3].name, "WAVT");
    EXPECT_EQ(empty.bytes(3), std::string(2, '\0'));
    EXPECT_EQ(empty.entries[4].name, "CWAV");
    EXPECT_EQ(empty.entries[4].size, 0u);

    BuzzSong song = readReference();
    song.setHasWaveData(false);
    const Written none = saved(song);
    EXPECT_EQ(none.count, 9u);
    EXPECT_EQ(none.entries[3].name, "PATT");
}

TEST(SongWriter, SixteenUnknownSectionsMakeTwentySixEntries)
{
    std::vector<Section> sections = referenceSections();
    for (int i = 0; i < 15; ++i)
        sections.push_back(
            {"R" + std::to_string(10 + i) + "X", std::string(3, static_cast<char>(i))});
    const Written w = saved(readReference(songFile(sections)));
    EXPECT_EQ(w.count, 26u);
    EXPECT_EQ(w.entries[25].name, "R24X");
    EXPECT_EQ(w.bytes(25), std::string(3, '\x0E'));
    EXPECT_EQ(w.entries[26].name, std::string(4, '\0'));
    EXPECT_EQ(w.entries[10].offset, 380u + 35u + paraSection().size() + connSection().size() +
                                        wavtSection().size() + 15u + pattSection().size() +
                                        sequSection().size() + midiSection().size() +
                                        pdlgSection().size() + machSection().size());
}

// The sequence of machine 1 holds 0:16 16:16 32:1. Whatever moved its pattern count, the width
// bytes of the header must give the size of every stored event, and the values must read back.
TEST(SongWriter, SequenceHeaderAndValuesAgreeAcross112PatternsBothWays)
{
    const auto growTo = [](BuzzSong& song, std::size_t patterns) {
        while (song.patternCount(1) < patterns)
            ASSERT_TRUE(song.createPattern(1, "p" + std::to_string(song.patternCount(1)), 1));
    };
    using Edit = std::function<void(BuzzSong&)>;
    const struct
    {
        const char* what;
        Edit edit;
        int positionWidth, valueWidth;
    } cases[] = {
        {"112 patterns", [&](BuzzSong& s) { growTo(s, 112); }, 1, 1},
        {"113 patterns", [&](BuzzSong& s) { growTo(s, 113); }, 1, 2},
        {"113 then the unused ones removed",
         [&](BuzzSong& s) {
             growTo(s, 113);
             s.sequences()[0].eventWidth = 2; // as read from a song written with 113
             song::removeUnusedPatterns(s, 1);
         },
         1, 1},
        {"113 then one removed",
         [&](BuzzSong& s) {
             growTo(s, 113);
             song::removePattern(s, 1, 7);
         },
         1, 1},
        {"a value that needs two bytes",
         [](BuzzSong& s) { s.sequences()[0].events[2].value = 300; }, 1, 2},
        {"a position that needs two bytes",
         [](BuzzSong& s) { s.sequences()[0].events[2].position = 300; }, 2, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        BuzzSong song = readReference();
        c.edit(song);
        const Written w = saved(song);
        const std::string sequ = w.bytes(6);
        // Song length and count 14 bytes; machine 1: index, count, two width bytes, 3 events;
        // then the empty sequence of the master, 6 bytes.
        ASSERT_EQ(sequ.size(), 14u + 8u + 3u * (c.positionWidth + c.valueWidth) + 6u);
        EXPECT_EQ(sequ[20], c.positionWidth);
        EXPECT_EQ(sequ[21], c.valueWidth);
        const BuzzSong reread = readReference(w.file);
        ASSERT_EQ(reread.sequences().size(), 2u);
        EXPECT_EQ(reread.sequences()[0].events, song.sequences()[0].events);
        EXPECT_EQ(reread.patternCount(1), song.patternCount(1));
    }
}

TEST(SongWriter, FailedSaveLeavesTheOldFileAndNoTemporaryFile)
{
    TempFolder folder("writer");
    // The target is a folder holding a file: nothing can be renamed over it.
    const auto target = folder.path() / "song.bmx";
    std::filesystem::create_directories(target);
    ASSERT_TRUE(music::writeFileSafely(target / "keep.txt", "old"));
    const music::Result r = song::SongWriter::write(readReference(), target);
    EXPECT_EQ(r.code(), song::FileErrorCode::kWriteHeader);
    EXPECT_EQ(music::readFileBytes(target / "keep.txt").value_or(""), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()),
                            std::filesystem::directory_iterator()),
              1);

    const music::Result missing =
        song::SongWriter::write(readReference(), folder.path() / "no" / "such" / "song.bmx");
    EXPECT_EQ(missing.code(), song::FileErrorCode::kWriteHeader);

    // An ordinary file is replaced.
    const auto old = folder.path() / "old.bmx";
    ASSERT_TRUE(music::writeFileSafely(old, "previous content"));
    ASSERT_TRUE(song::SongWriter::write(readReference(), old).ok());
    EXPECT_EQ(music::readFileBytes(old).value_or("").substr(0, 4), "Buzz");
}

TEST(SongWriter, LargeWaveDataReadFromAFileComesBackByteForByte)
{
    // Wave data of a few MB stays in the file's bytes when read; the copy must not change it.
    std::vector<Section> sections = referenceSections();
    std::string waves(3u << 20, '\0');
    for (std::size_t i = 0; i < waves.size(); ++i)
        waves[i] = static_cast<char>(i * 7 + (i >> 12));
    sections.back().bytes = waves;
    TempFolder folder("writer");
    const auto in = folder.path() / "big.bmx";
    ASSERT_TRUE(music::writeFileSafely(in, songFile(sections)));
    song::MemoryMachineCatalog catalog = referenceCatalog();
    BuzzSong song;
    ASSERT_TRUE(song::SongReader(catalog, nullptr).read(in, song).ok());
    ASSERT_EQ(song.waveData().size(), waves.size());
    const Written w = saved(song);
    EXPECT_EQ(w.entries[4].name, "CWAV");
    EXPECT_TRUE(w.bytes(4) == waves);
}

TEST(SongWriter, MachineWithoutPatternBlockGetsAnEmptyOne)
{
    BuzzSong song = readReference();
    song.patternBlocks().pop_back();
    const BuzzSong reread = readReference(saved(song).file);
    ASSERT_EQ(reread.patternBlocks().size(), 2u);
    EXPECT_EQ(reread.patternBlocks()[1], (song::MachinePatterns{2, {}}));
}

} // namespace
