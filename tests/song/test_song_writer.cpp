#include "song_reference.h"
#include "song_test_support.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "song/FileErrorCode.h"
#include "song/MemoryMachineCatalog.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>

namespace {

using namespace songtest;
using song::BuzzSong;

struct Directory
{
    std::uint32_t count = 0;
    std::vector<song::SectionEntry> entries; // all 31
};

/** The header of a written file, decoded by hand. */
Directory directoryOf(const std::string& file)
{
    Directory d;
    std::memcpy(&d.count, file.data() + 4, 4);
    for (std::size_t i = 0; i < 31; ++i) {
        song::SectionEntry e;
        e.name = file.substr(8 + i * 12, 4);
        std::memcpy(&e.offset, file.data() + 8 + i * 12 + 4, 4);
        std::memcpy(&e.size, file.data() + 8 + i * 12 + 8, 4);
        d.entries.push_back(e);
    }
    return d;
}

std::string sectionBytes(const std::string& file, const song::SectionEntry& e)
{
    return file.substr(e.offset, e.size);
}

BuzzSong readReference(const std::string& bytes = referenceSong())
{
    song::MemoryMachineCatalog catalog = referenceCatalog();
    BuzzSong song;
    const music::Result r = song::SongReader(catalog, nullptr).readBytes(bytes, song);
    EXPECT_TRUE(r.ok()) << r.code();
    return song;
}

/** Writes a song into `folder` and returns the file's bytes. */
std::string writeAndLoad(const BuzzSong& song, const TempFolder& folder)
{
    const auto path = folder.path() / "out.bmx";
    const music::Result r = song::SongWriter::write(song, path);
    EXPECT_TRUE(r.ok()) << r.code();
    return music::readFileBytes(path).value_or("");
}

TEST(SongWriter, WritesTheFixedOrderBannerAndAFreshDirectory)
{
    TempFolder folder("writer");
    const std::string file = writeAndLoad(readReference(), folder);
    ASSERT_GE(file.size(), 380u);
    EXPECT_EQ(file.substr(0, 4), "Buzz");
    const Directory d = directoryOf(file);
    EXPECT_EQ(d.count, 11u);
    const std::vector<std::string> order = {"BVER", "PARA", "CONN", "WAVT", "CWAV", "PATT",
                                            "SEQU", "MIDI", "PDLG", "MACH", "BLAH"};
    std::uint32_t expectedOffset = 380;
    for (std::size_t i = 0; i < order.size(); ++i) {
        EXPECT_EQ(d.entries[i].name, order[i]);
        EXPECT_EQ(d.entries[i].offset, expectedOffset) << order[i] << ": sections have no gaps";
        expectedOffset += d.entries[i].size;
    }
    EXPECT_EQ(expectedOffset, file.size());
    for (std::size_t i = order.size(); i < 31; ++i)
        EXPECT_EQ(d.entries[i].name, std::string(4, '\0'));
    EXPECT_EQ(sectionBytes(file, d.entries[0]),
              std::string("Buzz 1.2 BETA Oct  5 2000 01:19:28") + '\0');
}

TEST(SongWriter, UnchangedSectionsAreWrittenByteForByte)
{
    // Everything but the banner comes out as the tracker laid it out.
    TempFolder folder("writer");
    const std::string file = writeAndLoad(readReference(), folder);
    const Directory d = directoryOf(file);
    std::map<std::string, std::string> written;
    for (const song::SectionEntry& e : d.entries)
        written[e.name] = sectionBytes(file, e);
    for (const Section& s : referenceSections()) {
        if (s.name != "BVER") {
            EXPECT_EQ(written[s.name], s.bytes) << s.name;
        }
    }
}

TEST(SongWriter, ReadWriteReadKeepsTheModel)
{
    TempFolder folder("writer");
    const BuzzSong first = readReference();
    const BuzzSong second = readReference(writeAndLoad(first, folder));
    expectSameModel(first, second);
    EXPECT_EQ(second.versionText(), "Buzz 1.2 BETA Oct  5 2000 01:19:28");
}

TEST(SongWriter, SongWithoutWaveSectionsGetsAnEmptyWaveDataSection)
{
    TempFolder folder("writer");
    const std::string file =
        writeAndLoad(readReference(songFile(sectionsWithout({"WAVT", "CWAV"}))), folder);
    const Directory d = directoryOf(file);
    EXPECT_EQ(d.entries[3].name, "WAVT");
    EXPECT_EQ(sectionBytes(file, d.entries[3]), std::string(2, '\0'));
    EXPECT_EQ(d.entries[4].name, "CWAV");
    EXPECT_EQ(d.entries[4].size, 0u);
}

TEST(SongWriter, WithoutWaveDataFlagSkipsBothWaveSections)
{
    TempFolder folder("writer");
    BuzzSong song = readReference();
    song.setHasWaveData(false);
    const Directory d = directoryOf(writeAndLoad(song, folder));
    EXPECT_EQ(d.count, 9u);
    EXPECT_EQ(d.entries[3].name, "PATT");
}

TEST(SongWriter, SixteenUnknownSectionsMakeTwentySixEntries)
{
    std::vector<Section> sections = referenceSections();
    for (int i = 0; i < 15; ++i)
        sections.push_back(
            {"R" + std::to_string(10 + i) + "X", std::string(3, static_cast<char>(i))});
    TempFolder folder("writer");
    const std::string file = writeAndLoad(readReference(songFile(sections)), folder);
    const Directory d = directoryOf(file);
    EXPECT_EQ(d.count, 26u);
    EXPECT_EQ(d.entries[25].name, "R24X");
    EXPECT_EQ(sectionBytes(file, d.entries[25]), std::string(3, '\x0E'));
    EXPECT_EQ(d.entries[26].name, std::string(4, '\0'));
    EXPECT_EQ(d.entries[10].offset, 380u + 35u + paraSection().size() + connSection().size() +
                                        wavtSection().size() + 15u + pattSection().size() +
                                        sequSection().size() + midiSection().size() +
                                        pdlgSection().size() + machSection().size());
}

TEST(SongWriter, SequenceValuesTakeTwoBytesAbove112Patterns)
{
    const struct
    {
        std::size_t patterns;
        std::size_t eventBytes; // per event: one position byte plus the value
    } cases[] = {{112, 2}, {113, 3}};
    for (const auto& c : cases) {
        BuzzSong song = readReference();
        while (song.patternCount(1) < c.patterns)
            ASSERT_TRUE(song.createPattern(1, "p" + std::to_string(song.patternCount(1)), 1));
        TempFolder folder("writer");
        const std::string file = writeAndLoad(song, folder);
        const Directory d = directoryOf(file);
        const std::string sequ = sectionBytes(file, d.entries[6]);
        // Header 14, sequence of machine 1: 6 + 2 width bytes + 3 events, then the empty one.
        EXPECT_EQ(sequ.size(), 14u + 8u + 3 * c.eventBytes + 6u) << c.patterns;
        EXPECT_EQ(sequ[14 + 6 + 1], 1) << "the header's event width is written as stored";
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
    EXPECT_FALSE(r.ok());
    EXPECT_EQ(r.code(), song::FileErrorCode::kWriteHeader);
    EXPECT_EQ(music::readFileBytes(target / "keep.txt").value_or(""), "old");
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator(folder.path()))
        ++files;
    EXPECT_EQ(files, 1u);

    const music::Result missing =
        song::SongWriter::write(readReference(), folder.path() / "no" / "such" / "song.bmx");
    EXPECT_EQ(missing.code(), song::FileErrorCode::kWriteHeader);
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
    const std::string file = writeAndLoad(song, folder);
    const Directory d = directoryOf(file);
    EXPECT_EQ(d.entries[4].name, "CWAV");
    EXPECT_TRUE(sectionBytes(file, d.entries[4]) == waves);
}

TEST(SongWriter, MachineWithoutPatternBlockGetsAnEmptyOne)
{
    BuzzSong song = readReference();
    song.patternBlocks().pop_back();
    TempFolder folder("writer");
    const BuzzSong reread = readReference(writeAndLoad(song, folder));
    ASSERT_EQ(reread.patternBlocks().size(), 2u);
    EXPECT_TRUE(reread.patternBlocks()[1].patterns.empty());
    EXPECT_EQ(reread.patternBlocks()[1].trackCount, 2);
}

TEST(SongWriter, OverwritesAnExistingSong)
{
    TempFolder folder("writer");
    const auto path = folder.path() / "song.bmx";
    ASSERT_TRUE(music::writeFileSafely(path, "previous content"));
    ASSERT_TRUE(song::SongWriter::write(readReference(), path).ok());
    EXPECT_EQ(music::readFileBytes(path).value_or("").substr(0, 4), "Buzz");
}

} // namespace
