#pragma once

#include "part/CellKind.h"
#include "part/TrackOctave.h"

#include <array>
#include <cstdint>

namespace part {

/** One row of a pattern as renderers read it: per track, in track order, kind, value, octave. */
struct RowRecord
{
    std::array<CellKind, kTrackCount> kinds{};
    std::array<std::uint8_t, kTrackCount> values{};
    std::array<std::uint8_t, kTrackCount> octaves{};

    friend bool operator==(const RowRecord&, const RowRecord&) = default;
};

} // namespace part
