// The part leaving the window: the MIDI settings dialog into Tonalmancer.ini, "Create Midi File"
// and "Create Buzz Patterns" against what the command-line program writes for the same options,
// and the part dragged out as a MIDI file.
#include "AppTestSupport.h"

#include "app/CMidiFileDialog.h"
#include "app/CMidiSettingsDialog.h"
#include "app/CPartWriteDialog.h"
#include "app/CTempoBar.h"
#include "app/MachineListModel.h"
#include "app/MachinePanel.h"
#include "app/NoteRuleBox.h"
#include "app/PartExportCommands.h"
#include "app/PartListModel.h"
#include "app/PartListPanel.h"
#include "app/PartSession.h"
#include "app/ProgramTableModel.h"
#include "app/TransportController.h"
#include "music/FileBytes.h"
#include "music/RandomSource.h"
#include "part/PartFile.h"
#include "player/PartPlayer.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <QUrl>

namespace {

using app::PartSession;

const QString kCli = QStringLiteral(TM_BINARY_DIR "/bin/tonalmancer-cli");

using apptest::onDialog;

class PartExport : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        m_ports->setNames({"Fake: Synth", "Fake: Keys"});
        AppFixture::SetUp();
        part::Part shipped;
        ASSERT_TRUE(part::PartFile::load(m_data.file(QStringLiteral("default.prt")).toStdString(),
                                         shipped));
        session().reset(shipped, {});
    }

    QString file(const QString& name) const { return m_out.filePath(name); }
    std::string bytes(const QString& path) const
    {
        return music::readFileBytes(path.toStdString()).value_or("(missing)");
    }
    /** Saves the session's part for the command-line program. */
    QString savedPart()
    {
        const QString path = file(QStringLiteral("part.prt"));
        EXPECT_TRUE(part::PartFile::save(path.toStdString(), session().part()));
        return path;
    }
    /** Runs the command-line program on the same data folder; its standard output. */
    QString cli(QStringList arguments)
    {
        arguments << QStringLiteral("--data") << m_data.path();
        QProcess process;
        process.start(kCli, arguments);
        EXPECT_TRUE(process.waitForFinished(20000));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return QString::fromUtf8(process.readAllStandardOutput());
    }

    QTemporaryDir m_out;
};

TEST_F(PartExport, MidiSettingsDialogStoresItsValuesAndTheyReachTheSettingsFile)
{
    // Cancelled from one menu item, confirmed from the other.
    bool seen = false;
    onDialog<app::CMidiSettingsDialog>(
        [](app::CMidiSettingsDialog& dialog) {
            dialog.portBox()->setValue(9);
            dialog.reject();
        },
        seen);
    frame().action("view.midiSettings")->trigger();
    ASSERT_TRUE(seen);
    EXPECT_EQ(view().midiSettings().port(), 0);

    onDialog<app::CMidiSettingsDialog>(
        [](app::CMidiSettingsDialog& dialog) {
            EXPECT_EQ(dialog.deviceBox()->count(), 2);
            EXPECT_EQ(dialog.deviceBox()->itemText(1), QStringLiteral("Fake: Keys"));
            EXPECT_EQ(dialog.deviceBox()->currentIndex(), -1) << "no device chosen yet";
            dialog.deviceBox()->setCurrentIndex(1);
            dialog.portBox()->setValue(3);
            dialog.channelBox()->setValue(5); // shown from 1
            dialog.programBox()->setValue(17);
            dialog.noteRules()->indexButton(part::IndexOption::Ignore)->setChecked(true);
            dialog.noteRules()->limitBox()->setChecked(true);
            dialog.noteRules()->limitNoteBox()->setCurrentIndex(7);
            dialog.noteRules()->limitOctaveBox()->setValue(5);
            app::ProgramTableModel& table = *dialog.programTableModel();
            EXPECT_TRUE(table.setData(table.index(3, 1), 99));
            EXPECT_FALSE(table.setData(table.index(3, 2), 128)) << "not a program";
            dialog.accept();
        },
        seen);
    frame().action("settings.midi")->trigger();
    ASSERT_TRUE(seen);

    const part::RenderOptions& rules = session().renderOptions();
    EXPECT_EQ(rules.indexOption, part::IndexOption::Ignore);
    EXPECT_TRUE(rules.limitActive);
    EXPECT_EQ(rules.limitNote, 7);
    EXPECT_EQ(rules.limitOctave, 5);

    view().shutdown();
    const midi::MidiSettings written = midi::MidiSettings::read(
        m_data.file(QStringLiteral("Tonalmancer.ini")).toStdString(), *m_ports);
    EXPECT_EQ(written.deviceNumber(), 1);
    EXPECT_EQ(written.port(), 3);
    EXPECT_EQ(written.channel(), 4);
    EXPECT_EQ(written.program(), 17);
    EXPECT_EQ(written.programAt(3, 1), 99);
    EXPECT_EQ(written.programAt(3, 2), 0);
}

