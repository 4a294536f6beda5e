// Undo and Redo of the main window: they act on the region that has, or last had, the focus, and
// their texts name the step they undo or redo.
#include "AppTestSupport.h"

#include "app/CTempoBar.h"
#include "app/CTreeCtrlX.h"
#include "app/PartSession.h"
#include "app/UndoRouter.h"

#include <QAction>
#include <QListWidget>
#include <QSpinBox>
#include <QTest>
#include <QUndoStack>

namespace {

using music::TreePosition;

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
        // The part list is a region with the part's history.
        m_part = view().regions().partList;
        m_part->setFocusPolicy(Qt::StrongFocus);

        showActiveFrame();
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

    /** One undoable step of the part: a chord more. */
    void addChord()
    {
        view().partSession()->edit(QStringLiteral("Add chord"), app::PartSession::Chords,
                                   [](part::Part& p) { return p.append(part::PartChord{}); });
    }
    int partChords() { return view().partSession()->part().count(); }

    QWidget* m_part = nullptr;
};

TEST_F(UndoRouting, EachRegionUndoesItsOwnStepsAndTheCommandsNameThem)
{
    QWidget* tree = chords().tree();
    tree->setFocus();
    chords().selectPosition(TreePosition::ofBaseGroup(0));
    chords().treeCommands().removeSelected();
    const int before = partChords();
    addChord();
    ASSERT_EQ(partChords(), before + 1);

    EXPECT_EQ(undo()->text(), QStringLiteral("Undo Remove"));
    EXPECT_FALSE(redo()->isEnabled());
    press(tree, QKeySequence(QStringLiteral("Ctrl+Z")));
    EXPECT_EQ(chords().collection().baseGroups().size(), 2u);
    EXPECT_EQ(partChords(), before + 1); // the part is left alone
    EXPECT_FALSE(undo()->isEnabled());
    EXPECT_EQ(redo()->text(), QStringLiteral("Redo Remove"));

    m_part->setFocus();
    EXPECT_EQ(undo()->text(), QStringLiteral("Undo Add chord"));
    EXPECT_TRUE(undo()->isEnabled());
    EXPECT_FALSE(redo()->isEnabled());
    press(m_part, QKeySequence(QStringLiteral("Ctrl+Z")));
    EXPECT_EQ(partChords(), before);
    EXPECT_EQ(chords().collection().baseGroups().size(), 2u);

    // Both redo keys bring the step back, each in turn.
    for (const char* keys : {"Ctrl+Y", "Ctrl+Shift+Z"}) {
        SCOPED_TRACE(keys);
        EXPECT_EQ(redo()->text(), QStringLiteral("Redo Add chord"));
        press(m_part, QKeySequence(QString::fromLatin1(keys)));
        EXPECT_EQ(partChords(), before + 1);
        press(m_part, QKeySequence(QStringLiteral("Ctrl+Z")));
        EXPECT_EQ(partChords(), before);
    }
}

TEST_F(UndoRouting, FocusOutsideTheRegionsKeepsTheLastRegionsHistory)
{
    const int before = partChords();
    addChord();
    m_part->setFocus();
    QSpinBox* tempo = frame().tempoBar()->beatsPerMinuteBox();
    tempo->setFocus();
    ASSERT_TRUE(tempo->hasFocus());
    EXPECT_EQ(undo()->text(), QStringLiteral("Undo Add chord"));
    undo()->trigger();
    EXPECT_EQ(partChords(), before);
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
