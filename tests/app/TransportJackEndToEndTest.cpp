// The desktop program playing to a real JACK MIDI port: a private dummy JACK server, a
// jack_midi_dump client, a settings file that names the client's port, and F5 in the window.
#include "AppTestSupport.h"

#include "app/CTempoBar.h"
#include "app/CTreeCtrlX.h"
#include "app/PartSession.h"
#include "app/TransportController.h"
#include "midi/StepEngine.h"
#include "midi/SystemMidiPortList.h"
#include "music/RandomSource.h"
#include "player/PartPlayer.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>
#include <QThread>

#include <cstdlib>

namespace {

/** A server name of this test alone; fixed, since JACK reclaims the registry entry of a name. */
constexpr const char* kServer = "tmtest-window";
const QString kPort = QStringLiteral("JACK: tmwindow:input");

/** The note-ons (status, note) of a jack_midi_dump listing ("  frame: 92 30 51 note on ..."). */
std::vector<std::pair<int, int>> noteOns(const QString& dump)
{
    std::vector<std::pair<int, int>> out;
    const QRegularExpression line(QStringLiteral(R"(:\s+([0-9a-fA-F]{2}) ([0-9a-fA-F]{2}) )"));
    for (auto it = line.globalMatch(dump); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        const int status = m.captured(1).toInt(nullptr, 16);
        if ((status & 0xF0) == 0x90)
            out.emplace_back(status, m.captured(2).toInt(nullptr, 16));
    }
    return out;
}

/** Records what the step engine makes of a part, as the expected result. */
struct NoteOnSink : midi::StepSink
{
    void send(const midi::StepMessage& m) override
    {
        if ((m.status & 0xF0) == 0x90)
            notes.emplace_back(m.status, m.note);
    }
    std::vector<std::pair<int, int>> notes;
};

class JackProcesses
{
public:
    ~JackProcesses()
    {
        // SIGTERM only: a killed server never frees its registry slot.
        for (QProcess* p : {&m_dump, &m_server}) {
            p->terminate();
            p->waitForFinished(5000);
        }
        qunsetenv("JACK_DEFAULT_SERVER");
    }
    /** Starts the server (real-time first) and the dump client; false when either fails. */
    bool start(const QString& dumpFile)
    {
        qputenv("JACK_DEFAULT_SERVER", kServer);
        qputenv("JACK_NO_AUDIO_RESERVATION", "1");
        for (const char* mode : {"--realtime", "--no-realtime"}) {
            m_server.start(QStringLiteral("jackd"),
                           {QString::fromLatin1(mode), QStringLiteral("-n"),
                            QString::fromLatin1(kServer), QStringLiteral("-d"),
                            QStringLiteral("dummy"), QStringLiteral("-r"), QStringLiteral("48000"),
                            QStringLiteral("-p"), QStringLiteral("1024")});
            m_server.waitForStarted(5000);
            if (waitFor([] { return run(QStringLiteral("jack_wait"), {"-c"}).contains("running"); },
                        [this] { return m_server.state() == QProcess::Running; }))
                break;
            m_server.terminate();
            m_server.waitForFinished(5000);
        }
        if (m_server.state() != QProcess::Running)
            return false;
        m_dump.setStandardOutputFile(dumpFile);
        m_dump.start(QStringLiteral("jack_midi_dump"), {QStringLiteral("tmwindow")});
        m_dump.waitForStarted(5000);
        return waitFor(
            [] { return run(QStringLiteral("jack_lsp"), {}).contains("tmwindow:input"); },
            [this] { return m_dump.state() == QProcess::Running; });
    }
    void stopDump()
    {
        m_dump.terminate();
        m_dump.waitForFinished(5000);
    }

private:
    static QString run(const QString& program, const QStringList& arguments)
    {
        QProcess p;
        p.start(program, arguments);
        p.waitForFinished(3000);
        return QString::fromLocal8Bit(p.readAllStandardOutput());
    }
    /**
     * Polls `ready` for fifteen seconds while `alive` holds: a server starting beside a package
     * build (the tests run two at a time) has taken more than five.
     */
    template <typename Ready, typename Alive> static bool waitFor(Ready ready, Alive alive)
    {
        for (int i = 0; i < 300 && alive(); ++i) {
            if (ready())
                return true;
            QThread::msleep(50);
        }
        return false;
    }

