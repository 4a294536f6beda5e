#pragma once

#include <cstdint>
#include <string>

namespace song {

/** What the program shows of a wave of the waves table; the table itself is kept raw. */
struct WaveEntry
{
    std::uint16_t index = 0;
    std::string name;

    bool operator==(const WaveEntry&) const = default;
};

} // namespace song
