#include "app/PartListPanel.h"

#include "app/CTreeCtrlX.h"
#include "app/ChordCollectionModel.h"
#include "app/ChordDatabasePanel.h"
#include "app/PartChordMime.h"
#include "app/PartFileCommands.h"
#include "app/PartListCommands.h"
#include "app/PartListDelegate.h"
#include "app/PartSession.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QSettings>
#include <QShortcut>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>

namespace app {

namespace {

const QString kDisplayKey = QStringLiteral("partList/showNotes");

/** Lets F2 edit the current cell although the window gives the key to another command. */
class EditKeyClaim : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::ShortcutOverride) {
            const auto* key = static_cast<QKeyEvent*>(event);
            if (key->key() == Qt::Key_F2 && key->modifiers() == Qt::NoModifier) {
                event->accept();
                return true;
            }
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

PartListPanel::PartListPanel(PartSession& session, ChordDatabasePanel& chordDatabase,
                             PartFileCommands& partFiles,
                             const ActionFactory::ActionLookup& actions, QWidget* parent)
    : QWidget(parent), m_session(session)
{
    setObjectName(QStringLiteral("partList"));
    setAccessibleName(tr("Part chords"));
    m_model = new PartListModel(session, this);
    m_model->setObjectName(QStringLiteral("partListModel"));

    m_view = new QTableView(this);
    m_view->setObjectName(QStringLiteral("partListView"));
    m_view->setAccessibleName(tr("Chords of the part"));
    m_view->setToolTip(tr("Arrange the chords here and connect them with the patterns."));
    m_view->setModel(m_model);
    m_view->setItemDelegate(new PartListDelegate(*m_model, m_view));
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    m_view->setDragDropMode(QAbstractItemView::DragDrop);
    m_view->setDefaultDropAction(Qt::MoveAction);
    m_view->setDragDropOverwriteMode(false);
    m_view->setDropIndicatorShown(true);
    m_view->setWordWrap(false);
    m_view->setAlternatingRowColors(true);
    m_view->setShowGrid(false);
    m_view->verticalHeader()->setDefaultSectionSize(m_view->fontMetrics().height() + 6);
    m_view->horizontalHeader()->setSectionResizeMode(PartListModel::ChordColumn,
                                                     QHeaderView::Stretch);
    m_view->horizontalHeader()->setSectionResizeMode(PartListModel::PatternColumn,
                                                     QHeaderView::Interactive);
    m_view->horizontalHeader()->resizeSection(PartListModel::PatternColumn, 130);
    m_view->horizontalHeader()->setSectionResizeMode(PartListModel::LengthColumn,
                                                     QHeaderView::ResizeToContents);
    m_view->installEventFilter(new EditKeyClaim(m_view));
    setFocusProxy(m_view);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);

    m_commands = new PartListCommands(*this, session, chordDatabase, partFiles);
    m_model->setDropHandler([this](const QMimeData& dropped, int row, Qt::DropAction action) {
        m_commands->drop(dropped, row, action);
    });
    connect(chordDatabase.tree(), &QAbstractItemView::doubleClicked, this,
            [this, &chordDatabase](const QModelIndex& index) {
                const music::TreePosition position = chordDatabase.model()->position(index);
                if (position.isChord())
                    m_commands->insertChords(m_session.part().count(),
                                             m_commands->fromDatabase({position}),
                                             tr(PartListCommands::kAddChord));
            });

