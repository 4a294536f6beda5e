// The two preset lists in the running program: presets applied to the part and undone, the
// "Add Preset" dialog, the list commands that write the default file at once, saving and loading
// through the file dialogs, and what assistive technology reads.
#include "AppTestSupport.h"

#include "app/AddPresetDialog.h"
#include "app/CTempoBar.h"
#include "app/PartSession.h"
#include "app/PatternListPanel.h"
#include "app/PresetListModel.h"
#include "app/PresetPanel.h"
#include "part/PartPresetList.h"
#include "part/PatternPresetList.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QAction>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {

using app::PartSession;
using app::PresetPanel;

/**
 * Answers the next modal dialog of type Dialog: `answer` is called each tick while the dialog
 * shows, until it returns true. A dialog still open after a few seconds is rejected as a failure,
 * so that a test fails instead of waiting for ever.
 */
template <typename Dialog> void answerModal(std::function<bool(Dialog&)> answer)
{
    auto* timer = new QTimer(qApp);
    timer->setInterval(10);
    auto clock = std::make_shared<QElapsedTimer>();
    clock->start();
    QObject::connect(timer, &QTimer::timeout, [timer, answer, clock] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        if (dialog != nullptr && answer(*dialog)) {
            timer->stop();
            timer->deleteLater();
        } else if (clock->elapsed() > 5000) {
            timer->stop();
            timer->deleteLater();
            ADD_FAILURE() << "no " << Dialog::staticMetaObject.className() << " to answer";
            if (auto* stuck = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
                stuck->reject();
        }
    });
    timer->start();
}

/**
 * Types `typed` into a file dialog's name field and presses its button once the dialog would
 * give `chosen`; false until then (the dialog fills its folder in the background).
 */
bool chooseFile(QFileDialog& dialog, const QString& typed, const QString& chosen)
{
    // selectFile() leaves the field alone while it has the focus, which depends on the window
    // system: type into the field as a user does.
    auto* field = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    if (field == nullptr)
        return false;
    field->setText(typed);
    if (dialog.selectedFiles() != QStringList{chosen})
        return false;
    // QFileDialog's accept() is protected; through QDialog it still checks the name as a
    // click on the button does.
    static_cast<QDialog&>(dialog).accept();
    return !dialog.isVisible();
}

class Presets : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        AppFixture::SetUp();
        for (PresetPanel* panel : {patterns(), parts()}) {
            ASSERT_NE(panel, nullptr);
            ASSERT_GT(panel->model()->rowCount(), 2);
            m_testers.push_back(std::make_unique<QAbstractItemModelTester>(
                panel->model(), QAbstractItemModelTester::FailureReportingMode::Warning));
        }
        // A part of two patterns, the second current, with one chord on it.
        part::Part p = part::Part::makeNew();
        p.patterns().pattern(0).setName("a");
        part::Pattern b("b");
        b.setCell(0, 0, {part::CellKind::ChordNote, 0, 0});
        p.patterns().append(b);
        p.setCurrentPattern(1);
        part::PartChord chord;
        chord.setNotes({48, 52, 55});
        chord.pattern = 1;
        p.append(chord);
        p.setTempo(100, 4);
        session().loadPart(p, QString());
        showActiveFrame();
    }
    void TearDown() override
    {
        m_testers.clear();
        frame().hide();
        AppFixture::TearDown();
    }

    PresetPanel* patterns() { return view().patternPresetPanel(); }
    PresetPanel* parts() { return view().partPresetPanel(); }
    static QAction* item(PresetPanel* panel, const QString& command)
    {
        // "patternPresets" has the commands "patternPreset.append" and so on.
        return panel->contextMenu()->findChild<QAction*>(panel->objectName().chopped(1) +
                                                         QLatin1Char('.') + command);
    }
    static QStringList names(const PresetPanel* panel)
    {
        QStringList out;
        for (int row = 0; row < panel->model()->rowCount(); ++row)
            out << panel->model()->index(row, 0).data().toString();
        return out;
    }
    /** The names in a preset file, read by the library on its own. */
    QStringList namesInFile(const PresetPanel* panel, const QString& file = {})
    {
        const std::string path =
            (file.isEmpty() ? m_data.file(QString::fromLatin1(
                                  panel == patterns() ? part::PatternPresetList::kDefaultFileName
                                                      : part::PartPresetList::kDefaultFileName))
                            : file)
                .toStdString();
        QStringList out;
        if (panel == patterns()) {
            part::PatternPresetList list;
            EXPECT_TRUE(list.load(path).ok()) << path;
            for (int i = 0; i < list.count(); ++i)
                out << QString::fromStdString(list.preset(i).name());
        } else {
            part::PartPresetList list;
            EXPECT_TRUE(list.load(path).ok()) << path;
            for (const part::PartPreset& preset : list.presets())
                out << QString::fromStdString(preset.name);
        }
        return out;
    }

    std::vector<std::unique_ptr<QAbstractItemModelTester>> m_testers;
};

