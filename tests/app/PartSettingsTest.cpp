// The settings view: each setting edited in place within its range, the track octaves written
// into the current pattern's block, Reset with its undo, and what assistive technology reads.
#include "AppTestSupport.h"

#include "app/PartSession.h"
#include "app/PartSettingsModel.h"
#include "app/PartSettingsPanel.h"
#include "app/PatternGridModel.h"
#include "app/PatternGridPanel.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

namespace {

using app::PartSession;
using Row = app::PartSettingsModel::Row;

class PartSettings : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        AppFixture::SetUp();
        m_panel = view().partSettings();
        ASSERT_NE(m_panel, nullptr);
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_panel->model(), QAbstractItemModelTester::FailureReportingMode::Warning);
        // Two patterns with different track octaves; the second is current.
        part::Part p = part::Part::makeNew();
        part::Pattern second("second");
        second.setTrackOctaves({1, 2, 3, 4, 5, 6, 7, 8});
        p.patterns().append(second);
        p.setCurrentPattern(1);
        session().loadPart(p, QString());
        showActiveFrame();
    }
    void TearDown() override
    {
        m_tester.reset();
        frame().hide();
        AppFixture::TearDown();
    }

    QString shown(int row) { return m_panel->model()->index(row, 1).data().toString(); }
    /** Opens the row's editor as a user does: the row chosen, then F2. */
    template <typename Editor> Editor* openEditor(int row)
    {
        m_panel->setFocus();
        m_panel->setCurrentIndex(m_panel->model()->index(row, 0));
        QTest::keyClick(m_panel, Qt::Key_F2);
        return qobject_cast<Editor*>(m_panel->indexWidget(m_panel->model()->index(row, 1)));
    }
    /** Return in an editor: the view takes the value once events are processed. */
    static void commit(QWidget* editor)
    {
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::processEvents();
    }
    const part::Pattern& pattern(int index) { return session().part().patterns().pattern(index); }

    app::PartSettingsPanel* m_panel = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

