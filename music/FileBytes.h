#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace music {

/** The whole content of a file, or nothing when it cannot be opened or read. */
std::optional<std::string> readFileBytes(const std::filesystem::path& path);

} // namespace music
