#include "part/PatternList.h"

namespace part {

const Pattern* PatternList::find(int index) const
{
    if (index < 0 || index >= count())
        return nullptr;
    return &m_patterns[static_cast<std::size_t>(index)];
}

bool PatternList::append(Pattern pattern)
{
    if (count() >= kMaxCount)
        return false;
    m_patterns.push_back(std::move(pattern));
    return true;
}

void PatternList::removeAt(int index)
{
    if (index < 0 || index >= count())
        return;
    m_patterns.erase(m_patterns.begin() + index);
}

RowRecord PatternList::row(int patternIndex, int rowIndex) const
{
    const Pattern* p = find(patternIndex);
    return p ? p->row(rowIndex) : RowRecord{};
}

TrackOctaves PatternList::trackOctaves(int patternIndex) const
{
    const Pattern* p = find(patternIndex);
    return p ? p->trackOctaves() : TrackOctaves{};
}

void PatternList::setTrackOctaves(int patternIndex, const TrackOctaves& block)
{
    if (patternIndex >= 0 && patternIndex < count())
        m_patterns[static_cast<std::size_t>(patternIndex)].setTrackOctaves(block);
}

} // namespace part
