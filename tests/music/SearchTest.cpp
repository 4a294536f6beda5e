#include "music/ChordSearch.h"
#include "music/ScaleSearch.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

using namespace music;

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

/** Scales or chords, ticked pitch classes, the text to include and the text to skip, and the names
 * of the hits. */
struct SearchCase
{
    bool scales; // a scale search, else a chord search
    SearchCriteria::Ticks ticks;
    const char* include;
    const char* skip;
    std::vector<std::string> hits;
};

std::vector<std::string> names(const ChordCollection& c, const std::vector<TreePosition>& hits)
{
    std::vector<std::string> out;
    for (const TreePosition& hit : hits)
        out.push_back(c.chordAt(hit) ? c.chordAt(hit)->name : c.sectionAt(hit)->name);
    return out;
}

} // namespace

TEST(ChordSearch, FindNeverHitsTheSelectionAndContinueWraps)
{
    const ChordCollection c = sampleCollection();
    ChordSearch search;
    EXPECT_FALSE(search.continueSearch(c, std::nullopt).has_value()); // nothing searched yet
    const auto first = search.find(c, ticksOf({0, 4, 7}), "", "", std::nullopt);
    ASSERT_EQ(first, TreePosition::ofChord(0, 0, 0, 0));
    // Repeating the search moves on: the first hit is skipped because it is selected.
    EXPECT_EQ(search.find(c, ticksOf({0, 4, 7}), "", "", first), TreePosition::ofChord(0, 0, 0, 1));
    // The only hit already selected: nothing new.
    const auto only = search.find(c, ticksOf({}), "fmaj", "", std::nullopt);
    ASSERT_TRUE(only);
    EXPECT_FALSE(search.find(c, ticksOf({}), "fmaj", "", only).has_value());

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

TEST(Search, MatchesNotesInAnyOctaveAndTextsIgnoringCase)
{
    const ChordCollection c = sampleCollection();
    const SearchCase cases[] = {
        {false, ticksOf({0, 4, 7}), "", "", {"Cmaj", "Cmaj7", "C6/9 high"}},
        {false, ticksOf({}), "", "", {"Cmaj", "Cmaj7", "Am", "C6/9 high", "E", "Fmaj"}},
        {false, ticksOf({}), "Maj", "7", {"Cmaj", "Fmaj"}},
        {false, ticksOf({}), "", "MAJ", {"Am", "C6/9 high", "E"}},
        {false, ticksOf({}), "6/9 H", "", {"C6/9 high"}},
        {false, ticksOf({0}), "m", "", {"Cmaj", "Cmaj7", "Am", "Fmaj"}},
        // The E chord's empty slots (120) would be Cs as pitch classes; they are no notes.
        {false, ticksOf({0}), "", "", {"Cmaj", "Cmaj7", "Am", "C6/9 high", "Fmaj"}},
        // Seven ticks search only the five lowest: C D E G A, found in the 6/9 chord.
        {false, ticksOf({0, 2, 4, 7, 9, 10, 11}), "", "", {"C6/9 high"}},
        {false, ticksOf({1}), "", "", {}},

        {true, ticksOf({}), "", "", {"S", "C major", "A minor", "plain"}},
        // Seven notes are all searched (no cap of five); unflagged sections drop out.
        {true, ticksOf({0, 2, 4, 5, 7, 9, 11}), "", "", {"C major", "A minor"}},
        {true, ticksOf({0, 1}), "", "", {}},
        {true, ticksOf({9}), "MINOR", "", {"A minor"}},
        {true, ticksOf({}), "", "major", {"S", "A minor", "plain"}},
    };
    for (const SearchCase& k : cases) {
        const auto hits =
            k.scales
                ? ScaleSearch::allHits(c, SearchCriteria::forScales(k.ticks, k.include, k.skip))
                : ChordSearch::allHits(c, SearchCriteria::forChords(k.ticks, k.include, k.skip));
        EXPECT_EQ(names(c, hits), k.hits)
            << (k.scales ? "scales " : "chords ") << k.include << " / " << k.skip;
    }
}

TEST(ScaleSearch, SelectsTheFirstHitAfterTheSelection)
{
    const ChordCollection c = sampleCollection();
    ScaleSearch search;
    const auto all = ticksOf({0, 4, 7});
    EXPECT_EQ(search.find(c, all, "", "", std::nullopt).names,
              (std::vector<std::string>{"C major", "A minor"}));
    const auto first = TreePosition::ofSection(1, 0), second = TreePosition::ofSection(1, 1);
    EXPECT_EQ(search.find(c, all, "", "", std::nullopt).selection, first);
    EXPECT_EQ(search.find(c, all, "", "", first).selection, second);
    EXPECT_EQ(search.find(c, all, "", "", second).selection, first); // wrapped
    const auto result = search.find(c, ticksOf({1}), "", "", second);
    EXPECT_TRUE(result.names.empty());
    EXPECT_FALSE(result.selection.has_value());
}
