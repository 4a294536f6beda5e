#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "song/MachineDatabase.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;
using song::MachineDatabase;

/** A fresh folder below the system's temporary folder, removed afterwards. */
class MachineDatabaseFolder : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        m_dir = fs::temp_directory_path() / (std::string("tm-machines-db-") + info->name() + "-" +
                                             std::to_string(std::random_device{}()));
        fs::remove_all(m_dir);
        fs::create_directories(m_dir);
    }
    void TearDown() override { fs::remove_all(m_dir); }

    void write(const std::string& content)
    {
        ASSERT_TRUE(music::writeFileSafely(m_dir / "machines.ini", content));
    }

    fs::path m_dir;
};

// Two small entries by hand: a generator with a word and a note, an effect without parameters.
const std::string kGenerator = "Gen\nG\n1\n1\n16\n2\n1\n1\n2\n1\n"
                               "Volume\n2\ng\n3\n65535\n16384\n"
                               "Note\n1\nt\n0\n0\n0\n";
const std::string kEffect = "Fx\nF\n2\n0\n0\n0\n0\n0\n0\n0\n";

TEST_F(MachineDatabaseFolder, MissingFileFailsWithTheScanHintAndCode11)
{
    MachineDatabase db;
    const music::Result result = db.load(m_dir);
    EXPECT_FALSE(result.ok());
    EXPECT_EQ(result.code(), 11);
    EXPECT_EQ(result.message(), "machines.ini not found\n please scan the buzz\\gear-directory");
}

