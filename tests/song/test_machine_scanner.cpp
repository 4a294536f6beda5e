#include "song_test_support.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "song/MachineDatabase.h"
#include "song/MachineScanner.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;
using song::MachineDatabase;
using song::MachineScanner;
using songtest::testGear;

/** A data folder and a scratch gear folder of its own, removed afterwards. */
class MachineScan : public ::testing::Test
{
protected:
    void SetUp() override { fs::create_directories(m_data); }

    std::string database() const
    {
        return music::readFileBytes(m_data / "machines.ini").value_or("<missing>");
    }
    /** Copies a built test DLL into the scratch gear folder under `folder`. */
    fs::path place(const fs::path& dll, const std::string& folder)
    {
        const fs::path target = m_root / "gear" / folder / dll.filename();
        fs::create_directories(target.parent_path());
        fs::copy_file(dll, target, fs::copy_options::overwrite_existing);
        return target;
    }
    std::vector<std::string> loadedNames() const
    {
        MachineDatabase db;
        EXPECT_TRUE(db.load(m_data).ok());
        return songtest::column(db.entries(), &song::MachineDatabaseEntry::dllName);
    }

    songtest::TempFolder m_folder{"scan"};
    fs::path m_root = m_folder.path(), m_data = m_root / "data";
};

std::string builtInFile(int count)
{
    std::string s = std::to_string(count) + "\n";
    for (const auto& e : MachineDatabase::builtInEntries())
        s += MachineDatabase::formatEntry(e);
    return s;
}

TEST_F(MachineScan, EmptyGearGivesTheBuiltInsCountedAsThree)
{
    fs::create_directories(m_root / "gear" / "generators");
    ASSERT_TRUE(MachineScanner::scanGearDirectory(m_data, m_root / "gear").ok());
    EXPECT_EQ(database(), builtInFile(3));
    EXPECT_EQ(loadedNames(),
              (std::vector<std::string>{"Master", "Jeskola Freeverb", "Jeskola Aux Return"}));
    EXPECT_FALSE(fs::exists(m_data / "tmpmach.nam"));
}

TEST_F(MachineScan, FullScanWritesGeneratorsThenEffectsAndSkipsWhatItCannotRead)
{
    REQUIRE_TEST_DLLS();
    const fs::path gear = m_root / "gear";
    for (const char* b : {"32O2", "64O0"}) {
        place(testGear() / "generators" / (std::string("TestGen") + b + ".dll"), "Generators");
        place(testGear() / "effects" / (std::string("TestFx") + b + ".dll"), "EFFECTS");
    }
    place(testGear(true) / "generators" / "NoGetInfo.dll", "Generators");
    for (const char* name : {"readme.dll", "notes.txt"})
        ASSERT_TRUE(music::writeFileSafely(gear / "Generators" / name, "not a library"));

    song::GearScanReport report;
    ASSERT_TRUE(MachineScanner::scanGearDirectory(m_data, gear, report).ok());
    EXPECT_EQ(report.added,
              (std::vector<std::string>{"TestGen32O2", "TestGen64O0", "TestFx32O2", "TestFx64O0"}));
    EXPECT_EQ(report.skipped, std::vector<fs::path>{gear / "Generators" / "readme.dll"});
    EXPECT_EQ(report.refused, std::vector<fs::path>{gear / "Generators" / "NoGetInfo.dll"});

    const std::string text = database();
    EXPECT_TRUE(text.starts_with("7\n")); // 3 + four DLLs
    // Loaded: five built-ins and the first two DLL entries; the last two stay unread.
    EXPECT_EQ(loadedNames(),
              (std::vector<std::string>{"Master", "Jeskola Freeverb", "Jeskola Aux Return",
                                        "Jeskola Mixer Aux", "Jeskola Mixer", "TestGen32O2",
                                        "TestGen64O0"}));
    const std::string gen = "TestGen32O2\nTestGen\n1\n1\n16\n4\n3\n1\n4\n1\n"
                            "Volume\n2\ng\n3\n65535\n16384\n"
                            "Attack\n1\ng\n2\n255\n10\n"
                            "Wave\n1\ng\n2\n255\n0\n"
                            "Note\n1\nt\n0\n0\n0\n";
    EXPECT_NE(text.find(gen), std::string::npos);
    const std::string fx = "TestFx64O0\nTestFx\n2\n0\n0\n3\n3\n0\n3\n0\n"
                           "Dry/Wet\n1\ng\n2\n255\n50\n"
                           "Time\n2\ng\n3\n0\n300\n"
                           "Odd\n1\ng\n7\n255\n1\n";
    EXPECT_NE(text.find(fx), std::string::npos);
    EXPECT_EQ(text.find("ENDOFFILE"), std::string::npos);
}