TEST_F(PartExport, MidiSettingsDialogSaysWhenThereIsNoDeviceAndTestPlaysAChord)
{
    auto none = std::make_shared<apptest::FakePortList>();
    app::CMidiSettingsDialog empty(midi::MidiSettings(), {}, none);
    EXPECT_EQ(empty.deviceBox()->currentText(), QStringLiteral("No midi device available"));
    EXPECT_FALSE(empty.deviceBox()->isEnabled());
    EXPECT_FALSE(empty.testButton()->isEnabled());
    EXPECT_EQ(empty.settings().deviceNumber(), midi::MidiSettings::kNoDevice);

    midi::MidiSettings settings;
    settings.setDeviceNumber(0);
    app::CMidiSettingsDialog dialog(settings, {}, m_ports);
    dialog.channelBox()->setValue(3);
    dialog.testButton()->click();
    EXPECT_TRUE(dialog.testPlayer().isPlaying());
    const std::vector<std::vector<std::uint8_t>> chord = {
        {0xC2, 0}, {0x92, 60, 80}, {0x92, 64, 80}, {0x92, 67, 80}};
    ASSERT_EQ(m_ports->messages.size(), 4u);
    for (std::size_t i = 0; i < chord.size(); ++i) // the velocities jitter by a little
        EXPECT_EQ(m_ports->messages[i][1], chord[i][1]);
    EXPECT_TRUE(QTest::qWaitFor([&dialog] { return !dialog.testPlayer().isPlaying(); }, 3000));
    EXPECT_EQ(m_ports->messages.size(), 7u) << "and stopped again";
}

