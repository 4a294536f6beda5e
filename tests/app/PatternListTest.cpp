// The pattern list as a musician uses it: commands from its menu and the window's keys, with the
// part's chords renumbered when patterns go, undo and redo, renaming in place, and what assistive
// technology reads.
#include "AppTestSupport.h"

#include "app/PartSession.h"
#include "app/PatternListModel.h"
#include "app/PatternListPanel.h"
#include "app/RowDiff.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QAction>
#include <QFont>
#include <QLineEdit>
#include <QMenu>
#include <QTest>

namespace {

using app::PartSession;
using app::PatternListModel;

TEST(RowDiff, FindsTheRowsChangedInsertedOrRemovedBetweenTwoLists)
{
    using V = std::vector<int>;
    const struct
    {
        V before, after;
        int first, changed, removed, inserted;
    } cases[] = {
        {{1, 2, 3}, {1, 2, 3}, 3, 0, 0, 0},
        {{1, 2, 3}, {1, 2, 3, 4}, 3, 0, 0, 1},
        {{1, 2, 3, 4}, {1, 2, 4}, 2, 0, 1, 0},
        {{1, 2, 3}, {1, 9, 3}, 1, 1, 0, 0},
        {{1, 2, 3, 4}, {1, 8, 4}, 1, 1, 1, 0}, // one changed, one gone
        {{}, {5, 6}, 0, 0, 0, 2},
        {{5, 6}, {}, 0, 0, 2, 0},
        {{7, 7, 7}, {7, 7}, 2, 0, 1, 0}, // equal rows: the last one goes
    };
    for (const auto& c : cases) {
        const app::RowDiff d = app::RowDiff::between(c.before, c.after);
        EXPECT_EQ(std::tuple(d.first, d.changed, d.removed, d.inserted),
                  std::tuple(c.first, c.changed, c.removed, c.inserted))
            << ::testing::PrintToString(c.before) << " -> " << ::testing::PrintToString(c.after);
    }
}

class PatternList : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        AppFixture::SetUp();
        m_panel = view().patternList();
        ASSERT_NE(m_panel, nullptr);
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_panel->patternModel(), QAbstractItemModelTester::FailureReportingMode::Warning);
        showActiveFrame();
    }
    void TearDown() override
    {
        m_tester.reset();
        frame().hide();
        AppFixture::TearDown();
    }

    QAbstractItemModel* model() { return m_panel->patternModel(); }

    /** Patterns "p0".."p<n-1>" and one chord on each pattern listed, as from a file. */
    void loadPart(int patterns, const std::vector<int>& chordPatterns)
    {
        part::Part p;
        for (int i = 0; i < patterns; ++i)
            p.patterns().append(part::Pattern("p" + std::to_string(i)));
        for (int pattern : chordPatterns) {
            part::PartChord chord;
            chord.pattern = static_cast<std::uint16_t>(pattern);
            p.append(chord);
        }
        session().loadPart(p, QString());
    }
    std::vector<int> chordPatterns()
    {
        std::vector<int> out;
        for (const part::PartChord& c : session().part().chords())
            out.push_back(c.pattern);
        return out;
    }
    /** The list as shown: "number name chords" per row, "*" after the current one. */
    std::string shown()
    {
        QStringList rows;
        for (int r = 0; r < model()->rowCount(); ++r) {
            QString row = model()->headerData(r, Qt::Vertical).toString();
            for (int c = 0; c < PatternListModel::ColumnCount; ++c)
                row += QLatin1Char(' ') + model()->index(r, c).data().toString();
            rows << row + (m_panel->currentIndex().row() == r ? QStringLiteral("*") : QString());
        }
        return rows.join(QStringLiteral(" | ")).toStdString();
    }
    void clickRow(int row)
    {
        const QRect cell = m_panel->visualRect(model()->index(row, PatternListModel::ChordsColumn));
        QTest::mouseClick(m_panel->viewport(), Qt::LeftButton, {}, cell.center());
    }
    QAction* item(const char* id)
    {
        return m_panel->contextMenu()->findChild<QAction*>(QString::fromLatin1(id));
    }

    app::PatternListPanel* m_panel = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

