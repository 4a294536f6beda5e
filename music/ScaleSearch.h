#pragma once

#include "music/ChordCollection.h"
#include "music/SearchCriteria.h"
#include "music/SearchHistory.h"
#include "music/TreePosition.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace music {

/** The outcome of a scale search: every hit in walk order and where the selection goes. */
struct ScaleSearchResult
{
    std::vector<TreePosition> hits;
    /** The section names of the hits, for the results list. */
    std::vector<std::string> names;
    /** The first hit after the item selected before the search, wrapping; nothing: no change. */
    std::optional<TreePosition> selection;
};

/**
 * The scale search: lists the sections (scale groups) of a collection whose listed notes hold
 * every searched pitch class and whose name passes the text test. A section without the scale
 * flag only matches when no note is searched. Keeps the histories of its two text fields.
 */
class ScaleSearch
{
public:
    static bool matches(const ChordSection& section, const SearchCriteria& criteria);
    /** Every matching section in walk order. */
    static std::vector<TreePosition> allHits(const ChordCollection& collection,
                                             const SearchCriteria& criteria);

    /**
     * "Find scale" after the dialog's OK: every ticked note is searched, the texts are recorded
     * in the histories, and every hit is listed.
     */
    ScaleSearchResult find(const ChordCollection& collection, const SearchCriteria::Ticks& ticks,
                           std::string_view include, std::string_view skip,
                           const std::optional<TreePosition>& selected);

    const SearchHistory& includeHistory() const { return m_includeHistory; }
    const SearchHistory& skipHistory() const { return m_skipHistory; }

private:
    SearchHistory m_includeHistory;
    SearchHistory m_skipHistory;
};

} // namespace music
