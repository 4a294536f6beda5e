#include "music/SearchCriteria.h"

#include "music/TextLineReader.h"

namespace music {

namespace {

std::vector<PitchClass> tickedNotes(const SearchCriteria::Ticks& ticks, std::size_t limit)
{
    std::vector<PitchClass> notes;
    for (int pc = 0; pc < kPitchClassCount && notes.size() < limit; ++pc) {
        if (ticks[static_cast<std::size_t>(pc)])
            notes.push_back(static_cast<PitchClass>(pc));
    }
    return notes;
}

} // namespace

SearchCriteria SearchCriteria::forChords(const Ticks& ticks, std::string_view include,
                                         std::string_view skip)
{
    SearchCriteria criteria;
    criteria.m_notes = tickedNotes(ticks, kMaxChordNotes);
    criteria.m_include = toLower(include);
    criteria.m_skip = toLower(skip);
    return criteria;
}

SearchCriteria SearchCriteria::forScales(const Ticks& ticks, std::string_view include,
                                         std::string_view skip)
{
    SearchCriteria criteria;
    criteria.m_notes = tickedNotes(ticks, kPitchClassCount);
    criteria.m_include = toLower(include);
    criteria.m_skip = toLower(skip);
    return criteria;
}

bool SearchCriteria::matchesName(std::string_view name) const
{
    if (m_include.empty() && m_skip.empty())
        return true;
    // ASCII only, as the stored names are; a plain loop keeps a search over 100,000 names fast.
    m_buffer.resize(name.size());
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        m_buffer[i] = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    }
    if (!m_include.empty() && m_buffer.find(m_include) == std::string::npos)
        return false;
    if (!m_skip.empty() && m_buffer.find(m_skip) != std::string::npos)
        return false;
    return true;
}

bool SearchCriteria::matchesPitchClasses(const Ticks& present) const
{
    for (const PitchClass pc : m_notes) {
        if (!present[pc])
            return false;
    }
    return true;
}

} // namespace music
