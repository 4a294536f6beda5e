#pragma once

#include "music/FileBytes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

/**
 * A test with a folder of its own under the system's temporary folder, named after the prefix,
 * the process and the test, made before each test and removed with everything in it after.
 */
class ScratchFolderTest : public ::testing::Test
{
protected:
    explicit ScratchFolderTest(const std::string& prefix)
        : m_folder(std::filesystem::temp_directory_path() /
                   (prefix + "-" + std::to_string(getpid()) + "-" +
                    ::testing::UnitTest::GetInstance()->current_test_info()->name()))
    {}

    void SetUp() override { std::filesystem::create_directories(m_folder); }
    void TearDown() override { std::filesystem::remove_all(m_folder); }
    std::string file(const char* name) const { return (m_folder / name).string(); }
    /** The contents of a file in the folder; empty when it cannot be read. */
    std::string text(const char* name) const
    {
        return music::readFileBytes(file(name)).value_or("");
    }

    /** Runs a shell command line; its exit status (-1 when it did not exit normally). */
    static int runShell(const std::string& commandLine)
    {
        const int status = std::system(commandLine.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    const std::filesystem::path m_folder;
};
