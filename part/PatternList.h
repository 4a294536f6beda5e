#pragma once

#include "part/Pattern.h"

#include <string>
#include <vector>

namespace part {

/** The patterns of a part (or of the pattern presets), in order; the list has a name too. */
class PatternList
{
public:
    /** Counts are 16-bit in the files; a list never grows beyond this. */
    static constexpr int kMaxCount = 65535;

    int count() const { return static_cast<int>(m_patterns.size()); }
    bool isEmpty() const { return m_patterns.empty(); }

    const std::string& name() const { return m_name; }
    void setName(std::string name) { m_name = std::move(name); }

    /** index 0..count()-1; throws std::out_of_range outside. */
    const Pattern& pattern(int index) const { return m_patterns.at(index); }
    Pattern& pattern(int index) { return m_patterns.at(index); }
    /** Nullptr when the index is outside the list (a chord of a damaged file may point there). */
    const Pattern* find(int index) const;

    /** Appends a copy; false (and nothing changes) when the list is full. */
    bool append(Pattern pattern);
    /** Removes one pattern; later ones move up. Out of range: nothing happens. */
    void removeAt(int index);
    void clear() { m_patterns.clear(); }

    /** A row of a pattern; an empty row when the pattern does not exist. */
    RowRecord row(int patternIndex, int rowIndex) const;
    TrackOctaves trackOctaves(int patternIndex) const;
    void setTrackOctaves(int patternIndex, const TrackOctaves& block);

    const std::vector<Pattern>& patterns() const { return m_patterns; }

    friend bool operator==(const PatternList&, const PatternList&) = default;

private:
    std::string m_name;
    std::vector<Pattern> m_patterns;
};

} // namespace part
