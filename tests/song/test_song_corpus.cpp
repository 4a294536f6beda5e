// Reads, writes and re-reads every real song of the shared corpus.

#include "song_test_support.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/MachineClip.h"
#include "song/MachineDatabase.h"
#include "song/MachineEdits.h"
#include "song/MachineReplacement.h"
#include "song/MemoryMachineCatalog.h"
#include "song/NoteTransforms.h"
#include "song/SongEdits.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>

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

class CorpusTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_songs = corpusSongs();
        if (m_songs.empty())
            GTEST_SKIP() << "No song corpus: set TM_SONG_CORPUS to a folder of .bmx/.bmw songs ("
                         << corpusFolder() << " has none)";
        // A data folder whose machines.ini holds the five built-in entries, all visible.
        const auto entries = song::MachineDatabase::builtInEntries();
        std::string ini = std::to_string(entries.size()) + "\n";
        for (const auto& e : entries)
            ini += song::MachineDatabase::formatEntry(e);
        ASSERT_TRUE(music::writeFileSafely(m_data.path() / "machines.ini", ini));
    }

    /** Saves the song and reads the copy back without asking about unknown machines. */
    music::Result saveAndReread(const song::BuzzSong& song, const fs::path& copy,
                                song::BuzzSong& reread) const
    {
        if (music::Result written = song::SongWriter::write(song, copy); !written)
            return written;
        song::DataFolderMachineCatalog catalog(m_data.path());
        return song::SongReader(catalog, nullptr).read(copy, reread);
    }

    std::vector<fs::path> m_songs;
    TempFolder m_data{"corpus-data"};
    TempFolder m_out{"corpus-out"};
};

// Songs without parameter descriptions all use a machine nobody described; every other song
// saves, reads back unchanged, saves again byte for byte, and stays readable after any one of
// its machines is removed with the patterns that fall unused.
TEST_F(CorpusTest, SongsRoundTripAndStayReadableAfterRemovingAnyMachine)
{
    std::size_t roundTrips = 0;
    for (const fs::path& path : m_songs) {
        SCOPED_TRACE(path.filename().string());
        song::DataFolderMachineCatalog catalog(m_data.path());
        ScriptedHandler handler;
        handler.learn = true;
        song::BuzzSong first;
        const music::Result read = song::SongReader(catalog, &handler).read(path, first);
        if (!hasParaSection(music::readFileBytes(path).value_or(""))) {
            EXPECT_EQ(read.code(), 26);
            EXPECT_TRUE(read.message().starts_with("machine unknown\n"));
            continue;
        }
        ASSERT_TRUE(read.ok()) << "code " << read.code() << " " << read.message();

        const fs::path copy = m_out.path() / path.filename();
        song::BuzzSong second;
        const music::Result reread = saveAndReread(first, copy, second);
        ASSERT_TRUE(reread.ok()) << "code " << reread.code();
        expectSameModel(first, second);
        EXPECT_EQ(second.fileName(), path.filename().string());
        ++roundTrips;
        const fs::path copy2 = m_out.path() / ("2-" + path.filename().string());
        ASSERT_TRUE(song::SongWriter::write(second, copy2).ok());
        EXPECT_EQ(music::readFileBytes(copy), music::readFileBytes(copy2));

        for (std::size_t m = 1; m < first.machineCount(); ++m) {
            song::BuzzSong edited = first;
            ASSERT_TRUE(song::removeMachine(edited, m).ok());
            for (std::size_t k = 0; k < edited.machineCount(); ++k) {
                song::removeUnusedPatterns(edited, k);
                song::trimPatterns(edited, k);
            }
            song::BuzzSong back;
            const music::Result r = saveAndReread(edited, m_out.path() / "edited.bmx", back);
            ASSERT_TRUE(r.ok()) << "after removing machine " << m << ": code " << r.code();
            expectSameModel(edited, back);
        }
    }
    EXPECT_GT(roundTrips, 0u);
}

/**
 * Writes an edited song in memory and reads it back: every section must end where the directory
 * says, and the song must come back as it was written.
 */
