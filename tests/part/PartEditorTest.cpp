#include "part/PartEditor.h"
#include "part/PartPreset.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace part;

namespace {

/** A part with `patterns` patterns named P0, P1, ... and one chord on each of `chordPatterns`. */
Part partWith(int patterns, const std::vector<std::uint16_t>& chordPatterns)
{
    Part p;
    for (int i = 0; i < patterns; ++i)
        p.patterns().append(Pattern("P" + std::to_string(i)));
    for (std::uint16_t index : chordPatterns) {
        PartChord c;
        c.pattern = index;
        p.append(c);
    }
    return p;
}

/** "names | chord patterns | current", e.g. "P0 P1 | 0 1 1 | 1". */
std::string layout(const Part& p)
{
    std::string out;
    for (const Pattern& pattern : p.patterns().patterns())
        out += pattern.name() + " ";
    out += "|";
    for (const PartChord& c : p.chords())
        out += " " + std::to_string(c.pattern);
    return out + " | " + std::to_string(p.currentPattern());
}

} // namespace

TEST(PartEditor, RemovingAPatternRenumbersTheChords)
{
    const struct
    {
        int patterns;
        std::vector<std::uint16_t> chords;
        std::uint16_t current;
        const char* expected; // layout, then the undo label ("" when nothing was recorded)
    } cases[] = {
        {4, {0, 1, 2, 3}, 2, "P0 P1 P3 | 0 1 1 2 | 1 / Remove pattern"},
        {3, {0, 1, 2, 0}, 0, "P1 P2 | 0 0 1 0 | 0 / Remove pattern"},
        {3, {0, 1, 2}, 2, "P0 P1 | 0 1 1 | 1 / Remove pattern"},
        {1, {0, 0}, 0, "noname | 0 0 | 0 / Remove pattern"}, // an emptied list gets a new one
        {2, {5, 1}, 1, "P0 | 4 0 | 0 / Remove pattern"},     // chords past the list move too
        {2, {0, 1}, 2, "P0 P1 | 0 1 | 2 / "},                // no such pattern: nothing happens
    };
    for (const auto& c : cases) {
        PartEditor editor(partWith(c.patterns, c.chords));
        editor.part().setCurrentPattern(c.current);
        editor.removePattern();
        EXPECT_EQ(layout(editor.part()) + " / " + editor.history().undoLabel(), c.expected);
    }
}

TEST(PartEditor, PatternCommandsKeepAtLeastOnePatternAndTheRightCurrentOne)
{
    PartEditor editor(partWith(3, {2, 1, 0}));
    editor.part().setCurrentPattern(1);
    editor.part().patterns().pattern(1).setCell(0, 3, PatternCell{CellKind::Off, 0, 0});

    editor.addPattern();
    EXPECT_EQ(editor.part().patterns().pattern(3), Pattern());
    EXPECT_EQ(layout(editor.part()), "P0 P1 P2 noname | 2 1 0 | 1");
    editor.copyPattern();
    EXPECT_EQ(editor.part().patterns().pattern(4), editor.part().patterns().pattern(1));
    EXPECT_EQ(editor.part().currentPattern(), 4);
    editor.removeAllPatterns();
    EXPECT_EQ(layout(editor.part()), "noname | 0 0 0 | 0");

    editor.part().setSelection(0, 2);
    editor.newPart();
    EXPECT_EQ(editor.part(), Part::makeNew());
    EXPECT_EQ(editor.history().size(), 4);
    EXPECT_EQ(editor.history().undoLabel(), "New part");
}

TEST(PartEditor, ChangePatternActsOnTheSelectionWithinBounds)
{
    PartEditor editor(partWith(3, {0, 1, 2, 1}));
    editor.nextPatternOfChords({0, 2, 9}); // 9 is no chord and is skipped
    editor.nextPatternOfChords({0, 2, 9});
    EXPECT_EQ(layout(editor.part()), "P0 P1 P2 | 2 1 2 1 | 0");
    editor.previousPatternOfChords({0, 1, 3});
    editor.previousPatternOfChords({1});
    EXPECT_EQ(layout(editor.part()), "P0 P1 P2 | 1 0 2 0 | 0");
    editor.setPatternOfChords({1, 2}, 1);
    EXPECT_EQ(layout(editor.part()), "P0 P1 P2 | 1 1 1 0 | 0");
    EXPECT_EQ(editor.history().size(), 5);

    const UndoHistory before = editor.history();
    editor.setPatternOfChords({0}, 3); // not below the pattern count
    editor.setPatternOfChords({}, 0);
    editor.nextPatternOfChords({7});
    editor.previousPatternOfChords({});
    EXPECT_EQ(layout(editor.part()), "P0 P1 P2 | 1 1 1 0 | 0");
    EXPECT_EQ(editor.history(), before) << "commands that do nothing record nothing";
}

