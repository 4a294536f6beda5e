#pragma once

#include "music/ChordCollection.h"
#include "music/SearchCriteria.h"
#include "music/SearchHistory.h"
#include "music/TreePosition.h"

#include <optional>
#include <string_view>
#include <vector>

namespace music {

/**
 * The chord search of the chord list: finds a chord by notes it must contain and words of its
 * name, and remembers the last search for "Continue Search". It keeps the histories of the two
 * text fields. The tree selection is passed in and the new one returned as positions; the caller
 * maps them to tree items.
 *
 * The item selected when a search starts is never a hit, so repeating a search moves on.
 */
class ChordSearch
{
public:
    /** Whether `chord` passes the note and text tests (its notes taken as pitch classes). */
    static bool matches(const Chord& chord, const SearchCriteria& criteria);

    /** The first hit in walk order that is not `selected`; nothing when there is none. */
    static std::optional<TreePosition> firstHit(const ChordCollection& collection,
                                                const SearchCriteria& criteria,
                                                const std::optional<TreePosition>& selected);
    /**
     * The first hit after `selected` in walk order, wrapping to the start; `selected` itself is
     * never a hit. Without a selection, the first hit.
     */
    static std::optional<TreePosition> nextHit(const ChordCollection& collection,
                                               const SearchCriteria& criteria,
                                               const std::optional<TreePosition>& selected);
    /** Every hit in walk order. */
    static std::vector<TreePosition> allHits(const ChordCollection& collection,
                                             const SearchCriteria& criteria);

    /**
     * "Find chord" after the dialog's OK: builds the criteria from the ticks (the five lowest
     * only) and texts, records the texts in the histories, and returns the first hit in walk
     * order other than `selected`. Nothing means the selection stays as it is.
     */
    std::optional<TreePosition> find(const ChordCollection& collection,
                                     const SearchCriteria::Ticks& ticks, std::string_view include,
                                     std::string_view skip,
                                     const std::optional<TreePosition>& selected);
    /**
     * "Continue Search": the next hit after `selected` with the last search's notes and texts,
     * wrapping to the start. Nothing before the first search or without another hit.
     */
    std::optional<TreePosition> continueSearch(const ChordCollection& collection,
                                               const std::optional<TreePosition>& selected) const;

    bool hasSearched() const { return m_last.has_value(); }
    const std::optional<SearchCriteria>& lastCriteria() const { return m_last; }
    const SearchHistory& includeHistory() const { return m_includeHistory; }
    const SearchHistory& skipHistory() const { return m_skipHistory; }

private:
    SearchHistory m_includeHistory;
    SearchHistory m_skipHistory;
    std::optional<SearchCriteria> m_last;
};

} // namespace music
