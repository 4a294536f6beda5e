#include "app/CTonalmancerView.h"

#include "app/ActionFactory.h"
#include "app/CChordDialog.h"
#include "app/CChordFromListDialog.h"
#include "app/CFindDialog.h"
#include "app/CGenerateDialog.h"
#include "app/CMainFrame.h"
#include "app/CNoteChoiceDialog.h"
#include "app/CScaleGroupDialog.h"
#include "app/CSearchInfoWindow.h"
#include "app/CTonalmancerDoc.h"
#include "app/CTreeCtrlX.h"
#include "app/CTypeManagerDialog.h"
#include "app/ChordCollectionModel.h"
#include "app/ChordSnapshotCommand.h"
#include "app/FileFilters.h"
#include "app/MessageBoxes.h"
#include "app/WaitCursor.h"
#include "midi/CMIDIOutException.h"
#include "midi/MidiPortList.h"
#include "part/Part.h"

#include <QAction>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QSettings>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTimer>
#include <QTreeWidget>
#include <QUndoStack>
#include <QVBoxLayout>

#include <algorithm>

namespace app {

using music::TreePosition;

namespace {

constexpr int kGroupLevel = 1;
constexpr int kSectionLevel = 2;
constexpr int kCollectionLevel = 3;
constexpr int kChordLevel = 4;

int levelOf(const TreePosition& p)
{
    if (p.section < 0)
        return kGroupLevel;
    if (p.subsection < 0)
        return kSectionLevel;
    return p.chord < 0 ? kCollectionLevel : kChordLevel;
}

TreePosition truncated(TreePosition p, int level)
{
    if (level < kChordLevel)
        p.chord = -1;
    if (level < kCollectionLevel)
        p.subsection = -1;
    if (level < kSectionLevel)
        p.section = -1;
    return p;
}

/** A titled region of the form. */
QWidget* titled(const QString& title, QWidget* content, QWidget* parent)
{
    auto* box = new QWidget(parent);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(2);
    auto* label = new QLabel(title, box);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    label->setBuddy(content);
    layout->addWidget(label);
    layout->addWidget(content, 1);
    return box;
}

QString qs(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

CTonalmancerView::CTonalmancerView(CMainFrame& frame, CTonalmancerDoc& document,
                                   music::DataFolder dataFolder,
                                   std::shared_ptr<midi::MidiPortList> ports, QWidget* parent)
    : CResizableFormView(parent), m_frame(frame), m_document(document),
      m_dataFolder(std::move(dataFolder)), m_ports(std::move(ports))
{
    setObjectName(QStringLiteral("tonalmancerView"));
    m_undo = new QUndoStack(this);
    m_undo->setUndoLimit(100); // each step keeps two copies of the database
    m_model = new ChordCollectionModel(m_collection, this);
    m_model->setRenameHandler([this](const TreePosition& position, const QString& name) {
        // Applied after the editor has closed: the edit rebuilds the tree.
        QTimer::singleShot(0, this, [this, position, name] {
            applyEdit(
                tr("Rename"),
                [&](music::ChordCollection& c) {
                    return music::ChordDatabaseEdits::rename(c, position, name.toStdString());
                },
                [position] { return std::vector<TreePosition>{position}; });
        });
    });
    m_model->setDropHandler(
        [this](const std::vector<TreePosition>& chords, const TreePosition& target, bool copy) {
            QTimer::singleShot(0, this, [this, chords, target, copy] {
                std::vector<TreePosition> moved;
                applyEdit(
                    copy ? tr("Copy Chords") : tr("Move Chords"),
                    [&](music::ChordCollection& c) {
                        moved = music::ChordDatabaseEdits::moveChords(c, chords, target, copy);
                        return !moved.empty();
                    },
                    [&moved] { return moved; });
            });
        });
    buildLayout();
    buildContextMenus();
    connectCommands();
    connectTreeKeys();
    QSettings settings;
    m_keepDefaultCurrent = settings.value(QStringLiteral("chords/keepDefaultCurrent")).toBool();
}

CTonalmancerView::~CTonalmancerView() = default;

void CTonalmancerView::buildLayout()
{
    m_tree = new CTreeCtrlX(this);
    m_tree->setObjectName(QStringLiteral("chordTree"));
    m_tree->setModel(m_model);
    m_tree->setToolTip(tr("The chord database: right-click for its commands, F2 renames, drag "
                          "chords to move them (Ctrl copies)."));
    m_tree->header()->resizeSection(0, 220);

    m_partList = new QListWidget(this);
    m_partList->setObjectName(QStringLiteral("partList"));
    m_partList->setToolTip(tr("Arrange the chords here and connect them with the patterns."));
    m_patternList = new QListWidget(this);
    m_patternList->setObjectName(QStringLiteral("patternList"));
    m_patternList->setToolTip(tr("The patterns of the part."));
    m_patternGrid = new QTableWidget(64, 8, this);
    m_patternGrid->setObjectName(QStringLiteral("patternEditor"));
    QStringList tracks;
    for (int track = 1; track <= 8; ++track)
        tracks << tr("Track %1").arg(track);
    m_patternGrid->setHorizontalHeaderLabels(tracks);
    m_patternGrid->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_patternGrid->verticalHeader()->setDefaultSectionSize(20);
    m_patternGrid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_patternGrid->setToolTip(tr("The pattern of the current chord: 8 tracks by 64 rows."));

    m_settingsTree = new QTreeWidget(this);
    m_settingsTree->setObjectName(QStringLiteral("settingsView"));
    m_settingsTree->setHeaderLabels({tr("Setting"), tr("Value")});
    m_settingsTree->setRootIsDecorated(false);
    const part::Part defaults;
    QStringList labels = {QStringLiteral("Pattern List"), QStringLiteral("Base Wave"),
                          QStringLiteral("Base Octave")};
    for (int track = 1; track <= 8; ++track)
        labels << QStringLiteral("Track %1").arg(track);
    labels << QStringLiteral("Def Octave") << QStringLiteral("Def Length");
    for (const QString& label : labels) {
        auto* item = new QTreeWidgetItem(m_settingsTree, {label});
        if (label == QStringLiteral("Base Octave"))
            item->setText(1, QString::number(defaults.baseOctave()));
    }
    m_settingsTree->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);

    m_machineList = new QTreeWidget(this);
    m_machineList->setObjectName(QStringLiteral("machineView"));
    m_machineList->setHeaderLabels({tr("Machine"), tr("DLL"), tr("Patterns"), tr("Tracks")});
    m_machineList->setRootIsDecorated(false);
    m_machineList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_sideStack = new QStackedWidget(this);
    m_sideStack->addWidget(m_settingsTree);
    m_sideStack->addWidget(m_machineList);

    m_partPresetList = new QListWidget(this);
    m_partPresetList->setObjectName(QStringLiteral("partPresets"));
    m_patternPresetList = new QListWidget(this);
    m_patternPresetList->setObjectName(QStringLiteral("patternPresets"));

    auto* partLists = createSplitter(Qt::Horizontal, QStringLiteral("partLists"), this);
    partLists->addWidget(titled(tr("&Part"), m_partList, partLists));
    partLists->addWidget(titled(tr("Pa&tterns"), m_patternList, partLists));
    partLists->setStretchFactor(0, 3);
    partLists->setStretchFactor(1, 2);
    auto* centre = createSplitter(Qt::Vertical, QStringLiteral("centre"), this);
    centre->addWidget(partLists);
    centre->addWidget(titled(tr("Pattern &editor"), m_patternGrid, centre));
    centre->setStretchFactor(0, 1);
    centre->setStretchFactor(1, 2);

    auto* side = createSplitter(Qt::Vertical, QStringLiteral("side"), this);
    side->addWidget(titled(tr("&Settings / Song"), m_sideStack, side));
    side->addWidget(titled(tr("Part p&resets"), m_partPresetList, side));
    side->addWidget(titled(tr("Pattern pre&sets"), m_patternPresetList, side));

    auto* main = createSplitter(Qt::Horizontal, QStringLiteral("main"), this);
    main->addWidget(titled(tr("&Chord database"), m_tree, main));
    main->addWidget(centre);
    main->addWidget(side);
    main->setStretchFactor(0, 3);
    main->setStretchFactor(1, 4);
    main->setStretchFactor(2, 2);
    main->setSizes({380, 560, 260});

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(main);

    m_searchInfo = new CSearchInfoWindow(this);
    connect(m_searchInfo, &CSearchInfoWindow::hitActivated, this, [this](int row) {
        if (row >= 0 && row < static_cast<int>(m_scaleHits.size()))
            selectPosition(m_scaleHits[static_cast<std::size_t>(row)]);
    });
}

void CTonalmancerView::buildContextMenus()
{
    const auto forward = [this](std::string_view id) { return m_frame.action(id); };
    const std::pair<std::string_view, QWidget*> owners[] = {
        {"machineView", m_machineList},
        {"chordTree", m_tree},
        {"partList", m_partList},
        {"patternList", m_patternList},
        {"patternPresets", m_patternPresetList},
        {"partPresets", m_partPresetList},
        {"patternEditor", m_patternGrid},
        {"settingsView", m_settingsTree},
    };
    for (const auto& [name, widget] : owners) {
        QMenu* menu = ActionFactory::buildContextMenu(name, this, forward);
        m_menus.emplace(std::string(name), menu);
        widget->setContextMenuPolicy(Qt::CustomContextMenu);
        QAbstractScrollArea* area = qobject_cast<QAbstractScrollArea*>(widget);
        connect(widget, &QWidget::customContextMenuRequested, this,
                [menu, widget, area](const QPoint& point) {
                    const QWidget* origin = area != nullptr ? area->viewport() : widget;
                    menu->popup(origin->mapToGlobal(point));
                });
    }
}

QMenu* CTonalmancerView::contextMenu(std::string_view name) const
{
    const auto found = m_menus.find(name);
    return found == m_menus.end() ? nullptr : found->second;
}

void CTonalmancerView::connectCommands()
{
    const auto on = [this](const char* id, const std::function<void()>& slot) {
        connect(m_frame.action(id), &QAction::triggered, this, [slot] { slot(); });
    };
    on("chords.manager", [this] { openManager(); });
    on("chords.findChord", [this] { findChord(); });
    on("chords.findScale", [this] { findScale(); });
    on("chords.continueSearch", [this] { continueSearch(); });
    on("chords.generate", [this] { generateList(); });
    on("chords.createNewList", [this] { createNewList(); });
    on("chords.load", [this] { loadChordList(); });
    on("chords.save", [this] { saveChordList(); });
    on("chords.loadDefault", [this] { loadDefaultChordList(); });
    on("chords.saveAsDefault", [this] { saveDefaultChordList(); });
    on("view.searchInfo", [this] { showSearchInfo(); });
    on("view.showBmx", [this] { showMachineView(true); });
    on("view.showSettings", [this] { showMachineView(false); });
    on("edit.undo", [this] { m_undo->undo(); });
    QAction* undo = m_frame.action("edit.undo");
    undo->setEnabled(false);
    connect(m_undo, &QUndoStack::canUndoChanged, undo, &QAction::setEnabled);
    connect(m_undo, &QUndoStack::undoTextChanged, undo, [undo](const QString& text) {
        undo->setStatusTip(text.isEmpty() ? QStringLiteral("Undo the last change.")
                                          : tr("Undo %1.").arg(text));
    });
    connect(&m_document, &CTonalmancerDoc::songChanged, this, &CTonalmancerView::refreshMachines);

    QMenu* tree = contextMenu("chordTree");
    const auto onTree = [this, tree](std::string_view id, const std::function<void()>& slot) {
        ActionFactory::onTriggered(tree, id, this, slot);
    };
    onTree("tree.addBase", [this] { addBaseGroup(); });
    onTree("tree.generateBase", [this] { generateBase(); });
    onTree("tree.addScale", [this] { addScaleGroup(); });
    onTree("tree.forbidNotes", [this] { forbidNotes(); });
    onTree("tree.addCollection", [this] { addCollection(); });
    onTree("tree.addChordFromList", [this] { addChordFromList(); });
    onTree("tree.addChordByNotes", [this] { addChordByNotes(); });
    onTree("tree.copy", [this] { copyChords(); });
    onTree("tree.cut", [this] { cutChords(); });
    onTree("tree.pasteInsert", [this] { pasteChords(false); });
    onTree("tree.pasteAppend", [this] { pasteChords(true); });
    onTree("tree.sortUp", [this] { sortChords(true); });
    onTree("tree.sortDown", [this] { sortChords(false); });
    // Remove, Rename and Settings act on the level of the sub-menu they stand in.
    const std::pair<const char*, int> levels[] = {{"&Base Group", kGroupLevel},
                                                  {"&Scale/Group", kSectionLevel},
                                                  {"C&ollection", kCollectionLevel},
                                                  {"&Chord", kChordLevel}};
    for (QAction* action : tree->findChildren<QAction*>()) {
        const auto* owner = qobject_cast<QMenu*>(action->associatedObjects().value(0));
        int level = 0;
        for (const auto& [title, value] : levels) {
            if (owner != nullptr && owner->title() == QLatin1String(title))
                level = value;
        }
        if (level == 0)
            continue;
        if (action->objectName() == QLatin1String("tree.remove")) {
            connect(action, &QAction::triggered, this, [this, level] {
                std::vector<TreePosition> items;
                for (const TreePosition& p : selectedPositions()) {
                    if (levelOf(p) >= level)
                        items.push_back(truncated(p, level));
                }
                applyEdit(tr("Remove"), [&](music::ChordCollection& c) {
                    return music::ChordDatabaseEdits::remove(c, items) > 0;
                });
            });
        } else if (action->objectName() == QLatin1String("tree.rename")) {
            connect(action, &QAction::triggered, this, [this, level] { renameCurrent(level); });
        } else if (action->objectName() == QLatin1String("tree.settings")) {
            connect(action, &QAction::triggered, this, [this, level] {
                if (level == kCollectionLevel) {
                    renameCurrent(level);
                } else if (const auto p = currentAt(level)) {
                    selectPosition(*p);
                    editSettings();
                }
            });
        }
    }

    ActionFactory::onTriggered(contextMenu("machineView"), "machine.selectAll", this,
                               [this] { m_machineList->selectAll(); });
    const std::pair<const char*, std::uint8_t> filters[] = {{"machine.viewGenerators", 0},
                                                            {"machine.viewSynths", 1},
                                                            {"machine.viewSamplers", 2},
                                                            {"machine.viewEffects", 3},
                                                            {"machine.viewAll", 4}};
    for (const auto& [id, filter] : filters) {
        ActionFactory::onTriggered(contextMenu("machineView"), id, this, [this, value = filter] {
            m_midiSettings.setMachineFilter(value);
            refreshMachines();
        });
    }
}

void CTonalmancerView::connectTreeKeys()
{
    const auto key = [this](const char* sequence, const std::function<void()>& slot) {
        auto* shortcut = new QShortcut(QKeySequence(QString::fromLatin1(sequence)), m_tree, nullptr,
                                       nullptr, Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, [slot] { slot(); });
    };
    key("Del", [this] { removeSelected(); });
    key("Ctrl+R", [this] { editSettings(); });
    key("Ctrl+C", [this] { copyChords(); });
    key("Ctrl+X", [this] { cutChords(); });
    key("Ctrl+V", [this] { pasteChords(false); });
    key("Ctrl+W", [this] { pasteChords(true); });
}

void CTonalmancerView::initialUpdate()
{
    WaitCursor wait;
    if (m_ports) {
        m_midiSettings =
            midi::MidiSettings::read(m_dataFolder.file(midi::MidiSettings::kFileName), *m_ports);
    }
    // The shipped defaults; a missing or damaged file leaves its list empty without a message,
    // so that a first start without data still opens.
    music::ChordTypeList types;
    if (types.load(m_dataFolder.file(CTypeManagerDialog::kChordTypeDefault)))
        m_types = std::move(types);
    music::ScaleList scales;
    if (scales.load(m_dataFolder.file(CTypeManagerDialog::kScaleDefault)))
        m_scales = std::move(scales);
    music::ChordCollection collection;
    if (collection.load(m_dataFolder.file(kDefaultChordList)))
        m_collection = std::move(collection);
    m_partPresets.load(m_dataFolder.file(part::PartPresetList::kDefaultFileName));
    m_patternPresets.load(m_dataFolder.file(part::PatternPresetList::kDefaultFileName));
    refreshTree();
    refreshPresets();
    refreshMachines();
}

void CTonalmancerView::shutdown()
{
    if (m_settingsWritten || !m_ports)
        return;
    m_settingsWritten = true;
    QSettings().setValue(QStringLiteral("chords/keepDefaultCurrent"), m_keepDefaultCurrent);
    try {
        m_midiSettings.write(m_dataFolder.file(midi::MidiSettings::kFileName), *m_ports);
    } catch (const midi::CMIDIOutException&) {
        // A device that vanished since the start: the settings are not written, as on a
        // file that cannot be opened; nothing is reported on the way out.
    }
}

bool CTonalmancerView::report(const music::Result& result)
{
    if (!result)
        MessageBoxes::error(this, qs(result.message()));
    return result.ok();
}

QString CTonalmancerView::userFolder() const
{
    return qs(m_dataFolder.userFolder().string());
}

// ---- selection -------------------------------------------------------------------------------

std::optional<TreePosition> CTonalmancerView::currentPosition() const
{
    const QModelIndex index = m_tree->currentIndex();
    if (!index.isValid())
        return std::nullopt;
    return m_model->position(index);
}

std::vector<TreePosition> CTonalmancerView::selectedPositions() const
{
    std::vector<TreePosition> positions;
    for (const QModelIndex& index : m_tree->selectionModel()->selectedRows(0))
        positions.push_back(m_model->position(index));
    std::sort(positions.begin(), positions.end());
    return positions;
}

void CTonalmancerView::selectPosition(const TreePosition& position)
{
    selectPositions({position});
}

void CTonalmancerView::selectPositions(const std::vector<TreePosition>& positions)
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

std::optional<TreePosition> CTonalmancerView::currentAt(int level) const
{
    const auto p = currentPosition();
    if (!p || levelOf(*p) < level)
        return std::nullopt;
    return truncated(*p, level);
}

std::optional<TreePosition> CTonalmancerView::currentSection() const
{
    return currentAt(kSectionLevel);
}

// ---- edits -----------------------------------------------------------------------------------

void CTonalmancerView::refreshTree()
{
    m_model->refresh();
    // Small trees open fully; large generated ones only to their sections.
    if (m_collection.chordCount() <= 200)
        m_tree->expandToDepth(1);
    else
        m_tree->expandToDepth(0);
}

bool CTonalmancerView::applyEdit(const QString& text,
                                 const std::function<bool(music::ChordCollection&)>& edit,
                                 const std::function<std::vector<TreePosition>()>& selectAfter)
{
    music::ChordCollection after = m_collection;
    if (!edit(after) || after.baseGroups() == m_collection.baseGroups())
        return false;
    const std::vector<TreePosition> selection = selectAfter ? selectAfter() : selectedPositions();
    m_undo->push(new ChordSnapshotCommand(text, m_collection, m_collection, std::move(after),
                                          [this] { refreshTree(); }));
    selectPositions(selection);
    writeDefaultIfKept();
    return true;
}

void CTonalmancerView::writeDefaultIfKept()
{
    if (!m_keepDefaultCurrent)
        return;
    WaitCursor wait;
    report(m_collection.save(m_dataFolder.file(kDefaultChordList)));
}

void CTonalmancerView::removeSelected()
{
    const std::vector<TreePosition> items = selectedPositions();
    applyEdit(tr("Remove"), [&](music::ChordCollection& c) {
        return music::ChordDatabaseEdits::remove(c, items) > 0;
    });
}

void CTonalmancerView::renameCurrent(int level)
{
    const auto p = level == 0 ? currentPosition() : currentAt(level);
    if (!p)
        return;
    const QModelIndex index = m_model->index(*p);
    m_tree->setCurrentIndex(index);
    m_tree->edit(index);
}

void CTonalmancerView::copyChords()
{
    std::vector<TreePosition> chords;
    for (const TreePosition& p : selectedPositions()) {
        if (p.isChord())
            chords.push_back(p);
    }
    if (!chords.empty())
        m_clipboard = music::ChordDatabaseEdits::chordsAt(m_collection, chords);
}

void CTonalmancerView::cutChords()
{
    std::vector<TreePosition> chords;
    for (const TreePosition& p : selectedPositions()) {
        if (p.isChord())
            chords.push_back(p);
    }
    if (chords.empty())
        return;
    m_clipboard = music::ChordDatabaseEdits::chordsAt(m_collection, chords);
    applyEdit(tr("Cut"), [&](music::ChordCollection& c) {
        return music::ChordDatabaseEdits::remove(c, chords) > 0;
    });
}

void CTonalmancerView::pasteChords(bool append)
{
    const auto current = currentPosition();
    if (m_clipboard.empty() || !current || levelOf(*current) < kCollectionLevel)
        return;
    const TreePosition target = append ? truncated(*current, kCollectionLevel) : *current;
    std::vector<TreePosition> inserted;
    applyEdit(
        append ? tr("Paste Append") : tr("Paste Insert"),
        [&](music::ChordCollection& c) {
            inserted = music::ChordDatabaseEdits::insertChords(c, target, m_clipboard);
            return !inserted.empty();
        },
        [&inserted] { return inserted; });
}

void CTonalmancerView::sortChords(bool upwards)
{
    const auto current = currentPosition();
    if (!current)
        return;
    const TreePosition target =
        current->isChord() ? truncated(*current, kCollectionLevel) : *current;
    applyEdit(
        upwards ? tr("Sort Upwards") : tr("Sort Downwards"),
        [&](music::ChordCollection& c) {
            return music::ChordDatabaseEdits::sortChords(c, target, upwards);
        },
        [target] { return std::vector<TreePosition>{target}; });
}

void CTonalmancerView::addBaseGroup()
{
    int added = -1;
    applyEdit(
        tr("Add Base"),
        [&](music::ChordCollection& c) {
            added = c.addBaseGroup("noname");
            return added >= 0;
        },
        [&added] { return std::vector<TreePosition>{TreePosition::ofBaseGroup(added)}; });
    if (added >= 0)
        renameCurrent();
}

void CTonalmancerView::addCollection()
{
    const auto section = currentSection();
    if (!section)
        return;
    std::optional<TreePosition> added;
    applyEdit(
        tr("Add Collection"),
        [&](music::ChordCollection& c) {
            added = music::ChordDatabaseEdits::addSubsection(c, *section, "noname");
            return added.has_value();
        },
        [&added] { return std::vector<TreePosition>{*added}; });
    if (added) {
        m_tree->expand(m_model->index(*section));
        renameCurrent();
    }
}

void CTonalmancerView::forbidNotesWith(const music::ChordDatabaseEdits::Ticks& allowed)
{
    const auto section = currentSection();
    if (!section)
        return;
    applyEdit(
        tr("Forbid Notes"),
        [&](music::ChordCollection& c) {
            music::ChordDatabaseEdits::forbidNotes(c, *section, allowed);
            return true;
        },
        [section] { return std::vector<TreePosition>{*section}; });
}

// ---- chord list files ------------------------------------------------------------------------

void CTonalmancerView::createNewList()
{
    applyEdit(tr("Create New List"), [](music::ChordCollection& c) {
        c.clear();
        return true;
    });
}

bool CTonalmancerView::loadChordListFrom(const QString& path)
{
    music::ChordCollection loaded;
    music::Result result;
    {
        WaitCursor wait;
        result = loaded.load(path.toStdString());
    }
    if (!report(result))
        return false;
    applyEdit(tr("Load"), [&](music::ChordCollection& c) {
        c = std::move(loaded);
        return true;
    });
    return true;
}

bool CTonalmancerView::saveChordListTo(const QString& path)
{
    WaitCursor wait;
    return report(m_collection.save(path.toStdString()));
}

void CTonalmancerView::loadDefaultChordList()
{
    loadChordListFrom(qs(m_dataFolder.file(kDefaultChordList).string()));
}

void CTonalmancerView::saveDefaultChordList()
{
    if (saveChordListTo(qs(m_dataFolder.file(kDefaultChordList).string())))
        m_keepDefaultCurrent = true;
}

void CTonalmancerView::loadChordList()
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Load Chord List"), userFolder(),
                                     FileFilters::fromPairs(QString::fromLatin1(kChordListFilter)));
    if (!path.isEmpty())
        loadChordListFrom(path);
}