TEST_F(MachineDatabaseFolder, LoadRules)
{
    const struct
    {
        const char* what;
        std::string content;
        bool ok;
        std::vector<std::string> dllNames;
    } cases[] = {
        {"reads exactly count entries", "1\n" + kGenerator + kEffect, true, {"Gen"}},
        {"two entries", "2\n" + kGenerator + kEffect, true, {"Gen", "Fx"}},
        {"count 0", "0\n" + kGenerator, true, {}},
        {"last line without line feed", "1\nFx\nF\n2\n0\n0\n0\n0\n0\n0\n0", true, {"Fx"}},
        {"CRLF line ends",
         "1\r\nFx \r\nF\r\n2\r\n0\r\n0\r\n0\r\n0\r\n0\r\n0\r\n0\r\n",
         true,
         {"Fx"}},
        {"NUL reads as a blank",
         std::string("1\nF") + '\0' + "x\nF\n2\n0\n0\n0\n0\n0\n0\n0\n",
         true,
         {"F x"}},
        {"count above the entries discards all", "3\n" + kGenerator + kEffect, false, {}},
        {"entry cut inside its parameters", "1\n" + kGenerator.substr(0, 60), false, {}},
        {"empty file", "", false, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        write(c.content);
        MachineDatabase db;
        const music::Result result = db.load(m_dir);
        EXPECT_EQ(result.ok(), c.ok) << result.message();
        ASSERT_EQ(db.size(), c.dllNames.size());
        for (std::size_t i = 0; i < db.size(); ++i)
            EXPECT_EQ(db.entry(i).dllName, c.dllNames[i]);
        if (!c.ok) {
            EXPECT_EQ(result.code(), 11);
        }
    }
}

TEST_F(MachineDatabaseFolder, FindByDllNameIgnoresCaseAndTheLastMatchWins)
{
    write("3\n" + kGenerator + kEffect + "GEN\nsecond\n1\n0\n0\n0\n0\n0\n0\n0\n");
    MachineDatabase db;
    ASSERT_TRUE(db.load(m_dir).ok());
    EXPECT_EQ(db.findByDllName("gen"), 2u);
    EXPECT_EQ(db.findByDllName("FX"), 1u);
    EXPECT_EQ(db.findByDllName("Ge"), MachineDatabase::kNotFound);

    const song::MachineDatabaseEntry& gen = db.entry(0);
    EXPECT_EQ(gen.maxTracks, 16);
    EXPECT_EQ(gen.globalRowSize, 2);
    ASSERT_EQ(gen.parameters.size(), 2u);
    EXPECT_EQ(gen.parameters[0].noValue, 65535);
    EXPECT_EQ(gen.parameters[0].defaultValue, 16384);
    EXPECT_EQ(gen.parameters[1].scope, 't');
    EXPECT_EQ(gen.findParameter("NOTE"), 1);
    EXPECT_EQ(db.countAsRead(), 3);
}

TEST_F(MachineDatabaseFolder, BuiltInEntriesRoundTripIncludingTheMixerParameters)
{
    std::string content = "5\n";
    for (const auto& e : MachineDatabase::builtInEntries())
        content += MachineDatabase::formatEntry(e);
    write(content);
    MachineDatabase db;
    ASSERT_TRUE(db.load(m_dir).ok());
    ASSERT_EQ(db.size(), 5u);
    const char* names[] = {"Master", "Jeskola Freeverb", "Jeskola Aux Return", "Jeskola Mixer Aux",
                           "Jeskola Mixer"};
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(db.entry(i).dllName, names[i]);
    // The mixer states a total of 0 above its eight parameters; they are still read.
    const auto& mixer = db.entry(4);
    EXPECT_EQ(mixer.totalParameterCount, 0);
    ASSERT_EQ(mixer.parameters.size(), 8u);
    EXPECT_EQ(mixer.parameters[7].name, "Aux 2 Send");
    EXPECT_EQ(mixer.trackRowSize, 8);
    const auto& master = db.entry(0);
    EXPECT_EQ(master.globalRowSize, 5);
    EXPECT_EQ(master.parameters[1].noValue, 120);
    EXPECT_EQ(master.parameters[2].defaultValue, 4);
}

TEST(MachineDatabaseFormat, WritesTheLinesByHand)
{
    song::MachineDatabaseEntry e;
    e.dllName = "Bad\nName";
    e.shortName = "S";
    e.type = 2;
    e.maxTracks = 8;
    e.totalParameterCount = 1;
    e.globalParameterCount = 1;
    e.globalRowSize = 2;
    e.parameters.push_back({"Time", 2, 'g', 3, -1, 300});
    // A line break inside a name would split the entry; it becomes a blank.
    EXPECT_EQ(MachineDatabase::formatEntry(e),
              "Bad Name\nS\n2\n0\n8\n1\n1\n0\n2\n0\nTime\n2\ng\n3\n-1\n300\n");
}

TEST(ShippedMachineDatabase, LoadsEveryEntryItShips)
{
    const fs::path data = fs::path(TM_SOURCE_DIR) / "data";
    MachineDatabase db;
    ASSERT_TRUE(db.load(data).ok());
    // The count line covers every entry of the file: nothing is left behind unread.
    const auto bytes = music::readFileBytes(data / "machines.ini");
    ASSERT_TRUE(bytes.has_value());
    std::size_t entries = 0;
    for (std::size_t at = 0; (at = bytes->find("\n", at)) != std::string::npos; ++at)
        ++entries;
    std::size_t lines = 1;
    for (const auto& e : db.entries())
        lines += 10 + 6 * e.parameters.size();
    EXPECT_EQ(lines, entries);

    for (const char* name :
         {"Master", "Jeskola Freeverb", "Jeskola Aux Return", "Jeskola Mixer Aux", "Jeskola Mixer"})
        EXPECT_NE(db.findByDllName(name), MachineDatabase::kNotFound) << name;

    // The polyphonic generators a newcomer writes chords into (the default song uses the first)
    // have a track parameter "note" for the part writer.
    for (const char* dll : {"MadBrain's Dynamite 6", "M4"}) {
        const std::size_t index = db.findByDllName(dll);
        ASSERT_NE(index, MachineDatabase::kNotFound) << dll;
        const auto& synth = db.entry(index);
        const int note = synth.findParameter("note");
        ASSERT_GE(note, 0) << dll;
        EXPECT_EQ(synth.parameters[static_cast<std::size_t>(note)].scope, 't') << dll;
        EXPECT_GE(synth.maxTracks, 8) << dll;
    }
    for (const auto& e : db.entries()) {
        SCOPED_TRACE(e.dllName);
        int globalRow = 0, trackRow = 0;
        for (const auto& p : e.parameters) {
            const int width = p.type == 3 ? 2 : (p.type >= 0 && p.type <= 2 ? 1 : 0);
            (p.isGlobal() ? globalRow : trackRow) += width;
            EXPECT_EQ(p.width, p.type == 3 ? 2 : 1);
        }
        EXPECT_EQ(e.globalRowSize, globalRow);
        EXPECT_EQ(e.trackRowSize, trackRow);
    }
}

} // namespace
