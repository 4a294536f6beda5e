// The pattern grid as a musician uses it in the running program: tracker keys, mouse, selection,
// the clipboard with undo and redo, the track switches, what the rows show while a chord plays,
// and the grid as assistive technology reads it.
#include "AppTestSupport.h"

#include "app/PartSession.h"
#include "app/PatternCellText.h"
#include "app/PatternGridCommands.h"
#include "app/PatternGridModel.h"
#include "app/PatternGridPanel.h"
#include "app/PatternGridView.h"
#include "app/PatternTrackHeader.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace {

using app::PartSession;
using app::PatternGridModel;
using part::CellKind;
using part::PatternCell;

class PatternGrid : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        AppFixture::SetUp();
        m_panel = qobject_cast<app::PatternGridPanel*>(view().regions().patternGrid);
        ASSERT_NE(m_panel, nullptr);
        m_panel->setStep(1);
        m_panel->setDigitsPlayNotes(false);
        session().newPart(); // whatever part the program starts with: an empty pattern
        session().setDefaultOctave(4);
        m_panel->moveCursorTo(0, 0);
        showActiveFrame();
        grid()->setFocus();
    }
    void TearDown() override
    {
        frame().hide();
        AppFixture::TearDown();
    }

    app::PatternGridView* grid() { return m_panel->grid(); }
    PatternGridModel* model() { return m_panel->model(); }
    const part::Pattern& pattern()
    {
        return session().part().patterns().pattern(session().part().currentPattern());
    }
    QString cellText(int track, int row)
    {
        return app::PatternCellText::format(pattern().cell(track, row));
    }

    /**
     * Types keys into the grid; "^" is the Up arrow, "~" makes the next digit the keypad's, every
     * other character is its own key.
     */
    void type(const QString& keys)
    {
        bool keypad = false;
        for (const QChar c : keys) {
            if (c == QLatin1Char('^')) {
                QTest::keyClick(grid(), Qt::Key_Up);
            } else if (c == QLatin1Char('~')) {
                keypad = true;
            } else {
                QTest::keyClick(grid(), c.toLatin1(), keypad ? Qt::KeypadModifier : Qt::NoModifier);
                keypad = false;
            }
        }
    }
    void press(const char* keys)
    {
        QTest::keySequence(grid(), QKeySequence(QString::fromLatin1(keys)));
    }

    /** A part of two patterns with a few cells on the first, loaded as from a file. */
    void loadPart(std::uint16_t ticksPerBeat = 4)
    {
        part::Part p = part::Part::makeNew();
        part::Pattern second("second");
        p.patterns().append(second);
        part::Pattern& first = p.patterns().pattern(0);
        first.setCell(0, 0, {CellKind::ChordNote, 0, 0});
        first.setCell(1, 1, {CellKind::FixedNote, 4, 5});
        first.setCell(2, 5, {CellKind::ChordNote, 1, part::kShiftUp});
        first.setTrackOctave(2, 8);
        part::PartChord a;
        a.setNotes({0, 4, 7});
        a.length = 16;
        part::PartChord b = a;
        b.pattern = 1;
        b.length = 8;
        p.append(a);
        p.append(b);
        p.setTempo(126, ticksPerBeat);
        session().loadPart(p, QString());
    }

    app::PatternGridPanel* m_panel = nullptr;
};

TEST_F(PatternGrid, KeysEnterCellsAndTheCursorMovesOn)
{
    struct Case
    {
        const char* keys;
        bool digitsPlayNotes;
        QStringList cells; // from the first row typed on
        int cursorRow;
        int track = 0;
        int row = 0;
        int step = 1;
    };
    // clang-format off
    const Case cases[] = {
        {"1234567", false, {"1", "2", "3", "4", "5", "6", "7"}, 7},
        {"zsxm", false, {"C4", "C#4", "D4", "B4"}, 4},
        {"qwu", false, {"C5", "D5", "B5"}, 3},
        {"2", true, {"C#5"}, 1},               // the upper row's sharp
        {"1o", false, {"1", "off"}, 2},
        {"1^p", false, {"?1"}, 1},             // chance, then on to the next row
        {"1^p^p", false, {"1"}, 1},            // and back
        {"2^+", false, {"2+"}, 1},
        {"2^-^-", false, {"2"}, 1},            // pressed again: no shift
        {"2^+^-", false, {"2-"}, 1},
        {"z^+", false, {"C5"}, 1},             // a fixed note's octave
        {"z/z*z", false, {"C4", "C3", "C4"}, 3},
        {"////z", false, {"Ct"}, 1},           // entry octave 0: the track's octave
        {"1^.", false, {""}, 1},
        {"890", false, {""}, 0},               // no chord note 8, 9 or 0
        {"1a", false, {"1"}, 1},               // other letters do nothing, nor jump
        // Keypad digits stay chord notes; a step of 4 stops at the last row.
        {"~33", true, {"3", "D#5"}, 63, 3, 62, 4},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.keys);
        session().newPart();
        session().setDefaultOctave(4);
        m_panel->setDigitsPlayNotes(c.digitsPlayNotes);
        m_panel->setStep(c.step);
        m_panel->moveCursorTo(c.row, c.track);
        type(QString::fromLatin1(c.keys));
        for (int row = 0; row < c.cells.size(); ++row)
            EXPECT_EQ(cellText(c.track, c.row + row), c.cells[row]) << "row " << c.row + row;
        EXPECT_EQ(pattern().usedCellCount(),
                  std::count_if(c.cells.begin(), c.cells.end(),
                                [](const QString& s) { return !s.isEmpty(); }));
        EXPECT_EQ(m_panel->cursorRow(), c.cursorRow);
    }
}

