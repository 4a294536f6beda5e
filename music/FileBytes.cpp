#include "music/FileBytes.h"

#include <fstream>

namespace music {

std::optional<std::string> readFileBytes(const std::filesystem::path& path)
{
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        return std::nullopt;
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return std::nullopt;
    std::string bytes;
    const auto size = std::filesystem::file_size(path, error);
    if (!error)
        bytes.reserve(static_cast<std::size_t>(size));
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (in.bad())
        return std::nullopt;
    return bytes;
}

} // namespace music
