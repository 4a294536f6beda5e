// Playback started from the window against playback as the command-line program runs it.
// Both drive the same player at 5 ms steps into a port that stamps every note-on on the monotonic
// clock as it is sent. The command-line run has an idle event loop; the window run has the main
// window shown, the grid following the playing row, and the event loop kept busy repainting the
// grid synchronously. Reported: the 50th and 99th percentile of the onset error against the ideal
// schedule, the drift after the last step, for both, and the ratio of the two 99th percentiles.

#include "app/CMainFrame.h"
#include "app/CTempoBar.h"
#include "app/CTonalmancerApp.h"
#include "app/CTonalmancerView.h"
#include "app/PartSession.h"
#include "midi/MidiPortList.h"
#include "part/Part.h"
#include "player/PartPlayer.h"

#include <benchmark/benchmark.h>

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <functional>
#include <vector>

namespace {

constexpr int kSteps = 1000;
constexpr int kBpm = 3000;
constexpr int kTpb = 4;                 // 5 ms steps
constexpr double kIntervalUs = 5000.0;

/** Every row of every chord plays a note on track 0, so every step has a note-on. */
part::Part makeDensePart()
{
    part::Part p = part::Part::makeNew();
    part::Pattern& pattern = p.patterns().pattern(0);
    for (int row = 0; row < part::kRowCount; ++row)
        pattern.setCell(0, row, {part::CellKind::ChordNote, static_cast<std::uint8_t>(row % 3), 0});
    for (int i = 0; i < kSteps / part::kRowCount + 2; ++i) {
        part::PartChord chord;
        chord.name = "C";
        chord.setNotes({0, 4, 7});
        chord.length = part::kRowCount;
        p.append(chord);
    }
    return p;
}

/** One output whose port stamps every note-on with the monotonic clock when it is sent. */
class StampingPorts : public midi::MidiPortList
{
public:
    StampingPorts() : m_onsets(kSteps + 256) {}
    std::vector<std::string> deviceNames() override { return {"Stamp"}; }
    std::unique_ptr<midi::MidiOutPort> openPort(unsigned number) override
    {
        return number == 0 ? std::make_unique<Port>(*this) : nullptr;
    }
    void clear() { m_count = 0; }
    int count() const { return m_count.load(); }
    /** Microseconds since the first onset, one per note-on. */
    std::vector<double> onsets() const
    {
        const int n = std::min<int>(m_count.load(), kSteps);
        std::vector<double> result;
        for (int i = 0; i < n; ++i) {
            result.push_back(
                std::chrono::duration<double, std::micro>(m_onsets[static_cast<std::size_t>(i)] -
                                                          m_onsets[0])
                    .count());
        }
        return result;
    }

private:
    struct Port : midi::MidiOutPort
    {
        explicit Port(StampingPorts& ports) : m_ports(ports) {}
        void sendMessage(const std::vector<std::uint8_t>& bytes) override
        {
            if (bytes.size() < 3 || (bytes[0] & 0xF0) != 0x90 || bytes[2] == 0)
                return;
            const int index = m_ports.m_count.load();
            if (index < static_cast<int>(m_ports.m_onsets.size())) {
                m_ports.m_onsets[static_cast<std::size_t>(index)] =
                    std::chrono::steady_clock::now();
                m_ports.m_count.store(index + 1);
            }
        }
        StampingPorts& m_ports;
    };
    std::vector<std::chrono::steady_clock::time_point> m_onsets;
    std::atomic<int> m_count{0};
};

struct Figures
{
    double p50 = 0;
    double p99 = 0;
    double drift = 0;
};

/** Onset errors against start + k x interval, the start being the median offset of 100 onsets. */
Figures measure(const std::vector<double>& onsets)
{
    Figures figures;
    if (onsets.size() < 200)
        return figures;
    const auto offsetOf = [&](std::size_t k) { return onsets[k] - double(k) * kIntervalUs; };
    const auto medianOf = [](std::vector<double> values) {
        std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
        return values[values.size() / 2];
    };
    std::vector<double> first;
    std::vector<double> last;
    for (std::size_t k = 0; k < 100; ++k) {
        first.push_back(offsetOf(k));
        last.push_back(offsetOf(onsets.size() - 100 + k));
    }
    const double start = medianOf(first);
    std::vector<double> errors;
    for (std::size_t k = 0; k < onsets.size(); ++k)
        errors.push_back(std::abs(offsetOf(k) - start));
    std::sort(errors.begin(), errors.end());
    figures.p50 = errors[errors.size() / 2] / 1000.0;
    figures.p99 = errors[errors.size() * 99 / 100] / 1000.0;
    figures.drift = (medianOf(last) - start) / 1000.0;
    return figures;
}

/** Runs the event loop until `ports` has seen every step, then calls `stop`. */
void waitForSteps(const StampingPorts& ports, const std::function<void()>& stop)
{
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (ports.count() >= kSteps) {
            stop();
            loop.quit();
        }
    });
    poll.start(20);
    QTimer::singleShot(kSteps * 5 * 3, &loop, &QEventLoop::quit); // never hangs
    loop.exec();
}