TEST_F(PartExport, CreateMidiFileWritesWhatTheCommandLineWritesForTheSameOptions)
{
    frame().tempoBar()->setBeatsPerMinute(140);
    frame().tempoBar()->setTicksPerBeat(4);
    struct Case
    {
        const char* what;
        std::vector<int> selected;
        int channel, velocityIndex;
        bool writeBpm;
        part::IndexOption index;
        bool limit;
        QStringList cliOptions;
        int velocityAfter;
        bool markers = false;
    };
    const Case cases[] = {
        {"chord names as markers",
         {0, 1},
         1,
         4,
         false,
         part::IndexOption::ExtendChord,
         false,
         {"--channel", "1", "--velocity", "80", "--range", "0,1", "--markers"},
         80,
         true},
        {"range, tempo and note rules",
         {1, 2, 3},
         3,
         5,
         true,
         part::IndexOption::Ignore,
         true,
         {"--channel", "3", "--velocity", "96", "--write-bpm", "--index-option", "2", "--limit",
          "A,5", "--range", "1,3"},
         96},
        {"the whole part at velocity 128",
         {},
         0,
         7,
         false,
         part::IndexOption::ExtendChord,
         false,
         {"--channel", "0", "--velocity", "128"},
         127},
    };
    const QString path = file(QStringLiteral("gui.mid"));
    QString suggested;
    view().partExports()->setFileChooser([&](const QString& start) {
        suggested = start;
        return path;
    });
    bool markersBefore = false; // the markers choice is remembered from the last OK
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        session().setSelectedChords(c.selected);
        bool seen = false;
        onDialog<app::CMidiFileDialog>(
            [&c, markersBefore](app::CMidiFileDialog& dialog) {
                EXPECT_EQ(dialog.velocityBox()->toolTip(), QStringLiteral("The notes velocity."));
                dialog.channelBox()->setValue(c.channel + 1);
                dialog.velocityBox()->setCurrentIndex(c.velocityIndex);
                dialog.writeBpmBox()->setChecked(c.writeBpm);
                dialog.noteRules()->indexButton(c.index)->setChecked(true);
                dialog.noteRules()->limitBox()->setChecked(c.limit);
                dialog.noteRules()->limitNoteBox()->setCurrentIndex(9);
                dialog.noteRules()->limitOctaveBox()->setValue(5);
                EXPECT_EQ(dialog.markersBox()->isChecked(), markersBefore);
                dialog.markersBox()->setChecked(c.markers);
                dialog.accept();
            },
            seen);
        m_messages.clear();
        music::RandomSource::seed(11);
        frame().action("part.createMidiFile")->trigger();
        ASSERT_TRUE(seen);
        EXPECT_EQ(m_messages.texts(), QStringList{QStringLiteral("Done")});
        EXPECT_TRUE(suggested.startsWith(m_data.path())) << suggested.toStdString();
        EXPECT_EQ(view().midiSettings().velocity(), c.velocityAfter);

        // Same file name: with markers, the file's name names a part that has none.
        QDir(m_out.path()).mkpath(QStringLiteral("cli"));
        const QString expected = file(QStringLiteral("cli/gui.mid"));
        cli(QStringList{QStringLiteral("midi"), QStringLiteral("--part"), savedPart(),
                        QStringLiteral("-o"), expected, QStringLiteral("--bpm"),
                        QStringLiteral("140"), QStringLiteral("--tpb"), QStringLiteral("4"),
                        QStringLiteral("--seed"), QStringLiteral("11")} +
            c.cliOptions);
        EXPECT_EQ(bytes(path), bytes(expected));
        const std::string name = session().part().chord(1).name;
        const std::string marker =
            std::string("\xFF\x06") + static_cast<char>(name.size()) + name; // meta event 6
        const bool named = bytes(path).find(marker) != std::string::npos;
        EXPECT_EQ(named, c.markers) << "the names are in the file exactly with the option";
        markersBefore = c.markers;
    }

    // Cancelled in the options dialog: nothing is written or said; the markers choice of the
    // last confirmed dialog is offered again.
    QFile::remove(path);
    m_messages.clear();
    bool seen = false;
    bool markersOffered = false;
    onDialog<app::CMidiFileDialog>(
        [&markersOffered](app::CMidiFileDialog& dialog) {
            markersOffered = dialog.markersBox()->isChecked();
            dialog.markersBox()->setChecked(true);
            dialog.reject();
        },
        seen);
    frame().action("part.createMidiFile")->trigger();
    EXPECT_TRUE(seen);
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_TRUE(m_messages.texts().isEmpty());
    EXPECT_FALSE(markersOffered);
    EXPECT_FALSE(view().partExports()->writesChordNames()) << "a cancelled dialog changes nothing";
}

TEST_F(PartExport, ThePartDraggedOutOfThePartListIsTheMidiFileCreateMidiFileWrites)
{
    // What a drag of two chords from the part list carries: the chords, and the part as a file.
    app::PartListModel& list = *view().partList()->model();
    music::RandomSource::seed(4);
    const std::unique_ptr<QMimeData> data(list.mimeData({list.index(0, 0), list.index(1, 0)}));
    ASSERT_EQ(data->urls().size(), 1);
    const QString dragged = data->urls().constFirst().toLocalFile();
    EXPECT_TRUE(dragged.endsWith(QStringLiteral("/part.mid"))) << dragged.toStdString();
    EXPECT_TRUE(list.canDropMimeData(data.get(), Qt::MoveAction, 0, 0, {})) << "chords too";

    music::RandomSource::seed(4);
    ASSERT_TRUE(view().partExports()->writeMidiFile(file(QStringLiteral("menu.mid"))));
    EXPECT_EQ(bytes(dragged), bytes(file(QStringLiteral("menu.mid"))));

    // A second drag does not overwrite the file the first one offered.
    QMimeData again;
    ASSERT_TRUE(view().addPartAsMidiFile(again));
    EXPECT_NE(again.urls().constFirst().toLocalFile(), dragged);
    EXPECT_TRUE(QFile::exists(dragged));
}