TEST_F(PartSettings, NumbersAreEditedInPlaceWithinTheirRanges)
{
    const struct
    {
        Row row;
        int minimum, maximum, typed;
        std::function<int(PartSession&)> stored;
        bool undoStep; // a part edit, else one of the editor's settings
    } cases[] = {
        {Row::BaseWaveRow, 1, 200, 17, [](PartSession& s) { return s.baseWave(); }, false},
        {Row::BaseOctaveRow, 0, 9, 6, [](PartSession& s) { return s.part().baseOctave(); }, true},
        {Row::DefOctaveRow, 0, 9, 2, [](PartSession& s) { return s.defaultOctave(); }, false},
        {Row::DefLengthRow, 1, 64, 48, [](PartSession& s) { return s.defaultLength(); }, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(app::PartSettingsModel::label(c.row).toStdString());
        const int steps = session().history().size();
        auto* spin = openEditor<QSpinBox>(c.row);
        ASSERT_NE(spin, nullptr);
        EXPECT_EQ(spin->minimum(), c.minimum);
        EXPECT_EQ(spin->maximum(), c.maximum);
        EXPECT_EQ(spin->accessibleName(), app::PartSettingsModel::label(c.row));
        spin->selectAll();
        QTest::keyClicks(spin, QString::number(c.typed));
        commit(spin);
        EXPECT_EQ(c.stored(session()), c.typed);
        EXPECT_EQ(shown(c.row), QString::number(c.typed));
        EXPECT_EQ(session().history().size(), steps + (c.undoStep ? 1 : 0));

        // Values from outside the range (a screen reader may set text) are refused.
        QAbstractItemModel* model = m_panel->model();
        for (const QVariant& bad :
             {QVariant(c.minimum - 1), QVariant(c.maximum + 1), QVariant(QStringLiteral("many"))}) {
            EXPECT_FALSE(model->setData(model->index(c.row, 1), bad))
                << bad.toString().toStdString();
            EXPECT_EQ(c.stored(session()), c.typed);
        }
    }
    EXPECT_EQ(frame().action("edit.undo")->text(), QStringLiteral("Undo Edit part"));
}

TEST_F(PartSettings, TrackOctavesAreChosenInWordsAndWriteTheCurrentPatternsBlockLive)
{
    const QStringList words = {"base",     "octave 2", "octave 3", "octave 4",
                               "octave 5", "octave 6", "octave 7", "octave 8",
                               "base - 2", "base - 1", "base + 1", "base + 2"};
    for (int track = 0; track < 8; ++track)
        EXPECT_EQ(shown(Row::FirstTrackRow + track), words[track + 1]) << track;

    QSignalSpy stops(&session(), &PartSession::aboutToEdit);
    auto* box = openEditor<QComboBox>(Row::FirstTrackRow + 2);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->accessibleName(), QStringLiteral("Track 3"));
    QStringList offered;
    for (int i = 0; i < box->count(); ++i)
        offered << box->itemText(i);
    EXPECT_EQ(offered, words);
    EXPECT_EQ(box->currentIndex(), 3);
    box->setCurrentIndex(11);
    Q_EMIT box->activated(11); // picked from the list: taken at once
    EXPECT_EQ(pattern(1).trackOctaves(), (part::TrackOctaves{1, 2, 11, 4, 5, 6, 7, 8}));
    EXPECT_EQ(pattern(0).trackOctaves(), part::TrackOctaves{}) << "other patterns keep theirs";
    EXPECT_EQ(shown(Row::FirstTrackRow + 2), QStringLiteral("base + 2"));
    EXPECT_EQ(stops.count(), 0) << "a track octave is heard at the next row, playing goes on";
    EXPECT_EQ(frame().action("edit.undo")->text(), QStringLiteral("Undo Edit pattern"));
    // The grid's track header shows the same setting.
    auto* grid = qobject_cast<app::PatternGridPanel*>(view().regions().patternGrid);
    EXPECT_EQ(grid->model()
                  ->headerData(2, Qt::Horizontal, app::PatternGridModel::TrackOctaveRole)
                  .toInt(),
              11);

    // Words typed by assistive technology work as the index does; unknown words do not.
    QAbstractItemModel* model = m_panel->model();
    EXPECT_TRUE(model->setData(model->index(Row::FirstTrackRow, 1), QStringLiteral("base - 1")));
    EXPECT_EQ(pattern(1).trackOctave(0), 9);
    EXPECT_FALSE(model->setData(model->index(Row::FirstTrackRow, 1), QStringLiteral("high")));
    EXPECT_FALSE(model->setData(model->index(Row::FirstTrackRow, 1), 12));

    // Another pattern chosen: the tracks show its octaves.
    session().setCurrentPattern(0);
    EXPECT_EQ(shown(Row::FirstTrackRow + 2), QStringLiteral("base"));
    session().undo();
    session().undo();
    EXPECT_EQ(pattern(1).trackOctaves(), (part::TrackOctaves{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_F(PartSettings, ThePatternListNameAndTheEntryOctaveAreSharedWithTheRestOfTheWindow)
{
    auto* line = openEditor<QLineEdit>(Row::PatternListRow);
    ASSERT_NE(line, nullptr);
    QTest::keyClicks(line, QStringLiteral("Song A  "));
    commit(line);
    EXPECT_EQ(session().part().patterns().name(), "Song A");
    EXPECT_EQ(frame().action("edit.undo")->text(), QStringLiteral("Undo Edit part"));

    // "Def Octave" is the pattern editor's entry octave, changed from either side.
    auto* octave = view().findChild<QSpinBox*>(QStringLiteral("patternOctave"));
    ASSERT_NE(octave, nullptr);
    octave->setValue(7);
    EXPECT_EQ(shown(Row::DefOctaveRow), QStringLiteral("7"));
    m_panel->model()->setData(m_panel->model()->index(Row::DefOctaveRow, 1), 3);
    EXPECT_EQ(octave->value(), 3);
}

TEST_F(PartSettings, ResetRestoresTheDefaultsAndUndoBringsThePartsSettingsBack)
{
    m_panel->setFocus(); // Undo acts on the part
    QAbstractItemModel* model = m_panel->model();
    model->setData(model->index(Row::PatternListRow, 1), QStringLiteral("named"));
    model->setData(model->index(Row::BaseOctaveRow, 1), 7);
    model->setData(model->index(Row::DefLengthRow, 1), 12);
    model->setData(model->index(Row::BaseWaveRow, 1), 30);
    const part::Part changed = session().part();

    QAction* reset = m_panel->contextMenu()->findChild<QAction*>(QStringLiteral("settings.reset"));
    ASSERT_NE(reset, nullptr);
    ASSERT_TRUE(reset->isEnabled());
    reset->trigger();
    QStringList values;
    for (int row = 0; row < Row::RowCount; ++row)
        values << shown(row);
    EXPECT_EQ(values, (QStringList{"", "1", "4", "base", "base", "base", "base", "base", "base",
                                   "base", "base", "4", "32"}));
    EXPECT_EQ(pattern(1).trackOctaves(), part::TrackOctaves{});
    EXPECT_EQ(frame().action("edit.undo")->text(), QStringLiteral("Undo Reset settings"));

    const int steps = session().history().size();
    reset->trigger();
    EXPECT_EQ(session().history().size(), steps) << "nothing left to reset in the part";

    session().undo();
    EXPECT_EQ(session().part(), changed);
    EXPECT_EQ(shown(Row::BaseOctaveRow), QStringLiteral("7"));
    EXPECT_EQ(shown(Row::DefLengthRow), QStringLiteral("32")) << "editor settings are no undo";
}

TEST_F(PartSettings, AssistiveTechnologyReadsLabelsAndValuesAsATable)
{
    EXPECT_EQ(m_panel->objectName(), QStringLiteral("settingsView"));
    QAccessibleInterface* view = QAccessible::queryAccessibleInterface(m_panel);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->text(QAccessible::Name), QStringLiteral("Part settings"));
    QAccessibleTableInterface* table = view->tableInterface();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->rowCount(), Row::RowCount);
    EXPECT_EQ(table->cellAt(Row::FirstTrackRow + 7, 0)->text(QAccessible::Name),
              QStringLiteral("Track 8"));
    EXPECT_EQ(table->cellAt(Row::FirstTrackRow + 7, 1)->text(QAccessible::Name),
              QStringLiteral("Track 8: base - 2"));
    EXPECT_EQ(m_panel->contextMenu()->accessibleName(), QStringLiteral("Part settings commands"));
}

} // namespace
