// The part list as a user drives it: the default part at start-up, chords coming from the chord
// database, every context-menu command with its undo and redo, and what assistive technology sees.
#include "AppTestSupport.h"

#include "app/AddPresetDialog.h"
#include "app/CFindDialog.h"
#include "app/CSearchInfoWindow.h"
#include "app/CTreeCtrlX.h"
#include "app/ChordCollectionModel.h"
#include "app/ChordListPrinter.h"
#include "app/ChordSettingsDialog.h"
#include "app/ForbidNotesDialog.h"
#include "app/PartChordMime.h"
#include "app/PartFileCommands.h"
#include "app/PartListCommands.h"
#include "app/PartListPanel.h"
#include "app/PartSession.h"
#include "app/PresetPanel.h"
#include "part/PartFile.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPrintPreviewDialog>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QTextDocument>
#include <QTimer>

#include <functional>
#include <memory>

namespace {

using app::PartSession;
using apptest::answerDialog;
using music::TreePosition;
using Names = std::vector<std::string>;

const Names kDefaultChords = {"C", "Am", "F", "G", "Dm7", "G7", "Cmaj7"};

class PartList : public apptest::AppFixture
{
protected:
    app::PartListPanel& panel() { return *view().partList(); }
    app::PartListModel& model() { return *panel().model(); }
    app::PartListCommands& commands() { return panel().commands(); }