TEST_F(Presets, ApplyingAPresetIsOneUndoStepOfThePart)
{
    const part::Pattern arpeggio = view().patternPresets().preset(1);
    const part::PartPreset pop = view().partPresets().preset(0);
    ASSERT_GT(pop.part.count(), 0);
    enum How
    {
        Menu,
        DoubleClick,
        ReturnKey
    };
    const struct
    {
        const char* name;
        bool patternList;
        int row;
        How how;
        const char* command;
        std::function<void(const part::Part& before, const part::Part& after)> check;
    } cases[] = {
        {"pattern append", true, 1, Menu, "append",
         [&](const part::Part& before, const part::Part& after) {
             ASSERT_EQ(after.patterns().count(), 3);
             EXPECT_EQ(after.patterns().pattern(2), arpeggio);
             EXPECT_EQ(after.currentPattern(), 1);
             EXPECT_EQ(after.chords(), before.chords());
         }},
        {"pattern double-click", true, 1, DoubleClick, nullptr,
         [&](const part::Part&, const part::Part& after) {
             ASSERT_EQ(after.patterns().count(), 3);
             EXPECT_EQ(after.patterns().pattern(2), arpeggio);
         }},
        {"pattern replace", true, 1, Menu, "replace",
         [&](const part::Part& before, const part::Part& after) {
             ASSERT_EQ(after.patterns().count(), 2);
             EXPECT_EQ(after.patterns().pattern(1), arpeggio); // its name too
             EXPECT_EQ(after.patterns().pattern(0), before.patterns().pattern(0));
             EXPECT_EQ(after.chords(), before.chords());
         }},
        {"part append", false, 0, ReturnKey, nullptr,
         [&](const part::Part& before, const part::Part& after) {
             ASSERT_EQ(after.count(), 1 + pop.part.count());
             ASSERT_EQ(after.patterns().count(), 2 + pop.part.patterns().count());
             EXPECT_EQ(after.chord(0), before.chord(0));
             for (int i = 0; i < pop.part.count(); ++i) {
                 part::PartChord expected = pop.part.chord(i);
                 expected.pattern = static_cast<std::uint16_t>(expected.pattern + 2);
                 EXPECT_EQ(after.chord(1 + i), expected) << i;
             }
             EXPECT_EQ(after.patterns().pattern(2), pop.part.patterns().pattern(0));
             EXPECT_EQ(after.beatsPerMinute(), 100);
         }},
        {"part replace", false, 0, Menu, "replace",
         [&](const part::Part&, const part::Part& after) {
             EXPECT_EQ(after.chords(), pop.part.chords());
             EXPECT_EQ(after.patterns(), pop.part.patterns());
             EXPECT_EQ(after.currentPattern(), 0);
             EXPECT_EQ(frame().tempoBar()->beatsPerMinute(), pop.part.beatsPerMinute());
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        PresetPanel* panel = c.patternList ? patterns() : parts();
        const part::Part before = session().part();
        panel->setFocus();
        panel->setCurrentPreset(c.row);
        switch (c.how) {
        case Menu:
            item(panel, QString::fromLatin1(c.command))->trigger();
            break;
        case DoubleClick: {
            // A user's double-click: a press and release, then the double-click.
            const QPoint at = panel->visualRect(panel->model()->index(c.row, 0)).center();
            QTest::mouseClick(panel->viewport(), Qt::LeftButton, {}, at);
            QTest::mouseDClick(panel->viewport(), Qt::LeftButton, {}, at);
            break;
        }
        case ReturnKey:
            QTest::keyClick(panel, Qt::Key_Return);
            break;
        }
        c.check(before, session().part());
        EXPECT_EQ(frame().action("edit.undo")->text(),
                  c.patternList ? QStringLiteral("Undo Apply pattern preset")
                                : QStringLiteral("Undo Apply part preset"));
        QTest::keySequence(panel, QKeySequence(QStringLiteral("Ctrl+Z")));
        EXPECT_EQ(session().part(), before);
    }
}

TEST_F(Presets, RenameRemoveAndSortWriteTheDefaultFileAtOnce)
{
    for (PresetPanel* panel : {patterns(), parts()}) {
        SCOPED_TRACE(panel->objectName().toStdString());
        panel->setFocus();
        panel->setCurrentPreset(1);
        item(panel, QStringLiteral("rename"))->trigger();
        auto* editor = qobject_cast<QLineEdit*>(panel->indexWidget(panel->model()->index(1, 0)));
        ASSERT_NE(editor, nullptr);
        EXPECT_EQ(editor->accessibleName(), QStringLiteral("Preset name"));
        editor->selectAll();
        QTest::keyClicks(editor, QStringLiteral("aaa first"));
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::processEvents(); // the view takes the name from a queued call
        QStringList expected = names(panel);
        EXPECT_EQ(expected[1], QStringLiteral("aaa first"));
        EXPECT_EQ(namesInFile(panel), expected);

        m_messages.queueAnswer(QMessageBox::No);
        EXPECT_FALSE(panel->removeCurrent());
        EXPECT_EQ(namesInFile(panel), expected);
        item(panel, QStringLiteral("remove"))->trigger(); // answered Yes
        expected.removeAt(1);
        EXPECT_EQ(names(panel), expected);
        EXPECT_EQ(namesInFile(panel), expected);
        EXPECT_EQ(m_messages.texts().last(), QStringLiteral("Remove the preset \"aaa first\"?"));

        item(panel, QStringLiteral("sortDown"))->trigger();
        QStringList sorted = expected;
        std::sort(sorted.begin(), sorted.end(), [](const QString& a, const QString& b) {
            return QString::compare(a, b, Qt::CaseInsensitive) > 0;
        });
        EXPECT_EQ(names(panel), sorted);
        EXPECT_EQ(namesInFile(panel), sorted);
        item(panel, QStringLiteral("sortUp"))->trigger();
        std::reverse(sorted.begin(), sorted.end());
        EXPECT_EQ(names(panel), sorted);
    }
}

TEST_F(Presets, TheCurrentPatternOrPartBecomesAPresetUnderTheNameGiven)
{
    // The Part menu's "Add Pattern To Presets", answered in the "Add Preset" dialog.
    const int before = patterns()->model()->rowCount();
    QString asked;
    answerModal<app::AddPresetDialog>([&asked](app::AddPresetDialog& dialog) {
        asked = dialog.windowTitle() + QLatin1Char('|') + dialog.nameEdit()->text();
        dialog.nameEdit()->setText(QStringLiteral("Groove  "));
        dialog.accept();
        return true;
    });
    frame().action("part.addPatternToPresets")->trigger();
    EXPECT_EQ(asked, QStringLiteral("Add Preset|noname"));
    ASSERT_EQ(patterns()->model()->rowCount(), before + 1);
    EXPECT_EQ(names(patterns()).last(), QStringLiteral("Groove"));
    EXPECT_EQ(patterns()->currentPreset(), before);
    EXPECT_EQ(namesInFile(patterns()).last(), QStringLiteral("Groove"));
    part::Pattern expected = session().part().patterns().pattern(1);
    expected.setName("Groove");
    EXPECT_EQ(view().patternPresets().preset(before), expected);

    // A blank name cannot be given; cancelling adds nothing.
    EXPECT_FALSE(patterns()->addCurrent([](app::AddPresetDialog& dialog) {
        dialog.nameEdit()->setText(QStringLiteral("   "));
        EXPECT_FALSE(dialog.okButton()->isEnabled());
        return false;
    }));
    EXPECT_EQ(patterns()->model()->rowCount(), before + 1);

    // The pattern list's commands: every pattern at once, and replacing the chosen preset.
    QMenu* patternMenu = view().patternList()->contextMenu();
    patternMenu->findChild<QAction*>(QStringLiteral("pattern.addListToPresets"))->trigger();
    EXPECT_EQ(names(patterns()).mid(before + 1), (QStringList{"a", "b"}));
    patterns()->setCurrentPreset(0);
    const QString first = names(patterns()).first();
    QAction* replace = patternMenu->findChild<QAction*>(QStringLiteral("pattern.replacePreset"));
    ASSERT_TRUE(replace->isEnabled());
    m_messages.queueAnswer(QMessageBox::No);
    replace->trigger();
    EXPECT_NE(view().patternPresets().preset(0).cell(0, 0).kind, part::CellKind::Nothing);
    replace->trigger();
    EXPECT_EQ(m_messages.texts().last(),
              QStringLiteral("Replace the preset \"%1\" by the current pattern?").arg(first));
    part::Pattern replaced = session().part().patterns().pattern(1);
    replaced.setName(first.toStdString());
    EXPECT_EQ(view().patternPresets().preset(0), replaced);

    // The part presets offer the same to the part list.
    parts()->setCurrentPreset(-1);
    m_messages.clear();
    EXPECT_FALSE(parts()->replaceCurrentPreset());
    EXPECT_EQ(m_messages.texts(),
              QStringList{QStringLiteral("Choose the preset to replace in the part presets list "
                                         "first.")});
    ASSERT_TRUE(parts()->addCurrent([](app::AddPresetDialog& dialog) {
        dialog.nameEdit()->setText(QStringLiteral("My song"));
        return true;
    }));
    const part::PartPreset& added = view().partPresets().presets().back();
    EXPECT_EQ(added.name, "My song");
    EXPECT_EQ(added.part.chords(), session().part().chords());
    EXPECT_EQ(added.part.beatsPerMinute(), 100);
    EXPECT_EQ(namesInFile(parts()).last(), QStringLiteral("My song"));
}

TEST_F(Presets, ListsAreSavedAndLoadedThroughFileDialogsThatStartInTheUserFolder)
{
    const QString user = QDir(m_data.path()).filePath(QStringLiteral("user"));
    const struct
    {
        PresetPanel* panel;
        const char* extension;
    } cases[] = {{patterns(), "spr"}, {parts(), "ppr"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.extension);
        const QStringList original = names(c.panel);
        QString startedIn;
        const QString saved = QDir(user).filePath(QStringLiteral("mine.") + c.extension);
        answerModal<QFileDialog>([&](QFileDialog& dialog) {
            startedIn = dialog.directory().absolutePath();
            // Typed without the extension: the dialog adds it.
            return chooseFile(dialog, QDir(user).filePath(QStringLiteral("mine")), saved);
        });
        item(c.panel, QStringLiteral("save"))->trigger();
        EXPECT_EQ(startedIn, QDir(user).absolutePath());
        ASSERT_TRUE(QFile::exists(saved)) << "the dialog adds the extension";

        item(c.panel, QStringLiteral("new"))->trigger();
        EXPECT_EQ(c.panel->model()->rowCount(), 0);
        EXPECT_FALSE(item(c.panel, QStringLiteral("append"))->isEnabled());
        EXPECT_EQ(namesInFile(c.panel), original) << "New leaves the default file";

        answerModal<QFileDialog>(
            [&](QFileDialog& dialog) { return chooseFile(dialog, saved, saved); });
        item(c.panel, QStringLiteral("load"))->trigger();
        EXPECT_EQ(names(c.panel), original);

        // Damaged and missing files: the message, and the list stays.
        const QString foreign = QDir(user).filePath(QStringLiteral("foreign.") + c.extension);
        QFile file(foreign);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("Something else\n1\n");
        file.close();
        m_messages.clear();
        EXPECT_FALSE(c.panel->loadFrom(foreign));
        EXPECT_FALSE(c.panel->loadFrom(QDir(user).filePath(QStringLiteral("gone"))));
        EXPECT_EQ(m_messages.texts(),
                  (QStringList{"No preset file", "Unable to open preset file"}));
        EXPECT_EQ(names(c.panel), original);

        // An empty list made the default stays empty after a restart.
        item(c.panel, QStringLiteral("new"))->trigger();
        item(c.panel, QStringLiteral("saveDefault"))->trigger();
        item(c.panel, QStringLiteral("loadDefault"))->trigger();
        EXPECT_EQ(c.panel->model()->rowCount(), 0);
    }
    ASSERT_TRUE(start());
    EXPECT_EQ(view().patternPresets().count(), 0);
    EXPECT_EQ(view().partPresets().count(), 0);
}

TEST_F(Presets, AssistiveTechnologyReadsBothListsAndTheirPresets)
{
    const struct
    {
        PresetPanel* panel;
        const char* name;
    } cases[] = {{patterns(), "Pattern presets"}, {parts(), "Part presets"}};
    for (const auto& c : cases) {
        QAccessibleInterface* list = QAccessible::queryAccessibleInterface(c.panel);
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(list->text(QAccessible::Name), QString::fromLatin1(c.name));
        EXPECT_EQ(c.panel->contextMenu()->accessibleName(),
                  QString::fromLatin1(c.name) + QStringLiteral(" commands"));
        ASSERT_EQ(list->childCount(), c.panel->model()->rowCount());
        EXPECT_EQ(list->child(0)->text(QAccessible::Name), names(c.panel).first());
    }
    const part::Part& pop = view().partPresets().preset(0).part;
    EXPECT_EQ(parts()->model()->index(0, 0).data(Qt::ToolTipRole).toString(),
              QStringLiteral("%1 chords, %2 patterns, %3 BPM, %4 TPB")
                  .arg(pop.count())
                  .arg(pop.patterns().count())
                  .arg(pop.beatsPerMinute())
                  .arg(pop.ticksPerBeat()));
}

} // namespace
