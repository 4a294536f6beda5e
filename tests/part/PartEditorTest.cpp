#include "part/PartEditor.h"
#include "part/PartPreset.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace part;

namespace {

PartChord chordOn(std::uint16_t pattern, const char* name = "C")
{
    PartChord c;
    c.name = name;
    c.setNotes({0, 4, 7});
    c.pattern = pattern;
    return c;
}

/** A part with `patterns` patterns named P0, P1, ... and one chord on each of `chordPatterns`. */
Part partWith(int patterns, std::vector<std::uint16_t> chordPatterns)
{
    Part p;
    for (int i = 0; i < patterns; ++i)
        p.patterns().append(Pattern("P" + std::to_string(i)));
    for (std::uint16_t index : chordPatterns)
        p.append(chordOn(index));
    return p;
}

std::vector<int> chordPatterns(const Part& p)
{
    std::vector<int> out;
    for (const PartChord& c : p.chords())
        out.push_back(c.pattern);
    return out;
}

std::vector<std::string> patternNames(const Part& p)
{
    std::vector<std::string> out;
    for (const Pattern& pattern : p.patterns().patterns())
        out.push_back(pattern.name());
    return out;
}

} // namespace

TEST(PartEditor, RemovingAPatternRenumbersTheChords)
{
    struct Case
    {
        const char* what;
        int patterns;
        std::vector<std::uint16_t> chords;
        std::uint16_t current;
        std::vector<int> expectedChords;
        std::vector<std::string> expectedNames;
        int expectedCurrent;
    } cases[] = {
        {"middle", 4, {0, 1, 2, 3}, 2, {0, 1, 1, 2}, {"P0", "P1", "P3"}, 1},
        {"first", 3, {0, 1, 2, 0}, 0, {0, 0, 1, 0}, {"P1", "P2"}, 0},
        {"last", 3, {0, 1, 2}, 2, {0, 1, 1}, {"P0", "P1"}, 1},
        {"the only one", 1, {0, 0}, 0, {0, 0}, {"noname"}, 0},
        {"chords past the list move down too", 2, {5, 1}, 1, {4, 0}, {"P0"}, 0},
    };
    for (const Case& c : cases) {
        PartEditor editor(partWith(c.patterns, c.chords));
        editor.part().setCurrentPattern(c.current);
        editor.removePattern();
        EXPECT_EQ(chordPatterns(editor.part()), c.expectedChords) << c.what;
        EXPECT_EQ(patternNames(editor.part()), c.expectedNames) << c.what;
        EXPECT_EQ(editor.part().currentPattern(), c.expectedCurrent) << c.what;
        EXPECT_EQ(editor.history().undoLabel(), "Remove pattern") << c.what;
    }
}

TEST(PartEditor, RemovingAMissingCurrentPatternDoesNothing)
{
    PartEditor editor(partWith(2, {0, 1}));
    editor.part().setCurrentPattern(2);
    const Part before = editor.part();
    editor.removePattern();
    EXPECT_EQ(editor.part(), before);
    EXPECT_FALSE(editor.history().canUndo()) << "no undo point for a command that did nothing";
}

TEST(PartEditor, PatternCommandsKeepAtLeastOnePatternAndTheRightCurrentOne)
{
    PartEditor editor(partWith(3, {2, 1, 0}));
    editor.part().setCurrentPattern(1);
    editor.part().patterns().pattern(1).setCell(0, 3, PatternCell{CellKind::Off, 0, 0});
    editor.part().patterns().pattern(1).setTrackOctave(4, 9);

    editor.addPattern();
    EXPECT_EQ(editor.part().patterns().count(), 4);
    EXPECT_EQ(editor.part().patterns().pattern(3), Pattern());
    EXPECT_EQ(editor.part().currentPattern(), 1);

    editor.copyPattern();
    EXPECT_EQ(editor.part().patterns().count(), 5);
    EXPECT_EQ(editor.part().currentPattern(), 4);
    EXPECT_EQ(editor.part().patterns().pattern(4), editor.part().patterns().pattern(1));

    editor.removeAllPatterns();
    EXPECT_EQ(patternNames(editor.part()), std::vector<std::string>{"noname"});
    EXPECT_EQ(chordPatterns(editor.part()), (std::vector<int>{0, 0, 0}));
    EXPECT_EQ(editor.part().currentPattern(), 0);

    editor.part().setSelection(0, 2);
    editor.newPart();
    EXPECT_EQ(editor.part().count(), 0);
    EXPECT_FALSE(editor.part().hasSelection());
    EXPECT_EQ(editor.part().patterns().count(), 1);
    EXPECT_EQ(editor.history().size(), 4);
    EXPECT_EQ(editor.history().undoLabel(), "New part");
}

