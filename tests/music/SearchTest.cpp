#include "music/ChordSearch.h"
#include "music/ScaleSearch.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

using music::Chord;
using music::ChordCollection;
using music::ChordSearch;
using music::ScaleSearch;
using music::SearchCriteria;
using music::TreePosition;

namespace {

SearchCriteria::Ticks ticksOf(std::initializer_list<int> pitchClasses)
{
    SearchCriteria::Ticks ticks{};
    for (const int pc : pitchClasses)
        ticks[static_cast<std::size_t>(pc)] = true;
    return ticks;
}

/** Two base groups; the chords are spread so that walk order crosses every level. */
ChordCollection sampleCollection()
{
    ChordCollection c;
    c.addBaseGroup("one");
    c.baseGroups()[0].sections.push_back({"S", false, {}, {}});
    c.baseGroups()[0].sections[0].subsections.push_back(
        {"a",
         {Chord::fromNotes("Cmaj", {0, 4, 7}), Chord::fromNotes("Cmaj7", {0, 4, 7, 11}),
          Chord::fromNotes("Am", {9, 12, 16})}});
    c.baseGroups()[0].sections[0].subsections.push_back(
        {"b", {Chord::fromNotes("C6/9 high", {48, 52, 55, 57, 62}), Chord::fromNotes("E", {4})}});
    c.addBaseGroup("two");
    c.baseGroups()[1].sections.push_back({"C major", true, {0, 2, 4, 5, 7, 9, 11}, {}});
    c.baseGroups()[1].sections.push_back({"A minor", true, {9, 11, 0, 2, 4, 5, 7}, {}});
    c.baseGroups()[1].sections.push_back({"plain", false, {}, {}});
    c.baseGroups()[1].sections[2].subsections.push_back(
        {"c", {Chord::fromNotes("Fmaj", {5, 9, 12})}});
    return c;
}

std::vector<std::string> names(const ChordCollection& c, const std::vector<TreePosition>& hits)
{
    std::vector<std::string> out;
    for (const TreePosition& hit : hits)
        out.push_back(c.chordAt(hit) ? c.chordAt(hit)->name : c.sectionAt(hit)->name);
    return out;
}

} // namespace

TEST(ChordSearch, MatchesNotesInAnyOctaveAndTextsIgnoringCase)
{
    const ChordCollection c = sampleCollection();
    struct Case
    {
        SearchCriteria::Ticks ticks;
        const char* include;
        const char* skip;
        std::vector<std::string> hits;
    };
    const Case cases[] = {
        {ticksOf({0, 4, 7}), "", "", {"Cmaj", "Cmaj7", "C6/9 high"}},
        {ticksOf({}), "", "", {"Cmaj", "Cmaj7", "Am", "C6/9 high", "E", "Fmaj"}},
        {ticksOf({}), "Maj", "7", {"Cmaj", "Fmaj"}},
        {ticksOf({}), "", "MAJ", {"Am", "C6/9 high", "E"}},
        {ticksOf({}), "6/9 H", "", {"C6/9 high"}},
        {ticksOf({0}), "m", "", {"Cmaj", "Cmaj7", "Am", "Fmaj"}},
        // Seven ticks search only the five lowest: C D E G A, found in the 6/9 chord.
        {ticksOf({0, 2, 4, 7, 9, 10, 11}), "", "", {"C6/9 high"}},
        {ticksOf({1}), "", "", {}},
    };
    for (const Case& k : cases) {
        const auto criteria = SearchCriteria::forChords(k.ticks, k.include, k.skip);
        EXPECT_EQ(names(c, ChordSearch::allHits(c, criteria)), k.hits)
            << k.include << " / " << k.skip;
    }
}

TEST(ChordSearch, EmptySlotsAreNoNotes)
{
    // An empty slot (120) reduced to a pitch class would be a C; it must not count as one.
    ChordCollection c;
    c.addBaseGroup("g");
    c.baseGroups()[0].sections.push_back({"s", false, {}, {{"u", {Chord::fromNotes("E", {4})}}}});
    EXPECT_TRUE(ChordSearch::allHits(c, SearchCriteria::forChords(ticksOf({0}), "", "")).empty());
}

