#include "app/PatternListPanel.h"

#include "app/NamedEditorDelegate.h"
#include "app/PartSession.h"
#include "app/PatternListModel.h"
#include "app/PatternPresetSource.h"
#include "app/PresetPanel.h"

#include <QAction>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>

namespace app {

PatternListPanel::PatternListPanel(PartSession& session, PresetPanel& presets,
                                   PatternPresetSource& presetList,
                                   const ActionFactory::ActionLookup& actions, QWidget* parent)
    : QTableView(parent), m_session(session), m_presets(presets), m_presetList(presetList)
{
    setObjectName(QStringLiteral("patternList"));
    setAccessibleName(tr("Patterns"));
    setToolTip(tr("The patterns of the part: click one to edit it in the pattern editor; "
                  "right-click for the pattern commands."));
    m_model = new PatternListModel(session, this);
    m_model->setObjectName(QStringLiteral("patternListModel"));
    setModel(m_model);
    setItemDelegate(
        new NamedEditorDelegate(tr("Pattern name"), QStringLiteral("patternNameEditor"), this));
    setShowGrid(false);
    setWordWrap(false);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    horizontalHeader()->setSectionResizeMode(PatternListModel::NameColumn, QHeaderView::Stretch);
    horizontalHeader()->setSectionResizeMode(PatternListModel::ChordsColumn,
                                             QHeaderView::ResizeToContents);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);

    m_menu = ActionFactory::buildContextMenu("patternList", this, actions);
    m_menu->setAccessibleName(tr("Pattern list commands"));
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& point) { m_menu->popup(viewport()->mapToGlobal(point)); });
    bindCommands(actions);

    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (!m_showing && !m_model->isSyncing() && current.isValid())
                    m_session.setCurrentPattern(current.row());
            });
    connect(&m_session, &PartSession::changed, this, [this] { showCurrentPattern(); });
    // A new pattern is appended without becoming current: keep it in sight.
    connect(m_model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex&, int, int last) { scrollTo(m_model->index(last, 0)); });
    showCurrentPattern();
}

void PatternListPanel::bindCommands(const ActionFactory::ActionLookup& actions)
{
    // The window's commands (with their keys); the menu's items of the same id trigger them.
    const auto onAction = [this, &actions](const char* id, const std::function<void()>& slot) {
        if (QAction* action = actions(id))
            connect(action, &QAction::triggered, this, [slot] { slot(); });
    };
    onAction("pattern.new", [this] { m_session.addPattern(); });
    onAction("pattern.copy", [this] { m_session.copyPattern(); });
    onAction("pattern.remove", [this] { m_session.removePattern(); });
    onAction("part.addPatternToPresets", [this] { m_presets.addCurrent(); });

    const auto onItem = [this](const char* id, const std::function<void()>& slot) {
        ActionFactory::onTriggered(m_menu, id, this, slot);
    };
    onItem("pattern.rename", [this] { renameCurrent(); });
    onItem("pattern.clear", [this] { m_session.removeAllPatterns(); });
    onItem("pattern.replacePreset", [this] { m_presets.replaceCurrentPreset(); });
    onItem("pattern.addListToPresets", [this] { addListToPresets(); });
    const auto presetChosen = [this](int row) {
        ActionFactory::setEnabled(m_menu, "pattern.replacePreset", row >= 0);
    };
    connect(&m_presets, &PresetPanel::currentPresetChanged, this, presetChosen);
    presetChosen(m_presets.currentPreset());
}

void PatternListPanel::showCurrentPattern()
{
    const int current = m_session.part().currentPattern();
    if (current >= m_model->rowCount() || currentIndex().row() == current)
        return;
    m_showing = true;
    const QModelIndex index = m_model->index(current, PatternListModel::NameColumn);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                 QItemSelectionModel::Rows);
    scrollTo(index);
    m_showing = false;
}

bool PatternListPanel::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    const QModelIndex name =
        index.isValid() ? index.siblingAtColumn(PatternListModel::NameColumn) : index;
    return QTableView::edit(name, trigger, event);
}

void PatternListPanel::renameCurrent()
{
    const int row = m_session.part().currentPattern();
    if (row >= m_model->rowCount())
        return;
    const QModelIndex name = m_model->index(row, PatternListModel::NameColumn);
    setCurrentIndex(name);
    QTableView::edit(name);
}

bool PatternListPanel::addListToPresets()
{
    const int before = m_presetList.count();
    const bool added = m_presets.change([this](const std::filesystem::path& file) {
        return m_presetList.addEvery(m_session.part().patterns(), file);
    });
    if (m_presetList.count() > before)
        m_presets.setCurrentPreset(before);
    return added;
}

bool PatternListPanel::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_F2 && key->modifiers() == Qt::NoModifier) {
            event->accept();
            return true;
        }
    }
    return QTableView::event(event);
}

} // namespace app
