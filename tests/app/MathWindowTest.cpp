// The pattern generator window as a musician uses it: a recipe chosen, edited or pasted as
// text, previewed in the grid without touching the part, applied as one live undo step, into
// the whole pattern or the selected block; the user's recipes kept in the user folder.
#include "AppTestSupport.h"

#include "app/MathWindow.h"
#include "app/PartSession.h"
#include "app/PatternCellText.h"
#include "app/PatternGridModel.h"
#include "app/PatternGridPanel.h"
#include "app/PatternGridView.h"
#include "app/RecipeEditor.h"
#include "app/RecipeListModel.h"
#include "part/PatternRecipeList.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

namespace {

using app::PartSession;
using app::PatternGridModel;

class MathWindowTest : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        AppFixture::SetUp();
        m_grid = qobject_cast<app::PatternGridPanel*>(view().regions().patternGrid);
        ASSERT_NE(m_grid, nullptr);
        m_grid->moveCursorTo(0, 0);
    }
    void TearDown() override
    {
        window().hide();
        AppFixture::TearDown();
    }

    app::MathWindow& window() { return *view().mathWindow(); }
    PatternGridModel& grid() { return *m_grid->model(); }
    const part::Pattern& partPattern()
    {
        return session().part().patterns().pattern(session().part().currentPattern());
    }
    QString shown(int row, int track) { return grid().index(row, track).data().toString(); }
    QString inPart(int row, int track)
    {
        return app::PatternCellText::format(partPattern().cell(track, row));
    }

    void open()
    {
        frame().action("view.mathWindow")->trigger();
        ASSERT_TRUE(window().isVisible());
    }
    /** Picks the list's recipe of that name, as a click does. */
    void choose(const QString& name)
    {
        app::RecipeListModel& list = *window().recipeModel();
        for (int row = 0; row < list.rowCount(); ++row) {
            if (list.index(row).data() == name) {
                window().recipeList()->setCurrentIndex(list.index(row));
                return;
            }
        }
        ADD_FAILURE() << "no recipe " << name.toStdString();
    }
    QString userFile() { return m_data.file(QStringLiteral("user/recipes.rcp")); }

    app::PatternGridPanel* m_grid = nullptr;
};

TEST_F(MathWindowTest, PreviewShowsTheRecipeInTheGridAndLeavesThePartAlone)
{
    // Start-up leaves the window unbuilt; its command builds it.
    EXPECT_EQ(view().findChild<app::MathWindow*>(), nullptr);
    const part::Part before = session().part();
    const int steps = session().history().size();
    open();
    EXPECT_EQ(view().findChild<app::MathWindow*>(), &window());
    choose(QStringLiteral("Tresillo E(3,8)")); // E(3,8) two rows a step: rows 0, 6, 12, 16...
    EXPECT_EQ(window().textEdit()->text(),
              QStringLiteral("euclid step=2 name=\"Tresillo E(3,8)\""));
    struct Cell
    {
        int row;
        int track;
        const char* text;
    };
    for (const Cell c : {Cell{0, 0, "1"}, Cell{6, 1, "2"}, Cell{12, 2, "3"}, Cell{22, 0, "1"},
                         Cell{2, 0, ""}, Cell{16, 3, ""}}) {
        SCOPED_TRACE(c.row * 10 + c.track);
        EXPECT_EQ(shown(c.row, c.track), QString::fromLatin1(c.text));
    }
    EXPECT_TRUE(m_grid->isPreviewing());
    EXPECT_TRUE(m_grid->previewNote()->isVisibleTo(m_grid));
    EXPECT_EQ(grid().index(6, 0).data(PatternGridModel::PreviewRole).toInt(), 2) << "new here";
    EXPECT_TRUE(grid().index(1, 7).data(PatternGridModel::PreviewRole).toInt() > 0);
    EXPECT_TRUE(grid().index(6, 0).data(Qt::AccessibleTextRole).toString().endsWith(", preview"));

    // The part is untouched, and the grid takes no entries that it could not show.
    EXPECT_EQ(session().part(), before);
    EXPECT_EQ(session().history().size(), steps);
    EXPECT_FALSE(session().isModified());
    EXPECT_FALSE(grid().flags(grid().index(3, 3)) & Qt::ItemIsEditable);
    QTest::keyClick(m_grid->grid(), Qt::Key_5);
    EXPECT_FALSE(grid().setData(grid().index(3, 3), QStringLiteral("2")));
    EXPECT_EQ(session().part(), before);

    // Closing ends the preview: the grid shows the part again.
    window().reject();
    EXPECT_FALSE(m_grid->isPreviewing());
    EXPECT_FALSE(m_grid->previewNote()->isVisibleTo(m_grid));
    for (int row : {0, 6, 12})
        EXPECT_EQ(shown(row, 1), inPart(row, 1)) << row;
    EXPECT_EQ(grid().index(6, 0).data(PatternGridModel::PreviewRole).toInt(), 0);
    EXPECT_EQ(session().part(), before);

    // Opened again, the same window serves.
    open();
    EXPECT_EQ(view().findChildren<app::MathWindow*>().size(), 1);
    choose(QStringLiteral("Arpeggio up"));
    EXPECT_TRUE(window().apply());
}