    Names names()
    {
        Names result;
        for (const part::PartChord& chord : session().part().chords())
            result.push_back(chord.name);
        return result;
    }
    /** What the list shows in a column, row by row. */
    QStringList column(int c)
    {
        QStringList texts;
        for (int row = 0; row < model().rowCount(); ++row)
            texts << model().index(row, c).data().toString();
        return texts;
    }
    void trigger(const char* id)
    {
        QAction* item =
            view().contextMenu("partList")->findChild<QAction*>(QString::fromLatin1(id));
        ASSERT_NE(item, nullptr) << id;
        item->trigger();
        QCoreApplication::processEvents();
    }
    /** The database chord named `name`. */
    TreePosition databaseChord(const std::string& name)
    {
        const auto& groups = chords().collection().baseGroups();
        for (int g = 0; g < static_cast<int>(groups.size()); ++g) {
            const auto& sections = groups[static_cast<std::size_t>(g)].sections;
            for (int s = 0; s < static_cast<int>(sections.size()); ++s) {
                const auto& subs = sections[static_cast<std::size_t>(s)].subsections;
                for (int u = 0; u < static_cast<int>(subs.size()); ++u) {
                    const auto& list = subs[static_cast<std::size_t>(u)].chords;
                    for (int c = 0; c < static_cast<int>(list.size()); ++c) {
                        if (list[static_cast<std::size_t>(c)].name == name)
                            return TreePosition::ofChord(g, s, u, c);
                    }
                }
            }
        }
        ADD_FAILURE() << "no chord " << name;
        return {};
    }
};

TEST_F(PartList, StartsWithTheDefaultPartAndNothingToUndo)
{
    EXPECT_EQ(names(), kDefaultChords);
    EXPECT_EQ(column(app::PartListModel::ChordColumn).first(), QStringLiteral("C"));
    EXPECT_EQ(column(app::PartListModel::PatternColumn),
              (QStringList{"0: Block chord", "0: Block chord", "1: Arpeggio up", "1: Arpeggio up",
                           "2: Alberti bass", "2: Alberti bass", "0: Block chord"}));
    EXPECT_EQ(column(app::PartListModel::LengthColumn).last(), QStringLiteral("32"));
    EXPECT_EQ(session().part().patterns().count(), 3);
    EXPECT_FALSE(session().canUndo());
    EXPECT_FALSE(session().isModified());
    EXPECT_TRUE(m_messages.texts().isEmpty());
    QAbstractItemModelTester tester(&model(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
}

TEST_F(PartList, MenuEditsAreUndoableStepsNamedAfterThem)
{
    QApplication::clipboard()->setMimeData(
        app::PartChordMime::create({session().part().chord(4)})); // Dm7
    struct Case
    {
        const char* id;
        std::vector<int> selected;
        int current;
        Names after;
        const char* label;
    };
    const Case cases[] = {
        {"partList.remove", {1, 2}, 2, {"C", "G", "Dm7", "G7", "Cmaj7"}, "Remove chords"},
        {"partList.remove", {6}, 6, {"C", "Am", "F", "G", "Dm7", "G7"}, "Remove chords"},
        {"partList.clear", {0}, 0, {}, "Delete all chords"},
        {"partList.pasteInsert",
         {1},
         1,
         {"C", "Dm7", "Am", "F", "G", "Dm7", "G7", "Cmaj7"},
         "Paste"},
        {"partList.pasteAppend",
         {1},
         1,
         {"C", "Am", "F", "G", "Dm7", "G7", "Cmaj7", "Dm7"},
         "Paste"},
        {"partList.cut", {0, 3}, 3, {"Am", "F", "Dm7", "G7", "Cmaj7"}, "Cut"},
    };
    const part::Part original = session().part();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        session().reset(original, QString());
        panel().selectRows(c.selected, c.current);
        trigger(c.id);
        EXPECT_EQ(names(), c.after);
        EXPECT_EQ(session().undoText(), QString::fromLatin1(c.label));
        EXPECT_EQ(model().rowCount(), static_cast<int>(c.after.size()));
        session().undo();
        EXPECT_EQ(names(), kDefaultChords);
        EXPECT_EQ(column(app::PartListModel::ChordColumn).size(), 7);
        session().redo();
        EXPECT_EQ(names(), c.after);
    }
    // Cut put the chords it removed on the clipboard, also as text for a mail.
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("C\tC0 E0 G0\nG\tG0 B0 D1\n"));
}

TEST_F(PartList, SortAndNormalizeWorkOnTheSelectionOrTheWholePart)
{
    // The part as "name notes" a chord; Am and G lie an octave up to give Normalize work.
    session().edit(QStringLiteral("Set chord"), PartSession::Chords, [](part::Part& p) {
        p.chord(1).setNotes({57, 60, 64});
        p.chord(3).setNotes({31, 35, 38});
        return true;
    });
    const auto summary = [this] {
        QStringList texts;
        for (const part::PartChord& chord : session().part().chords())
            texts << QString::fromStdString(chord.name) + QLatin1Char(' ') +
                         app::PartChordMime::notesText(chord);
        return texts.join(QStringLiteral(", ")).toStdString();
    };
    struct Case
    {
        const char* id;
        std::vector<int> selected;
        const char* after;
        const char* label;
    };
    const Case cases[] = {
        {"partList.sortNameUp",
         {},
         "Am A4 C5 E5, C C0 E0 G0, Cmaj7 C0 E0 G0 B0, Dm7 D0 F0 A0 C1, F F0 A0 C1, G G2 B2 D3, "
         "G7 G0 B0 D1 F1",
         "Sort"},
        {"partList.sortNameDown",
         {0, 1, 2},
         "F F0 A0 C1, C C0 E0 G0, Am A4 C5 E5, G G2 B2 D3, Dm7 D0 F0 A0 C1, G7 G0 B0 D1 F1, "
         "Cmaj7 C0 E0 G0 B0",
         "Sort"},
        {"partList.sortNotesDown",
         {},
         "Am A4 C5 E5, G G2 B2 D3, G7 G0 B0 D1 F1, F F0 A0 C1, Dm7 D0 F0 A0 C1, "
         "Cmaj7 C0 E0 G0 B0, C C0 E0 G0",
         "Sort"},
        {"partList.normalizeSelected",
         {1},
         "C C0 E0 G0, Am A0 C1 E1, F F0 A0 C1, G G2 B2 D3, Dm7 D0 F0 A0 C1, G7 G0 B0 D1 F1, "
         "Cmaj7 C0 E0 G0 B0",
         "Normalize"},
        {"partList.normalizeAll",
         {},
         "C C0 E0 G0, Am A0 C1 E1, F F0 A0 C1, G G0 B0 D1, Dm7 D0 F0 A0 C1, G7 G0 B0 D1 F1, "
         "Cmaj7 C0 E0 G0 B0",
         "Normalize"},
        {"partList.normalizeInvert",
         {0, 6},
         // The root keeps its place (pattern cells address it), an octave up.
         "C C1 E0 G0, Am A4 C5 E5, F F0 A0 C1, G G2 B2 D3, Dm7 D0 F0 A0 C1, G7 G0 B0 D1 F1, "
         "Cmaj7 C1 E0 G0 B0",
         "Invert"},
    };
    const std::string before = summary();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        panel().selectRows(c.selected);
        trigger(c.id);
        EXPECT_EQ(summary(), c.after);
        EXPECT_EQ(session().undoText(), QString::fromLatin1(c.label));
        EXPECT_EQ(session().selectedChords(), c.selected) << "the same places stay selected";
        session().undo();
        EXPECT_EQ(summary(), before);
    }
    // An inversion past the highest note is refused with the reason, and nothing changes.
    session().edit(QStringLiteral("Set chord"), PartSession::Chords, [](part::Part& p) {
        p.chord(0).setNotes({110, 114, 117});
        return true;
    });
    const int steps = session().history().size();
    panel().selectRows({0});
    trigger("partList.normalizeInvert");
    EXPECT_EQ(m_messages.texts().size(), 1);
    EXPECT_EQ(session().history().size(), steps);
}