Figures playFromCommandLine(const std::shared_ptr<StampingPorts>& ports, const part::Part& part)
{
    ports->clear();
    player::PartPlayer player(ports);
    midi::MidiSettings settings;
    settings.setDeviceNumber(0);
    player.setSettings(settings);
    player.setTempo(kBpm, kTpb);
    player.playPart(part, part::kNoIndex);
    waitForSteps(*ports, [&] { player.stop(); });
    return measure(ports->onsets());
}

/** The shipped defaults copied into a temporary data folder, as a fresh installation has them. */
void copyShippedData(const QString& into)
{
    const QDir shipped(QCoreApplication::applicationDirPath());
    for (const QString& name : shipped.entryList(QDir::Files)) {
        if (name.startsWith(QStringLiteral("default.")) || name == QStringLiteral("machines.ini"))
            QFile::copy(shipped.filePath(name), QDir(into).filePath(name));
    }
}

Figures playFromWindow(const std::shared_ptr<StampingPorts>& ports, const part::Part& part)
{
    ports->clear();
    QTemporaryDir data;
    copyShippedData(data.path());
    app::CTonalmancerApp program(ports);
    if (!program.start({QStringLiteral("--data"), data.path()}, true))
        return {};
    app::CMainFrame& frame = *program.mainFrame();
    app::CTonalmancerView& view = *program.view();
    view.midiSettings().setDeviceNumber(0);
    view.partSession()->reset(part, {});
    frame.tempoBar()->setBeatsPerMinute(kBpm);
    frame.tempoBar()->setTicksPerBeat(kTpb);
    // The event loop stays busy: the grid is repainted at once, over and over.
    QWidget* grid = view.regions().patternGrid;
    QTimer repaint;
    QObject::connect(&repaint, &QTimer::timeout, grid, [grid] { grid->repaint(); });
    repaint.start(0);
    frame.action("part.play")->trigger();
    waitForSteps(*ports, [&] { frame.action("part.stop")->trigger(); });
    repaint.stop();
    return measure(ports->onsets());
}

void BM_WindowPlaybackAgainstCommandLine(benchmark::State& state)
{
    static int argc = 1;
    static char name[] = "bench_window_playback";
    static char* argv[] = {name, nullptr};
    if (QApplication::instance() == nullptr) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        new QApplication(argc, argv);
        app::CTonalmancerApp::setApplicationNames();
        static QTemporaryDir settings; // the user's settings are never touched
        QSettings::setDefaultFormat(QSettings::IniFormat);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    }
    const part::Part part = makeDensePart();
    auto ports = std::make_shared<StampingPorts>();
    Figures cli;
    Figures window;
    for (auto _ : state) {
        cli = playFromCommandLine(ports, part);
        window = playFromWindow(ports, part);
    }
    if (cli.p99 <= 0 || window.p99 <= 0) {
        state.SkipWithError("a run did not play every step");
        return;
    }
    state.counters["cli_p50_ms"] = cli.p50;
    state.counters["cli_p99_ms"] = cli.p99;
    state.counters["cli_drift_ms"] = cli.drift;
    state.counters["window_p50_ms"] = window.p50;
    state.counters["window_p99_ms"] = window.p99;
    state.counters["window_drift_ms"] = window.drift;
    state.counters["p99_ratio"] = window.p99 / cli.p99;
}
BENCHMARK(BM_WindowPlaybackAgainstCommandLine)->Iterations(1)->Unit(benchmark::kSecond);

} // namespace

BENCHMARK_MAIN();
