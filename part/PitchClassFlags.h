#pragma once

#include <array>
#include <cstdint>

namespace part {

/**
 * One flag per pitch class C..B (index 0..11): non-zero when a shifted chord note may land on
 * that pitch class. Saved as 32-bit numbers.
 */
using PitchClassFlags = std::array<std::uint32_t, 12>;

inline constexpr PitchClassFlags kAllPitchClassesAllowed = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};

} // namespace part