TEST_F(PatternGrid, EachEntryIsOneLiveUndoStepNamedEditPattern)
{
    QSignalSpy stops(&session(), &PartSession::aboutToEdit);
    type(QStringLiteral("12"));
    EXPECT_EQ(frame().action("edit.undo")->text(), QStringLiteral("Undo Edit pattern"));
    press("Ctrl+Z");
    EXPECT_EQ(cellText(0, 1), QString());
    EXPECT_EQ(cellText(0, 0), QStringLiteral("1"));
    press("Ctrl+Y");
    EXPECT_EQ(cellText(0, 1), QStringLiteral("2"));
    EXPECT_EQ(stops.count(), 0) << "editing cells and undoing them does not stop playback";
}

TEST_F(PatternGrid, CopyCutAndPasteWithUndoAndRedo)
{
    loadPart();
    m_panel->selectRect(QRect(0, 0, 2, 2)); // tracks 1-2, rows 0-1
    press("Ctrl+C");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("1\t.\n.\tE5\n"));

    m_panel->moveCursorTo(10, 4);
    press("Ctrl+V");
    EXPECT_EQ(cellText(4, 10), QStringLiteral("1"));
    EXPECT_EQ(cellText(5, 11), QStringLiteral("E5"));
    EXPECT_EQ(m_panel->selectedRect(), QRect(4, 10, 2, 2)) << "the pasted cells are selected";
    EXPECT_EQ(session().undoText(), QStringLiteral("Pattern paste"));

    m_panel->selectRect(QRect(2, 5, 1, 1));
    press("Ctrl+X");
    EXPECT_EQ(cellText(2, 5), QString());
    EXPECT_EQ(session().undoText(), QStringLiteral("Pattern cut"));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("2+\n"));

    session().undo();
    EXPECT_EQ(cellText(2, 5), QStringLiteral("2+"));
    session().undo();
    EXPECT_EQ(cellText(4, 10), QString());
    EXPECT_EQ(pattern().usedCellCount(), 3);
    session().redo();
    session().redo();
    EXPECT_EQ(cellText(5, 11), QStringLiteral("E5"));
    EXPECT_EQ(cellText(2, 5), QString());
}

TEST_F(PatternGrid, PastingTextFromElsewhereOrRefusingIt)
{
    loadPart();
    const part::Pattern before = pattern();
    const int steps = session().history().size();
    QGuiApplication::clipboard()->setText(QStringLiteral("Cmaj7 is a chord"));
    m_panel->moveCursorTo(20, 0);
    press("Ctrl+V");
    EXPECT_EQ(m_messages.texts(),
              QStringList{QStringLiteral("Row 1, track 1: \"Cmaj7\" is no pattern cell.")});
    EXPECT_EQ(pattern(), before);
    EXPECT_EQ(session().history().size(), steps);

    // Typed in a mail, blanks between cells; the corner of the pattern cuts it.
    QGuiApplication::clipboard()->setText(QStringLiteral("?3 off C#t\n1 2 3\n"));
    m_panel->moveCursorTo(63, 6);
    press("Ctrl+V");
    EXPECT_EQ(cellText(6, 63), QStringLiteral("?3"));
    EXPECT_EQ(cellText(7, 63), QStringLiteral("off"));
    EXPECT_EQ(pattern().usedCellCount(), before.usedCellCount() + 2);
}

