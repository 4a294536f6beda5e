#pragma once

#include "music/Note.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace music {

/**
 * A named set of pitch classes relative to a base note, written as letters: "x" (in the scale)
 * or "o" (not), the first letter for the base note, one per semitone. Only the first twelve
 * letters count; a longer pattern is kept as it is.
 */
class ScaleType
{
public:
    static constexpr int kPatternLength = 12;

    ScaleType() = default;
    ScaleType(std::string name, std::string pattern)
        : m_name(std::move(name)), m_pattern(std::move(pattern))
    {}

    const std::string& name() const { return m_name; }
    void setName(std::string name) { m_name = std::move(name); }
    const std::string& pattern() const { return m_pattern; }
    void setPattern(std::string pattern) { m_pattern = std::move(pattern); }

    /** The number of "x" or "X" among the first twelve letters. */
    int noteCount() const;
    /** The pitch classes of the scale on `root`, from the root upward, wrapping past B to C. */
    std::vector<PitchClass> pitchClassesFrom(PitchClass root) const;
    /** The scale on `root` as twelve ticks indexed by pitch class from C. */
    std::array<bool, kPitchClassCount> ticksFrom(PitchClass root) const;

    friend bool operator==(const ScaleType&, const ScaleType&) = default;

private:
    std::string m_name;
    std::string m_pattern;
};

} // namespace music
