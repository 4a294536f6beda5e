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
    if (!error && size > 0) {
        // One block read for the expected size (byte-wise iteration is several times slower on
        // large songs), then whatever the file grew by meanwhile.
        bytes.resize(static_cast<std::size_t>(size));
        in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        bytes.resize(static_cast<std::size_t>(in.gcount()));
        if (in.bad())
            return std::nullopt;
        if (!in.eof()) {
            bytes.append(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        }
        in.clear(in.rdstate() & ~(std::ios::failbit | std::ios::eofbit));
    } else {
        bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    if (in.bad())
        return std::nullopt;
    return bytes;
}

} // namespace music
