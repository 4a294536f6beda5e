#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace song {

/** One pattern of a machine, its rows kept raw as the song stores them. */
struct SongPattern
{
    std::string name;
    std::uint16_t rows = 0;
    /**
     * One block per input connection of the machine, in connection-list order: source machine
     * index (16 bit), then per row amplitude and panning (16 bit each): rows * 4 + 2 bytes.
     */
    std::vector<std::vector<std::uint8_t>> inputs;
    std::vector<std::uint8_t> globalRows; // rows * global row size bytes
    /** Every track's rows, one track after the other: tracks * rows * track row size bytes. */
    std::vector<std::uint8_t> trackRows;

    bool operator==(const SongPattern&) const = default;
};

} // namespace song
