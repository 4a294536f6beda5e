// File names as users have them: characters outside any ANSI code page, and on Windows drive
// letters and backslashes. Runs on Linux too (where a name is a byte string), and matters under
// Wine, where a name that passes through the ANSI code page comes out garbled or not at all.

#include "music/DataFolder.h"
#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/Utf8Path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <string>

namespace fs = std::filesystem;
using music::pathFromUtf8;
using music::utf8FromPath;

namespace {

class FileNames : public ::testing::Test
{
protected:
    void SetUp() override { fs::create_directories(m_dir); }
    void TearDown() override { fs::remove_all(m_dir, m_error); }

    /** The names of the files in the folder, as UTF-8. */
    std::vector<std::string> listing(const fs::path& folder) const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(utf8FromPath(entry.path().filename()));
        std::sort(names.begin(), names.end());
        return names;
    }

    const fs::path m_dir =
        fs::temp_directory_path() / ("tm-music-names-" + std::to_string(std::random_device{}()));
    std::error_code m_error;
};

/** Sets an environment variable for the life of the object, then restores it. */
class ScopedEnvironment
{
public:
#ifdef _WIN32
    // Wide, so that a value outside the ANSI code page arrives whole.
    using Native = std::wstring;
    static std::optional<Native> get(const Native& name)
    {
        const wchar_t* value = _wgetenv(name.c_str());
        return value ? std::optional<Native>(value) : std::nullopt;
    }
    static void set(const Native& name, const Native& value) // empty: removed
    {
        _wputenv_s(name.c_str(), value.c_str());
    }
#else
    using Native = std::string;
    static std::optional<Native> get(const Native& name)
    {
        const char* value = std::getenv(name.c_str());
        return value ? std::optional<Native>(value) : std::nullopt;
    }
    static void set(const Native& name, const Native& value)
    {
        value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    }
#endif

    ScopedEnvironment(const char* name, const std::string& utf8Value)
        : m_name(pathFromUtf8(name).native()), m_old(get(m_name))
    {
        set(m_name, pathFromUtf8(utf8Value).native());
    }
    ~ScopedEnvironment()
    {
        set(m_name, m_old.value_or(Native()));
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    Native m_name;
    std::optional<Native> m_old;
};

} // namespace

TEST_F(FileNames, NamesOutsideTheAnsiCodePageAreWrittenReadAndListedAsGiven)
{
    const char* const names[] = {
        "plain.crd",
        "Akkorde f\xC3\xBCr Caf\xC3\xA9.crd", // Latin-1 letters
        "\xCE\x91\xCE\xBA\xCF\x8C\xCF\x81\xCE\xB4\xCE\xB1 \xE2\x99\xAF\xE2\x99\xAD.prt", // Greek,
                                                                                         // sharp,
                                                                                         // flat
        "\xE5\x92\x8C\xE9\x9F\xB3.bmx",                                                  // CJK
        "\xF0\x9D\x84\x9E clef.mid", // beyond the BMP: a surrogate pair in a Windows name
    };
    for (const char* name : names) {
        const fs::path file = m_dir / pathFromUtf8(name);
        const std::string content = std::string("content of ") + name;
        ASSERT_TRUE(music::writeFileSafely(file, content)) << name;
        EXPECT_EQ(music::readFileBytes(file), content) << name;
        EXPECT_EQ(listing(m_dir), std::vector<std::string>{name}) << name;
        EXPECT_EQ(utf8FromPath(file.filename()), name);
        fs::remove(file);
    }
}

TEST_F(FileNames, TextThatIsNoUtf8StillNamesAFile)
{
    // Bytes from an old Windows-1252 file (a lone 0xE9) must not make the conversion throw.
    const std::string latin1 = "Caf\xE9.crd";
    const fs::path file = m_dir / pathFromUtf8(latin1);
    ASSERT_TRUE(music::writeFileSafely(file, "x"));
    EXPECT_EQ(music::readFileBytes(file), "x");
    EXPECT_EQ(listing(m_dir).size(), 1u);
}

TEST_F(FileNames, DriveLettersAndEitherSeparatorNameTheSameFile)
{
#ifndef _WIN32
    GTEST_SKIP() << "drive letters and backslash separators are Windows names";
#else
    // The temporary folder is a drive-letter path such as C:\users\me\Temp\...
    const std::string folder = utf8FromPath(m_dir);
    ASSERT_EQ(folder[1], ':') << folder;
    std::string forward = folder;
    std::replace(forward.begin(), forward.end(), '\\', '/');
    std::string lowerDrive = folder;
    lowerDrive[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(lowerDrive[0])));

    ASSERT_TRUE(music::writeFileSafely(pathFromUtf8(folder + "\\song.bmx"), "song"));
    const std::string readers[] = {forward + "/song.bmx", lowerDrive + "\\song.bmx",
                                   folder + "\\missing\\..\\song.bmx", forward + "\\song.bmx"};
    for (const std::string& text : readers)
        EXPECT_EQ(music::readFileBytes(pathFromUtf8(text)), "song") << text;
#endif
}

TEST_F(FileNames, ThePerUserDataFolderIsMadeAndSeededWhereTheEnvironmentSays)
{
    // A program folder without the shipped data, which lies in its "data" subfolder instead.
    const fs::path program = m_dir / "program";
    fs::create_directories(program / "data");
    ASSERT_TRUE(music::writeFileSafely(program / "data" / music::DataFolder::kMarkerFile, "types"));
    ASSERT_TRUE(music::writeFileSafely(program / "data" / "default.crd", "chords"));

    const std::string home = utf8FromPath(m_dir) + "/Benutzer \xC3\x9C\xE2\x99\xAF";
#ifdef _WIN32
    ScopedEnvironment environment("APPDATA", home);
    const fs::path expected = pathFromUtf8(home) / "Tonalmancer";
#else
    ScopedEnvironment environment("XDG_DATA_HOME", home);
    const fs::path expected = pathFromUtf8(home) / "tonalmancer";
#endif
    music::DataFolder folder;
    ASSERT_TRUE(music::DataFolder::resolve(program, {}, folder).ok());
    EXPECT_EQ(folder.root(), expected);
    EXPECT_EQ(music::readFileBytes(folder.file("default.crd")), "chords");
    EXPECT_EQ(music::readFileBytes(folder.file(music::DataFolder::kMarkerFile)), "types");

    // The program's own folder wins once it holds the shipped data.
    ASSERT_TRUE(music::writeFileSafely(program / music::DataFolder::kMarkerFile, "types"));
    ASSERT_TRUE(music::DataFolder::resolve(program, {}, folder).ok());
    EXPECT_EQ(folder.root(), program);
}

TEST(DataFolder, FindsTheFolderOfTheRunningProgram)
{
#ifdef _WIN32
    const char* self = "music_tests.exe";
#else
    const char* self = "music_tests";
#endif
    EXPECT_TRUE(fs::is_regular_file(music::DataFolder::executableDirectory() / self))
        << utf8FromPath(music::DataFolder::executableDirectory());
}
