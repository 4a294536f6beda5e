#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace music {

/** One record of a file that stores two texts per record (a chord type, a scale). */
using TwoLineRecord = std::pair<std::string, std::string>;

/**
 * Reads the layout that chord-type and scale files share: a magic line (compared ignoring case),
 * a count kept to its low 8 bits, then two lines per record. Nothing when the magic differs.
 * Reading stops early when the data runs out, so a damaged count cannot invent records.
 */
std::optional<std::vector<TwoLineRecord>> readTwoLineRecords(std::string_view bytes,
                                                             std::string_view magic);

/** Writes that layout with line feeds only; the count is written in full. */
std::string
writeTwoLineRecords(std::string_view magic,
                    const std::vector<std::pair<std::string_view, std::string_view>>& records);

} // namespace music
