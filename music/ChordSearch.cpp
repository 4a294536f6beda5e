#include "music/ChordSearch.h"

namespace music {

namespace {

/**
 * Calls `visit(position, chord)` for every chord in walk order until it returns true.
 */
template <typename Visit> void walkChords(const ChordCollection& collection, Visit&& visit)
{
    const auto& groups = collection.baseGroups();
    for (std::size_t g = 0; g < groups.size(); ++g) {
        const auto& sections = groups[g].sections;
        for (std::size_t s = 0; s < sections.size(); ++s) {
            const auto& subsections = sections[s].subsections;
            for (std::size_t u = 0; u < subsections.size(); ++u) {
                const auto& chords = subsections[u].chords;
                for (std::size_t c = 0; c < chords.size(); ++c) {
                    const TreePosition position =
                        TreePosition::ofChord(static_cast<int>(g), static_cast<int>(s),
                                              static_cast<int>(u), static_cast<int>(c));
                    if (visit(position, chords[c]))
                        return;
                }
            }
        }
    }
}

} // namespace

bool ChordSearch::matches(const Chord& chord, const SearchCriteria& criteria)
{
    SearchCriteria::Ticks present{};
    for (const NoteValue slot : chord.slots) {
        if (!isEmptyNote(slot))
            present[pitchClassOf(slot)] = true;
    }
    return criteria.matchesPitchClasses(present) && criteria.matchesName(chord.name);
}

std::optional<TreePosition> ChordSearch::firstHit(const ChordCollection& collection,
                                                  const SearchCriteria& criteria,
                                                  const std::optional<TreePosition>& selected)
{
    std::optional<TreePosition> hit;
    walkChords(collection, [&](const TreePosition& position, const Chord& chord) {
        if (position != selected && matches(chord, criteria))
            hit = position;
        return hit.has_value();
    });
    return hit;
}

std::optional<TreePosition> ChordSearch::nextHit(const ChordCollection& collection,
                                                 const SearchCriteria& criteria,
                                                 const std::optional<TreePosition>& selected)
{
    if (!selected)
        return firstHit(collection, criteria, selected);
    std::optional<TreePosition> first; // the first hit before the selection, for wrapping
    std::optional<TreePosition> after;
    walkChords(collection, [&](const TreePosition& position, const Chord& chord) {
        const bool beforeSelection = position < *selected;
        if (beforeSelection && first)
            return false; // only the first hit before the selection is needed
        if (position == *selected || !matches(chord, criteria))
            return false;
        if (beforeSelection) {
            first = position;
            return false;
        }
        after = position;
        return true;
    });
    return after ? after : first;
}

std::vector<TreePosition> ChordSearch::allHits(const ChordCollection& collection,
                                               const SearchCriteria& criteria)
{
    std::vector<TreePosition> hits;
    walkChords(collection, [&](const TreePosition& position, const Chord& chord) {
        if (matches(chord, criteria))
            hits.push_back(position);
        return false;
    });
    return hits;
}

std::optional<TreePosition> ChordSearch::find(const ChordCollection& collection,
                                              const SearchCriteria::Ticks& ticks,
                                              std::string_view include, std::string_view skip,
                                              const std::optional<TreePosition>& selected)
{
    SearchCriteria criteria = SearchCriteria::forChords(ticks, include, skip);
    m_includeHistory.add(criteria.include());
    m_skipHistory.add(criteria.skip());
    m_last = std::move(criteria);
    return firstHit(collection, *m_last, selected);
}

std::optional<TreePosition>
ChordSearch::continueSearch(const ChordCollection& collection,
                            const std::optional<TreePosition>& selected) const
{
    if (!m_last)
        return std::nullopt;
    return nextHit(collection, *m_last, selected);
}

} // namespace music
