// Tests of the chord database edits that the tree offers (move, remove, learn, forbid notes).
#include "music/ChordDatabaseEdits.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using music::ChordCollection;
using music::ChordDatabaseEdits;
using music::TreePosition;

constexpr music::ChordDatabaseEdits::Ticks kCMajor = {true,  false, true,  false, true,  true,
                                                      false, true,  false, true,  false, true};

/** A small collection: group "G" > section "S" > collections "A" (3 chords) and "B" (1). */
ChordCollection smallCollection()
{
    ChordCollection c;
    music::ChordBaseGroup group{"G", {}};
    music::ChordSection section;
    section.name = "S";
    section.subsections.push_back(
        {"A",
         {music::Chord::fromNotes("c", {48, 52, 55}), music::Chord::fromNotes("d", {50, 53, 57}),
          music::Chord::fromNotes("e", {52, 55, 59})}});
    section.subsections.push_back({"B", {music::Chord::fromNotes("f", {53, 57, 60})}});
    group.sections.push_back(section);
    c.baseGroups().push_back(group);
    return c;
}

std::vector<std::string> namesIn(const ChordCollection& c, int subsection)
{
    std::vector<std::string> names;
    for (const auto& chord :
         c.baseGroups()[0].sections[0].subsections[static_cast<std::size_t>(subsection)].chords)
        names.push_back(chord.name);
    return names;
}

} // namespace

TEST(ChordDatabaseEdits, MovesChordsToEveryKindOfTarget)
{
    struct Case
    {
        const char* what;
        std::vector<TreePosition> chords;
        TreePosition target;
        bool copy;
        std::vector<std::string> a;
        std::vector<std::string> b;
    };
    const TreePosition collB = TreePosition::ofSubsection(0, 0, 1);
    const auto chord = [](int sub, int c) { return TreePosition::ofChord(0, 0, sub, c); };
    const Case cases[] = {
        {"append to other collection", {chord(0, 0)}, collB, false, {"d", "e"}, {"f", "c"}},
        {"insert before a chord", {chord(0, 2)}, chord(0, 0), false, {"e", "c", "d"}, {"f"}},
        {"down in the same collection", {chord(0, 0)}, chord(0, 2), false, {"d", "c", "e"}, {"f"}},
        {"copy keeps the source", {chord(1, 0)}, chord(0, 1), true, {"c", "f", "d", "e"}, {"f"}},
        {"onto itself changes nothing", {chord(0, 1)}, chord(0, 1), false, {"c", "d", "e"}, {"f"}},
        {"several keep their order",
         {chord(0, 2), chord(0, 0)},
         collB,
         false,
         {"d"},
         {"f", "c", "e"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ChordCollection collection = smallCollection();
        music::ChordDatabaseEdits::moveChords(collection, c.chords, c.target, c.copy);
        EXPECT_EQ(namesIn(collection, 0), c.a);
        EXPECT_EQ(namesIn(collection, 1), c.b);
    }
}

TEST(ChordDatabaseEdits, RemovingAParentAndItsChildTogetherRemovesBoth)
{
    ChordCollection c = smallCollection();
    const int removed = music::ChordDatabaseEdits::remove(
        c, {TreePosition::ofChord(0, 0, 0, 1), TreePosition::ofSubsection(0, 0, 0),
            TreePosition::ofChord(0, 0, 1, 0), TreePosition::ofChord(0, 0, 1, 7)});
    EXPECT_EQ(removed, 2); // the collection "A" and chord "f"; A's chord went with it
    ASSERT_EQ(c.baseGroups()[0].sections[0].subsections.size(), 1u);
    EXPECT_TRUE(c.baseGroups()[0].sections[0].subsections[0].chords.empty());
}

TEST(ChordDatabaseEdits, LearnsConstructionAndScalePatternFromTicks)
{
    music::ChordDatabaseEdits::Ticks ticks{};
    ticks[9] = ticks[0] = ticks[4] = true; // A C E: A minor
    EXPECT_EQ(music::ChordDatabaseEdits::constructionFromTicks(ticks, 9), "1;b3;5;");
    EXPECT_EQ(music::ChordDatabaseEdits::constructionFromTicks({}, 0), "");
    EXPECT_EQ(music::ChordDatabaseEdits::scalePatternFromTicks(kCMajor, 0), "xoxoxxoxoxox");
    EXPECT_EQ(music::ChordDatabaseEdits::scalePatternFromTicks(kCMajor, 9),
              "xoxxoxoxxoxo"); // A minor
}

TEST(ChordDatabaseEdits, ForbiddenNotesRemoveChordsAndMakeAScaleGroup)
{
    ChordCollection c = smallCollection();
    music::ChordDatabaseEdits::Ticks allowed = kCMajor;
    allowed[5] = false; // no F: "d" (D F A) and "f" (F A C) go
    EXPECT_EQ(music::ChordDatabaseEdits::forbidNotes(c, TreePosition::ofSection(0, 0), allowed), 2);
    EXPECT_EQ(namesIn(c, 0), (std::vector<std::string>{"c", "e"}));
    const auto& section = c.baseGroups()[0].sections[0];
    EXPECT_TRUE(section.scaleFlag);
    EXPECT_EQ(section.notes, (std::vector<music::NoteValue>{0, 2, 4, 7, 9, 11}));
}
