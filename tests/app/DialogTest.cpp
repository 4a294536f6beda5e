// What the small dialogs hand back for what the user entered.
#include "AppTestSupport.h"

#include "app/CChordDialog.h"
#include "app/CChordFromListDialog.h"
#include "app/CGenerateDialog.h"
#include "app/CNoteKeyboard.h"
#include "app/CScaleGroupDialog.h"
#include "music/ChordTypeList.h"
#include "music/ScaleList.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace {

TEST(NoteKeyboard, ClicksAndKeysTickTheNoteUnderThem)
{
    app::CNoteKeyboard keyboard;
    keyboard.resize(280, 100);
    keyboard.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&keyboard));
    keyboard.setFocus();
    // White keys are 40 pixels wide here; black keys cover the upper 60 % between them.
    const std::pair<QPoint, int> clicks[] = {
        {{20, 90}, 0},  // C, low on the white key
        {{40, 30}, 1},  // C#, high between C and D
        {{60, 90}, 2},  // D
        {{160, 30}, 6}, // F#, between F and G
        {{270, 90}, 11} // B
    };
    for (const auto& [point, pitchClass] : clicks) {
        QTest::mouseClick(&keyboard, Qt::LeftButton, {}, point);
        EXPECT_TRUE(keyboard.isTicked(pitchClass)) << pitchClass;
        QTest::mouseClick(&keyboard, Qt::LeftButton, {}, point);
        EXPECT_FALSE(keyboard.isTicked(pitchClass)) << pitchClass;
    }
    // The last click left the focus on B; the arrows move it round the octave, Space ticks.
    QTest::keyClick(&keyboard, Qt::Key_Right); // wraps to C
    QTest::keyClick(&keyboard, Qt::Key_Right);
    QTest::keyClick(&keyboard, Qt::Key_Space);
    EXPECT_TRUE(keyboard.isTicked(1));
    QTest::keyClick(&keyboard, Qt::Key_Left);
    QTest::keyClick(&keyboard, Qt::Key_Left); // wraps to B
    QTest::keyClick(&keyboard, Qt::Key_Left);
    QTest::keyClick(&keyboard, Qt::Key_Space);
    EXPECT_TRUE(keyboard.isTicked(10));
    EXPECT_FALSE(keyboard.isTicked(11));
}

TEST(ChordDialog, PacksTheEnteredNotesToTheFront)
{
    app::CChordDialog dialog(QStringLiteral("Add Chord"));
    dialog.nameEdit()->setText(QStringLiteral("Cadd9"));
    const std::tuple<int, int, int> slots[] = {
        {0, 1, 4}, {1, 0, 0}, {2, 5, 4}, {3, 8, 4}, {4, 3, 5}}; // slot, note box row, octave
    for (const auto& [slot, row, octave] : slots) {
        dialog.noteBox(slot)->setCurrentIndex(row); // row 0 is "x", row 1 is C
        dialog.octaveBox(slot)->setValue(octave);
    }
    const music::Chord chord = dialog.chord();
    EXPECT_EQ(chord.name, "Cadd9");
    EXPECT_EQ(chord.notes(), (std::vector<music::NoteValue>{48, 52, 55, 62}));
    EXPECT_EQ(chord.slots[4], music::kEmptyNote);

    app::CChordDialog again(QStringLiteral("Chord Settings"));
    again.setChord(chord);
    EXPECT_EQ(again.chord(), chord);
}

TEST(ChordFromListDialog, BuildsTheChordOfATypeInTheChosenOctave)
{
    music::ChordTypeList types;
    types.add("maj", "1;3;5;");
    types.add("broken", "1;x;");
    app::CChordFromListDialog dialog(types);
    dialog.baseBox()->setCurrentIndex(9); // A
    dialog.octaveBox()->setValue(3);
    const music::Chord chord = dialog.chord();
    EXPECT_EQ(chord.name, "Amaj");
    EXPECT_EQ(chord.notes(), (std::vector<music::NoteValue>{45, 49, 52}));
    dialog.typeList()->setCurrentItem(dialog.typeList()->topLevelItem(1));
    EXPECT_EQ(dialog.chord().noteCount(), 0); // an invalid type makes no chord
}

