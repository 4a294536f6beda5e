// Tests of the chord database edits that the tree offers (move, remove, learn, forbid notes).
#include "music/ChordDatabaseEdits.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace music;

namespace {

constexpr ChordDatabaseEdits::Ticks kCMajor = {true,  false, true,  false, true,  true,
                                               false, true,  false, true,  false, true};

/** A small collection: group "G" > section "S" > collections "A" (3 chords) and "B" (1). */
ChordCollection smallCollection()
{
    ChordCollection c;
    c.addBaseGroup("G");
    c.baseGroups()[0].sections.push_back({"S", false, {}, {}});
    auto& subsections = c.baseGroups()[0].sections[0].subsections;
    subsections.push_back(
        {"A",
         {Chord::fromNotes("c", {48, 52, 55}), Chord::fromNotes("d", {50, 53, 57}),
          Chord::fromNotes("e", {52, 55, 59})}});
    subsections.push_back({"B", {Chord::fromNotes("f", {53, 57, 60})}});
    return c;
}

/** The collections of section "S" with their chords, e.g. "A: c d e; B: f". */
std::string chordsIn(const ChordCollection& c)
{
    std::string out;
    for (const auto& subsection : c.baseGroups()[0].sections[0].subsections) {
        out += (out.empty() ? "" : "; ") + subsection.name + ":";
        for (const auto& chord : subsection.chords)
            out += " " + chord.name;
    }
    return out;
}

} // namespace

TEST(ChordDatabaseEdits, MovesChordsToEveryKindOfTarget)
{
    const TreePosition collB = TreePosition::ofSubsection(0, 0, 1);
    const auto chord = [](int sub, int c) { return TreePosition::ofChord(0, 0, sub, c); };
    const struct
    {
        const char* what;
        std::vector<TreePosition> chords;
        TreePosition target;
        bool copy;
        const char* expected;
    } cases[] = {
        {"append to other collection", {chord(0, 0)}, collB, false, "A: d e; B: f c"},
        {"insert before a chord", {chord(0, 2)}, chord(0, 0), false, "A: e c d; B: f"},
        {"down in the same collection", {chord(0, 0)}, chord(0, 2), false, "A: d c e; B: f"},
        {"copy keeps the source", {chord(1, 0)}, chord(0, 1), true, "A: c f d e; B: f"},
        {"onto itself changes nothing", {chord(0, 1)}, chord(0, 1), false, "A: c d e; B: f"},
        {"several keep order", {chord(0, 2), chord(0, 0)}, collB, false, "A: d; B: f c e"},
    };
    for (const auto& c : cases) {
        ChordCollection collection = smallCollection();
        ChordDatabaseEdits::moveChords(collection, c.chords, c.target, c.copy);
        EXPECT_EQ(chordsIn(collection), c.expected) << c.what;
    }
}

TEST(ChordDatabaseEdits, RemovingAParentAndItsChildTogetherRemovesBoth)
{
    ChordCollection c = smallCollection();
    const int removed = ChordDatabaseEdits::remove(
        c, {TreePosition::ofChord(0, 0, 0, 1), TreePosition::ofSubsection(0, 0, 0),
            TreePosition::ofChord(0, 0, 1, 0), TreePosition::ofChord(0, 0, 1, 7)});
    EXPECT_EQ(removed, 2); // the collection "A" and chord "f"; A's chord went with it
    EXPECT_EQ(chordsIn(c), "B:");
}

TEST(ChordDatabaseEdits, LearnsConstructionAndScalePatternFromTicks)
{
    ChordDatabaseEdits::Ticks ticks{};
    ticks[9] = ticks[0] = ticks[4] = true; // A C E: A minor
    EXPECT_EQ(ChordDatabaseEdits::constructionFromTicks(ticks, 9), "1;b3;5;");
    EXPECT_EQ(ChordDatabaseEdits::constructionFromTicks({}, 0), "");
    EXPECT_EQ(ChordDatabaseEdits::scalePatternFromTicks(kCMajor, 0), "xoxoxxoxoxox");
    EXPECT_EQ(ChordDatabaseEdits::scalePatternFromTicks(kCMajor, 9), "xoxxoxoxxoxo"); // A minor
}

TEST(ChordDatabaseEdits, ForbiddenNotesRemoveChordsAndMakeAScaleGroup)
{
    ChordCollection c = smallCollection();
    ChordDatabaseEdits::Ticks allowed = kCMajor;
    allowed[5] = false; // no F: "d" (D F A) and "f" (F A C) go
    EXPECT_EQ(ChordDatabaseEdits::forbidNotes(c, TreePosition::ofSection(0, 0), allowed), 2);
    EXPECT_EQ(chordsIn(c), "A: c e; B:");
    EXPECT_TRUE(c.baseGroups()[0].sections[0].scaleFlag);
    EXPECT_EQ(c.baseGroups()[0].sections[0].notes, (std::vector<NoteValue>{0, 2, 4, 7, 9, 11}));
}

TEST(ChordDatabaseEdits, GenerationKeepsToTheScaleByEachChordsOwnRoot)
{
    // A type named "#5" makes "C#5" on C: the root must come from the generator, not the name.
    ChordTypeList types;
    types.add("maj", "1;3;5;");
    types.add("#5", "1;3;b6;");
    const struct
    {
        bool everyNote, onlyScaleNotes;
        const char* majors;
        const char* augmented;
    } cases[] = {
        {true, false, "Cmaj Dmaj Emaj Fmaj Gmaj Amaj Bmaj", "C#5 D#5 E#5 F#5 G#5 A#5 B#5"},
        {false, true, "Cmaj Fmaj Gmaj", ""},
        {true, true, "Cmaj Fmaj Gmaj", ""},
    };
    for (const auto& c : cases) {
        ChordDatabaseEdits::GenerateOptions options;
        options.scale = kCMajor;
        options.everyNoteInScale = c.everyNote;
        options.onlyScaleNotes = c.onlyScaleNotes;
        ChordCollection collection;
        ChordDatabaseEdits::generateList(collection, types, options);
        std::string names[2];
        for (const auto& sub : collection.baseGroups()[0].sections[0].subsections) {
            for (const Chord& chord : sub.chords)
                names[sub.name == "#5"] +=
                    (names[sub.name == "#5"].empty() ? "" : " ") + chord.name;
        }
        EXPECT_EQ(names[0], c.majors) << c.everyNote << c.onlyScaleNotes;
        EXPECT_EQ(names[1], c.augmented) << c.everyNote << c.onlyScaleNotes;

        // "Generate Base" keeps the same chords, one scale group per root.
        const int group = ChordDatabaseEdits::generateBase(collection, types, options);
        ASSERT_EQ(group, 2);
        std::size_t chords = 0;
        for (const auto& section : collection.baseGroups()[2].sections) {
            for (const auto& sub : section.subsections)
                chords += sub.chords.size();
        }
        EXPECT_EQ(chords * 3, collection.chordCount()) << "as many chords as each other group";
    }
}
