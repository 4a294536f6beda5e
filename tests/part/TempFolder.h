#pragma once

#include <filesystem>
#include <random>
#include <string>

// A fresh folder below the system's temporary folder, removed with everything in it at the end.
class TempFolder
{
public:
    TempFolder()
    {
        std::random_device device;
        m_path = std::filesystem::temp_directory_path() /
                 ("tm-part-test-" + std::to_string(device()) + std::to_string(device()));
        std::filesystem::create_directories(m_path);
    }
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};
