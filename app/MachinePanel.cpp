#include "app/MachinePanel.h"

#include "app/CTonalmancerDoc.h"
#include "app/MachineCommands.h"
#include "app/MachineInfoWindow.h"
#include "app/MachineListModel.h"
#include "app/MachineTreeView.h"
#include "app/PatternChartWindow.h"
#include "app/PatternInfoWindow.h"
#include "midi/MidiSettings.h"

#include <QAction>
#include <QHeaderView>
#include <QMenu>
#include <QVBoxLayout>

#include <algorithm>

namespace app {

MachinePanel::MachinePanel(CTonalmancerDoc& document, midi::MidiSettings& settings,
                           const ActionFactory::ActionLookup& actions, QWidget* parent)
    : QWidget(parent), m_document(document), m_settings(settings)
{
    setObjectName(QStringLiteral("machinePanel"));
    setAccessibleName(tr("Machines of the song"));
    m_model = new MachineListModel(document, this);
    m_model->setObjectName(QStringLiteral("machineModel"));
    m_model->setFilter(settings.machineFilter());

    m_view = new MachineTreeView(this);
    m_view->setObjectName(QStringLiteral("machineView"));
    m_view->setAccessibleName(tr("Machines of the song"));
    m_view->setToolTip(tr("The machines of the song: right-click for their commands, "
                          "Alt+1..5 filter them, F4 adds one."));
    m_view->setModel(m_model);
    m_view->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    setFocusProxy(m_view);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);

    m_menu = ActionFactory::buildContextMenu("machineView", this, actions);
    m_menu->setAccessibleName(tr("Machine commands"));
    connect(m_view, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& point) { m_menu->popup(m_view->viewport()->mapToGlobal(point)); });

    m_commands = new MachineCommands(*this);
    m_model->setRenameHandler([this](std::size_t machine, const QString& name) {
        return m_commands->rename(machine, name);
    });

    // The selection survives a rebuild of the rows by the machines' names.
    // The rows' own names: the song may have changed under them already (undo).
    connect(m_model, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
        m_namesBeforeReset = selectedNames();
        const QModelIndex current = m_view->currentIndex();
        m_currentBeforeReset = current.isValid() ? m_model->nameAt(current.row()) : std::string();
    });
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        selectNames(m_namesBeforeReset);
        const int row = m_model->rowOfName(m_currentBeforeReset);
        if (row >= 0)
            m_view->selectionModel()->setCurrentIndex(m_model->index(row, 0),
                                                      QItemSelectionModel::NoUpdate);
        Q_EMIT currentMachineChanged();
    });
    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &MachinePanel::currentMachineChanged);
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &MachinePanel::currentMachineChanged);
    connect(&m_document, &CTonalmancerDoc::songChanged, this, [this] {
        m_model->reload();
        makeFirstRowCurrent();
    });
    connect(&m_document, &CTonalmancerDoc::songEdited, this, [this] {
        m_model->sync();
        Q_EMIT currentMachineChanged();
    });

    bindMenu(actions);
    bindKeys();
    makeFirstRowCurrent(); // the song open now, as after opening one
}

void MachinePanel::makeFirstRowCurrent()
{
    if (m_model->rowCount() > 0 && !m_view->currentIndex().isValid())
        m_view->selectionModel()->setCurrentIndex(m_model->index(0, 0),
                                                  QItemSelectionModel::NoUpdate);
}

MachinePanel::~MachinePanel() = default;

void MachinePanel::bindMenu(const ActionFactory::ActionLookup& actions)
{
    const std::pair<const char*, std::uint8_t> filters[] = {
        {"machine.viewGenerators", MachineListModel::Generators},
        {"machine.viewSynths", MachineListModel::Synths},
        {"machine.viewSamplers", MachineListModel::Samplers},
        {"machine.viewEffects", MachineListModel::Effects},
        {"machine.viewAll", MachineListModel::All}};
    for (const auto& [id, filter] : filters) {
        ActionFactory::onTriggered(m_menu, id, this, [this, value = filter] { setFilter(value); });
        for (QAction* item : m_menu->findChildren<QAction*>(QString::fromLatin1(id)))
            item->setCheckable(true);
    }
    ActionFactory::onTriggered(m_menu, "machine.selectAll", this, [this] { m_view->selectAll(); });
    // View > Machine Info and Pattern Info are the frame's commands; the menu's items trigger
    // them, and the frame's actions open the windows of this panel.
    if (QAction* info = actions("view.machineInfo"))
        connect(info, &QAction::triggered, this, [this] { showMachineInfo(); });
    if (QAction* patterns = actions("view.patternInfo"))
        connect(patterns, &QAction::triggered, this, [this] { showPatternInfo(); });
    if (QAction* add = actions("machines.add"))
        connect(add, &QAction::triggered, m_commands, [this] { m_commands->addMachine(); });
    ActionFactory::onTriggered(m_menu, "machine.notesChart", this, [this] { showChart(false); });
    ActionFactory::onTriggered(m_menu, "machine.wavesChart", this, [this] { showChart(true); });
    setFilter(m_settings.machineFilter());
}