TEST_F(PatternList, CommandsRenumberTheChordsAndUndoRedoBringThePartBack)
{
    struct Case
    {
        const char* command; // a menu item's id, or keys pressed in the list
        bool keys;
        int patterns;
        int current;
        QStringList after;
        std::vector<int> chordsAfter;
        const char* undoText;
    };
    // clang-format off
    const Case cases[] = {
        {"pattern.remove", false, 4, 2, {"00 p0 1", "01 p1 2*", "02 p3 1"}, {0, 1, 1, 2},
         "Undo Remove pattern"},
        {"Ctrl+Shift+Del", true, 4, 0, {"00 p1 2*", "01 p2 1", "02 p3 1"}, {0, 0, 1, 2},
         "Undo Remove pattern"},
        {"pattern.remove", false, 4, 3, {"00 p0 1", "01 p1 1", "02 p2 2*"}, {0, 1, 2, 2},
         "Undo Remove pattern"},
        {"pattern.remove", false, 1, 0, {"00 noname 4*"}, {0, 0, 0, 0}, "Undo Remove pattern"},
        {"pattern.clear", false, 4, 2, {"00 noname 4*"}, {0, 0, 0, 0},
         "Undo Remove all patterns"},
        {"pattern.new", false, 4, 1, {"00 p0 1", "01 p1 1*", "02 p2 1", "03 p3 1", "04 noname 0"},
         {0, 1, 2, 3}, "Undo Add pattern"},
        {"Ctrl+Return", true, 4, 1, {"00 p0 1", "01 p1 1*", "02 p2 1", "03 p3 1", "04 noname 0"},
         {0, 1, 2, 3}, "Undo Add pattern"},
        {"Ctrl+Shift+Return", true, 4, 1, {"00 p0 1", "01 p1 1", "02 p2 1", "03 p3 1", "04 p1 0*"},
         {0, 1, 2, 3}, "Undo Copy pattern"},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.command) + " on pattern " + std::to_string(c.current));
        loadPart(c.patterns,
                 c.patterns == 1 ? std::vector<int>{0, 0, 0, 0} : std::vector<int>{0, 1, 2, 3});
        const part::Part before = session().part();
        clickRow(c.current);
        ASSERT_EQ(session().part().currentPattern(), c.current);
        m_panel->setFocus();
        if (c.keys)
            QTest::keySequence(m_panel, QKeySequence(QString::fromLatin1(c.command)));
        else
            item(c.command)->trigger();
        EXPECT_EQ(shown(), c.after.join(QStringLiteral(" | ")).toStdString());
        EXPECT_EQ(chordPatterns(), c.chordsAfter);
        EXPECT_EQ(frame().action("edit.undo")->text(), QString::fromLatin1(c.undoText));

        const part::Part after = session().part();
        QTest::keySequence(m_panel, QKeySequence(QStringLiteral("Ctrl+Z")));
        EXPECT_EQ(session().part().patterns(), before.patterns());
        EXPECT_EQ(chordPatterns(),
                  (c.patterns == 1 ? std::vector<int>{0, 0, 0, 0} : std::vector<int>{0, 1, 2, 3}));
        QTest::keySequence(m_panel, QKeySequence(QStringLiteral("Ctrl+Y")));
        EXPECT_EQ(session().part(), after);
        EXPECT_EQ(shown(), c.after.join(QStringLiteral(" | ")).toStdString());
    }
}