TEST_F(PartList, AddedChordsGetTheCurrentPatternAndTheDefaultLength)
{
    session().setCurrentPattern(2);
    session().setDefaultLength(24);
    chords().selectPositions({databaseChord("Fmaj"), databaseChord("Gmaj")});
    trigger("partList.addChord");
    ASSERT_EQ(session().part().count(), 9);
    for (int row : {7, 8}) {
        const part::PartChord& added = session().part().chord(row);
        EXPECT_EQ(added.pattern, 2);
        EXPECT_EQ(added.length, 24);
    }
    EXPECT_EQ(session().part().chord(8).name, "Gmaj");
    EXPECT_EQ(app::PartChordMime::notesText(session().part().chord(7)), QStringLiteral("F0 A0 C1"));
    EXPECT_EQ(session().undoText(), QStringLiteral("Add chord"));
    EXPECT_EQ(session().selectedChords(), (std::vector<int>{7, 8}));
    EXPECT_EQ(session().currentChord(), 8);
}

TEST_F(PartList, DoubleClickOnADatabaseChordAppendsIt)
{
    showActiveFrame();
    const TreePosition position = databaseChord("Dmaj");
    chords().selectPosition(position);
    const QModelIndex index = chords().model()->index(position);
    QWidget* viewport = chords().tree()->viewport();
    const QPoint point = chords().tree()->visualRect(index).center();
    // A double click as the system delivers it: a press and release, then the double click.
    QTest::mouseClick(viewport, Qt::LeftButton, {}, point);
    QTest::mouseDClick(viewport, Qt::LeftButton, {}, point);
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, point);
    QCoreApplication::processEvents();
    ASSERT_EQ(session().part().count(), 8);
    EXPECT_EQ(session().part().chord(7).name, "Dmaj");
    EXPECT_EQ(session().undoText(), QStringLiteral("Add chord"));
    // The clicks chose a chord; the tree does not start renaming it.
    QTest::qWait(QApplication::doubleClickInterval() + 100);
    for (const QLineEdit* editor : chords().tree()->findChildren<QLineEdit*>())
        EXPECT_FALSE(editor->isVisible());
}

