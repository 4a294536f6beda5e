#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace music {

/**
 * The semitone counts (0..21) of a construction string, in the order written, or the error
 * result. The error result is the count 220, which callers test for and report themselves.
 */
class IntervalList
{
public:
    /** The count that marks a construction string as invalid. */
    static constexpr int kErrorCount = 220;

    IntervalList() = default;
    static IntervalList error();

    /**
     * Parses a construction string such as "1;b3;5;". Blanks are dropped; any character other
     * than a digit, ";", "#", "b", "h" or "t" makes the text invalid. Every interval must be
     * followed by ";": the text after the last ";" is ignored, and a text without any ";" is an
     * empty list. A token that is no symbol of the interval table (an empty one included) makes
     * the text invalid.
     */
    static IntervalList parse(std::string_view text);

    /** The number of intervals, or kErrorCount for the error result. */
    int count() const { return m_error ? kErrorCount : static_cast<int>(m_semitones.size()); }
    bool isError() const { return m_error; }
    /** Valid for a chord type: not the error result and at least one interval. */
    bool isUsable() const { return !m_error && !m_semitones.empty(); }
    const std::vector<std::uint8_t>& semitones() const { return m_semitones; }

private:
    std::vector<std::uint8_t> m_semitones;
    bool m_error = false;
};

} // namespace music
