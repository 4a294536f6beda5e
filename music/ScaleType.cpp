#include "music/ScaleType.h"

namespace music {

namespace {

bool isOn(char letter)
{
    return letter == 'x' || letter == 'X';
}

} // namespace

int ScaleType::noteCount() const
{
    int count = 0;
    for (std::size_t i = 0; i < m_pattern.size() && i < kPatternLength; ++i)
        count += isOn(m_pattern[i]) ? 1 : 0;
    return count;
}

std::vector<PitchClass> ScaleType::pitchClassesFrom(PitchClass root) const
{
    std::vector<PitchClass> out;
    for (std::size_t i = 0; i < m_pattern.size() && i < kPatternLength; ++i) {
        if (isOn(m_pattern[i]))
            out.push_back(pitchClassOf(root + static_cast<int>(i)));
    }
    return out;
}

std::array<bool, kPitchClassCount> ScaleType::ticksFrom(PitchClass root) const
{
    std::array<bool, kPitchClassCount> ticks{};
    for (const PitchClass pc : pitchClassesFrom(root))
        ticks[pc] = true;
    return ticks;
}

} // namespace music
