#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#ifndef _WIN32
#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;
using music::TextLineReader;

TEST(TextLineReader, CleansLinesAsTheFilesExpect)
{
    const std::string data = std::string("one\r\ntwo  \t\n  lead\n\nn\0l\nlast", 28);
    TextLineReader reader(data);
    const std::vector<std::string> expected = {"one", "two", "  lead", "", "n l", "last", "", ""};
    for (const std::string& line : expected)
        EXPECT_EQ(reader.readLine(), line);
    EXPECT_TRUE(reader.atEnd());
    EXPECT_EQ(reader.readInt(), 0); // past the end
}

TEST(TextLineReader, ConvertsNumbersTheWayAtoiDoes)
{
    // Beyond 32 bits the digits wrap instead of overflowing into undefined behaviour.
    const std::pair<const char*, std::int32_t> cases[] = {
        {" -12abc", -12}, {"300", 300}, {"+7", 7},  {"abc", 0},       {"", 0},
        {"- 5", 0},       {"\t42", 42}, {"007", 7}, {"65536", 65536}, {"4294967297", 1}};
    for (const auto& [text, value] : cases)
        EXPECT_EQ(TextLineReader::toInt(text), value) << text;
}

class SafeFileWriterTest : public ::testing::Test
{
protected:
    void SetUp() override { fs::create_directories(m_dir); }
    void TearDown() override { fs::remove_all(m_dir); }
    std::ptrdiff_t filesIn() const { return std::distance(fs::directory_iterator(m_dir), {}); }

    const fs::path m_dir =
        fs::temp_directory_path() / ("tm-music-safe-" + std::to_string(std::random_device{}()));
};

TEST_F(SafeFileWriterTest, ReplacesTheFileOnlyAfterAWholeWrite)
{
    const fs::path target = m_dir / "list.ccl";
    ASSERT_TRUE(music::writeFileSafely(target, "old"));
    ASSERT_TRUE(music::writeFileSafely(target, "new content"));
    EXPECT_EQ(music::readFileBytes(target), "new content");
    EXPECT_EQ(filesIn(), 1);

    music::SafeFileWriter abandoned(target);
    ASSERT_TRUE(abandoned.open());
    abandoned.write("half");
    abandoned.discard();
    EXPECT_EQ(music::readFileBytes(target), "new content");
    EXPECT_EQ(filesIn(), 1);
    EXPECT_FALSE(music::writeFileSafely(m_dir / "missing" / "x.crd", "data"));

#ifndef _WIN32
    // A write cut short (the child may write at most 100 bytes to any file; more fails with
    // EFBIG) leaves the old file and no temporary.
    const std::string old(1000, 'o');
    ASSERT_TRUE(music::writeFileSafely(target, old));

    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100, 100};
        setrlimit(RLIMIT_FSIZE, &limit);
        const bool saved = music::writeFileSafely(target, std::string(100000, 'n'));
        _exit(saved ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the save should have failed";
    EXPECT_EQ(music::readFileBytes(target), old);
    EXPECT_EQ(filesIn(), 1);
#endif
}