    bindMenu(actions);
    bindKeys();
    if (QAction* print = actions ? actions("part.printChordList") : nullptr)
        connect(print, &QAction::triggered, m_commands, &PartListCommands::printList);

    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { syncSelectionToSession(); });
    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (!m_showingSession && !m_model->isSyncing())
                    m_session.setCurrentChord(current.isValid() ? current.row() : -1);
            });
    connect(&m_session, &PartSession::selectionChanged, this, [this] {
        if (!m_model->isSyncing())
            showSessionSelection();
    });
    connect(&m_session, &PartSession::currentChordChanged, this, [this] {
        if (!m_model->isSyncing())
            showSessionSelection();
    });
    connect(m_model, &PartListModel::synced, this, [this] { showSessionSelection(); });
    connect(&m_session, &PartSession::playingPositionChanged, this, [this](int chord, int) {
        if (chord >= 0 && chord < m_model->rowCount())
            m_view->scrollTo(m_model->index(chord, 0));
    });

    setDisplay(QSettings().value(kDisplayKey).toBool() ? PartListModel::Display::Notes
                                                       : PartListModel::Display::Names);
    showSessionSelection();
}

PartListPanel::~PartListPanel() = default;

void PartListPanel::bindMenu(const ActionFactory::ActionLookup& actions)
{
    // Find Scale searches the chords' notes here, unlike the Chords menu's item of the same id.
    m_menu = ActionFactory::buildContextMenu(
        "partList", this, [actions](std::string_view id) -> QAction* {
            return id == "chords.findScale" || !actions ? nullptr : actions(id);
        });
    m_menu->setAccessibleName(tr("Part list commands"));
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_view, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& point) { m_menu->popup(m_view->viewport()->mapToGlobal(point)); });
    connect(m_menu, &QMenu::aboutToShow, this, [this] { updateCommandStates(); });

    PartListCommands* c = m_commands;
    const auto on = [this](std::string_view id, const std::function<void()>& slot) {
        ActionFactory::onTriggered(m_menu, id, this, slot);
    };
    on("partList.addChord", [c] { c->addSelectedDatabaseChords(); });
    on("partList.chordSettings", [c] { c->editChordSettings(); });
    on("partList.forbidNotes", [c] { c->forbidNotes(); });
    on("partList.viewNames", [this] { setDisplay(PartListModel::Display::Names); });
    on("partList.viewNotes", [this] { setDisplay(PartListModel::Display::Notes); });
    on("partList.replacePreset", [this] { m_commands->replaceCurrentPreset(); });
    on("partList.copy", [c] { c->copy(); });
    on("partList.cut", [c] { c->cut(); });
    on("partList.pasteInsert", [c] { c->paste(false); });
    on("partList.pasteAppend", [c] { c->paste(true); });
    on("partList.selectAll", [this] { m_view->selectAll(); });
    on("partList.remove", [c] { c->removeSelected(); });
    on("partList.clear", [c] { c->clearList(); });
    on("chords.findScale", [c] { c->findScale(); });
    using part::ChordSortKey;
    on("partList.sortNameUp", [c] { c->sort(ChordSortKey::Name, false); });
    on("partList.sortNameDown", [c] { c->sort(ChordSortKey::Name, true); });
    on("partList.sortNotesUp", [c] { c->sort(ChordSortKey::Notes, false); });
    on("partList.sortNotesDown", [c] { c->sort(ChordSortKey::Notes, true); });
    on("partList.normalizeAll", [c] { c->normalize(true); });
    on("partList.normalizeSelected", [c] { c->normalize(false); });
    on("partList.normalizeInvert", [c] { c->invert(); });

    auto* group = new QActionGroup(m_menu);
    for (const char* id : {"partList.viewNames", "partList.viewNotes"}) {
        QAction* item = m_menu->findChild<QAction*>(QString::fromLatin1(id));
        item->setCheckable(true);
        group->addAction(item);
    }
}