void CTonalmancerView::saveChordList()
{
    const QString path =
        QFileDialog::getSaveFileName(this, tr("Save Chord List"), userFolder(),
                                     FileFilters::fromPairs(QString::fromLatin1(kChordListFilter)));
    if (!path.isEmpty())
        saveChordListTo(path);
}

// ---- generation ------------------------------------------------------------------------------

void CTonalmancerView::generateListWith(const music::ChordDatabaseEdits::GenerateOptions& options)
{
    applyEdit(tr("Generate List"), [&](music::ChordCollection& c) {
        music::ChordDatabaseEdits::generateList(c, m_types, options);
        return true;
    });
}

void CTonalmancerView::generateBaseWith(const music::ChordDatabaseEdits::GenerateOptions& options)
{
    int added = -1;
    applyEdit(
        tr("Generate Base"),
        [&](music::ChordCollection& c) {
            added = music::ChordDatabaseEdits::generateBase(c, m_types, options);
            return added >= 0;
        },
        [&added] { return std::vector<TreePosition>{TreePosition::ofBaseGroup(added)}; });
}

void CTonalmancerView::generateList()
{
    CGenerateDialog dialog(QStringLiteral("Generate List"), m_scales, this);
    if (dialog.exec() == QDialog::Accepted)
        generateListWith(dialog.options());
}