TEST_F(MathWindowTest, ApplyIsOneLiveUndoStepThatUndoTakesBack)
{
    const part::Pattern before = partPattern();
    const int steps = session().history().size();
    QSignalSpy stops(&session(), &PartSession::aboutToEdit);
    open();
    choose(QStringLiteral("Arpeggio up and down"));
    const part::Pattern previewed = grid().pattern();
    ASSERT_NE(previewed, before);
    QTest::mouseClick(window().applyButton(), Qt::LeftButton);
    EXPECT_EQ(partPattern(), previewed) << "what was previewed is what is applied";
    EXPECT_EQ(session().history().size(), steps + 1);
    EXPECT_EQ(session().undoText(), QStringLiteral("Generate pattern"));
    EXPECT_FALSE(m_grid->isPreviewing()) << "after Apply the grid takes entries again";
    EXPECT_TRUE(grid().isEditable());

    // Applying again changes nothing and records nothing.
    window().apply();
    EXPECT_EQ(session().history().size(), steps + 1);

    // Ctrl+Z and Ctrl+Y work in the Math Window itself.
    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    QTest::keySequence(&window(), QKeySequence(QStringLiteral("Ctrl+Z")));
    EXPECT_EQ(partPattern(), before);
    QTest::keySequence(&window(), QKeySequence(QStringLiteral("Ctrl+Y")));
    EXPECT_EQ(partPattern(), previewed);
    session().undo();
    EXPECT_EQ(partPattern(), before);
    session().redo();
    EXPECT_EQ(partPattern(), previewed);
    EXPECT_EQ(stops.count(), 0) << "a live edit: playback goes on";

    // A changed recipe previews again.
    window().editor()->stepBox()->setValue(4);
    EXPECT_TRUE(m_grid->isPreviewing());
    EXPECT_EQ(partPattern(), previewed);
}

TEST_F(MathWindowTest, TheBlockOptionFillsOnlyTheSelectedCells)
{
    open();
    EXPECT_FALSE(window().blockButton()->isEnabled()) << "one cell is no block";
    m_grid->selectRect(QRect(1, 8, 2, 8)); // tracks 2-3, rows 8-15
    ASSERT_TRUE(window().blockButton()->isEnabled());
    EXPECT_TRUE(
        window().blockButton()->text().contains(QStringLiteral("tracks 2 to 3, rows 8 to 15")));
    const part::Pattern before = partPattern();
    choose(QStringLiteral("Arpeggio up")); // one note every second row, from the block's top
    window().blockButton()->click();
    ASSERT_TRUE(window().fillsBlock());
    ASSERT_TRUE(window().apply());
    for (int track = 0; track < part::kTrackCount; ++track) {
        for (int row = 0; row < part::kRowCount; ++row) {
            const bool inside = track >= 1 && track <= 2 && row >= 8 && row <= 15;
            if (!inside) {
                ASSERT_EQ(partPattern().cell(track, row), before.cell(track, row))
                    << "track " << track << " row " << row;
            }
        }
    }
    const QStringList column = {inPart(8, 1),  inPart(9, 1), inPart(10, 1), inPart(12, 1),
                                inPart(14, 1), inPart(8, 2), inPart(15, 2)};
    EXPECT_EQ(column, (QStringList{"1", "", "2", "3", "1", "", ""}));

    // A single cell again: the window falls back to the whole pattern.
    m_grid->moveCursorTo(3, 3);
    EXPECT_FALSE(window().fillsBlock());
    EXPECT_TRUE(window().wholeButton()->isChecked());
}

