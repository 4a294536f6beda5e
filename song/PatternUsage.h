#pragma once

#include "song/BuzzSong.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace song {

/** Which notes and waves one pattern of a machine uses, and how often: data for charts. */
struct PatternUsage
{
    std::string name;
    /** Note cells by tracker note byte (octave * 16 + pitch class + 1), every note parameter. */
    std::map<std::uint8_t, std::size_t> notes;
    std::size_t noteOffs = 0;
    /** Cells of the "wave" parameter by wave number (its no-value not counted). */
    std::map<int, std::size_t> waves;

    bool operator==(const PatternUsage&) const = default;
};

/**
 * The note and wave use of each pattern of a machine, in pattern order. Every parameter of type
 * note counts for notes; the wave parameter is the one named "wave" (ignoring case), as the part
 * writer finds it. Empty for a machine out of range.
 */
std::vector<PatternUsage> patternUsage(const BuzzSong& song, std::size_t machine);

} // namespace song