void CTonalmancerView::generateBase()
{
    CGenerateDialog dialog(QStringLiteral("Generate Base"), m_scales, this);
    if (dialog.exec() == QDialog::Accepted)
        generateBaseWith(dialog.options());
}

// ---- search ----------------------------------------------------------------------------------

void CTonalmancerView::findChordWith(const music::SearchCriteria::Ticks& ticks,
                                     const QString& include, const QString& skip)
{
    const auto hit = m_chordSearch.find(m_collection, ticks, include.toStdString(),
                                        skip.toStdString(), currentPosition());
    if (hit)
        selectPosition(*hit);
}

void CTonalmancerView::continueSearch()
{
    if (const auto hit = m_chordSearch.continueSearch(m_collection, currentPosition()))
        selectPosition(*hit);
}

void CTonalmancerView::findScaleWith(const music::SearchCriteria::Ticks& ticks,
                                     const QString& include, const QString& skip)
{
    const music::ScaleSearchResult result = m_scaleSearch.find(
        m_collection, ticks, include.toStdString(), skip.toStdString(), currentPosition());
    m_scaleHits = result.hits;
    QStringList names;
    for (const std::string& name : result.names)
        names << qs(name);
    m_searchInfo->setResults(names);
    if (result.selection)
        selectPosition(*result.selection);
}