TEST_F(PatternGrid, ClearSelectedAndClearPatternKeepNameAndTrackOctaves)
{
    loadPart();
    m_panel->selectRect(QRect(0, 0, 2, 1));
    press("Del");
    EXPECT_EQ(cellText(0, 0), QString());
    EXPECT_EQ(cellText(1, 1), QStringLiteral("E5")) << "outside the selection";
    EXPECT_EQ(session().undoText(), QStringLiteral("Edit pattern"));

    m_panel->contextMenu()
        ->findChild<QAction*>(QStringLiteral("patternEditor.clearPattern"))
        ->trigger();
    EXPECT_EQ(pattern().usedCellCount(), 0);
    EXPECT_EQ(pattern().trackOctave(2), 8);
    EXPECT_EQ(pattern().name(), "noname");
    session().undo();
    EXPECT_EQ(pattern().usedCellCount(), 2);

    // Ctrl+Del, as the menu shows it "Ctrl+Entf".
    press("Ctrl+Del");
    EXPECT_EQ(pattern().usedCellCount(), 0);
    const int steps = session().history().size();
    press("Ctrl+Del"); // an empty pattern: nothing to record
    EXPECT_EQ(session().history().size(), steps);
}

TEST_F(PatternGrid, SelectAllAndSelectTrackKeepTheCursorRow)
{
    m_panel->moveCursorTo(9, 5);
    press("Ctrl+Shift+A");
    EXPECT_EQ(m_panel->selectedRect(), QRect(5, 0, 1, 64));
    EXPECT_EQ(m_panel->cursorRow(), 9);
    press("Ctrl+A");
    EXPECT_EQ(m_panel->selectedRect(), QRect(0, 0, 8, 64));

    // A change key acts on the whole selection and leaves the cursor where it is.
    loadPart();
    press("Ctrl+A");
    type(QStringLiteral("p"));
    EXPECT_EQ(cellText(0, 0), QStringLiteral("?1"));
    EXPECT_EQ(cellText(2, 5), QStringLiteral("?2+"));
    EXPECT_EQ(cellText(1, 1), QStringLiteral("E5")) << "fixed notes have no chance";
    EXPECT_EQ(m_panel->cursorRow(), 9);
}

TEST_F(PatternGrid, MouseSelectsARectangleAndADoubleClickEditsACell)
{
    const auto centre = [this](int row, int track) {
        return grid()->visualRect(model()->index(row, track)).center();
    };
    QTest::mouseClick(grid()->viewport(), Qt::LeftButton, {}, centre(1, 1));
    EXPECT_EQ(m_panel->selectedRect(), QRect(1, 1, 1, 1));
    QTest::mouseClick(grid()->viewport(), Qt::LeftButton, Qt::ShiftModifier, centre(3, 2));
    EXPECT_EQ(m_panel->selectedRect(), QRect(1, 1, 2, 3));

    // A real double-click starts with a press, which QTest's double-click leaves out.
    QTest::mouseClick(grid()->viewport(), Qt::LeftButton, {}, centre(4, 6));
    QTest::mouseDClick(grid()->viewport(), Qt::LeftButton, {}, centre(4, 6));
    auto* editor = grid()->findChild<QLineEdit*>(QStringLiteral("patternCellEditor"));
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("C#"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents(); // the delegate commits after the key
    EXPECT_EQ(cellText(6, 4), QString()) << "half a cell is not stored";
    editor->setText(QStringLiteral("?3+"));
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(pattern().cell(6, 4), (PatternCell{CellKind::ChanceChordNote, 2, part::kShiftUp}));
}

TEST_F(PatternGrid, TrackSwitchesToggleFromTheHeaderItsMenuAndTheKeys)
{
    const int steps = session().history().size();
    app::PatternTrackHeader* header = m_panel->trackHeader();
    const QPoint onSwitch = app::PatternTrackHeader::switchRect(header->sectionRect(2)).center();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, onSwitch);
    EXPECT_FALSE(session().renderOptions().tracks[2]);
    EXPECT_FALSE(model()->index(0, 2).data(PatternGridModel::TrackOnRole).toBool());
    EXPECT_TRUE(model()
                    ->headerData(2, Qt::Horizontal, Qt::AccessibleTextRole)
                    .toString()
                    .endsWith(QStringLiteral(", off")));
    EXPECT_TRUE(session().renderOptions().tracks[1]);

    // The switch is not part of the pattern: nothing to undo.
    EXPECT_EQ(session().history().size(), steps);

    m_panel->moveCursorTo(0, 2);
    press("Ctrl+M");
    EXPECT_TRUE(session().renderOptions().tracks[2]);

    // The header menu acts on the track right-clicked.
    header->customContextMenuRequested(header->sectionRect(6).center());
    QAction* toggle =
        m_panel->trackHeaderMenu()->findChild<QAction*>(QStringLiteral("trackHeader.toggle"));
    toggle->trigger();
    EXPECT_FALSE(session().renderOptions().tracks[6]);
    m_panel->trackHeaderMenu()->hide();
}

