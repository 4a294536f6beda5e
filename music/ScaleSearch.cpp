#include "music/ScaleSearch.h"

namespace music {

bool ScaleSearch::matches(const ChordSection& section, const SearchCriteria& criteria)
{
    if (section.scaleFlag) {
        SearchCriteria::Ticks present{};
        for (const NoteValue note : section.notes)
            present[pitchClassOf(note)] = true;
        if (!criteria.matchesPitchClasses(present))
            return false;
    } else if (!criteria.notes().empty()) {
        return false;
    }
    return criteria.matchesName(section.name);
}

std::vector<TreePosition> ScaleSearch::allHits(const ChordCollection& collection,
                                               const SearchCriteria& criteria)
{
    std::vector<TreePosition> hits;
    const auto& groups = collection.baseGroups();
    for (std::size_t g = 0; g < groups.size(); ++g) {
        const auto& sections = groups[g].sections;
        for (std::size_t s = 0; s < sections.size(); ++s) {
            if (matches(sections[s], criteria))
                hits.push_back(TreePosition::ofSection(static_cast<int>(g), static_cast<int>(s)));
        }
    }
    return hits;
}

ScaleSearchResult ScaleSearch::find(const ChordCollection& collection,
                                    const SearchCriteria::Ticks& ticks, std::string_view include,
                                    std::string_view skip,
                                    const std::optional<TreePosition>& selected)
{
    const SearchCriteria criteria = SearchCriteria::forScales(ticks, include, skip);
    m_includeHistory.add(criteria.include());
    m_skipHistory.add(criteria.skip());

    ScaleSearchResult result;
    result.hits = allHits(collection, criteria);
    for (const TreePosition& hit : result.hits)
        result.names.push_back(collection.sectionAt(hit)->name);
    if (!result.hits.empty()) {
        result.selection = result.hits.front();
        if (selected) {
            for (const TreePosition& hit : result.hits) {
                if (*selected < hit) {
                    result.selection = hit;
                    break;
                }
            }
        }
    }
    return result;
}

} // namespace music