class BuzzPatterns : public PartExport
{
protected:
    void SetUp() override
    {
        PartExport::SetUp();
        document().newSong(); // the default song: the master and one generator
        view().showMachineView(true);
    }
    void selectMachine(const QString& name)
    {
        app::MachinePanel& machines = *view().machinePanel();
        machines.selectNames(name.isEmpty() ? std::vector<std::string>{}
                                            : std::vector<std::string>{name.toStdString()});
    }
    QString patternCount(const QString& machine)
    {
        const app::MachineListModel& model = *view().machinePanel()->model();
        const int row = model.rowOfName(machine.toStdString());
        return row < 0 ? QString()
                       : model.index(row, app::MachineListModel::PatternsColumn).data().toString();
    }
};

TEST_F(BuzzPatterns, WritesIntoTheSelectedGeneratorWhatTheCommandLineWrites)
{
    const QString generator = QStringLiteral("Dynamite6");
    selectMachine(generator);
    bool seen = false;
    onDialog<app::CPartWriteDialog>(
        [](app::CPartWriteDialog& dialog) {
            EXPECT_EQ(dialog.sequenceBox()->toolTip(),
                      QStringLiteral("Create a sequence from the part."));
            dialog.sequenceBox()->setChecked(true);
            dialog.nameByNotesBox()->setChecked(true);
            dialog.waveModeButton(1)->setChecked(true);
            dialog.accept();
        },
        seen);
    music::RandomSource::seed(5);
    frame().action("part.createBuzzPatternsButton")->trigger();
    ASSERT_TRUE(seen);
    EXPECT_EQ(patternCount(generator), QStringLiteral("7"));
    EXPECT_EQ(view().selectedMachineName(), generator) << "still selected after the refresh";
    EXPECT_TRUE(document().isModified());
    EXPECT_TRUE(frame().windowTitle().startsWith(QStringLiteral("Untitled*")));
    ASSERT_TRUE(document().saveAs(file(QStringLiteral("gui.bmx"))));
    EXPECT_FALSE(document().isModified());

    const QString expected = file(QStringLiteral("cli.bmx"));
    const QString out = cli({QStringLiteral("write-part"), QStringLiteral("--part"), savedPart(),
                             QStringLiteral("--song"), m_data.file(QStringLiteral("default.bmx")),
                             QStringLiteral("--machine"), generator, QStringLiteral("-o"), expected,
                             QStringLiteral("--sequence"), QStringLiteral("--names-by-notes"),
                             QStringLiteral("--wave-mode"), QStringLiteral("1"),
                             QStringLiteral("--seed"), QStringLiteral("5")});
    EXPECT_EQ(m_messages.texts(), out.trimmed().split(QLatin1Char('\n')));
    EXPECT_EQ(m_messages.texts().constLast(), QStringLiteral("done"));
    EXPECT_EQ(bytes(file(QStringLiteral("gui.bmx"))), bytes(expected));
}

TEST_F(BuzzPatterns, WritesNothingWithoutAMachineThatTakesNotes)
{
    struct Case
    {
        const char* what;
        QString machine;
        QStringList messages;
    };
    const Case cases[] = {
        {"no machine selected", QString(), {}},
        {"the master has no note parameter",
         QStringLiteral("Master"),
         {QStringLiteral("Error:\t unable to find Noteparameter")}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        selectMachine(c.machine);
        m_messages.clear();
        bool seen = false;
        onDialog<app::CPartWriteDialog>([](app::CPartWriteDialog& d) { d.reject(); }, seen);
        frame().action("part.createBuzzPatterns")->trigger();
        QCoreApplication::processEvents(); // the dialog check runs, and finds none
        EXPECT_FALSE(seen);
        EXPECT_EQ(m_messages.texts(), c.messages);
        EXPECT_FALSE(document().isModified());
    }
    EXPECT_EQ(patternCount(QStringLiteral("Dynamite6")), QStringLiteral("0"));
}

} // namespace