TEST_F(PatternGrid, RowsPastTheChordAreShadedBeatsMarkedAndThePlayingRowFollowsTheSession)
{
    loadPart(3);
    QAbstractItemModelTester tester(model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    const auto rows = [this](int role) {
        QList<int> found;
        for (int row = 0; row < 64; ++row) {
            if (model()->index(row, 3).data(role).toBool())
                found << row;
        }
        return found;
    };
    EXPECT_TRUE(rows(PatternGridModel::PastLengthRole).isEmpty()) << "no chord chosen";
    session().setCurrentChord(0); // pattern 0, 16 rows
    EXPECT_EQ(rows(PatternGridModel::PastLengthRole).front(), 16);
    EXPECT_EQ(rows(PatternGridModel::PastLengthRole).size(), 48);
    session().setCurrentChord(1); // plays another pattern: this one is not cut short
    EXPECT_TRUE(rows(PatternGridModel::PastLengthRole).isEmpty());
    EXPECT_EQ(rows(PatternGridModel::BeatRole).mid(0, 4), (QList<int>{0, 3, 6, 9}));

    QSignalSpy changes(model(), &QAbstractItemModel::dataChanged);
    session().setPlayingPosition(0, 5);
    EXPECT_EQ(rows(PatternGridModel::PlayingRole), QList<int>{5});
    EXPECT_EQ(changes.count(), 1) << "one row announced, nothing polled";
    session().setPlayingPosition(0, 6);
    EXPECT_EQ(rows(PatternGridModel::PlayingRole), QList<int>{6});
    EXPECT_TRUE(model()
                    ->index(6, 0)
                    .data(Qt::AccessibleTextRole)
                    .toString()
                    .endsWith(QStringLiteral(", playing")));
    session().setPlayingPosition(1, 2); // chord 1 plays pattern 1, not shown
    EXPECT_TRUE(rows(PatternGridModel::PlayingRole).isEmpty());
    session().setPlayingPosition(-1, -1);
    EXPECT_TRUE(rows(PatternGridModel::PlayingRole).isEmpty());
}

TEST_F(PatternGrid, EditsAnnounceOnlyTheirCellsSoTheSelectionSurvivesUndo)
{
    loadPart();
    m_panel->selectRect(QRect(0, 0, 3, 6));
    QSignalSpy changes(model(), &QAbstractItemModel::dataChanged);
    QSignalSpy resets(model(), &QAbstractItemModel::modelReset);
    session().edit(QString::fromLatin1(PartSession::kEditPattern), PartSession::Cells,
                   [](part::Part& p) {
                       p.patterns().pattern(0).setCell(7, 40, {CellKind::Off, 0, 0});
                       return true;
                   });
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes[0][0].toModelIndex(), model()->index(40, 7));
    EXPECT_EQ(changes[0][1].toModelIndex(), model()->index(40, 7));
    session().undo();
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(m_panel->selectedRect(), QRect(0, 0, 3, 6));

    // Another pattern shown: its cells, its track octaves.
    session().setCurrentPattern(1);
    EXPECT_EQ(model()->index(0, 0).data().toString(), QString());
    EXPECT_EQ(model()->headerData(2, Qt::Horizontal, PatternGridModel::TrackOctaveRole), 0);
    session().setCurrentPattern(0);
    EXPECT_EQ(model()->index(5, 2).data().toString(), QStringLiteral("2+"));
}

TEST_F(PatternGrid, AssistiveTechnologyReadsTheGridAsATable)
{
    loadPart();
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(grid());
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->text(QAccessible::Name), QStringLiteral("Pattern grid"));
    QAccessibleTableInterface* cells = table->tableInterface();
    ASSERT_NE(cells, nullptr);
    EXPECT_EQ(cells->rowCount(), 64);
    EXPECT_EQ(cells->columnCount(), 8);
    const std::tuple<int, int, const char*> expected[] = {
        {5, 2, "Track 3, row 5: chord note 2, shift up"},
        {1, 1, "Track 2, row 1: fixed note E5"},
        {0, 0, "Track 1, row 0: chord note 1"},
        {9, 7, "Track 8, row 9: empty"},
    };
    for (const auto& [row, column, text] : expected) {
        QAccessibleInterface* cell = cells->cellAt(row, column);
        ASSERT_NE(cell, nullptr);
        EXPECT_EQ(cell->text(QAccessible::Name), QString::fromLatin1(text));
    }
    EXPECT_EQ(model()->headerData(2, Qt::Horizontal, Qt::AccessibleTextRole).toString(),
              QStringLiteral("Track 3, octave base - 2, on"));
}

} // namespace