TEST(ChordFromListDialog, SortsAndLoadsItsOwnListAndAppliesTheSelectedType)
{
    apptest::MessageRecorder messages;
    music::ChordTypeList types;
    types.add("m", "1;b3;5;");
    types.add("7", "1;3;5;b7;");
    types.add("Dim", "1;b3;b5;");
    app::CChordFromListDialog dialog(types);
    const auto names = [&dialog] {
        QStringList list;
        for (int row = 0; row < dialog.typeList()->topLevelItemCount(); ++row)
            list << dialog.typeList()->topLevelItem(row)->text(0);
        return list;
    };
    const auto trigger = [&dialog](const char* id) {
        QAction* item = dialog.contextMenu()->findChild<QAction*>(QString::fromLatin1(id));
        ASSERT_NE(item, nullptr) << id;
        item->trigger();
    };
    dialog.typeList()->setCurrentItem(dialog.typeList()->topLevelItem(1)); // "7"
    trigger("picker.sortNameUp");
    EXPECT_EQ(names(), (QStringList{"7", "Dim", "m"}));
    trigger("picker.sortNotesUp");
    EXPECT_EQ(names(), (QStringList{"Dim", "m", "7"}));
    EXPECT_EQ(dialog.chord().name, "C7"); // the selection follows its type
    EXPECT_EQ(types.at(0).name(), "m");   // the program's list is left as it was

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("other.ccl"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("Tonalmancer_ConstructChords\n1\nsus4\n1;4;5;\n");
    file.close();
    EXPECT_FALSE(dialog.loadChordList(dir.filePath(QStringLiteral("missing.ccl"))));
    EXPECT_EQ(messages.texts(), QStringList{QStringLiteral("Error opening file.")});
    EXPECT_EQ(names().size(), 3);
    ASSERT_TRUE(dialog.loadChordList(path));
    EXPECT_EQ(names(), QStringList{QStringLiteral("sus4")});

    trigger("picker.apply");
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.chord().name, "Csus4");
}

TEST(ChordFromListDialog, F6AsksForAChordListToLoad)
{
    music::ChordTypeList types;
    types.add("maj", "1;3;5;");
    app::CChordFromListDialog dialog(types);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    QString asked;
    QTimer::singleShot(0, [&asked] {
        if (auto* files = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
            asked = files->windowTitle();
            files->reject();
        }
    });
    QTest::keyClick(dialog.typeList(), Qt::Key_F6);
    EXPECT_EQ(asked, QStringLiteral("Load Chord List"));
    EXPECT_EQ(dialog.typeList()->topLevelItemCount(), 1); // cancelled: the list stays
}

TEST(GenerateDialog, StartsAsNonameAndMapsTheScaleOntoItsBaseNote)
{
    music::ScaleList scales;
    scales.add("major", "xoxoxxoxoxox");
    app::CGenerateDialog dialog(app::CGenerateDialog::Mode::Base, scales);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Generate Base"));
    EXPECT_EQ(dialog.nameEdit()->text(), QStringLiteral("noname"));
    EXPECT_FALSE(dialog.options().scale.has_value());
    EXPECT_EQ(dialog.everyNoteBox()->toolTip(),
              QStringLiteral("Create the chords in list for every note in scale."));
    EXPECT_EQ(dialog.onlyScaleNotesBox()->toolTip(),
              QStringLiteral("Only allow those chords, which consists of scale notes."));
    dialog.scaleBox()->setCurrentIndex(1);
    dialog.baseBox()->setCurrentIndex(7); // G major: F# instead of F
    dialog.onlyScaleNotesBox()->setChecked(true);
    const auto options = dialog.options();
    ASSERT_TRUE(options.scale.has_value());
    EXPECT_TRUE((*options.scale)[6]);
    EXPECT_FALSE((*options.scale)[5]);
    EXPECT_TRUE(options.onlyScaleNotes);
    EXPECT_FALSE(options.everyNoteInScale);
}

TEST(ScaleGroupDialog, TicksTheNotesOfAChosenScaleAndNamesTheGroup)
{
    music::ScaleList scales;
    scales.add("minor pentatonic", "xooxoxoxooxo");
    app::CScaleGroupDialog dialog(QStringLiteral("Add Scale/Group"), scales);
    dialog.setBaseNote(9); // A
    for (QComboBox* box : dialog.findChildren<QComboBox*>()) {
        if (box->count() == 2)
            box->setCurrentIndex(1); // the scale chooser
    }
    const app::CNoteKeyboard::Ticks expected = {true,  false, true,  false, true,  false,
                                                false, true,  false, true,  false, false};
    EXPECT_EQ(dialog.ticks(), expected); // A C D E G
    EXPECT_EQ(dialog.name(), QStringLiteral("A minor pentatonic"));
    EXPECT_TRUE(dialog.scaleFlag());
    EXPECT_EQ(dialog.findChild<QCheckBox*>()->toolTip(), QStringLiteral("Use scale notes."));
    dialog.setScaleFlag(false);
    EXPECT_EQ(dialog.findChild<QCheckBox*>()->toolTip(), QStringLiteral("Do not use scale notes."));
}

} // namespace
