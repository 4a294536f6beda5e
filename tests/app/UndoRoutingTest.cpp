// Undo and Redo of the main window: they act on the region that has, or last had, the focus, and
// their texts name the step they undo or redo.
#include "AppTestSupport.h"

#include "app/CTempoBar.h"
#include "app/CTreeCtrlX.h"
#include "app/UndoRouter.h"
#include "app/UndoStackTarget.h"

#include <QAction>
#include <QListWidget>
#include <QSpinBox>
#include <QTest>
#include <QUndoCommand>
#include <QUndoStack>

namespace {

using music::TreePosition;

/** One step of a second region: counts its undos and redos. */
class CountingCommand : public QUndoCommand
{
public:
    CountingCommand(const QString& text, int& state) : QUndoCommand(text), m_state(state) {}
    void undo() override { --m_state; }
    void redo() override { ++m_state; }

private:
    int& m_state;
};

class UndoRouting : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        AppFixture::SetUp();
        music::ChordCollection c;
        c.baseGroups().push_back({"G", {}});
        c.baseGroups().push_back({"H", {}});
        chords().collection() = c;
        chords().refreshTree();
        // The part list stands in for a panel with a history of its own.
        m_part = view().regions().partList;
        m_partStack = new QUndoStack(m_part);
        view().registerUndoTarget(m_part, new app::UndoStackTarget(m_partStack, m_part));

        frame().show();
        frame().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&frame()));
    }
    void TearDown() override
    {
        frame().hide();
        AppFixture::TearDown();
    }

    QAction* undo() { return frame().action("edit.undo"); }
    QAction* redo() { return frame().action("edit.redo"); }
    void press(QWidget* focus, const QKeySequence& keys)
    {
        QTest::keySequence(focus, keys);
        QCoreApplication::processEvents();
    }

    QWidget* m_part = nullptr;
    QUndoStack* m_partStack = nullptr;
    int m_partState = 0;
};

TEST_F(UndoRouting, EachRegionUndoesItsOwnStepsAndTheCommandsNameThem)
{
    QWidget* tree = chords().tree();
    tree->setFocus();
    chords().selectPosition(TreePosition::ofBaseGroup(0));
    chords().treeCommands().removeSelected();
    m_partStack->push(new CountingCommand(QStringLiteral("Add chord"), m_partState));
    ASSERT_EQ(m_partState, 1);

    EXPECT_EQ(undo()->text(), QStringLiteral("Undo Remove"));
    EXPECT_FALSE(redo()->isEnabled());
    press(tree, QKeySequence(QStringLiteral("Ctrl+Z")));
    EXPECT_EQ(chords().collection().baseGroups().size(), 2u);
    EXPECT_EQ(m_partState, 1); // the part is left alone
    EXPECT_FALSE(undo()->isEnabled());
    EXPECT_EQ(redo()->text(), QStringLiteral("Redo Remove"));

    m_part->setFocus();
    EXPECT_EQ(undo()->text(), QStringLiteral("Undo Add chord"));
    EXPECT_TRUE(undo()->isEnabled());
    EXPECT_FALSE(redo()->isEnabled());
    press(m_part, QKeySequence(QStringLiteral("Ctrl+Z")));
    EXPECT_EQ(m_partState, 0);
    EXPECT_EQ(chords().collection().baseGroups().size(), 2u);

    // Both redo keys bring the step back, each in turn.
    for (const char* keys : {"Ctrl+Y", "Ctrl+Shift+Z"}) {
        SCOPED_TRACE(keys);
        EXPECT_EQ(redo()->text(), QStringLiteral("Redo Add chord"));
        press(m_part, QKeySequence(QString::fromLatin1(keys)));
        EXPECT_EQ(m_partState, 1);
        press(m_part, QKeySequence(QStringLiteral("Ctrl+Z")));
        EXPECT_EQ(m_partState, 0);
    }
}

TEST_F(UndoRouting, FocusOutsideTheRegionsKeepsTheLastRegionsHistory)
{
    m_partStack->push(new CountingCommand(QStringLiteral("Add chord"), m_partState));
    m_part->setFocus();
    QSpinBox* tempo = frame().tempoBar()->beatsPerMinuteBox();
    tempo->setFocus();
    ASSERT_TRUE(tempo->hasFocus());
    EXPECT_EQ(undo()->text(), QStringLiteral("Undo Add chord"));
    undo()->trigger();
    EXPECT_EQ(m_partState, 0);
    // The chord database's history had nothing to undo and still has not.
    EXPECT_EQ(chords().undoStack()->count(), 0);
}

TEST_F(UndoRouting, TheDatabaseIsTheTargetBeforeAnyRegionHadTheFocus)
{
    // A fresh start: nothing focused yet, Ctrl+Z still reaches the chord database.
    EXPECT_EQ(view().undoRouter()->activeTarget(), chords().undoTarget());
    EXPECT_EQ(undo()->text(), QStringLiteral("Undo"));
    EXPECT_FALSE(undo()->isEnabled());
    chords().selectPosition(TreePosition::ofBaseGroup(1));
    chords().treeCommands().removeSelected();
    EXPECT_TRUE(undo()->isEnabled());
    EXPECT_EQ(undo()->statusTip(), QStringLiteral("Undo Remove."));
}

} // namespace