TEST(PartEditor, PresetsAreAppliedAsCopies)
{
    PartEditor editor(partWith(2, {1}));
    editor.part().setCurrentPattern(1);
    Pattern preset("Arp");
    preset.setCell(1, 1, PatternCell{CellKind::ChordNote, 2, 0});
    editor.applyPatternPreset(preset);
    EXPECT_EQ(editor.part().patterns().pattern(2), preset);
    EXPECT_EQ(layout(editor.part()), "P0 P1 Arp | 1 | 1");

    PartPreset partPreset;
    partPreset.part = partWith(2, {0, 1, 1});
    partPreset.part.setTempo(90, 3);
    partPreset.part.setBaseOctave(2);
    partPreset.part.setSelection(0, 2);
    editor.applyPartPreset(partPreset);
    EXPECT_EQ(editor.part(), partPreset.part) << "a copy, with the first pattern current";

    editor.applyPartPreset(PartPreset{}); // an empty preset still leaves one pattern
    EXPECT_EQ(layout(editor.part()), "noname | | 0");
    EXPECT_EQ(editor.history().undoLabel(), "Apply part preset");
}

TEST(PartEditor, UndoAndRedoRestoreEverythingTheSnapshotHolds)
{
    PartEditor editor;
    std::vector<Part> states{editor.part()};
    editor.addPattern();
    states.push_back(editor.part());
    editor.recordUndo("Edit part"); // an edit made outside the editor's commands
    Part& p = editor.part();
    p.append(PartChord{});
    p.setTempo(80, 2);
    p.setBaseOctave(6);
    p.setSelection(0, 0);
    p.setPitchClassFlags(PitchClassFlags{});
    p.setCurrentPattern(1);
    states.push_back(editor.part());
    editor.copyPattern();
    states.push_back(editor.part());

    EXPECT_FALSE(editor.redo()) << "nothing to redo before an undo";
    EXPECT_EQ(editor.history().redoLabel(), "");
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(editor.part(), states[2]) << "only the last edit is undone";
    EXPECT_EQ(editor.history().redoLabel(), "Copy pattern");
    ASSERT_TRUE(editor.undo() && editor.undo());
    EXPECT_EQ(editor.part(), states[0]);
    EXPECT_FALSE(editor.undo());
    for (std::size_t i = 1; i <= 3; ++i) {
        ASSERT_TRUE(editor.redo()) << i;
        EXPECT_EQ(editor.part(), states[i]) << i;
    }
    EXPECT_FALSE(editor.redo());

    // Undo and redo again over the same ground, then a new edit ends redo.
    ASSERT_TRUE(editor.undo() && editor.undo() && editor.redo());
    EXPECT_EQ(editor.part(), states[2]);
    editor.addPattern();
    EXPECT_FALSE(editor.redo());
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(editor.part(), states[2]);
}

TEST(PartEditor, KeepsFiftyUndoStepsAndANewEditDropsTheUndoneOnes)
{
    PartEditor editor;
    for (int i = 0; i < 55; ++i)
        editor.addPattern();
    const Part last = editor.part();
    ASSERT_TRUE(editor.undo() && editor.redo()) << "redo works at the full history";
    EXPECT_EQ(editor.part(), last);
    EXPECT_EQ(editor.history().size(), 50);

    for (int i = 0; i < 10; ++i)
        ASSERT_TRUE(editor.undo());
    editor.addPattern();
    EXPECT_EQ(editor.history().size(), 41) << "nothing old is dropped when there is room";
    int undos = 0;
    while (editor.undo())
        ++undos;
    EXPECT_EQ(undos, 41);
    EXPECT_EQ(editor.part().patterns().count(), 6) << "the five oldest edits are gone";
    editor.addPattern(); // undone to before everything: only the new step is kept
    EXPECT_EQ(editor.history().size(), 1);
}