TEST_F(PartList, DropsAddDatabaseChordsAndMoveOrCopyTheListsOwn)
{
    std::unique_ptr<QMimeData> fromTree(
        chords().model()->mimeData({chords().model()->index(databaseChord("Emaj")),
                                    chords().model()->index(databaseChord("Amaj"))}));
    ASSERT_TRUE(model().canDropMimeData(fromTree.get(), Qt::MoveAction, 2, 0, {}));
    model().dropMimeData(fromTree.get(), Qt::MoveAction, 2, 0, {});
    QCoreApplication::processEvents();
    EXPECT_EQ(names(), (Names{"C", "Am", "Emaj", "Amaj", "F", "G", "Dm7", "G7", "Cmaj7"}));
    EXPECT_EQ(session().undoText(), QStringLiteral("Move/Add chords"));
    session().undo();

    struct Case
    {
        std::vector<int> rows;
        int target;
        Qt::DropAction action;
        Names after;
        std::vector<int> selected;
    };
    const Case cases[] = {
        {{0, 1}, 5, Qt::MoveAction, {"F", "G", "Dm7", "C", "Am", "G7", "Cmaj7"}, {3, 4}},
        {{5, 6}, 0, Qt::MoveAction, {"G7", "Cmaj7", "C", "Am", "F", "G", "Dm7"}, {0, 1}},
        {{1, 3}, 7, Qt::MoveAction, {"C", "F", "Dm7", "G7", "Cmaj7", "Am", "G"}, {5, 6}},
        {{0}, 2, Qt::CopyAction, {"C", "Am", "C", "F", "G", "Dm7", "G7", "Cmaj7"}, {2}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.target);
        QModelIndexList indexes;
        for (int row : c.rows)
            indexes << model().index(row, 0) << model().index(row, 2);
        std::unique_ptr<QMimeData> data(model().mimeData(indexes));
        model().dropMimeData(data.get(), c.action, c.target, 0, {});
        QCoreApplication::processEvents();
        EXPECT_EQ(names(), c.after);
        EXPECT_EQ(session().selectedChords(), c.selected);
        EXPECT_EQ(panel().selectedRows(), c.selected);
        session().undo();
        EXPECT_EQ(names(), kDefaultChords);
    }
    // A drop where the chords already are changes nothing and records nothing.
    std::unique_ptr<QMimeData> same(model().mimeData({model().index(2, 0)}));
    const int steps = session().history().size();
    model().dropMimeData(same.get(), Qt::MoveAction, 3, 0, {});
    QCoreApplication::processEvents();
    EXPECT_EQ(session().history().size(), steps);
}

TEST_F(PartList, ChordSettingsChangeTheCurrentChordAsOneStep)
{
    panel().selectRows({1}); // Am: A0 C1 E1
    answerDialog<app::ChordSettingsDialog>([](app::ChordSettingsDialog& d) {
        EXPECT_EQ(d.nameEdit()->text(), QStringLiteral("Am"));
        EXPECT_EQ(d.patternBox()->currentText(), QStringLiteral("0: Block chord"));
        EXPECT_TRUE(d.octaveBox(2)->isVisibleTo(&d));
        EXPECT_FALSE(d.octaveBox(3)->isVisibleTo(&d));
        d.nameEdit()->setText(QStringLiteral("Am(add9)"));
        d.keyboard()->setTicked(11, true); // B, stacked above E1
        d.octaveBox(0)->setValue(1);       // A up an octave, keeping its place
        d.patternBox()->setCurrentIndex(2);
        d.lengthBox()->setValue(64);
        d.accept();
    });
    trigger("partList.chordSettings");
    const part::PartChord& chord = session().part().chord(1);
    EXPECT_EQ(chord.name, "Am(add9)");
    EXPECT_EQ(app::PartChordMime::notesText(chord), QStringLiteral("A1 C1 E1 B1"));
    EXPECT_EQ(chord.pattern, 2);
    EXPECT_EQ(chord.length, 64);
    EXPECT_EQ(session().undoText(), QStringLiteral("Set chord"));
    session().undo();
    EXPECT_EQ(session().part().chord(1).name, "Am");

    // Cancelled, nothing changes.
    const int steps = session().history().size();
    answerDialog<app::ChordSettingsDialog>([](app::ChordSettingsDialog& d) { d.reject(); });
    trigger("partList.chordSettings");
    EXPECT_EQ(session().history().size(), steps);
}

TEST_F(PartList, ForbidNotesSetsThePartsFlags)
{
    answerDialog<app::ForbidNotesDialog>([](app::ForbidNotesDialog& d) {
        for (int pc : {1, 6})
            d.keyboard()->setTicked(pc, true);
        d.accept();
    });
    trigger("partList.forbidNotes");
    const part::PitchClassFlags expected = {1, 0, 1, 1, 1, 1, 0, 1, 1, 1, 1, 1};
    EXPECT_EQ(session().part().pitchClassFlags(), expected);
    EXPECT_EQ(session().undoText(), QStringLiteral("Edit part"));

    // The dialog shows the forbidden notes ticked; allowing one again gives it back its flag.
    answerDialog<app::ForbidNotesDialog>([](app::ForbidNotesDialog& d) {
        EXPECT_TRUE(d.keyboard()->isTicked(1));
        EXPECT_FALSE(d.keyboard()->isTicked(2));
        d.keyboard()->setTicked(1, false);
        d.accept();
    });
    trigger("partList.forbidNotes");
    EXPECT_EQ(session().part().pitchClassFlags()[1], 1u);
    session().undo();
    session().undo();
    EXPECT_EQ(session().part().pitchClassFlags(), part::kAllPitchClassesAllowed);
}