TEST(PartEditor, ChangePatternActsOnTheSelectionWithinBounds)
{
    const std::vector<int> selection = {0, 2, 9}; // 9 is no chord and is skipped
    PartEditor editor(partWith(3, {0, 1, 2, 1}));

    editor.nextPatternOfChords(selection);
    EXPECT_EQ(chordPatterns(editor.part()), (std::vector<int>{1, 1, 2, 1}));
    editor.nextPatternOfChords(selection);
    EXPECT_EQ(chordPatterns(editor.part()), (std::vector<int>{2, 1, 2, 1}));
    editor.previousPatternOfChords({0, 1, 3});
    EXPECT_EQ(chordPatterns(editor.part()), (std::vector<int>{1, 0, 2, 0}));
    editor.previousPatternOfChords({1});
    EXPECT_EQ(chordPatterns(editor.part()), (std::vector<int>{1, 0, 2, 0}));
    editor.setPatternOfChords({1, 2}, 1);
    EXPECT_EQ(chordPatterns(editor.part()), (std::vector<int>{1, 1, 1, 0}));
    EXPECT_EQ(editor.history().size(), 5);

    const UndoHistory before = editor.history();
    editor.setPatternOfChords({0}, 3); // not below the pattern count
    editor.setPatternOfChords({}, 0);
    editor.nextPatternOfChords({7});
    editor.previousPatternOfChords({});
    EXPECT_EQ(chordPatterns(editor.part()), (std::vector<int>{1, 1, 1, 0}));
    EXPECT_EQ(editor.history(), before) << "commands that do nothing record nothing";
}

TEST(PartEditor, PresetsAreAppliedAsCopies)
{
    PartEditor editor(partWith(2, {1}));
    editor.part().setCurrentPattern(1);
    Pattern preset("Arp");
    preset.setCell(1, 1, PatternCell{CellKind::ChordNote, 2, 0});
    editor.applyPatternPreset(preset);
    EXPECT_EQ(editor.part().patterns().count(), 3);
    EXPECT_EQ(editor.part().patterns().pattern(2), preset);
    EXPECT_EQ(editor.part().currentPattern(), 1);

    PartPreset partPreset;
    partPreset.part = partWith(2, {0, 1, 1});
    partPreset.part.setTempo(90, 3);
    partPreset.part.setBaseOctave(2);
    partPreset.part.setSelection(0, 2);
    partPreset.part.setCurrentPattern(1);
    editor.applyPartPreset(partPreset);
    Part expected = partPreset.part;
    expected.setCurrentPattern(0);
    EXPECT_EQ(editor.part(), expected);

    editor.applyPartPreset(PartPreset{}); // an empty preset still leaves one pattern
    EXPECT_EQ(editor.part().patterns().count(), 1);
    EXPECT_EQ(editor.part().count(), 0);
    EXPECT_EQ(editor.history().undoLabel(), "Apply part preset");
}

TEST(UndoHistory, KeepsAtMostFiftySnapshotsDroppingTheOldest)
{
    UndoHistory history;
    Part p;
    for (int i = 0; i < 60; ++i) {
        p.setTempo(static_cast<std::uint16_t>(i), 4);
        history.record("edit " + std::to_string(i), p);
        EXPECT_LE(history.size(), UndoHistory::kMaxSnapshots);
        EXPECT_EQ(history.position(), history.size() - 1);
    }
    EXPECT_EQ(history.size(), 50);
    EXPECT_EQ(history.snapshot(0).label, "edit 10");
    EXPECT_EQ(history.snapshot(49).part.beatsPerMinute(), 59);
}

