#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace song {

/** A section the program does not interpret, kept byte for byte and written back unchanged. */
struct RawSection
{
    std::string name; // four bytes as read
    std::vector<std::uint8_t> bytes;
};

} // namespace song
