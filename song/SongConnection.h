#pragma once

#include <cstdint>

namespace song {

/** An audio connection between two machines, given by their machine indices. */
struct SongConnection
{
    std::uint16_t source = 0;
    std::uint16_t destination = 0;
    std::uint16_t amplitude = 0; // the tracker's scale: 0x4000 is unity
    std::uint16_t panning = 0;   // 0x4000 is centre

    bool operator==(const SongConnection&) const = default;
};

} // namespace song