TEST_F(MathWindowTest, FieldsAndTextLineAreTwoViewsOfOneRecipe)
{
    open();
    app::RecipeEditor& editor = *window().editor();
    editor.kindBox()->setCurrentIndex(
        editor.kindBox()->findText(QStringLiteral("Euclidean rhythm")));
    editor.stepsBox()->setValue(12);
    editor.pulsesBox()->setValue(5);
    editor.rotateEdit()->setText(QString());
    QTest::keyClicks(editor.rotateEdit(), QStringLiteral("0,3"));
    EXPECT_EQ(window().textEdit()->text(),
              QStringLiteral("euclid step=2 pulses=5 steps=12 rotate=0,3 name=\"Arpeggio up\""));
    EXPECT_FALSE(editor.octavesBox()->isEnabled()) << "octaves belong to arpeggios";
    EXPECT_TRUE(editor.rotateEdit()->isEnabled());

    struct Case
    {
        const char* typed;
        const char* message; // empty: taken
        const char* kind;
    };
    const Case cases[] = {
        {"euclid pulses=9 steps=8", "pulses: not more than steps (8)", "Euclidean rhythm"},
        {"swing", "unknown recipe \"swing\"", "Euclidean rhythm"},
        {"strum every=2 order=down", "", "Strum"},
        {"random density=30 seed=4000000000", "", "Random cells"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typed);
        window().textEdit()->clear();
        QTest::keyClicks(window().textEdit(), QString::fromLatin1(c.typed));
        const QString message = window().messageLabel()->text();
        if (*c.message == '\0') {
            EXPECT_TRUE(message.isEmpty()) << message.toStdString();
        } else {
            EXPECT_TRUE(message.startsWith(QString::fromLatin1(c.message)))
                << message.toStdString();
        }
        EXPECT_EQ(editor.kindBox()->currentText(), QString::fromLatin1(c.kind));
    }
    // A seed above the largest int survives the field.
    EXPECT_EQ(window().recipe().seed, 4000000000u);
    EXPECT_EQ(part::formatRecipe(window().recipe()), "random density=30 seed=4000000000");
    // The preview follows the text: random notes, none beyond the chords' three.
    for (int row = 0; row < part::kRowCount; ++row) {
        const QString text = shown(row, 0);
        EXPECT_TRUE(text.isEmpty() || text == "1" || text == "2" || text == "3") << row;
    }
    editor.spreadEdit()->clear();
    QTest::keyClicks(editor.spreadEdit(), QStringLiteral("-1,x"));
    EXPECT_TRUE(window().messageLabel()->text().startsWith(QStringLiteral("spread:")));
    EXPECT_EQ(window().recipe().spread, std::vector<int>{-1}) << "the last valid list stays";

    window().copyText();
    EXPECT_EQ(QApplication::clipboard()->text(), window().textEdit()->text());
}