void PartListPanel::bindKeys()
{
    // The menu only shows these keys; the list handles them while it has the focus.
    const auto key = [this](const QKeySequence& keys, const std::function<void()>& slot) {
        auto* shortcut =
            new QShortcut(keys, m_view, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, [slot] { slot(); });
    };
    PartListCommands* c = m_commands;
    key(QKeySequence(QStringLiteral("Ctrl+R")), [c] { c->editChordSettings(); });
    key(QKeySequence::Copy, [c] { c->copy(); });
    key(QKeySequence::Cut, [c] { c->cut(); });
    key(QKeySequence::Paste, [c] { c->paste(false); });
    key(QKeySequence(QStringLiteral("Ctrl+W")), [c] { c->paste(true); });
    key(QKeySequence(QStringLiteral("Ctrl+A")), [this] { m_view->selectAll(); });
    key(QKeySequence(QStringLiteral("Del")), [c] { c->removeSelected(); });
    key(QKeySequence(QStringLiteral("Ctrl+Del")), [c] { c->clearList(); });
    // The chords' pattern, one step at a time, as the pattern column shows it.
    key(QKeySequence(Qt::Key_Plus), [this] { m_session.nextPatternOfSelectedChords(); });
    key(QKeySequence(Qt::Key_Minus), [this] { m_session.previousPatternOfSelectedChords(); });
}

void PartListPanel::updateCommandStates()
{
    const bool hasSelection = !m_session.selectedChords().empty();
    const auto enable = [this](std::string_view id, bool enabled) {
        ActionFactory::setEnabled(m_menu, id, enabled);
    };
    enable("partList.addChord", m_commands->hasDatabaseChords());
    enable("partList.chordSettings", m_session.currentChord() >= 0);
    enable("partList.copy", hasSelection);
    enable("partList.cut", hasSelection);
    enable("partList.remove", hasSelection);
    enable("partList.normalizeSelected", hasSelection);
    enable("partList.normalizeInvert", hasSelection);
    enable("partList.clear", m_session.part().count() > 0);
    enable("partList.replacePreset", m_commands->hasCurrentPreset());
    const bool canPaste = PartChordMime::hasChords(QApplication::clipboard()->mimeData());
    enable("partList.pasteInsert", canPaste);
    enable("partList.pasteAppend", canPaste);
}

void PartListPanel::setDisplay(PartListModel::Display display)
{
    m_model->setDisplay(display);
    const bool notes = display == PartListModel::Display::Notes;
    if (auto* item = m_menu->findChild<QAction*>(QStringLiteral("partList.viewNames")))
        item->setChecked(!notes);
    if (auto* item = m_menu->findChild<QAction*>(QStringLiteral("partList.viewNotes")))
        item->setChecked(notes);
    // Written only when it changes: start-up sets the stored choice and need not write it back.
    QSettings settings;
    if (settings.value(kDisplayKey).toBool() != notes)
        settings.setValue(kDisplayKey, notes);
}

// ---- selection -------------------------------------------------------------------------------

std::vector<int> PartListPanel::selectedRows() const
{
    std::vector<int> rows;
    for (const QModelIndex& index : m_view->selectionModel()->selectedRows())
        rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void PartListPanel::selectRows(const std::vector<int>& rows, int current)
{
    if (current < 0 && !rows.empty())
        current = rows.back();
    m_session.setSelectedChords(rows);
    m_session.setCurrentChord(current);
    // The session keeps one chord as its own choice without a range; show exactly `rows`.
    showSessionSelection();
    if (current >= 0 && current < m_model->rowCount())
        m_view->scrollTo(m_model->index(current, 0));
}

void PartListPanel::syncSelectionToSession()
{
    if (m_showingSession || m_model->isSyncing())
        return;
    m_session.setSelectedChords(selectedRows());
}

void PartListPanel::showSessionSelection()
{
    if (m_model->rowCount() != m_session.part().count())
        return; // the rows follow first; `synced` comes back here
    m_showingSession = true;
    QItemSelectionModel* selection = m_view->selectionModel();
    const int current = m_session.currentChord();
    if (current >= 0)
        selection->setCurrentIndex(m_model->index(current, 0), QItemSelectionModel::NoUpdate);
    if (selectedRows() != m_session.selectedChords()) {
        QItemSelection rows;
        for (int row : m_session.selectedChords())
            rows.select(m_model->index(row, 0),
                        m_model->index(row, PartListModel::ColumnCount - 1));
        selection->select(rows, QItemSelectionModel::ClearAndSelect);
    }
    m_showingSession = false;
}

} // namespace app
