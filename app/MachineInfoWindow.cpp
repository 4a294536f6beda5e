#include "app/MachineInfoWindow.h"

#include "app/CTonalmancerDoc.h"
#include "app/MachineListModel.h"
#include "app/MachinePanel.h"
#include "app/TextTableModel.h"
#include "song/BuzzNote.h"
#include "song/BuzzSong.h"
#include "song/NoteTransforms.h"

#include <QHeaderView>
#include <QLabel>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>

#include <cstdlib>

namespace app {

namespace {

constexpr int kUnity = 0x4000; // the tracker's full amplitude and centre panning

QString typeName(int type)
{
    switch (type) {
    case 0:
        return MachineInfoWindow::tr("Note");
    case 1:
        return MachineInfoWindow::tr("Switch");
    case 2:
        return MachineInfoWindow::tr("Byte");
    case 3:
        return MachineInfoWindow::tr("Word");
    default:
        return MachineInfoWindow::tr("Type %1").arg(type);
    }
}

/** A parameter value as a tracker user reads it: notes by name, numbers with their hex. */
QString valueText(int type, std::int32_t value)
{
    if (type == 0) {
        if (value == 0)
            return MachineInfoWindow::tr("0 (no note)");
        if (value > 0 && value <= 0xFF)
            return QString::fromStdString(song::trackerNoteName(static_cast<std::uint8_t>(value)));
    }
    if (value < 0)
        return QString::number(value);
    return QStringLiteral("%1 (%2h)").arg(value).arg(QString::number(value, 16).toUpper());
}

/** The values a parameter type can hold, when the song does not give the machine's range. */
QString typeRange(int type)
{
    switch (type) {
    case 0:
        return QStringLiteral("C-0..B-9");
    case 1:
        return QStringLiteral("0..1");
    case 2:
        return QStringLiteral("0..255");
    case 3:
        return QStringLiteral("0..65535");
    default:
        return QStringLiteral("-");
    }
}

QString amplitudeText(int amplitude)
{
    return QStringLiteral("%1 % (%2h)")
        .arg(amplitude * 100 / kUnity)
        .arg(QString::number(amplitude, 16).toUpper());
}

QString panningText(int panning)
{
    if (panning == kUnity)
        return MachineInfoWindow::tr("centre");
    const int percent = std::abs(panning - kUnity) * 100 / kUnity;
    return panning < kUnity ? MachineInfoWindow::tr("left %1 %").arg(percent)
                            : MachineInfoWindow::tr("right %1 %").arg(percent);
}

QTableView* makeTable(QWidget* parent, const char* name, const QString& accessibleName,
                      TextTableModel* model)
{
    auto* table = new QTableView(parent);
    table->setObjectName(QString::fromLatin1(name));
    table->setAccessibleName(accessibleName);
    table->setModel(model);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setAlternatingRowColors(true);
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->horizontalHeader()->setStretchLastSection(true);
    return table;
}

} // namespace

MachineInfoWindow::MachineInfoWindow(MachinePanel& panel)
    : QWidget(&panel, Qt::Tool), m_panel(panel)
{
    setObjectName(QStringLiteral("machineInfoWindow"));
    setAccessibleName(tr("Machine Info"));
    setWindowTitle(tr("Machine Info"));

    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("machineSummary"));
    m_summary->setAccessibleName(tr("About the machine"));
    m_summary->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_summary->setWordWrap(true);

    m_parameters = new TextTableModel(
        {tr("Scope"), tr("Parameter"), tr("Type"), tr("Range"), tr("Default"), tr("No value")},
        this);
    m_connections =
        new TextTableModel({tr("Direction"), tr("Machine"), tr("Amplitude"), tr("Panning")}, this);
    m_parameterTable = makeTable(this, "machineParameters", tr("Parameters"), m_parameters);
    m_connectionTable = makeTable(this, "machineConnections", tr("Connections"), m_connections);

