#pragma once

#include <filesystem>
#include <random>
#include <string>

// A fresh folder below the system's temporary folder, removed with everything in it at the end.
class TempFolder
{
public:
    TempFolder() { std::filesystem::create_directories(m_path); }
    ~TempFolder() { std::filesystem::remove_all(m_path, m_error); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path = std::filesystem::temp_directory_path() /
                                   ("tm-part-test-" + std::to_string(std::random_device{}()) +
                                    std::to_string(std::random_device{}()));
    std::error_code m_error;
};
