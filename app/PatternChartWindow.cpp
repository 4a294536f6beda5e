#include "app/PatternChartWindow.h"

#include "app/CTonalmancerDoc.h"
#include "app/MachinePanel.h"
#include "app/PatternChartWidget.h"
#include "song/BuzzSong.h"
#include "song/NoteTransforms.h"
#include "song/PatternUsage.h"

#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <map>

namespace app {

namespace {

using Bars = std::vector<PatternChartWidget::Bar>;

Bars noteBars(const song::PatternUsage& usage)
{
    Bars bars;
    for (const auto& [note, count] : usage.notes)
        bars.push_back({QString::fromStdString(song::trackerNoteName(note)), count, false, {}});
    if (usage.noteOffs > 0)
        bars.push_back({QStringLiteral("off"), usage.noteOffs, true, {}});
    return bars;
}

Bars waveBars(const song::PatternUsage& usage, const std::map<int, QString>& names)
{
    Bars bars;
    for (const auto& [wave, count] : usage.waves) {
        const auto name = names.find(wave);
        // Waves are numbered in hex in the tracker.
        bars.push_back({QStringLiteral("%1").arg(wave, 2, 16, QLatin1Char('0')).toUpper(), count,
                        false, name == names.end() ? QString() : name->second});
    }
    return bars;
}

} // namespace

PatternChartWindow::PatternChartWindow(MachinePanel& panel, bool waves)
    : QWidget(&panel, Qt::Tool), m_panel(panel), m_waves(waves)
{
    setObjectName(waves ? QStringLiteral("wavesChartWindow") : QStringLiteral("notesChartWindow"));
    const QString title = waves ? tr("Waves Chart") : tr("Notes Chart");
    setAccessibleName(title);
    setWindowTitle(title);

    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("chartSummary"));
    m_summary->setAccessibleName(tr("About the chart"));
    m_summary->setWordWrap(true);

    m_content = new QWidget;
    m_content->setObjectName(QStringLiteral("chartContent"));
    m_content->setAccessibleName(title);
    m_chartLayout = new QVBoxLayout(m_content);
    m_chartLayout->setSpacing(2);
    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("chartScroll"));
    scroll->setAccessibleName(tr("Patterns"));
    scroll->setWidgetResizable(true);
    scroll->setWidget(m_content);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addWidget(scroll, 1);
    resize(560, 520);

    connect(&panel, &MachinePanel::currentMachineChanged, this, [this] {
        if (isVisible())
            refresh();
    });
    refresh();
}

void PatternChartWindow::refresh()
{
    for (PatternChartWidget* chart : m_charts)
        delete chart;
    m_charts.clear();
    while (QLayoutItem* item = m_chartLayout->takeAt(0))
        delete item;

    const QString title = m_waves ? tr("Waves Chart") : tr("Notes Chart");
    const song::BuzzSong* song = m_panel.document().song();
    const auto machine = m_panel.currentMachine();
    if (song == nullptr || !machine || *machine >= song->machineCount()) {
        setWindowTitle(title);
        m_summary->setText(tr("No machine is selected in the machine view."));
        return;
    }
    const QString name = QString::fromStdString(song->machines()[*machine].name);
    setWindowTitle(tr("%1 - %2").arg(title, name));

    std::map<int, QString> waveNames;
    for (const song::WaveEntry& wave : song->waves())
        waveNames[wave.index] = QString::fromStdString(wave.name);
    const std::vector<song::PatternUsage> usage = song::patternUsage(*song, *machine);
    std::vector<Bars> bars;
    std::size_t scale = 1;
    std::size_t total = 0;
    for (const song::PatternUsage& pattern : usage) {
        bars.push_back(m_waves ? waveBars(pattern, waveNames) : noteBars(pattern));
        for (const PatternChartWidget::Bar& bar : bars.back()) {
            scale = std::max(scale, bar.count);
            total += bar.count;
        }
    }
    for (std::size_t i = 0; i < usage.size(); ++i) {
        auto* chart = new PatternChartWidget(QString::fromStdString(usage[i].name),
                                             std::move(bars[i]), scale, m_content);
        m_chartLayout->addWidget(chart);
        m_charts.push_back(chart);
    }
    m_chartLayout->addStretch(1);
    if (usage.empty())
        m_summary->setText(tr("%1 has no patterns.").arg(name));
    else if (m_waves && song->machines()[*machine].description.findParameter("wave") < 0)
        m_summary->setText(tr("%1 has no wave parameter: it plays no waves.").arg(name));
    else if (m_waves)
        m_summary->setText(
            tr("%1: %2 wave cells in %3 patterns.").arg(name).arg(total).arg(usage.size()));
    else
        m_summary->setText(tr("%1: %2 notes and note-offs in %3 patterns.")
                               .arg(name)
                               .arg(total)
                               .arg(usage.size()));
}

void PatternChartWindow::showEvent(QShowEvent* event)
{
    refresh();
    QWidget::showEvent(event);
}

} // namespace app
