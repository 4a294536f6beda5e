#include "part/Part.h"

#include <algorithm>

namespace part {

Part Part::makeNew()
{
    Part part;
    part.m_patterns.append(Pattern());
    return part;
}

bool Part::append(PartChord chord)
{
    if (count() >= kMaxChords)
        return false;
    chord.setLength(chord.length);
    m_chords.push_back(std::move(chord));
    return true;
}

bool Part::insert(int index, PartChord chord)
{
    if (count() >= kMaxChords)
        return false;
    index = std::clamp(index, 0, count());
    chord.setLength(chord.length);
    m_chords.insert(m_chords.begin() + index, std::move(chord));
    return true;
}

void Part::remove(int index)
{
    if (index < 0 || index >= count())
        return;
    m_chords.erase(m_chords.begin() + index);
}

} // namespace part