void expectReadsBackAsWritten(const song::BuzzSong& edited, song::MachineCatalog& catalog)
{
    std::string bytes;
    ASSERT_TRUE(song::SongWriter::toBytes(edited, bytes).ok());
    song::SongReader reader(catalog, nullptr);
    song::BuzzSong back;
    const music::Result r = reader.readBytes(bytes, back);
    ASSERT_TRUE(r.ok()) << "code " << r.code() << " " << r.message();
    EXPECT_TRUE(reader.warnings().empty());
    for (const auto& section : reader.parsedSections())
        EXPECT_EQ(section.parsedEnd, section.directoryEnd) << section.name;
    expectSameModel(edited, back);
}

/** A machine of the song that `machine` can be replaced by: another one if any, else itself. */
std::size_t replacementFor(const song::BuzzSong& song, std::size_t machine)
{
    song::ReplacementPlan plan;
    for (std::size_t other = 1; other < song.machineCount(); ++other) {
        if (other != machine &&
            song::planReplacement(song, machine, song.machines()[other].description, plan))
            return other;
    }
    return machine;
}

// Every machine of every song that reads survives every machine edit, one at a time.
TEST_F(CorpusTest, EveryMachineSurvivesEveryEdit)
{
    using Edit = std::function<music::Result(song::BuzzSong&, std::size_t)>;
    const auto ok = [](bool done) {
        return done ? music::Result::success() : music::Result::failure("no change");
    };
    const std::vector<std::pair<const char*, Edit>> edits = {
        {"rename",
         [](song::BuzzSong& s, std::size_t m) {
             return song::renameMachine(s, m, song::freeMachineName(s, "Renamed"));
         }},
        {"clone",
         [](song::BuzzSong& s, std::size_t m) {
             std::size_t clone = 0;
             return song::cloneMachine(s, m, clone);
         }},
        {"copy and paste",
         [](song::BuzzSong& s, std::size_t m) {
             song::MachineClip clip;
             std::size_t pasted = 0;
             music::Result r = song::copyMachine(s, m, clip);
             return r ? song::pasteMachine(s, clip, std::nullopt, pasted) : r;
         }},
        {"add one like it",
         [](song::BuzzSong& s, std::size_t m) {
             const song::SongMachine machine = s.machines()[m];
             std::size_t added = 0;
             return song::addMachine(s, machine.description, machine.databaseIndex, nullptr,
                                     std::nullopt, added);
         }},
        {"replace",
         [](song::BuzzSong& s, std::size_t m) {
             const song::SongMachine other = s.machines()[replacementFor(s, m)];
             song::ReplacementPlan plan;
             return song::replaceMachine(s, m, other.description, other.databaseIndex, nullptr,
                                         plan);
         }},
        {"transpose",
         [&](song::BuzzSong& s, std::size_t m) {
             return ok(song::transposeNotes(s, {m}, 7).changed > 0);
         }},
        {"invert", [&](song::BuzzSong& s,
                       std::size_t m) { return ok(song::invertNotes(s, {m}, 60).changed > 0); }},
        {"remove empty sequences",
         [&](song::BuzzSong& s, std::size_t) { return ok(song::removeEmptySequences(s) > 0); }},
    };
    std::map<std::string, std::size_t> applied;
    for (const fs::path& path : m_songs) {
        SCOPED_TRACE(path.filename().string());
        song::DataFolderMachineCatalog learning(m_data.path());
        ScriptedHandler handler;
        handler.learn = true;
        song::BuzzSong original;
        if (!song::SongReader(learning, &handler).read(path, original))
            continue; // a machine nobody describes (checked above)
        song::MachineDatabase database;
        ASSERT_TRUE(database.load(m_data.path()).ok());
        song::MemoryMachineCatalog catalog(database.entries());
        for (std::size_t m = 0; m < original.machineCount(); ++m) {
            for (const auto& [what, edit] : edits) {
                SCOPED_TRACE(std::string(what) + " machine " + std::to_string(m));
                song::BuzzSong edited = original;
                if (!edit(edited, m))
                    continue; // refused (the master, no notes): nothing to check
                ++applied[what];
                expectReadsBackAsWritten(edited, catalog);
            }
        }
    }
    for (const auto& [what, edit] : edits)
        EXPECT_GT(applied[what], 0u) << what << " was never applied";
}

} // namespace