TEST(ChordSearch, NeverHitsTheSelectedChord)
{
    const ChordCollection c = sampleCollection();
    ChordSearch search;
    const auto first = search.find(c, ticksOf({0, 4, 7}), "", "", std::nullopt);
    ASSERT_EQ(first, TreePosition::ofChord(0, 0, 0, 0));
    // Repeating the search moves on: the first hit is skipped because it is selected.
    EXPECT_EQ(search.find(c, ticksOf({0, 4, 7}), "", "", first), TreePosition::ofChord(0, 0, 0, 1));
    // The only hit already selected: nothing new.
    const auto only = search.find(c, ticksOf({}), "fmaj", "", std::nullopt);
    ASSERT_TRUE(only);
    EXPECT_FALSE(search.find(c, ticksOf({}), "fmaj", "", only).has_value());
}

TEST(ChordSearch, ContinuesAfterTheSelectionAndWraps)
{
    const ChordCollection c = sampleCollection();
    ChordSearch search;
    EXPECT_FALSE(search.continueSearch(c, std::nullopt).has_value()); // nothing searched yet

    auto selected = search.find(c, ticksOf({0, 4}), "", "", std::nullopt);
    std::vector<std::string> visited;
    for (int i = 0; i < 5 && selected; ++i) {
        visited.push_back(c.chordAt(*selected)->name);
        selected = search.continueSearch(c, selected);
    }
    EXPECT_EQ(visited, (std::vector<std::string>{"Cmaj", "Cmaj7", "Am", "C6/9 high", "Cmaj"}));

    // From a selected section the walk resumes with that section's chords.
    EXPECT_EQ(search.continueSearch(c, TreePosition::ofSection(0, 0)),
              TreePosition::ofChord(0, 0, 0, 0));
    // From a selection past the last hit it wraps to the first one.
    EXPECT_EQ(search.continueSearch(c, TreePosition::ofChord(1, 2, 0, 0)),
              TreePosition::ofChord(0, 0, 0, 0));
}

TEST(SearchHistory, AddsEachTextOnceIgnoringCaseAndStopsAt255)
{
    const ChordCollection c = sampleCollection();
    ChordSearch search;
    search.find(c, ticksOf({}), "Maj", "7", std::nullopt);
    search.find(c, ticksOf({}), "MAJ", "", std::nullopt);
    search.find(c, ticksOf({}), "m", "7", std::nullopt);
    EXPECT_EQ(search.includeHistory().entries(), (std::vector<std::string>{"maj", "m"}));
    EXPECT_EQ(search.skipHistory().entries(), (std::vector<std::string>{"7"}));

    music::SearchHistory history;
    for (int i = 0; i < 300; ++i)
        history.add("text " + std::to_string(i));
    ASSERT_EQ(history.entries().size(), 255u);
    EXPECT_EQ(history.entries().back(), "text 254");
}

TEST(ScaleSearch, ListsEveryMatchingSection)
{
    const ChordCollection c = sampleCollection();
    struct Case
    {
        SearchCriteria::Ticks ticks;
        const char* include;
        const char* skip;
        std::vector<std::string> hits;
    };
    const Case cases[] = {
        {ticksOf({}), "", "", {"S", "C major", "A minor", "plain"}},
        // Seven notes are all searched (no cap of five); unflagged sections drop out.
        {ticksOf({0, 2, 4, 5, 7, 9, 11}), "", "", {"C major", "A minor"}},
        {ticksOf({0, 1}), "", "", {}},
        {ticksOf({9}), "MINOR", "", {"A minor"}},
        {ticksOf({}), "", "major", {"S", "A minor", "plain"}},
    };
    for (const Case& k : cases) {
        const auto criteria = SearchCriteria::forScales(k.ticks, k.include, k.skip);
        EXPECT_EQ(names(c, ScaleSearch::allHits(c, criteria)), k.hits) << k.include;
    }
}

TEST(ScaleSearch, SelectsTheFirstHitAfterTheSelection)
{
    const ChordCollection c = sampleCollection();
    ScaleSearch search;
    const auto all = ticksOf({0, 4, 7});
    auto result = search.find(c, all, "", "", std::nullopt);
    EXPECT_EQ(result.names, (std::vector<std::string>{"C major", "A minor"}));
    EXPECT_EQ(result.selection, TreePosition::ofSection(1, 0));
    result = search.find(c, all, "", "", TreePosition::ofSection(1, 0));
    EXPECT_EQ(result.selection, TreePosition::ofSection(1, 1));
    result = search.find(c, all, "", "", TreePosition::ofSection(1, 1));
    EXPECT_EQ(result.selection, TreePosition::ofSection(1, 0)); // wrapped
    result = search.find(c, ticksOf({1}), "", "", TreePosition::ofSection(1, 1));
    EXPECT_TRUE(result.names.empty());
    EXPECT_FALSE(result.selection.has_value());
}