TEST_F(PatternList, ClicksAndArrowsChooseThePatternTheGridShows)
{
    loadPart(3, {2});
    clickRow(2);
    EXPECT_EQ(session().part().currentPattern(), 2);
    QTest::keyClick(m_panel, Qt::Key_Up);
    EXPECT_EQ(session().part().currentPattern(), 1);
    EXPECT_EQ(session().history().size(), 1) << "choosing a pattern is not an undo step";
    // The session chooses too (a copy becomes current): the list follows.
    session().copyPattern();
    EXPECT_EQ(m_panel->currentIndex().row(), 3);
    EXPECT_TRUE(model()->index(3, 0).data(Qt::FontRole).value<QFont>().bold());
    EXPECT_FALSE(model()->index(1, 0).data(Qt::FontRole).value<QFont>().bold());
}

TEST_F(PatternList, RenamesInPlaceKeepingTheNameToOneLine)
{
    loadPart(2, {});
    clickRow(1);
    m_panel->setFocus();
    const struct
    {
        bool byMenu; // else F2, with the cursor on the chord count
        QString typed;
        std::string stored;
    } cases[] = {
        {true, QStringLiteral("Verse"), "Verse"},
        {false, QStringLiteral("  Chorus   "), "  Chorus"}, // as the file will read it back
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        if (c.byMenu) {
            item("pattern.rename")->trigger();
        } else {
            m_panel->setCurrentIndex(model()->index(1, PatternListModel::ChordsColumn));
            QTest::keyClick(m_panel, Qt::Key_F2);
        }
        auto* editor = qobject_cast<QLineEdit*>(
            m_panel->indexWidget(model()->index(1, PatternListModel::NameColumn)));
        ASSERT_NE(editor, nullptr);
        ASSERT_TRUE(editor->isVisible());
        EXPECT_EQ(editor->accessibleName(), QStringLiteral("Pattern name"));
        editor->selectAll();
        QTest::keyClicks(editor, c.typed);
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::processEvents(); // the view takes the name from a queued call
        EXPECT_EQ(session().part().patterns().pattern(1).name(), c.stored);
        EXPECT_EQ(frame().action("edit.undo")->text(), QStringLiteral("Undo Rename pattern"));
    }
    // A line break pasted into a name would split the part file's lines.
    const int steps = session().history().size();
    EXPECT_TRUE(model()->setData(model()->index(0, PatternListModel::NameColumn),
                                 QStringLiteral("Intro\nslow\r")));
    EXPECT_EQ(session().part().patterns().pattern(0).name(), "Intro slow");
    EXPECT_FALSE(model()->setData(model()->index(0, PatternListModel::NameColumn),
                                  QStringLiteral("Intro slow")));
    EXPECT_EQ(session().history().size(), steps + 1) << "the same name again is no step";
    EXPECT_FALSE(model()->setData(model()->index(0, PatternListModel::ChordsColumn), 5));
}

TEST_F(PatternList, AssistiveTechnologyReadsTheListAsATable)
{
    loadPart(2, {1, 1});
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(m_panel);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->text(QAccessible::Name), QStringLiteral("Patterns"));
    QAccessibleTableInterface* table = list->tableInterface();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->rowCount(), 2);
    EXPECT_EQ(table->columnCount(), 2);
    EXPECT_EQ(table->cellAt(1, 0)->text(QAccessible::Name), QStringLiteral("p1"));
    EXPECT_EQ(table->cellAt(1, 1)->text(QAccessible::Name), QStringLiteral("2"));
    // The number is the row header: read out as "Pattern 01", not a bare "01".
    const QList<QAccessibleInterface*> header =
        table->cellAt(1, 0)->tableCellInterface()->rowHeaderCells();
    ASSERT_EQ(header.size(), 1);
    EXPECT_EQ(header.first()->text(QAccessible::Name), QStringLiteral("Pattern 01"));
    EXPECT_EQ(model()->index(1, 0).data(Qt::ToolTipRole).toString(),
              QStringLiteral("Pattern 01 \"p1\": 2 chords play it"));
    EXPECT_EQ(m_panel->contextMenu()->accessibleName(), QStringLiteral("Pattern list commands"));
}

} // namespace