TEST_F(PartList, ViewShowsNamesOrNotesAndSelectAllSelectsTheRange)
{
    trigger("partList.viewNotes");
    EXPECT_EQ(column(0).mid(0, 2), (QStringList{"C0 E0 G0", "A0 C1 E1"}));
    EXPECT_EQ(model().headerData(0, Qt::Horizontal).toString(), QStringLiteral("Notes"));
    EXPECT_FALSE(model().flags(model().index(0, 0)) & Qt::ItemIsEditable); // names only
    trigger("partList.viewNames");
    EXPECT_EQ(column(0).first(), QStringLiteral("C"));
    EXPECT_TRUE(model().flags(model().index(0, 0)) & Qt::ItemIsEditable);

    trigger("partList.selectAll");
    EXPECT_EQ(session().selectedChords().size(), 7u);
    EXPECT_EQ(session().part().selectionFirst(), 0);
    EXPECT_EQ(session().part().selectionLast(), 6);
    EXPECT_FALSE(session().isModified()) << "selecting is no change of the part";
}

TEST_F(PartList, EditsInPlaceRenameAndSetPatternAndLength)
{
    ASSERT_TRUE(model().setData(model().index(0, 0), QStringLiteral("Cadd9")));
    EXPECT_EQ(session().undoText(), QStringLiteral("Rename chord"));
    EXPECT_FALSE(model().setData(model().index(0, 2), 0)) << "lengths are 1..64";
    EXPECT_FALSE(model().setData(model().index(0, 2), 65));
    EXPECT_FALSE(model().setData(model().index(0, 1), 3)) << "the part has 3 patterns";
    EXPECT_EQ(session().history().size(), 1);

    // The pattern editor of a cell, answered from the keyboard: on one of several selected
    // chords it sets them all, in one step.
    showActiveFrame();
    panel().selectRows({2, 3, 4});
    QTableView* table = panel().view();
    table->edit(model().index(3, app::PartListModel::PatternColumn));
    auto* box = table->findChild<QComboBox*>(QStringLiteral("chordPatternEditor"));
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->count(), 3);
    box->setCurrentIndex(2);
    QTest::keyClick(box, Qt::Key_Return);
    QCoreApplication::processEvents();
    for (int row : {2, 3, 4})
        EXPECT_EQ(session().part().chord(row).pattern, 2) << row;
    EXPECT_EQ(session().part().chord(5).pattern, 2);
    EXPECT_EQ(session().undoText(), QStringLiteral("Change pattern"));

    // + and - step the selected chords' patterns within the list.
    table->setFocus();
    panel().selectRows({0, 2});
    QTest::keyClick(table, Qt::Key_Plus);
    EXPECT_EQ(session().part().chord(0).pattern, 1);
    EXPECT_EQ(session().part().chord(2).pattern, 2) << "no pattern after the last";
    QTest::keyClick(table, Qt::Key_Minus);
    QTest::keyClick(table, Qt::Key_Minus);
    EXPECT_EQ(session().part().chord(0).pattern, 0);
    EXPECT_EQ(session().part().chord(2).pattern, 0);
}

