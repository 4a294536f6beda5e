// Reads, writes and re-reads every real song of the shared corpus.

#include "song_test_support.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/MachineDatabase.h"
#include "song/SongEdits.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

namespace fs = std::filesystem;
using namespace songtest;

fs::path corpusFolder()
{
    for (const char* variable : {"TM_SONG_CORPUS", "TM_SONG_CORPUS_DEFAULT"}) {
        if (const char* value = std::getenv(variable); value != nullptr && *value != '\0')
            return value;
    }
#ifdef TM_SONG_CORPUS_DEFAULT
    return TM_SONG_CORPUS_DEFAULT;
#else
    return {};
#endif
}

std::vector<fs::path> corpusSongs()
{
    std::vector<fs::path> songs;
    std::error_code error;
    const fs::path folder = corpusFolder();
    if (folder.empty() || !fs::is_directory(folder, error))
        return songs;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        const std::string extension = music::toLower(entry.path().extension().string());
        if (extension == ".bmx" || extension == ".bmw")
            songs.push_back(entry.path());
    }
    std::sort(songs.begin(), songs.end());
    return songs;
}

/** Whether the song's directory (first section-count entries) names a PARA section. */
bool hasParaSection(const std::string& bytes)
{
    if (bytes.size() < 380)
        return false;
    std::uint32_t count = 0;
    std::memcpy(&count, bytes.data() + 4, 4);
    for (std::size_t i = 0; i < std::min<std::uint32_t>(count, 31); ++i) {
        if (music::equalsIgnoringCase(bytes.substr(8 + i * 12, 4), "PARA"))
            return true;
    }
    return false;
}

/** A data folder whose machines.ini holds the five built-in entries, all visible to the loader. */
void seedDataFolder(const fs::path& folder)
{
    const auto entries = song::MachineDatabase::builtInEntries();
    std::string ini = std::to_string(entries.size()) + "\n";
    for (const auto& e : entries)
        ini += song::MachineDatabase::formatEntry(e);
    ASSERT_TRUE(music::writeFileSafely(folder / "machines.ini", ini));
}

class CorpusTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_songs = corpusSongs();
        if (m_songs.empty())
            GTEST_SKIP() << "No song corpus: set TM_SONG_CORPUS to a folder of .bmx/.bmw songs ("
                         << corpusFolder() << " has none)";
    }
    std::vector<fs::path> m_songs;
};

TEST_F(CorpusTest, SongsWithParameterDescriptionsRoundTrip)
{
    TempFolder data("corpus-data");
    seedDataFolder(data.path());
    TempFolder out("corpus-out");
    std::size_t roundTrips = 0;
    for (const fs::path& path : m_songs) {
        SCOPED_TRACE(path.filename().string());
        const std::string bytes = music::readFileBytes(path).value_or("");
        song::DataFolderMachineCatalog catalog(data.path());
        ScriptedHandler handler;
        handler.learn = true;
        song::BuzzSong first;
        const music::Result read = song::SongReader(catalog, &handler).read(path, first);
        if (!hasParaSection(bytes)) {
            // Every such song of the corpus uses at least one machine nobody described.
            EXPECT_EQ(read.code(), 26);
            EXPECT_EQ(read.message().rfind("machine unknown\n", 0), 0u);
            continue;
        }
        ASSERT_TRUE(read.ok()) << "code " << read.code() << " " << read.message();

        const fs::path copy = out.path() / path.filename();
        const music::Result written = song::SongWriter::write(first, copy);
        ASSERT_TRUE(written.ok()) << written.code();
        song::DataFolderMachineCatalog again(data.path());
        song::BuzzSong second;
        const music::Result reread = song::SongReader(again, nullptr).read(copy, second);
        ASSERT_TRUE(reread.ok()) << "code " << reread.code();
        expectSameModel(first, second);
        EXPECT_EQ(second.fileName(), path.filename().string());
        ++roundTrips;

        // A second save of the copy is byte for byte the first.
        const fs::path copy2 = out.path() / ("2-" + path.filename().string());
        ASSERT_TRUE(song::SongWriter::write(second, copy2).ok());
        EXPECT_EQ(music::readFileBytes(copy), music::readFileBytes(copy2));
    }
    EXPECT_GT(roundTrips, 0u);
}

TEST_F(CorpusTest, RemovingEachMachineKeepsEverySongReadable)
{
    TempFolder data("corpus-data");
    seedDataFolder(data.path());
    TempFolder out("corpus-out");
    for (const fs::path& path : m_songs) {
        SCOPED_TRACE(path.filename().string());
        song::DataFolderMachineCatalog catalog(data.path());
        ScriptedHandler handler;
        handler.learn = true;
        song::BuzzSong original;
        if (!song::SongReader(catalog, &handler).read(path, original))
            continue;
        for (std::size_t m = 1; m < original.machineCount(); ++m) {
            song::BuzzSong edited = original;
            song::removeMachine(edited, m);
            for (std::size_t k = 0; k < edited.machineCount(); ++k) {
                song::removeUnusedPatterns(edited, k);
                song::trimPatterns(edited, k);
            }
            const fs::path copy = out.path() / "edited.bmx";
            ASSERT_TRUE(song::SongWriter::write(edited, copy).ok());
            song::DataFolderMachineCatalog again(data.path());
            song::BuzzSong reread;
            const music::Result r = song::SongReader(again, nullptr).read(copy, reread);
            ASSERT_TRUE(r.ok()) << "after removing machine " << m << ": code " << r.code();
            expectSameModel(edited, reread);
        }
    }
}

} // namespace