TEST_F(MachineScan, ProgressCountsEveryDllAndACancelLeavesTheFileAlone)
{
    REQUIRE_TEST_DLLS();
    const std::string before = builtInFile(3) + "unchanged\n";
    ASSERT_TRUE(music::writeFileSafely(m_data / "machines.ini", before));
    // The test gear holds eight DLLs: progress runs 0..7 before each, then 8 before writing.
    struct Case
    {
        const char* what;
        std::size_t cancelAt; // the call that answers false; 99: none
        std::size_t calls;
        std::size_t added;
        bool written;
    };
    const Case cases[] = {
        {"cancelled at once", 0, 1, 0, false},
        {"cancelled after three DLLs", 3, 4, 3, false},
        {"cancelled just before writing", 8, 9, 8, false},
        {"not cancelled", 99, 9, 8, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::vector<std::size_t> done;
        song::GearScanReport report;
        const auto progress = [&](std::size_t d, std::size_t total, const fs::path& next) {
            EXPECT_EQ(total, 8u);
            EXPECT_EQ(next.empty(), d == total);
            done.push_back(d);
            return d != c.cancelAt;
        };
        ASSERT_TRUE(MachineScanner::scanGearDirectory(m_data, testGear(), report, progress).ok());
        EXPECT_EQ(done.size(), c.calls);
        EXPECT_EQ(done.back(), std::min<std::size_t>(c.cancelAt, 8));
        EXPECT_EQ(report.added.size(), c.added);
        EXPECT_EQ(report.cancelled, !c.written);
        EXPECT_EQ(database() == before, !c.written);
        EXPECT_FALSE(fs::exists(m_data / "tmpmach.nam"));
    }
}

TEST_F(MachineScan, SingleScanCreatesTheFileWithTheNewEntryFirst)
{
    REQUIRE_TEST_DLLS();
    const fs::path dll = place(testGear() / "generators" / "TestGen64O2.dll", "Generators");
    bool changed = false;
    ASSERT_TRUE(MachineScanner::scanSingleDll(m_data, dll, changed).ok());
    EXPECT_TRUE(changed);
    EXPECT_EQ(loadedNames(), (std::vector<std::string>{"TestGen64O2", "Master", "Jeskola Freeverb",
                                                       "Jeskola Aux Return"}));
    EXPECT_FALSE(fs::exists(m_data / "tmpmach.nam"));

    // A second DLL goes first again; the count grows by one and every counted entry is kept.
    const fs::path fx = place(testGear() / "effects" / "TestFx32O0.dll", "effects");
    ASSERT_TRUE(MachineScanner::scanSingleDll(m_data, fx, changed).ok());
    EXPECT_TRUE(changed);
    EXPECT_EQ(loadedNames(), (std::vector<std::string>{"TestFx32O0", "TestGen64O2", "Master",
                                                       "Jeskola Freeverb", "Jeskola Aux Return"}));
    MachineDatabase db;
    ASSERT_TRUE(db.load(m_data).ok());
    EXPECT_EQ(db.entry(0).type, 2);
    EXPECT_EQ(db.entry(1).type, 1);
}

TEST_F(MachineScan, ScanningAKnownDllLeavesTheFileByteForByte)
{
    REQUIRE_TEST_DLLS();
    ASSERT_TRUE(MachineScanner::scanGearDirectory(m_data, testGear()).ok());
    // Written with CRLF by another tool: an unchanged scan must not even normalise that.
    std::string text = database();
    std::string crlf;
    for (char c : text)
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    ASSERT_TRUE(music::writeFileSafely(m_data / "machines.ini", crlf));

    bool changed = true;
    ASSERT_TRUE(MachineScanner::scanSingleDll(m_data, testGear() / "generators" / "TestGen32O0.dll",
                                              changed)
                    .ok());
    EXPECT_FALSE(changed);
    EXPECT_EQ(database(), crlf);
    EXPECT_FALSE(fs::exists(m_data / "tmpmach.nam"));
}

TEST_F(MachineScan, SingleScanFailuresShowTheirMessagesAndChangeNothing)
{
    REQUIRE_TEST_DLLS();
    const std::string before = builtInFile(3);
    ASSERT_TRUE(music::writeFileSafely(m_data / "machines.ini", before));
    const fs::path text = m_root / "gear" / "generators" / "text.dll";
    fs::create_directories(text.parent_path());
    music::writeFileSafely(text, "MZ but nothing else");

    const struct
    {
        const char* what;
        fs::path dll;
        std::string message;
    } cases[] = {
        {"wrong parent folder", place(testGear() / "generators" / "TestGen32O0.dll", "machines"),
         "Error:\nSorry, but the parentfolder must be ..\\effects or ..\\generators"},
        {"not a library", text,
         "Error:\nUnable to load library\nmaybe it is no dynamic link library"},
        {"missing file", m_root / "gear" / "generators" / "gone.dll",
         "Error:\nUnable to load library\nmaybe it is no dynamic link library"},
        {"no GetInfo", testGear(true) / "generators" / "NoGetInfo.dll",
         "Error:\nUnable to find function GetInfo()"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        bool changed = true;
        const music::Result result = MachineScanner::scanSingleDll(m_data, c.dll, changed);
        EXPECT_FALSE(result.ok());
        EXPECT_EQ(result.message(), c.message);
        EXPECT_FALSE(changed);
        EXPECT_EQ(database(), before);
        EXPECT_FALSE(fs::exists(m_data / "tmpmach.nam"));
    }
    // A damaged database is refused, not rewritten.
    const std::string damaged = "9\nMaster\nMaster\n0\n";
    ASSERT_TRUE(music::writeFileSafely(m_data / "machines.ini", damaged));
    bool changed = true;
    EXPECT_FALSE(
        MachineScanner::scanSingleDll(m_data, testGear() / "generators/TestGen32O0.dll", changed)
            .ok());
    EXPECT_EQ(database(), damaged);
}

song::MachineDatabaseEntry learned(const std::string& dllName)
{
    return songtest::entry(dllName, 1, {{"Note", 0, true}}, 1, 8);
}

TEST_F(MachineScan, AddEntryCreatesTheFileAndTheLoaderSeesTheNewEntry)
{
    ASSERT_TRUE(MachineScanner::addEntry(m_data, learned("Jeskola Bass 3")).ok());
    EXPECT_EQ(loadedNames(), (std::vector<std::string>{"Master", "Jeskola Freeverb",
                                                       "Jeskola Aux Return", "Jeskola Bass 3"}));
    // Mixer Aux and Mixer still follow, unread, as after a full scan.
    EXPECT_NE(database().find("Jeskola Mixer Aux\n"), std::string::npos);

    const std::string before = database();
    ASSERT_TRUE(MachineScanner::addEntry(m_data, learned("JESKOLA BASS 3")).ok());
    EXPECT_EQ(database(), before);
}

TEST_F(MachineScan, ScanningTheDllOfALearnedMachineReplacesTheLearnedEntry)
{
    REQUIRE_TEST_DLLS();
    song::MachineDatabaseEntry guess = learned("testgen32o0");
    guess.shortName += song::MachineDatabaseEntry::kLearnedMark;
    guess.maxTracks = 2;
    ASSERT_TRUE(MachineScanner::addEntry(m_data, guess).ok());
    ASSERT_TRUE(MachineScanner::addEntry(m_data, learned("Kept")).ok());

    bool changed = false;
    ASSERT_TRUE(MachineScanner::scanSingleDll(m_data, testGear() / "generators" / "TestGen32O0.dll",
                                              changed)
                    .ok());
    EXPECT_TRUE(changed);
    EXPECT_EQ(loadedNames(), (std::vector<std::string>{"TestGen32O0", "Master", "Jeskola Freeverb",
                                                       "Jeskola Aux Return", "Kept"}));
    MachineDatabase db;
    ASSERT_TRUE(db.load(m_data).ok());
    EXPECT_FALSE(db.entry(0).isLearned());
    EXPECT_EQ(db.entry(0).maxTracks, 16) << "the DLL's own range";
}

TEST_F(MachineScan, AddEntryAfterAFullScanKeepsTheUnreadEntriesBehind)
{
    REQUIRE_TEST_DLLS();
    ASSERT_TRUE(MachineScanner::scanGearDirectory(m_data, testGear()).ok());
    const std::vector<std::string> before = loadedNames();
    const std::string old = database();

    ASSERT_TRUE(MachineScanner::addEntry(m_data, learned("Oomek Aggressor 3o3")).ok());
    std::vector<std::string> expected = before;
    expected.push_back("Oomek Aggressor 3o3");
    EXPECT_EQ(loadedNames(), expected);
    // The last two scanned DLLs are still in the file, behind the new entry.
    const std::string now = database();
    const std::string unread = old.substr(old.find("TestFx64O0\n"));
    ASSERT_GT(now.size(), unread.size());
    EXPECT_EQ(now.substr(now.size() - unread.size()), unread);
    EXPECT_EQ(now.size(),
              old.size() + MachineDatabase::formatEntry(learned("Oomek Aggressor 3o3")).size());

    song::MachineDatabaseEntry broken = learned("Broken");
    broken.parameters.clear();
    EXPECT_FALSE(MachineScanner::addEntry(m_data, broken).ok());
    EXPECT_EQ(database(), now);
}

} // namespace