    QProcess m_server;
    QProcess m_dump;
};

TEST(TransportJackEndToEnd, F5InTheWindowPlaysThePartToTheJackPortTheSettingsName)
{
    for (const char* tool : {"jackd", "jack_midi_dump", "jack_wait", "jack_lsp"}) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty())
            GTEST_SKIP() << tool << " is not installed";
    }
    apptest::DataFolderCopy data;
    apptest::MessageRecorder messages;
    JackProcesses jack;
    const QString dumpFile = data.file(QStringLiteral("dump.txt"));
    ASSERT_TRUE(jack.start(dumpFile)) << "the dummy JACK server or its dump client did not start";

    // The settings file names the port by number and name, as the program writes it.
    auto ports = std::make_shared<midi::SystemMidiPortList>(data.path().toStdString());
    const std::vector<std::string> names = ports->deviceNames();
    const auto found = std::find(names.begin(), names.end(), kPort.toStdString());
    ASSERT_NE(found, names.end()) << "the JACK port is not listed";
    midi::MidiSettings settings;
    settings.setDeviceNumber(static_cast<std::uint16_t>(found - names.begin()));
    settings.setChannel(2);
    settings.setProgram(17);
    ASSERT_TRUE(settings.write(data.file(QStringLiteral("Tonalmancer.ini")).toStdString(), *ports));

    // The program as it starts: its own device list, the settings file, the default part.
    app::CTonalmancerApp program;
    ASSERT_TRUE(program.start({QStringLiteral("--data"), data.path()}, false));
    app::CMainFrame& frame = *program.mainFrame();
    app::PartSession& session = *program.view()->partSession();
    ASSERT_GE(session.part().count(), 2);
    ASSERT_EQ(program.view()->midiSettings().deviceNumber(), settings.deviceNumber());
    session.setSelectedChords({0, 1}); // the first two chords, 25 ms a row
    session.setCurrentChord(0);
    frame.tempoBar()->setBeatsPerMinute(600);
    frame.tempoBar()->setTicksPerBeat(4);
    frame.show();
    frame.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&frame));
    program.view()->chordDatabase()->tree()->setFocus();

    music::RandomSource::seed(3);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F5);
    app::TransportController& transport = *program.view()->transport();
    ASSERT_TRUE(transport.isPlaying()) << messages.texts().join(u'\n').toStdString();
    EXPECT_TRUE(QTest::qWaitFor([&transport] { return !transport.isPlaying(); }, 10000));
    QTest::qWait(300); // the last JACK periods
    jack.stopDump();
    frame.hide();

    NoteOnSink expected;
    midi::StepEngine engine(expected);
    engine.setChannel(2);
    engine.setRenderOptions(session.renderOptions());
    music::RandomSource::seed(3);
    ASSERT_TRUE(engine.startPart(session.part(), part::kNoIndex));
    while (engine.step()) {
    }
    QFile dump(dumpFile);
    ASSERT_TRUE(dump.open(QIODevice::ReadOnly));
    const QString received = QString::fromLocal8Bit(dump.readAll());
    EXPECT_FALSE(expected.notes.empty());
    EXPECT_EQ(noteOns(received), expected.notes) << received.toStdString();
    EXPECT_TRUE(received.contains(QStringLiteral(": c2 11"))) << "the program change first";
    EXPECT_TRUE(messages.texts().isEmpty()) << messages.texts().join(u'\n').toStdString();
}

} // namespace