TEST_F(PartList, KeysOfTheMenuWorkInTheList)
{
    showActiveFrame();
    QTableView* table = panel().view();
    table->setFocus();
    panel().selectRows({0, 1});
    QTest::keySequence(table, QKeySequence(QStringLiteral("Ctrl+C")));
    panel().selectRows({6});
    QTest::keySequence(table, QKeySequence(QStringLiteral("Ctrl+W")));
    EXPECT_EQ(names().size(), 9u);
    EXPECT_EQ(names().back(), "Am");
    QTest::keyClick(table, Qt::Key_Delete); // the pasted chords are selected
    EXPECT_EQ(names(), kDefaultChords);
    QTest::keySequence(table, QKeySequence(QStringLiteral("Ctrl+Z")));
    EXPECT_EQ(names().size(), 9u);
    QTest::keySequence(table, QKeySequence(QStringLiteral("Ctrl+Del")));
    EXPECT_TRUE(names().empty());
    QTest::keySequence(table, QKeySequence(QStringLiteral("Ctrl+Y")));
    EXPECT_TRUE(names().empty()) << "nothing to redo after a new step";
    trigger("edit.undo");
    EXPECT_EQ(names().size(), 9u);

    // F2 renames the current chord here, though elsewhere it opens the type manager.
    QTimer::singleShot(0, [] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
            ADD_FAILURE() << "a dialog opened";
            dialog->close();
        }
    });
    panel().selectRows({0});
    QTest::keyClick(table, Qt::Key_F2);
    QCoreApplication::processEvents();
    auto* editor = table->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(editor->isVisible());
    editor->setText(QStringLiteral("C6"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents(); // the editor hands its text over once it has closed
    EXPECT_EQ(names().front(), "C6");
    EXPECT_EQ(session().undoText(), QStringLiteral("Rename chord"));
}

TEST_F(PartList, UndoBringsBackTheSelectedChordsAndTheModifiedMark)
{
    panel().selectRows({1, 2});
    trigger("partList.remove");
    EXPECT_EQ(frame().windowTitle(), QStringLiteral("Untitled - default.prt* - Tonalmancer"));
    panel().selectRows({0});
    session().undo();
    EXPECT_EQ(session().selectedChords(), (std::vector<int>{1, 2}));
    EXPECT_EQ(panel().selectedRows(), (std::vector<int>{1, 2}));
    EXPECT_EQ(frame().windowTitle(), QStringLiteral("Untitled - default.prt - Tonalmancer"));
}

TEST_F(PartList, FindScaleStartsFromTheSelectedChordsNotes)
{
    panel().selectRows({0, 3}); // C E G and G B D
    const app::CNoteKeyboard::Ticks cAndG = {true,  false, true,  false, true,  false,
                                             false, true,  false, false, false, true};
    answerDialog<app::CFindDialog>([&cAndG](app::CFindDialog& d) {
        EXPECT_EQ(d.windowTitle(), QStringLiteral("Find scale"));
        EXPECT_EQ(d.ticks(), cAndG);
        d.accept();
    });
    trigger("chords.findScale");
    const QStringList found = chords().menuCommands().searchInfo()->results();
    EXPECT_TRUE(found.contains(QStringLiteral("C major"))) << found.join(',').toStdString();
    EXPECT_FALSE(found.contains(QStringLiteral("F major")));

    panel().selectRows({});
    app::CNoteKeyboard::Ticks all{};
    for (int pc : {0, 2, 4, 5, 7, 9, 11})
        all[static_cast<std::size_t>(pc)] = true;
    EXPECT_EQ(commands().scaleSearchNotes(), all) << "without a selection, every chord";
}

TEST_F(PartList, PrintListShowsAPreviewAndSavesThePdf)
{
    const app::ChordListPrinter printer(session().part(), QStringLiteral("default.prt"));
    const QString text = printer.document()->toPlainText();
    for (const char* expected : {"default.prt", "7 chords, 126 beats per minute", "Cmaj7",
                                 "C0 E0 G0 B0", "2: Alberti bass"})
        EXPECT_TRUE(text.contains(QString::fromLatin1(expected))) << expected;
    const QString pdf = m_data.file(QStringLiteral("chords.pdf"));
    ASSERT_TRUE(printer.savePdf(pdf));
    QFile file(pdf);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.read(5).startsWith("%PDF-"));

    bool shown = false;
    answerDialog<QPrintPreviewDialog>([&shown](QPrintPreviewDialog& d) {
        shown = d.findChild<QAction*>(QStringLiteral("saveChordListPdf")) != nullptr;
        d.reject();
    });
    trigger("part.printChordList");
    EXPECT_TRUE(shown);
}