TEST(UndoHistory, RecordingAfterUndoDropsTheSnapshotsAfterThePosition)
{
    UndoHistory history;
    Part p;
    for (int i = 0; i < 50; ++i)
        history.record("edit " + std::to_string(i), p);
    for (int i = 0; i < 10; ++i)
        ASSERT_TRUE(history.undo(p));
    EXPECT_EQ(history.position(), 39);
    history.record("new", p);
    EXPECT_EQ(history.size(), 41) << "nothing old is dropped when there is room";
    EXPECT_EQ(history.position(), 40);
    EXPECT_FALSE(history.canRedo());

    // Undone to before everything: recording keeps only the new snapshot.
    while (history.canUndo())
        history.undo(p);
    EXPECT_EQ(history.position(), -1);
    history.record("fresh", p);
    EXPECT_EQ(history.size(), 1);
    EXPECT_EQ(history.position(), 0);
}

TEST(PartEditor, UndoRestoresEverythingTheSnapshotHolds)
{
    PartEditor editor(partWith(2, {0, 1}));
    Part& p = editor.part();
    p.setTempo(140, 6);
    p.setBaseOctave(3);
    p.setSelection(0, 1);
    PitchClassFlags flags = kAllPitchClassesAllowed;
    flags[4] = 0;
    p.setPitchClassFlags(flags);
    p.setCurrentPattern(1);
    const Part original = editor.part();

    editor.recordUndo("Edit part");
    p.setTempo(80, 2);
    p.setBaseOctave(6);
    p.setSelection(kNoIndex, kNoIndex);
    p.setPitchClassFlags(kAllPitchClassesAllowed);
    p.chord(0).name = "changed";
    editor.removeAllPatterns();

    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(editor.part().patterns().count(), 2);
    EXPECT_EQ(editor.part().chord(0).name, "changed") << "only the last edit is undone";
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(editor.part(), original);
    EXPECT_FALSE(editor.undo());
    EXPECT_EQ(editor.part(), original);
}

TEST(PartEditor, RedoBringsBackWhatUndoTookAway)
{
    PartEditor editor;
    std::vector<Part> states{editor.part()};
    editor.addPattern();
    states.push_back(editor.part());
    editor.recordUndo("Add chord");
    editor.part().append(chordOn(1));
    states.push_back(editor.part());
    editor.copyPattern();
    states.push_back(editor.part());

    EXPECT_FALSE(editor.redo()) << "nothing to redo before an undo";
    EXPECT_EQ(editor.history().redoLabel(), "");
    EXPECT_EQ(editor.history().undoLabel(), "Copy pattern");
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(editor.part(), states[2]);
    EXPECT_EQ(editor.history().redoLabel(), "Copy pattern");
    ASSERT_TRUE(editor.undo());
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(editor.part(), states[0]);
    EXPECT_FALSE(editor.undo());

    for (int i = 1; i <= 3; ++i) {
        ASSERT_TRUE(editor.redo()) << i;
        EXPECT_EQ(editor.part(), states[static_cast<std::size_t>(i)]) << i;
    }
    EXPECT_FALSE(editor.redo());

    // Undo and redo again over the same ground, then a new edit ends redo.
    ASSERT_TRUE(editor.undo());
    ASSERT_TRUE(editor.undo());
    ASSERT_TRUE(editor.redo());
    EXPECT_EQ(editor.part(), states[2]);
    editor.addPattern();
    EXPECT_FALSE(editor.history().canRedo());
    EXPECT_FALSE(editor.redo());
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(editor.part(), states[2]);
}

TEST(PartEditor, RedoWorksAtTheFullHistory)
{
    PartEditor editor;
    for (int i = 0; i < 55; ++i)
        editor.addPattern();
    const Part last = editor.part();
    ASSERT_TRUE(editor.undo());
    EXPECT_EQ(editor.part().patterns().count(), 55);
    ASSERT_TRUE(editor.redo());
    EXPECT_EQ(editor.part(), last);
    int undos = 0;
    while (editor.undo())
        ++undos;
    EXPECT_EQ(undos, 50);
    EXPECT_EQ(editor.part().patterns().count(), 6) << "the five oldest edits are gone";
}
