// What the part list's dialogs hand back: chord notes keep their places, flags their values.
#include "app/CNoteKeyboard.h"
#include "app/ChordSettingsDialog.h"
#include "app/ForbidNotesDialog.h"

#include <QComboBox>
#include <QLabel>
#include <QSpinBox>

#include <gtest/gtest.h>

namespace {

part::PartChord chord(std::initializer_list<music::NoteValue> notes)
{
    part::PartChord c;
    c.name = "X";
    c.setNotes(notes);
    c.pattern = 1;
    c.length = 16;
    return c;
}

std::vector<int> notesOf(const part::PartChord& c)
{
    return {c.notes.begin(), c.notes.begin() + c.noteCount};
}

TEST(ChordSettingsDialog, KeysAddAndRemoveNotesWithoutMovingTheOthers)
{
    struct Case
    {
        const char* what;
        part::PartChord start;
        std::vector<std::pair<int, bool>> keys; // pitch class, ticked
        std::vector<int> notes;
    };
    const Case cases[] = {
        {"unchanged, even a doubled note", chord({48, 52, 55, 60}), {}, {48, 52, 55, 60}},
        {"a key added goes above the last note",
         chord({48, 52, 55}),
         {{11, true}},
         {48, 52, 55, 59}},
        {"below the last note's pitch class: an octave up",
         chord({43, 47, 50}),
         {{0, true}},
         {43, 47, 50, 60}},
        {"untick takes out every note of the key", chord({48, 52, 55, 60}), {{0, false}}, {52, 55}},
        {"order of an inversion stays", chord({52, 55, 60}), {{7, false}, {9, true}}, {52, 60, 69}},
        {"an empty chord starts in octave 4", chord({}), {{2, true}, {0, true}}, {50, 60}},
        {"the highest octave is 9", chord({119}), {{0, true}}, {119, 108}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        app::ChordSettingsDialog dialog({QStringLiteral("0: a"), QStringLiteral("1: b")});
        dialog.setChord(c.start);
        for (const auto& [pitchClass, ticked] : c.keys)
            dialog.keyboard()->setTicked(pitchClass, ticked);
        const part::PartChord result = dialog.chord();
        EXPECT_EQ(notesOf(result), c.notes);
        EXPECT_EQ(result.pattern, 1);
        EXPECT_EQ(result.length, 16);
    }
}

TEST(ChordSettingsDialog, AnEighthNoteIsRefusedWithAReason)
{
    app::ChordSettingsDialog dialog({});
    dialog.setChord(chord({0, 2, 4, 5, 7, 9, 11}));
    dialog.keyboard()->setTicked(1, true);
    EXPECT_FALSE(dialog.keyboard()->isTicked(1));
    EXPECT_EQ(notesOf(dialog.chord()), (std::vector<int>{0, 2, 4, 5, 7, 9, 11}));
    const auto* hint = dialog.findChild<QLabel*>(QStringLiteral("chordNotesHint"));
    ASSERT_NE(hint, nullptr);
    EXPECT_EQ(hint->text(), QStringLiteral("A chord holds at most 7 notes."));
}

TEST(ChordSettingsDialog, APatternTheListLacksIsKeptUnlessChanged)
{
    app::ChordSettingsDialog dialog({QStringLiteral("0: a")});
    part::PartChord damaged = chord({0});
    damaged.pattern = 7;
    dialog.setChord(damaged);
    EXPECT_EQ(dialog.patternBox()->currentText(), QStringLiteral("7: (missing)"));
    EXPECT_EQ(dialog.chord().pattern, 7);
    dialog.patternBox()->setCurrentIndex(0);
    EXPECT_EQ(dialog.chord().pattern, 0);
}

TEST(ForbidNotesDialog, TicksAreForbiddenNotesAndAllowedOnesKeepTheirValue)
{
    app::ForbidNotesDialog dialog;
    dialog.setFlags({1, 0, 7, 1, 1, 0, 1, 1, 1, 1, 1, 1}); // a file may hold any non-zero value
    EXPECT_TRUE(dialog.keyboard()->isTicked(1));
    EXPECT_FALSE(dialog.keyboard()->isTicked(2));
    dialog.keyboard()->setTicked(5, false);
    dialog.keyboard()->setTicked(0, true);
    const part::PitchClassFlags expected = {0, 0, 7, 1, 1, 1, 1, 1, 1, 1, 1, 1};
    EXPECT_EQ(dialog.flags(), expected);
}

} // namespace
