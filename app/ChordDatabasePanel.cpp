#include "app/ChordDatabasePanel.h"

#include "app/CTreeCtrlX.h"
#include "app/CTypeManagerDialog.h"
#include "app/ChordCollectionModel.h"
#include "app/ChordDatabaseCommands.h"
#include "app/ChordSnapshotCommand.h"
#include "app/ChordTreeCommands.h"
#include "app/MessageBoxes.h"
#include "app/UndoStackTarget.h"
#include "app/WaitCursor.h"

#include <QHeaderView>
#include <QMenu>
#include <QSettings>
#include <QUndoStack>
#include <QVBoxLayout>

#include <algorithm>

namespace app {

using music::TreePosition;

namespace {

const QString kKeepDefaultKey = QStringLiteral("chords/keepDefaultCurrent");

} // namespace

ChordDatabasePanel::ChordDatabasePanel(ActionFactory::ActionLookup actions,
                                       music::DataFolder dataFolder, QWidget* parent)
    : QWidget(parent), m_dataFolder(std::move(dataFolder))
{
    setObjectName(QStringLiteral("chordDatabasePanel"));
    setAccessibleName(tr("Chord database"));
    m_undo = new QUndoStack(this);
    m_undo->setObjectName(QStringLiteral("chordDatabaseUndo"));
    m_undo->setUndoLimit(100); // each step keeps two copies of the database
    m_undoTarget = new UndoStackTarget(m_undo, this);
    m_model = new ChordCollectionModel(m_collection, this);
    m_model->setObjectName(QStringLiteral("chordDatabaseModel"));

    m_tree = new CTreeCtrlX(this);
    m_tree->setObjectName(QStringLiteral("chordTree"));
    m_tree->setAccessibleName(tr("Chord database tree"));
    m_tree->setModel(m_model);
    connect(m_model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex& where, int first, int last) {
                if (!where.isValid())
                    openNewGroups(first, last);
            });
    m_tree->setToolTip(tr("The chord database: right-click for its commands, F2 renames, drag "
                          "chords to move them (Ctrl copies)."));
    m_tree->header()->resizeSection(0, 220);
    setFocusProxy(m_tree);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tree);

    m_menu = ActionFactory::buildContextMenu("chordTree", this, actions);
    m_menu->setAccessibleName(tr("Chord database commands"));
    connect(m_tree, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& point) { m_menu->popup(m_tree->viewport()->mapToGlobal(point)); });

    m_menuCommands = new ChordDatabaseCommands(*this, actions);
    m_treeCommands = new ChordTreeCommands(*this);
    m_keepDefaultCurrent = QSettings().value(kKeepDefaultKey).toBool();
}

ChordDatabasePanel::~ChordDatabasePanel() = default;

void ChordDatabasePanel::loadDefaults(DefaultFilesReader::Files& files)
{
    if (files.chordTypes)
        m_types = std::move(*files.chordTypes);
    if (files.scales)
        m_scales = std::move(*files.scales);
    if (files.collection)
        m_collection = std::move(*files.collection);
    refreshTree();
}

void ChordDatabasePanel::saveSettings() const
{
    QSettings().setValue(kKeepDefaultKey, m_keepDefaultCurrent);
}

bool ChordDatabasePanel::report(const music::Result& result)
{
    if (!result)
        MessageBoxes::error(this, QString::fromStdString(result.message()));
    return result.ok();
}

QString ChordDatabasePanel::userFolder() const
{
    return QString::fromStdString(m_dataFolder.userFolder().string());
}

// ---- levels and selection --------------------------------------------------------------------

int ChordDatabasePanel::levelOf(const TreePosition& p)
{
    if (p.section < 0)
        return GroupLevel;
    if (p.subsection < 0)
        return SectionLevel;
    return p.chord < 0 ? CollectionLevel : ChordLevel;
}

TreePosition ChordDatabasePanel::truncated(TreePosition p, int level)
{
    if (level < ChordLevel)
        p.chord = -1;
    if (level < CollectionLevel)
        p.subsection = -1;
    if (level < SectionLevel)
        p.section = -1;
    return p;
}

std::optional<TreePosition> ChordDatabasePanel::currentPosition() const
{
    const QModelIndex index = m_tree->currentIndex();
    if (!index.isValid())
        return std::nullopt;
    return m_model->position(index);
}

std::vector<TreePosition> ChordDatabasePanel::selectedPositions() const
{
    std::vector<TreePosition> positions;
    for (const QModelIndex& index : m_tree->selectionModel()->selectedRows(0))
        positions.push_back(m_model->position(index));
    std::sort(positions.begin(), positions.end());
    return positions;
}

void ChordDatabasePanel::selectPosition(const TreePosition& position)
{
    selectPositions({position});
}

void ChordDatabasePanel::selectPositions(const std::vector<TreePosition>& positions)
{
    QItemSelection selection;
    QModelIndex first;
    for (const TreePosition& p : positions) {
        const QModelIndex index = m_model->index(p);
        if (!index.isValid())
            continue;
        if (!first.isValid())
            first = index;
        selection.select(index, m_model->index(p, 1));
    }
    if (!first.isValid())
        return;
    m_tree->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
    m_tree->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    m_tree->scrollTo(first);
}

std::optional<TreePosition> ChordDatabasePanel::currentAt(int level) const
{
    const auto p = currentPosition();
    if (!p || levelOf(*p) < level)
        return std::nullopt;
    return truncated(*p, level);
}

void ChordDatabasePanel::renameCurrent(int level)
{
    const auto p = level == 0 ? currentPosition() : currentAt(level);
    if (!p)
        return;
    const QModelIndex index = m_model->index(*p);
    m_tree->setCurrentIndex(index);
    m_tree->edit(index);
}

// ---- edits -----------------------------------------------------------------------------------

void ChordDatabasePanel::refreshTree()
{
    m_model->refresh();
}

void ChordDatabasePanel::openNewGroups(int first, int last)
{
    // Small trees open fully; large generated ones only to their sections.
    const int depth = m_collection.chordCount() <= 200 ? 1 : 0;
    for (int row = first; row <= last; ++row)
        m_tree->expandRecursively(m_model->index(row, 0), depth);
}

bool ChordDatabasePanel::applyEdit(const QString& text,
                                   const std::function<bool(music::ChordCollection&)>& edit,
                                   const std::function<std::vector<TreePosition>()>& selectAfter)
{
    music::ChordCollection after = m_collection;
    if (!edit(after) || after.baseGroups() == m_collection.baseGroups())
        return false;
    m_undo->push(new ChordSnapshotCommand(text, m_collection, m_collection, std::move(after),
                                          [this] { refreshTree(); }));
    // The selection follows its items through the change unless the edit names new ones.
    if (selectAfter)
        selectPositions(selectAfter());
    writeDefaultIfKept();
    return true;
}

void ChordDatabasePanel::writeDefaultIfKept()
{
    if (!m_keepDefaultCurrent)
        return;
    WaitCursor wait;
    report(m_collection.save(m_dataFolder.file(music::ChordCollection::kDefaultFileName)));
}

} // namespace app