void MachinePanel::bindKeys()
{
    // Every key the context menu shows works in the list: it triggers the menu's item, which
    // runs the command (or the frame's, for Info and New).
    for (const CommandEntry& entry : commands::contextMenus()) {
        if (entry.keys.empty() || !entry.path.starts_with("machineView"))
            continue;
        QAction* item = m_menu->findChild<QAction*>(ActionFactory::toQString(entry.id));
        if (item == nullptr)
            continue;
        m_view->bindKey(QKeySequence(ActionFactory::toQString(entry.keys)), [item] {
            if (item->isEnabled())
                item->trigger();
        });
    }
}

void MachinePanel::setFilter(std::uint8_t filter)
{
    if (filter > MachineListModel::All)
        filter = MachineListModel::All;
    m_settings.setMachineFilter(filter);
    m_model->setFilter(filter);
    const char* ids[] = {"machine.viewGenerators", "machine.viewSynths", "machine.viewSamplers",
                         "machine.viewEffects", "machine.viewAll"};
    for (std::uint8_t i = 0; i <= MachineListModel::All; ++i) {
        for (QAction* item : m_menu->findChildren<QAction*>(QString::fromLatin1(ids[i])))
            item->setChecked(i == filter);
    }
}

void MachinePanel::applySettings()
{
    setFilter(m_settings.machineFilter());
}

std::vector<std::size_t> MachinePanel::selectedMachines() const
{
    std::vector<int> rows;
    for (const QModelIndex& index : m_view->selectionModel()->selectedRows(0))
        rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    std::vector<std::size_t> machines;
    for (const int row : rows)
        machines.push_back(m_model->machineAt(row));
    return machines;
}

std::vector<std::string> MachinePanel::selectedNames() const
{
    std::vector<int> rows;
    for (const QModelIndex& index : m_view->selectionModel()->selectedRows(0))
        rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    std::vector<std::string> names;
    for (const int row : rows)
        names.push_back(m_model->nameAt(row));
    return names;
}

std::optional<std::size_t> MachinePanel::currentMachine() const
{
    const QModelIndex current = m_view->currentIndex();
    if (current.isValid() && current.row() < m_model->rowCount())
        return m_model->machineAt(current.row());
    const std::vector<std::size_t> selected = selectedMachines();
    if (!selected.empty())
        return selected.front();
    return std::nullopt;
}

QString MachinePanel::selectedMachineName() const
{
    const std::vector<std::string> names = selectedNames();
    return names.empty() ? QString() : QString::fromStdString(names.front());
}

void MachinePanel::selectMachine(std::size_t machine)
{
    if (m_model->rowOfMachine(machine) < 0)
        setFilter(MachineListModel::All);
    const int row = m_model->rowOfMachine(machine);
    if (row < 0)
        return;
    const QModelIndex index = m_model->index(row, 0);
    m_view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                         QItemSelectionModel::Rows);
    m_view->scrollTo(index);
}

void MachinePanel::selectNames(const std::vector<std::string>& names)
{
    QItemSelection selection;
    for (const std::string& name : names) {
        const int row = m_model->rowOfName(name);
        if (row >= 0)
            selection.select(m_model->index(row, 0),
                             m_model->index(row, MachineListModel::ColumnCount - 1));
    }
    m_view->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void MachinePanel::renameCurrent()
{
    const QModelIndex current = m_view->currentIndex();
    if (!current.isValid())
        return;
    const QModelIndex name = m_model->index(current.row(), MachineListModel::NameColumn);
    m_view->setCurrentIndex(name);
    m_view->edit(name);
}

MachineInfoWindow* MachinePanel::showMachineInfo()
{
    if (m_machineInfo == nullptr)
        m_machineInfo = new MachineInfoWindow(*this);
    m_machineInfo->show();
    m_machineInfo->raise();
    return m_machineInfo;
}

PatternInfoWindow* MachinePanel::showPatternInfo()
{
    if (m_patternInfo == nullptr)
        m_patternInfo = new PatternInfoWindow(*this);
    m_patternInfo->show();
    m_patternInfo->raise();
    return m_patternInfo;
}

PatternChartWindow* MachinePanel::showChart(bool waves)
{
    PatternChartWindow*& window = m_charts[waves ? 1 : 0];
    if (window == nullptr)
        window = new PatternChartWindow(*this, waves);
    window->show();
    window->raise();
    return window;
}

} // namespace app
