#pragma once

#include <cstdint>
#include <string>

namespace song {

/** One entry of a song's section directory. */
struct SectionEntry
{
    std::string name;         // four bytes as stored (may hold zero bytes); compared ignoring case
    std::uint32_t offset = 0; // bytes from the start of the file
    std::uint32_t size = 0;   // bytes
};

} // namespace song