void CTonalmancerView::findChord()
{
    CFindDialog dialog(QStringLiteral("Find chord"), m_chordSearch.includeHistory(),
                       m_chordSearch.skipHistory(), this);
    if (dialog.exec() == QDialog::Accepted)
        findChordWith(dialog.ticks(), dialog.includeText(), dialog.skipText());
}

void CTonalmancerView::findScale()
{
    CFindDialog dialog(QStringLiteral("Find scale"), m_scaleSearch.includeHistory(),
                       m_scaleSearch.skipHistory(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    findScaleWith(dialog.ticks(), dialog.includeText(), dialog.skipText());
    showSearchInfo();
}

void CTonalmancerView::showSearchInfo()
{
    m_searchInfo->show();
    m_searchInfo->raise();
}

// ---- dialogs of the tree ---------------------------------------------------------------------

void CTonalmancerView::openManager()
{
    CTypeManagerDialog dialog(m_types, m_scales, m_dataFolder, this);
    dialog.exec();
}

void CTonalmancerView::addScaleGroup()
{
    const auto group = currentAt(kGroupLevel);
    if (!group) {
        MessageBoxes::show(this, tr("Select the base group the scale group belongs to."),
                           QMessageBox::Information);
        return;
    }
    CScaleGroupDialog dialog(QStringLiteral("Add Scale/Group"), m_scales, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    TreePosition added;
    applyEdit(
        tr("Add Scale"),
        [&](music::ChordCollection& c) {
            const music::Result result = c.addScaleGroup(
                static_cast<std::size_t>(group->baseGroup), dialog.name().toStdString(),
                dialog.ticks(), static_cast<music::PitchClass>(dialog.baseNote()),
                dialog.scaleFlag());
            added = TreePosition::ofSection(
                group->baseGroup,
                static_cast<int>(
                    c.baseGroups()[static_cast<std::size_t>(group->baseGroup)].sections.size()) -
                    1);
            return result.ok();
        },
        [&added] { return std::vector<TreePosition>{added}; });
}

void CTonalmancerView::insertChord(const TreePosition& target, const music::Chord& chord)
{
    std::vector<TreePosition> inserted;
    applyEdit(
        tr("Add Chord"),
        [&](music::ChordCollection& c) {
            inserted = music::ChordDatabaseEdits::insertChords(
                c, truncated(target, kCollectionLevel), {chord});
            return !inserted.empty();
        },
        [&inserted] { return inserted; });
}

void CTonalmancerView::addChordFromList()
{
    const auto current = currentPosition();
    if (!current || levelOf(*current) < kCollectionLevel) {
        MessageBoxes::show(this, tr("Select the collection the chord goes into."),
                           QMessageBox::Information);
        return;
    }
    CChordFromListDialog dialog(m_types, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const music::Chord chord = dialog.chord();
    if (chord.noteCount() == 0) {
        MessageBoxes::error(this,
                            QString::fromLatin1(music::ChordTypeList::kInvalidConstruction.data()));
        return;
    }
    insertChord(*current, chord);
}

void CTonalmancerView::addChordByNotes()
{
    const auto current = currentPosition();
    if (!current || levelOf(*current) < kCollectionLevel) {
        MessageBoxes::show(this, tr("Select the collection the chord goes into."),
                           QMessageBox::Information);
        return;
    }
    CChordDialog dialog(QStringLiteral("Add Chord"), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const music::Chord chord = dialog.chord();
    insertChord(*current, chord);
}

void CTonalmancerView::editSettings()
{
    const auto current = currentPosition();
    if (!current)
        return;
    switch (levelOf(*current)) {
    case kSectionLevel: {
        const music::ChordSection* section = m_collection.sectionAt(*current);
        if (section == nullptr)
            return;
        CScaleGroupDialog dialog(tr("Scale Group Settings"), m_scales, this);
        dialog.setName(qs(section->name));
        CNoteKeyboard::Ticks ticks{};
        for (const music::NoteValue note : section->notes)
            ticks[music::pitchClassOf(note)] = true;
        if (!section->notes.empty())
            dialog.setBaseNote(music::pitchClassOf(section->notes.front()));
        dialog.setTicks(ticks);
        dialog.setScaleFlag(section->scaleFlag);
        if (dialog.exec() != QDialog::Accepted)
            return;
        std::vector<music::NoteValue> notes;
        const int base = dialog.baseNote();
        for (int step = 0; step < music::kPitchClassCount; ++step) {
            const int pitchClass = (base + step) % music::kPitchClassCount;
            if (dialog.ticks()[static_cast<std::size_t>(pitchClass)])
                notes.push_back(static_cast<music::NoteValue>(pitchClass));
        }
        applyEdit(tr("Settings"), [&](music::ChordCollection& c) {
            return music::ChordDatabaseEdits::setSection(c, *current, dialog.name().toStdString(),
                                                         dialog.scaleFlag(), notes);
        });
        return;
    }
    case kChordLevel: {
        const music::Chord* chord = m_collection.chordAt(*current);
        if (chord == nullptr)
            return;
        CChordDialog dialog(tr("Chord Settings"), this);
        dialog.setChord(*chord);
        if (dialog.exec() != QDialog::Accepted)
            return;
        applyEdit(tr("Settings"), [&](music::ChordCollection& c) {
            return music::ChordDatabaseEdits::replaceChord(c, *current, dialog.chord());
        });
        return;
    }
    default:
        renameCurrent();
    }
}

void CTonalmancerView::forbidNotes()
{
    const auto section = currentSection();
    if (!section) {
        MessageBoxes::show(this, tr("Select the scale group whose notes you want to limit."),
                           QMessageBox::Information);
        return;
    }
    CNoteChoiceDialog dialog(QStringLiteral("Forbid Notes"),
                             tr("Untick the notes the chords of this group may not use."), this);
    dialog.keyboard()->setToolTip(
        QStringLiteral("Unchecked notes cannot be result of note addition(+,-)."));
    CNoteKeyboard::Ticks ticks{};
    ticks.fill(true);
    if (const music::ChordSection* s = m_collection.sectionAt(*section); s && s->scaleFlag) {
        ticks.fill(false);
        for (const music::NoteValue note : s->notes)
            ticks[music::pitchClassOf(note)] = true;
    }
    dialog.keyboard()->setTicks(ticks);
    if (dialog.exec() == QDialog::Accepted)
        forbidNotesWith(dialog.keyboard()->ticks());
}

// ---- song machines and presets ---------------------------------------------------------------

void CTonalmancerView::showMachineView(bool machines)
{
    m_sideStack->setCurrentWidget(machines ? static_cast<QWidget*>(m_machineList)
                                           : static_cast<QWidget*>(m_settingsTree));
}

void CTonalmancerView::refreshMachines()
{
    m_machineList->clear();
    const song::BuzzSong* song = m_document.song();
    if (song == nullptr)
        return;
    const std::uint8_t filter = m_midiSettings.machineFilter();
    for (std::size_t i = 0; i < song->machineCount(); ++i) {
        const song::SongMachine& machine = song->machines()[i];
        // The song tells generators (1) from effects (2); synths and samplers are generators.
        const bool generator = machine.type == 1;
        const bool effect = machine.type == 2;
        if ((filter <= 2 && !generator) || (filter == 3 && !effect))
            continue;
        auto* item = new QTreeWidgetItem(m_machineList);
        item->setText(0, qs(machine.name));
        item->setText(1, machine.isMaster() ? tr("(master)") : qs(machine.dllName));
        item->setText(2, QString::number(song->patternCount(i)));
        item->setText(3, QString::number(machine.trackCount));
    }
    for (int column = 0; column < 3; ++column)
        m_machineList->resizeColumnToContents(column);
}

void CTonalmancerView::refreshPresets()
{
    m_partPresetList->clear();
    for (const part::PartPreset& preset : m_partPresets.presets())
        m_partPresetList->addItem(qs(preset.name));
    m_patternPresetList->clear();
    for (int i = 0; i < m_patternPresets.count(); ++i)
        m_patternPresetList->addItem(qs(m_patternPresets.preset(i).name()));
}

} // namespace app