    auto* split = new QSplitter(Qt::Vertical, this);
    split->setObjectName(QStringLiteral("machineInfoSplit"));
    split->setAccessibleName(tr("Parameters and connections"));
    split->addWidget(m_parameterTable);
    split->addWidget(m_connectionTable);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addWidget(split, 1);
    resize(640, 480);

    connect(&panel, &MachinePanel::currentMachineChanged, this, [this] {
        if (isVisible())
            refresh();
    });
    refresh();
}

void MachineInfoWindow::refresh()
{
    const song::BuzzSong* song = m_panel.document().song();
    const auto machine = m_panel.currentMachine();
    if (song == nullptr || !machine || *machine >= song->machineCount()) {
        setWindowTitle(tr("Machine Info"));
        m_summary->setText(tr("No machine is selected in the machine view."));
        m_parameters->setRows({});
        m_connections->setRows({});
        return;
    }
    const song::SongMachine& m = song->machines()[*machine];
    const QString name = QString::fromStdString(m.name);
    setWindowTitle(tr("Machine Info - %1").arg(name));
    QString text =
        m.isMaster() ? tr("%1: the master").arg(name)
                     : tr("%1: %2, a %3")
                           .arg(name, QString::fromStdString(m.dllName),
                                MachineListModel::kindText(MachineListModel::kindOf(m)).toLower());
    text += QLatin1Char('\n') + tr("Tracks: %1; the machine database allows %2 to %3")
                                    .arg(m.trackCount)
                                    .arg(m.description.minTracks)
                                    .arg(m.description.maxTracks);
    if (m.description.isLearned())
        text += tr(" (learned from a song: scan the machine's DLL for its real range)");
    m_summary->setText(text);
    fillParameters(*song, *machine);
    fillConnections(*song, *machine);
}

void MachineInfoWindow::fillParameters(const song::BuzzSong& song, std::size_t machine)
{
    const song::SongMachine& m = song.machines()[machine];
    const std::vector<song::MachineParameter>& parameters = m.description.parameters;
    // The song's own descriptions carry the ranges; the database keeps none.
    const song::MachineParameterSet* set = nullptr;
    if (const std::size_t found = song.findParameterSet(m.name);
        found != song::BuzzSong::kNameNotFound &&
        song.parameterSets()[found].parameters.size() == parameters.size())
        set = &song.parameterSets()[found];

    std::vector<QStringList> rows;
    std::vector<QString> tips;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const song::MachineParameter& p = parameters[i];
        const QString range =
            set != nullptr
                ? QStringLiteral("%1..%2").arg(valueText(p.type, set->parameters[i].minimum),
                                               valueText(p.type, set->parameters[i].maximum))
                : typeRange(p.type);
        rows.push_back({p.isGlobal() ? tr("global") : tr("track"), QString::fromStdString(p.name),
                        typeName(p.type), range, valueText(p.type, p.defaultValue),
                        valueText(p.type, p.noValue)});
        tips.push_back(set != nullptr ? QString()
                                      : tr("The song does not describe this parameter's range; "
                                           "the range of its type is shown."));
    }
    m_parameters->setToolTips(std::move(tips));
    m_parameters->setRows(std::move(rows));
}

void MachineInfoWindow::fillConnections(const song::BuzzSong& song, std::size_t machine)
{
    const auto nameOf = [&song](std::size_t index) {
        return index < song.machineCount() ? QString::fromStdString(song.machines()[index].name)
                                           : QString::number(index);
    };
    std::vector<QStringList> rows;
    for (const song::SongConnection& c : song.connections()) {
        if (c.destination == machine)
            rows.push_back(
                {tr("from"), nameOf(c.source), amplitudeText(c.amplitude), panningText(c.panning)});
    }
    for (const song::SongConnection& c : song.connections()) {
        if (c.source == machine)
            rows.push_back({tr("to"), nameOf(c.destination), amplitudeText(c.amplitude),
                            panningText(c.panning)});
    }
    m_connections->setRows(std::move(rows));
}

void MachineInfoWindow::showEvent(QShowEvent* event)
{
    refresh();
    QWidget::showEvent(event);
}

} // namespace app
