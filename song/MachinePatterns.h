#pragma once

#include "song/SongPattern.h"

#include <cstdint>
#include <vector>

namespace song {

/** The patterns of one machine (PATT), in the song's pattern order. */
struct MachinePatterns
{
    std::uint16_t trackCount = 0; // tracks in every pattern of the block
    std::vector<SongPattern> patterns;

    bool operator==(const MachinePatterns&) const = default;
};

} // namespace song
