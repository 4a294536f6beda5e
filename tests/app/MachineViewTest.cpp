// The machine view: its filter keys, the context menu's song edits with their questions, undo,
// and adding a machine that a part is then written into.
#include "MachineViewTestSupport.h"

#include "app/CMachineChooserDialog.h"
#include "app/CMachineTransformDialog.h"
#include "app/CPartWriteDialog.h"
#include "app/CTonalmancerDoc.h"
#include "app/PartSession.h"
#include "app/UndoRouter.h"
#include "app/UndoTarget.h"
#include "song/BuzzNote.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/SongEdits.h"
#include "song/SongReader.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QPrintPreviewDialog>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTest>

namespace {

using apptest::answerDialog;
using apptest::MachineViewFixture;
using MachineView = MachineViewFixture;

TEST_F(MachineView, FilterKeysListTheMachinesOfTheirKindAndTheChoiceSurvivesARestart)
{
    addEveryKind();
    focusMachineList();
    struct Case
    {
        Qt::Key key;
        int filter;
        QStringList shown;
    };
    const Case cases[] = {
        {Qt::Key_1, 0, {"Dynamite6", "Sampler", "Drums"}},
        {Qt::Key_2, 3, {"Freeverb"}},
        {Qt::Key_3, 1, {"Dynamite6"}},
        {Qt::Key_4, 2, {"Sampler"}},
        {Qt::Key_5, 4, {"Master", "Dynamite6", "Sampler", "Drums", "Freeverb"}},
        {Qt::Key_4, 2, {"Sampler"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.filter);
        QTest::keyClick(panel().view(), c.key, Qt::AltModifier);
        EXPECT_EQ(rows(), c.shown);
        EXPECT_EQ(view().midiSettings().machineFilter(), c.filter);
    }
    // The menu shows the choice; the settings file keeps it for the next run.
    EXPECT_TRUE(item("machine.viewSamplers")->isChecked());
    EXPECT_FALSE(item("machine.viewAll")->isChecked());
    frame().hide();
    view().shutdown();
    ASSERT_TRUE(start());
    EXPECT_EQ(view().midiSettings().machineFilter(), 2);
    EXPECT_TRUE(view()
                    .machinePanel()
                    ->contextMenu()
                    ->findChild<QAction*>(QStringLiteral("machine.viewSamplers"))
                    ->isChecked());
}

TEST_F(MachineView, RemoveAsksFirstSkipsWhatIsGoneAndKeepsTheMaster)
{
    struct Case
    {
        const char* what;
        QStringList selected; // empty: only a current machine
        QMessageBox::StandardButton answer;
        QStringList texts;
        QStringList captions;
        QStringList left;
    };
    const QString master = QString::fromLatin1(song::kMasterCannotBeRemoved);
    const QString selectedQuestion = QStringLiteral("Remove all SELECTED machines\nAre you sure?");
    const Case cases[] = {
        {"two selected, Yes",
         {"Sampler", "Freeverb"},
         QMessageBox::Yes,
         {selectedQuestion},
         {"Remove Machines"},
         {"Master", "Dynamite6", "Drums"}},
        {"selected, No",
         {"Sampler"},
         QMessageBox::No,
         {selectedQuestion},
         {"Remove Machines"},
         {"Master", "Dynamite6", "Sampler", "Drums", "Freeverb"}},
        {"the current one",
         {},
         QMessageBox::Yes,
         {"Remove Drums\nAre you sure?"},
         {"Remove Drums"},
         {"Master", "Dynamite6", "Sampler", "Freeverb"}},
        {"the master among others",
         {"Master", "Drums"},
         QMessageBox::Yes,
         {selectedQuestion, master},
         {"Remove Machines", "Tonalmancer"},
         {"Master", "Dynamite6", "Sampler", "Freeverb"}},
        {"the master alone",
         {"Master"},
         QMessageBox::Yes,
         {selectedQuestion, master},
         {"Remove Machines", "Tonalmancer"},
         {"Master", "Dynamite6", "Sampler", "Drums", "Freeverb"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_TRUE(frame().loadDefaultSong());
        addEveryKind();
        if (c.selected.isEmpty()) {
            selectRows({});
            panel().view()->selectionModel()->setCurrentIndex(
                panel().model()->index(panel().model()->rowOfName("Drums"), 0),
                QItemSelectionModel::NoUpdate);
        } else {
            selectRows(c.selected);
        }
        m_messages.clear();
        m_messages.queueAnswer(c.answer);
        item("machine.remove")->trigger();
        EXPECT_EQ(m_messages.texts(), c.texts);
        EXPECT_EQ(m_messages.captions(), c.captions);
        EXPECT_EQ(rows(), c.left);
        // What the view lists is what the song holds, and the song still writes and reads back.
        EXPECT_EQ(song().machineCount(), static_cast<std::size_t>(c.left.size()));
    }
}

TEST_F(MachineView, DelRemovesTheSelectedMachinesAndUndoBringsThemBack)
{
    addEveryKind();
    selectRows({"Sampler", "Drums"});
    focusMachineList();
    QTest::keyClick(panel().view(), Qt::Key_Delete);
    EXPECT_EQ(rows(), (QStringList{"Master", "Dynamite6", "Freeverb"}));
    selectRows({"Freeverb"});
    EXPECT_TRUE(document().isModified());
    EXPECT_TRUE(frame().windowTitle().contains(QStringLiteral("Untitled*")));

    // Undo and Redo act on the song while the machine view has the focus.
    QAction* undo = frame().action("edit.undo");
    EXPECT_EQ(undo->text(), QStringLiteral("Undo Remove machines"));
    undo->trigger();
    EXPECT_EQ(rows(), (QStringList{"Master", "Dynamite6", "Sampler", "Drums", "Freeverb"}));
    EXPECT_EQ(panel().selectedMachineName(), QStringLiteral("Freeverb")) << "selection kept";
    EXPECT_EQ(frame().action("edit.redo")->text(), QStringLiteral("Redo Remove machines"));
    frame().action("edit.redo")->trigger();
    EXPECT_EQ(rows(), (QStringList{"Master", "Dynamite6", "Freeverb"}));

    // Saving makes this state the unmodified one; undoing past it modifies the song again.
    QTemporaryDir folder;
    ASSERT_TRUE(frame().saveSongAs(folder.filePath(QStringLiteral("edited.bmx"))));
    EXPECT_FALSE(document().isModified());
    EXPECT_FALSE(frame().windowTitle().contains(QLatin1Char('*')));
    undo->trigger();
    EXPECT_TRUE(document().isModified());
    frame().action("edit.redo")->trigger();
    EXPECT_FALSE(document().isModified());
    frame().hide();
}

TEST_F(MachineView, RenameKeepsNamesUniqueAndTheMasterKeepsItsName)
{
    addEveryKind();
    app::MachineListModel& model = *panel().model();
    const auto nameCell = [&](const char* name) {
        return model.index(model.rowOfName(name), app::MachineListModel::NameColumn);
    };
    EXPECT_FALSE(model.flags(nameCell("Master")).testFlag(Qt::ItemIsEditable));
    EXPECT_TRUE(model.flags(nameCell("Drums")).testFlag(Qt::ItemIsEditable));

    struct Case
    {
        const char* from;
        const char* to;
        bool renamed;
    };
    const Case cases[] = {
        {"Drums", "Beat Box", true},
        {"Sampler", "DYNAMITE6", false}, // another machine's name in other case
        {"Sampler", "Trailing ", false}, // the reader would drop the blank
        {"Sampler", "", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.to);
        m_messages.clear();
        EXPECT_EQ(model.setData(nameCell(c.from), QString::fromLatin1(c.to)), c.renamed);
        EXPECT_EQ(m_messages.texts().size(), c.renamed ? 0 : 1);
        EXPECT_EQ(song().findMachine(c.to) != song::BuzzSong::kNameNotFound, c.renamed);
    }
    EXPECT_EQ(rows(), (QStringList{"Master", "Dynamite6", "Sampler", "Beat Box", "Freeverb"}));
    EXPECT_EQ(undoText(), QStringLiteral("Undo Rename machine"));

    // Ctrl+R opens the name in place.
    selectRows({"Sampler"});
    focusMachineList();
    QTest::keyClick(panel().view(), Qt::Key_R, Qt::ControlModifier);
    auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(panel().view()->isAncestorOf(editor));
    EXPECT_EQ(editor->text(), QStringLiteral("Sampler"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    frame().hide();
}

TEST_F(MachineView, ACopiedMachinePastesWithItsPatternsIntoASongOpenedLater)
{
    writeDemoPart(1);
    const song::MachinePatterns patterns = song().patternBlocks()[1];
    item("machine.paste")->trigger();
    EXPECT_EQ(m_messages.texts(), QStringList{QStringLiteral("Copy a machine first.")});

    selectRows({"Dynamite6"});
    item("machine.copy")->trigger();
    ASSERT_TRUE(panel().commands().clip().has_value());
    document().newSong(); // the default song again, without the part
    ASSERT_EQ(song().patternCount(1), 0u);
    selectRows({"Master"});
    item("machine.paste")->trigger();
    ASSERT_EQ(song().machineCount(), 3u);
    EXPECT_EQ(song().patternBlocks()[2].patterns.size(), patterns.patterns.size());
    EXPECT_EQ(song().patternBlocks()[2].patterns[0].trackRows, patterns.patterns[0].trackRows);
    EXPECT_EQ(panel().selectedMachineName(), QString::fromStdString(song().machines()[2].name));
    const std::vector<std::size_t> inputs = song().inputsOf(0);
    ASSERT_EQ(inputs.size(), 2u);
    EXPECT_EQ(song().connections()[inputs[1]].source, 2);

    // The master cannot be copied, and says why.
    m_messages.clear();
    selectRows({"Master"});
    item("machine.copy")->trigger();
    EXPECT_EQ(m_messages.texts().size(), 1);
}

TEST_F(MachineView, ACloneFeedsWhatTheOriginalFeedsAndANewMachineTheSelectedEffect)
{
    addEveryKind();
    selectRows({"Sampler"});
    item("machine.clone")->trigger();
    ASSERT_EQ(song().machineCount(), 6u);
    const std::size_t clone = 5;
    EXPECT_EQ(song().machines()[clone].dllName, "Test Sampler");
    EXPECT_EQ(panel().selectedMachineName(), QString::fromStdString(song().machines()[clone].name));
    EXPECT_EQ(song().inputsOf(0).size(), 5u) << "the clone feeds the master as the sampler does";
    EXPECT_EQ(undoText(), QStringLiteral("Undo Clone machine"));

    selectRows({"Freeverb"});
    ASSERT_TRUE(panel().commands().addFromDatabase(databaseIndex("M4")));
    const std::vector<std::size_t> inputs = song().inputsOf(song().findMachine("Freeverb"));
    ASSERT_EQ(inputs.size(), 1u);
    EXPECT_EQ(song().machines()[song().connections()[inputs[0]].source].dllName, "M4");
}

TEST_F(MachineView, ReplaceOffersCompatibleMachinesAndWarnsWhatIsLost)
{
    addEveryKind();
    writeDemoPart(1);
    selectRows({"Dynamite6"});
    // The chooser offers machines that play notes per track like Dynamite 6, and not itself.
    QStringList offered;
    answerDialog<app::CMachineChooserDialog>([&offered](app::CMachineChooserDialog& dialog) {
        for (int row = 0; row < dialog.list()->model()->rowCount(); ++row)
            offered << dialog.list()->model()->index(row, 0).data().toString();
        dialog.reject();
    });
    item("machine.replace")->trigger();
    EXPECT_EQ(offered, (QStringList{"M4  (Synth)", "Test Sampler  (Sampler)"}));

    const std::size_t m4 = databaseIndex("M4");
    for (const QMessageBox::StandardButton answer : {QMessageBox::No, QMessageBox::Yes}) {
        SCOPED_TRACE(answer == QMessageBox::Yes ? "Yes" : "No");
        m_messages.clear();
        m_messages.queueAnswer(answer);
        EXPECT_EQ(panel().commands().replaceWith(m4), answer == QMessageBox::Yes);
        ASSERT_EQ(m_messages.texts().size(), 1);
        EXPECT_TRUE(m_messages.texts()[0].startsWith(
            QStringLiteral("Replacing Dynamite6 by M4 loses:\n  ")));
        EXPECT_EQ(m_messages.captions(), QStringList{QStringLiteral("Replace Machine")});
        EXPECT_EQ(song().machines()[1].dllName,
                  answer == QMessageBox::Yes ? "M4" : "MadBrain's Dynamite 6");
    }
    EXPECT_EQ(song().machines()[1].name, "Dynamite6") << "the name stays";
    EXPECT_EQ(rows()[1], QStringLiteral("Dynamite6"));
}

TEST_F(MachineView, CleanCommandsRemoveOnlyWhatIsUnusedAndEmpty)
{
    writeDemoPart(1);
    const std::size_t used = song().patternCount(1);
    ASSERT_TRUE(document().edit(QStringLiteral("set up"), [](song::BuzzSong& s) {
        s.createPattern(1, "spare", 16);
        s.addSequence(0);
        return music::Result::success();
    }));
    selectRows({"Dynamite6"});
    m_messages.queueAnswer(QMessageBox::No);
    item("machine.removeUnusedPatterns")->trigger();
    EXPECT_EQ(m_messages.texts(), QStringList{QStringLiteral("Are you sure?")});
    EXPECT_EQ(m_messages.captions(), QStringList{QStringLiteral("Remove unused patterns")});
    EXPECT_EQ(song().patternCount(1), used + 1);
    item("machine.removeUnusedPatterns")->trigger();
    EXPECT_EQ(song().patternCount(1), used);
    EXPECT_EQ(undoText(), QStringLiteral("Undo Remove unused patterns"));

    const std::size_t sequences = song().sequences().size();
    item("machine.removeEmptySequences")->trigger();
    EXPECT_EQ(song().sequences().size(), sequences - 1);
    // Nothing left to clean: no question, no undo step.
    m_messages.clear();
    item("machine.removeEmptySequences")->trigger();
    item("machine.removeUnusedPatterns")->trigger();
    EXPECT_TRUE(m_messages.texts().isEmpty());
    EXPECT_EQ(undoText(), QStringLiteral("Undo Remove empty sequences"));
}

TEST_F(MachineView, TransposeAndInvertMoveTheNotesAndReportWhatWouldLeaveTheRange)
{
    // One note, C-4, on row 0 of track 0 of a pattern of Dynamite6; the rest empty.
    const std::size_t note =
        static_cast<std::size_t>(song().machines()[1].description.findParameter("note"));
    ASSERT_TRUE(document().edit(QStringLiteral("set up"), [&](song::BuzzSong& s) {
        s.createPattern(1, "one", 4);
        s.setCellValue(1, 0, 0, 0, note, song::BuzzNote::encode(0, 4));
        return music::Result::success();
    }));
    selectRows({"Dynamite6"});
    const auto cell = [&](std::size_t row) { return *song().cellValue(1, 0, row, 0, note); };

    answerDialog<app::CMachineTransformDialog>([](app::CMachineTransformDialog& dialog) {
        dialog.halfNotesBox()->setValue(2);
        dialog.accept();
    });
    item("machine.transpose")->trigger();
    EXPECT_EQ(cell(0), song::BuzzNote::encode(2, 4)); // D-4
    EXPECT_EQ(cell(1), 0) << "empty cells stay empty";

    answerDialog<app::CMachineTransformDialog>([](app::CMachineTransformDialog& dialog) {
        dialog.noteBox()->setCurrentIndex(0); // C
        dialog.octaveBox()->setValue(4);
        dialog.accept();
    });
    item("machine.invert")->trigger();
    EXPECT_EQ(cell(0), song::BuzzNote::encode(10, 3)); // a whole tone below C-4: A#-3
    EXPECT_EQ(undoText(), QStringLiteral("Undo Invert"));

    // Up seven octaves would leave B-9 behind: the note stays and is reported.
    m_messages.clear();
    panel().commands().transposeBy(84);
    EXPECT_EQ(cell(0), song::BuzzNote::encode(10, 3));
    ASSERT_EQ(m_messages.texts().size(), 1);
    EXPECT_EQ(m_messages.texts()[0],
              QStringLiteral("0 notes changed.\n1 note left as they were: they would leave the "
                             "tracker's range C-0 to B-9.\n  \"Dynamite6\" pattern \"one\" row 0 "
                             "track 0: A#3"));
    EXPECT_EQ(undoText(), QStringLiteral("Undo Invert"))
        << "a transformation that moves nothing makes no undo step";
}

TEST_F(MachineView, AnAddedMachineIsSelectedAndTakesAPartAtOnce)
{
    // F4 opens the chooser; the search box narrows the list to M4.
    answerDialog<app::CMachineChooserDialog>([](app::CMachineChooserDialog& dialog) {
        dialog.kindBox()->setCurrentIndex(dialog.kindBox()->findText(QStringLiteral("Synths")));
        dialog.searchEdit()->setText(QStringLiteral("m4"));
        ASSERT_EQ(dialog.list()->model()->rowCount(), 1);
        dialog.accept();
    });
    frame().action("machines.add")->trigger();
    ASSERT_EQ(song().machineCount(), 3u);
    const song::SongMachine& m4 = song().machines()[2];
    EXPECT_EQ(m4.dllName, "M4");
    EXPECT_EQ(m4.trackCount, m4.description.minTracks);
    EXPECT_EQ(view().selectedMachineName(), QStringLiteral("M4"));
    EXPECT_EQ(undoText(), QStringLiteral("Undo Add machine"));

    // "Create Buzz Patterns" writes the part into the selected machine as one undoable step.
    const std::size_t target = song().findMachine("M4");
    answerDialog<app::CPartWriteDialog>([](app::CPartWriteDialog& dialog) { dialog.accept(); });
    frame().action("part.createBuzzPatterns")->trigger();
    const auto chords = static_cast<std::size_t>(view().partSession()->part().count());
    ASSERT_GT(chords, 0u);
    EXPECT_EQ(song().patternCount(target), chords);
    EXPECT_EQ(undoText(), QStringLiteral("Undo Create Buzz Patterns"));
    frame().action("edit.undo")->trigger();
    EXPECT_EQ(song().patternCount(target), 0u);
    frame().action("edit.redo")->trigger();
    EXPECT_EQ(song().patternCount(target), chords);

    // The song with the new machine writes and reads back.
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("with-m4.bmx"));
    ASSERT_TRUE(frame().saveSongAs(path));
    song::DataFolderMachineCatalog catalog(m_data.path().toStdString());
    song::SongReader reader(catalog, nullptr);
    song::BuzzSong back;
    ASSERT_TRUE(reader.read(path.toStdString(), back));
    ASSERT_EQ(back.machineCount(), 3u);
    EXPECT_EQ(back.patternBlocks()[2], song().patternBlocks()[2]);
}

TEST_F(MachineView, CtrlPOpensPatternInfoInTheMachineViewAndPrintsElsewhere)
{
    QAction* print = frame().action("part.printChordList");
    print->setEnabled(true); // as the part list makes it
    int printed = 0;
    QObject::connect(print, &QAction::triggered, [&printed] { ++printed; });
    selectRows({"Dynamite6"});
    focusMachineList();
    QTest::keyClick(panel().view(), Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(printed, 0);
    ASSERT_NE(panel().findChild<QWidget*>(QStringLiteral("patternInfoWindow")), nullptr);
    EXPECT_TRUE(panel().findChild<QWidget*>(QStringLiteral("patternInfoWindow"))->isVisible());
    panel().findChild<QWidget*>(QStringLiteral("patternInfoWindow"))->close();

    QTest::keyClick(panel().view(), Qt::Key_I, Qt::ControlModifier);
    EXPECT_TRUE(panel().findChild<QWidget*>(QStringLiteral("machineInfoWindow"))->isVisible());
    panel().findChild<QWidget*>(QStringLiteral("machineInfoWindow"))->close();

    frame().activateWindow();
    view().chordDatabase()->setFocus();
    answerDialog<QPrintPreviewDialog>([](QPrintPreviewDialog& d) { d.reject(); });
    QTest::keyClick(view().chordDatabase(), Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(printed, 1);
    frame().hide();
}

TEST_F(MachineView, KeysOfTheListSelectCopyPasteAndAdd)
{
    writeDemoPart(1);
    focusMachineList();
    QTest::keyClick(panel().view(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(panel().selectedMachines(), (std::vector<std::size_t>{0, 1}));

    // Ctrl+C and Ctrl+V: a copy of the generator with its patterns, one undo step.
    selectRows({"Dynamite6"});
    QTest::keyClick(panel().view(), Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(panel().view(), Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(song().machineCount(), 3u);
    EXPECT_EQ(song().patternBlocks()[2].patterns, song().patternBlocks()[1].patterns);
    EXPECT_EQ(undoText(), QStringLiteral("Undo Paste machine"));

    // F4: the machine chooser; cancelled, nothing is added.
    bool offered = false;
    answerDialog<app::CMachineChooserDialog>([&offered](app::CMachineChooserDialog& dialog) {
        offered = true;
        dialog.reject();
    });
    QTest::keyClick(panel().view(), Qt::Key_F4);
    EXPECT_TRUE(offered);
    EXPECT_EQ(song().machineCount(), 3u);

    // Show Settings goes back to the part's settings.
    item("view.showSettings")->trigger();
    EXPECT_NE(view().sideStack()->currentWidget(), static_cast<QWidget*>(&panel()));
    frame().hide();
}

TEST_F(MachineView, ASongWithUnsavedEditsIsOnlyReplacedWhenTheUserAgrees)
{
    // Changed twice over: machines added, and the part written into the generator by its command.
    addEveryKind();
    selectRows({"Dynamite6"});
    answerDialog<app::CPartWriteDialog>([](app::CPartWriteDialog& d) { d.accept(); });
    frame().action("part.createBuzzPatterns")->trigger();
    ASSERT_TRUE(document().isModified());
    const QString written = QString::number(song().patternCount(1));
    ASSERT_NE(written, QStringLiteral("0"));
    struct Case
    {
        QMessageBox::StandardButton answer;
        std::size_t machinesAfter;
        QString patternsShown; // of Dynamite6 in the list
    };
    for (const Case& c : {Case{QMessageBox::Cancel, 5, written}, Case{QMessageBox::No, 2, "0"}}) {
        m_messages.clear();
        m_messages.queueAnswer(c.answer);
        frame().action("file.new")->trigger();
        ASSERT_EQ(m_messages.texts().size(), 1);
        EXPECT_EQ(m_messages.texts()[0],
                  QStringLiteral("The song has been changed.\nDo you want to save it?"));
        EXPECT_EQ(song().machineCount(), c.machinesAfter);
        EXPECT_EQ(document().isModified(), c.answer == QMessageBox::Cancel);
        const app::MachineListModel& model = *panel().model();
        EXPECT_EQ(model.index(model.rowOfName("Dynamite6"), app::MachineListModel::PatternsColumn)
                      .data()
                      .toString(),
                  c.patternsShown);
    }
    EXPECT_FALSE(document().history()->canUndo()) << "a new song starts a new history";
}

} // namespace