TEST_F(MathWindowTest, RecipesAreSavedInTheUserFolderAndReadBackNextTime)
{
    open();
    choose(QStringLiteral("Tresillo E(3,8)"));
    app::RecipeEditor& editor = *window().editor();
    editor.nameEdit()->clear();
    QTest::keyClicks(editor.nameEdit(), QStringLiteral("My groove"));
    editor.pulsesBox()->setValue(5);
    const part::PatternRecipe mine = window().recipe();
    ASSERT_TRUE(window().saveRecipe());
    part::PatternRecipeList saved;
    ASSERT_TRUE(saved.load(userFile().toStdString()));
    ASSERT_EQ(saved.count(), 1);
    EXPECT_EQ(saved.recipe(0), mine);

    // Saved again under the same name it is replaced, not doubled; unnamed gets a name.
    editor.pulsesBox()->setValue(7);
    ASSERT_TRUE(window().saveRecipe());
    editor.nameEdit()->selectAll();
    QTest::keyClick(editor.nameEdit(), Qt::Key_Backspace);
    ASSERT_TRUE(window().saveRecipe());
    ASSERT_TRUE(saved.load(userFile().toStdString()));
    ASSERT_EQ(saved.count(), 2);
    EXPECT_EQ(saved.recipe(0).pulses, 7);
    EXPECT_EQ(saved.recipe(1).name, "My recipe 2");

    // The next run offers them under "My recipes".
    window().hide();
    ASSERT_TRUE(start());
    open();
    app::RecipeListModel& list = *window().recipeModel();
    EXPECT_EQ(list.index(list.userRow(0)).data().toString(), QStringLiteral("My groove"));
    EXPECT_EQ(list.index(list.userRow(0)).data(Qt::AccessibleTextRole).toString(),
              QStringLiteral("My groove, my recipe"));
    choose(QStringLiteral("My groove"));
    EXPECT_EQ(window().editor()->pulsesBox()->value(), 7);

    // Removing asks first; No keeps it.
    m_messages.queueAnswer(QMessageBox::No);
    EXPECT_FALSE(window().removeRecipe());
    EXPECT_TRUE(window().removeRecipe());
    ASSERT_TRUE(saved.load(userFile().toStdString()));
    ASSERT_EQ(saved.count(), 1);
    EXPECT_EQ(saved.recipe(0).name, "My recipe 2");
    EXPECT_EQ(list.rowCount(), list.userRow(1));
}

TEST_F(MathWindowTest, AnUnreadableRecipeFileIsShownAndNeverOverwritten)
{
    const QByteArray broken = "Tonalmancer pattern recipes\narpeggio order=sideways\n";
    {
        QFile file(userFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(broken);
    }
    open();
    ASSERT_EQ(m_messages.texts().size(), 1);
    EXPECT_TRUE(m_messages.texts().front().startsWith(QStringLiteral("Line 2: order:")))
        << m_messages.texts().front().toStdString();
    EXPECT_EQ(window().recipeModel()->userRecipes().count(), 0);
    EXPECT_FALSE(window().saveRecipe());
    EXPECT_EQ(m_messages.texts().size(), 2);
    EXPECT_TRUE(m_messages.texts().back().contains(QStringLiteral("not overwritten")));
    QFile file(userFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), broken);
}

TEST_F(MathWindowTest, EveryControlIsNamedForAssistiveTechnology)
{
    open();
    QList<QWidget*> controls;
    for (QWidget* w : window().findChildren<QWidget*>()) {
        if (qobject_cast<QAbstractButton*>(w) || qobject_cast<QAbstractSpinBox*>(w) ||
            qobject_cast<QComboBox*>(w) || qobject_cast<QAbstractItemView*>(w) ||
            (qobject_cast<QLineEdit*>(w) && !qobject_cast<QAbstractSpinBox*>(w->parentWidget()) &&
             !qobject_cast<QComboBox*>(w->parentWidget())))
            controls << w;
    }
    EXPECT_GT(controls.size(), 25);
    for (QWidget* w : controls) {
        EXPECT_FALSE(w->objectName().isEmpty()) << w->metaObject()->className();
        EXPECT_FALSE(w->accessibleName().isEmpty()) << w->objectName().toStdString();
    }
    // The recipe list reads its items with what they are.
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(window().recipeList());
    ASSERT_NE(list, nullptr);
    QStringList names;
    for (int i = 0; i < list->childCount(); ++i)
        names << list->child(i)->text(QAccessible::Name);
    EXPECT_TRUE(names.contains(QStringLiteral("Built-in recipes")));
    EXPECT_TRUE(names.contains(QStringLiteral("Tresillo E(3,8), built-in recipe")))
        << names.join(QStringLiteral(" | ")).toStdString();
}

} // namespace