TEST_F(PartList, PartPresetsTakeTheWholePartUnderTheirName)
{
    const int before = view().partPresets().count();
    answerDialog<app::AddPresetDialog>([](app::AddPresetDialog& d) {
        EXPECT_EQ(d.windowTitle(), QStringLiteral("Add Preset"));
        EXPECT_EQ(d.name(), QStringLiteral("noname"));
        d.nameEdit()->setText(QStringLiteral("Demo"));
        d.accept();
    });
    trigger("part.addToPresets");
    ASSERT_EQ(view().partPresets().count(), before + 1);
    EXPECT_EQ(view().partPresets().presets().back(),
              part::PartPresetList::presetOf(session().part(), "Demo"));

    // Replace Current Preset: the first preset becomes the part, keeping its name; the default
    // file holds it at once.
    app::PresetPanel* presets = view().partPresetPanel();
    ASSERT_NE(presets, nullptr);
    presets->setCurrentPreset(0);
    const std::string name = view().partPresets().preset(0).name;
    panel().selectRows({2});
    trigger("partList.remove");
    trigger("partList.replacePreset");
    EXPECT_EQ(view().partPresets().preset(0),
              part::PartPresetList::presetOf(session().part(), name));
    part::PartPresetList reread;
    ASSERT_TRUE(reread.load(m_data.file(QStringLiteral("default.ppr")).toStdString()));
    EXPECT_EQ(reread.preset(0).part.count(), 6);
    EXPECT_EQ(reread.count(), before + 1);
    EXPECT_EQ(presets->currentPreset(), 0);

    // Answered No, the preset stays.
    m_messages.queueAnswer(QMessageBox::No);
    panel().selectRows({0});
    trigger("partList.remove");
    trigger("partList.replacePreset");
    EXPECT_EQ(view().partPresets().preset(0).part.count(), 6);
}

TEST_F(PartList, AssistiveTechnologySeesTheChordsAsATableWithThePlayingOneMarked)
{
    EXPECT_EQ(panel().accessibleName(), QStringLiteral("Part chords"));
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(panel().view());
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->text(QAccessible::Name), QStringLiteral("Chords of the part"));
    QAccessibleTableInterface* cells = table->tableInterface();
    ASSERT_NE(cells, nullptr);
    EXPECT_EQ(cells->rowCount(), 7);
    EXPECT_EQ(cells->columnCount(), 3);
    const std::tuple<int, int, const char*> expected[] = {
        {1, 0, "Am"}, {2, 1, "1: Arpeggio up"}, {6, 2, "32"}};
    for (const auto& [row, col, text] : expected)
        EXPECT_EQ(cells->cellAt(row, col)->text(QAccessible::Name), QString::fromLatin1(text));
    // The playing chord is marked on screen and for screen readers.
    session().setPlayingPosition(2, 5);
    const QModelIndex playing = model().index(2, 0);
    EXPECT_TRUE(playing.data(Qt::BackgroundRole).isValid());
    EXPECT_TRUE(playing.data(Qt::FontRole).value<QFont>().bold());
    EXPECT_EQ(playing.data(Qt::AccessibleDescriptionRole).toString(), QStringLiteral("playing"));
    EXPECT_FALSE(model().index(1, 0).data(Qt::BackgroundRole).isValid());
    session().setPlayingPosition(-1, -1);
    EXPECT_FALSE(playing.data(Qt::BackgroundRole).isValid());
    QAccessibleTableCellInterface* header = cells->cellAt(0, 1)->tableCellInterface();
    ASSERT_NE(header, nullptr);
    ASSERT_EQ(header->columnHeaderCells().size(), 1);
    EXPECT_EQ(header->columnHeaderCells().first()->text(QAccessible::Name),
              QStringLiteral("Pattern"));
    // The menu and the dialogs it opens are named too.
    EXPECT_FALSE(panel().contextMenu()->accessibleName().isEmpty());
    for (QWidget* dialog : std::initializer_list<QWidget*>{
             std::make_unique<app::ChordSettingsDialog>(QStringList{}).release(),
             std::make_unique<app::ForbidNotesDialog>().release(),
             std::make_unique<app::AddPresetDialog>().release()}) {
        std::unique_ptr<QWidget> owned(dialog);
        EXPECT_FALSE(dialog->accessibleName().isEmpty()) << dialog->objectName().toStdString();
        for (const QWidget* child : dialog->findChildren<QWidget*>()) {
            const bool part = child->objectName().startsWith(QStringLiteral("qt_"));
            if (!part && (child->inherits("QLineEdit") || child->inherits("QComboBox") ||
                          child->inherits("QSpinBox") || child->inherits("app::CNoteKeyboard"))) {
                EXPECT_FALSE(child->accessibleName().isEmpty()) << child->metaObject()->className();
            }
        }
    }
}

} // namespace
