#include "app/CTonalmancerView.h"

#include "app/ActionFactory.h"
#include "app/CMainFrame.h"
#include "app/CTempoBar.h"
#include "app/CTonalmancerDoc.h"
#include "app/ChordDatabasePanel.h"
#include "app/ChordTransformCommands.h"
#include "app/KeyboardPanel.h"
#include "app/MachinePanel.h"
#include "app/MathWindow.h"
#include "app/MessageBoxes.h"
#include "app/MidiInputController.h"
#include "app/PartExportCommands.h"
#include "app/PartFileCommands.h"
#include "app/PartListPanel.h"
#include "app/PartMidiDrag.h"
#include "app/PartSession.h"
#include "app/PatternGridPanel.h"
#include "app/PatternTrackCommands.h"
#include "app/TransportController.h"
#include "app/UndoRouter.h"
#include "app/VoicingCommands.h"
#include "app/WaitCursor.h"
#include "midi/CMIDIOutException.h"
#include "midi/MidiInPortList.h"
#include "midi/MidiPortList.h"
#include "part/Part.h"
#include "part/PatternRecipeList.h"
#include "player/PartPlayer.h"

#include <QAction>
#include <QDockWidget>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTableWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
#include <memory>

namespace app {

namespace {

/** A titled region of the form; the title's mnemonic moves the focus into the region. */
QWidget* titled(const QString& title, QWidget* content, QWidget* parent)
{
    auto* box = new QWidget(parent);
    box->setObjectName(content->objectName() + QStringLiteral("Box"));
    box->setAccessibleName(QString(title).remove(QLatin1Char('&')));
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(2);
    auto* label = new QLabel(title, box);
    label->setObjectName(content->objectName() + QStringLiteral("Title"));
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    label->setBuddy(content);
    layout->addWidget(label);
    layout->addWidget(content, 1);
    return box;
}

/** Names a widget for the tests, the layout store and assistive technology. */
template <typename Widget>
Widget* named(Widget* widget, const char* objectName, const QString& accessibleName)
{
    widget->setObjectName(QString::fromLatin1(objectName));
    widget->setAccessibleName(accessibleName);
    return widget;
}

} // namespace

CTonalmancerView::CTonalmancerView(CMainFrame& frame, CTonalmancerDoc& document,
                                   music::DataFolder dataFolder,
                                   std::shared_ptr<midi::MidiPortList> ports, QWidget* parent)
    : CResizableFormView(parent), m_frame(frame), m_document(document),
      m_dataFolder(std::move(dataFolder)), m_ports(std::move(ports))
{
    setObjectName(QStringLiteral("tonalmancerView"));
    setAccessibleName(tr("Tonalmancer workbench"));
    m_undoRouter = new UndoRouter(m_frame.action("edit.undo"), m_frame.action("edit.redo"), this);
    m_partSession = new PartSession(this);
    m_partFiles = new PartFileCommands(*this, *m_partSession, m_dataFolder,
                                       [this](std::string_view id) { return m_frame.action(id); });

    Regions regions;
    regions.chordDatabase = createChordDatabasePanel();
    regions.partList = createPartListPanel();
    regions.patternList = createPatternListPanel();
    regions.patternGrid = createPatternGridPanel();
    regions.partSettings = createPartSettingsPanel();
    regions.machines = createMachinePanel();
    regions.partPresets = createPartPresetPanel();
    regions.patternPresets = createPatternPresetPanel();
    layOut(regions);
    for (QWidget* partRegion : {regions.partList, regions.patternList, regions.patternGrid,
                                regions.partSettings, regions.partPresets, regions.patternPresets})
        registerUndoTarget(partRegion, m_partSession);
    registerUndoTarget(regions.machines, m_document.history());
    connectTempoBar();
    connectCommands();
    createKeyboardPanel();

    m_transport = new TransportController(m_frame, *m_partSession, m_midiSettings, m_ports, this);
    m_transport->setInputPorts(m_midiInput->inputs());
    connect(m_transport, &TransportController::midiSettingsOpening, m_keyboard,
            &KeyboardPanel::stopSound);
    connect(m_transport, &TransportController::midiSettingsEdited, this,
            [this] { openMidiInput(true); });
    connect(&m_transport->player(), &player::PartPlayer::playingChanged, m_keyboard,
            [this](bool playing) {
                if (playing)
                    m_keyboard->stopSound();
            });
    m_transport->addSpaceToggle(regions.partList);
    m_transport->addSpaceToggle(regions.patternGrid);
    m_partExports =
        new PartExportCommands(*this, m_frame, m_document, *m_partSession, *m_transport, this);
    m_midiDrag = std::make_unique<PartMidiDrag>();
    m_partList->model()->setDragExtender(
        [this](QMimeData& dragData) { addPartAsMidiFile(dragData); });
}

void CTonalmancerView::connectTempoBar()
{
    CTempoBar* bar = m_frame.tempoBar();
    if (bar == nullptr)
        return;
    // The tempo bar and the part's tempo are one value: either side may change it.
    m_partSession->setTempo(bar->beatsPerMinute(), bar->ticksPerBeat());
    m_partSession->markSaved(m_partSession->filePath());
    auto showingPartTempo = std::make_shared<bool>(false);
    connect(bar, &CTempoBar::tempoChanged, m_partSession, [this, bar, showingPartTempo] {
        if (!*showingPartTempo)
            m_partSession->setTempo(bar->beatsPerMinute(), bar->ticksPerBeat());
    });
    connect(m_partSession, &PartSession::changed, bar,
            [this, bar, showingPartTempo](PartSession::Changes what) {
                if (!what.testFlag(PartSession::Tempo))
                    return;
                // Both fields first, then one tempo change: a half-updated bar must not write
                // its old ticks per beat back into the part.
                *showingPartTempo = true;
                bar->setBeatsPerMinute(m_partSession->part().beatsPerMinute());
                bar->setTicksPerBeat(m_partSession->part().ticksPerBeat());
                *showingPartTempo = false;
            });
}

CTonalmancerView::~CTonalmancerView() = default;

// ---- the regions -----------------------------------------------------------------------------

QWidget* CTonalmancerView::createChordDatabasePanel()
{
    m_chordDatabase = new ChordDatabasePanel(
        [this](std::string_view id) { return m_frame.action(id); }, m_dataFolder, this);
    registerContextMenu("chordTree", m_chordDatabase->contextMenu());
    registerUndoTarget(m_chordDatabase, m_chordDatabase->undoTarget());
    return m_chordDatabase;
}

QWidget* CTonalmancerView::createPartListPanel()
{
    m_partList = new PartListPanel(
        *m_partSession, *m_chordDatabase, *m_partFiles,
        [this](std::string_view id) { return m_frame.action(id); }, this);
    registerContextMenu("partList", m_partList->contextMenu());
    new ChordTransformCommands(*m_partList, *m_partSession,
                               [this](std::string_view id) { return m_frame.action(id); });
    return m_partList;
}

QWidget* CTonalmancerView::createPatternListPanel()
{
    auto* list = named(new QListWidget(this), "patternList", tr("Patterns"));
    list->setToolTip(tr("The patterns of the part."));
    attachContextMenu("patternList", list);
    return list;
}

QWidget* CTonalmancerView::createPatternGridPanel()
{
    auto* grid = new PatternGridPanel(
        *m_partSession, [this](std::string_view id) { return m_frame.action(id); }, this);
    registerContextMenu("patternEditor", grid->contextMenu());
    registerContextMenu("trackHeader", grid->trackHeaderMenu());
    new PatternTrackCommands(*grid);
    m_patternGrid = grid;
    m_recipeFile =
        m_dataFolder.userFolder() / part::PatternRecipeList::kFileName; // makes the folder
    connect(m_frame.action("view.mathWindow"), &QAction::triggered, this,
            [this] { mathWindow()->showWindow(); });
    return grid;
}

MathWindow* CTonalmancerView::mathWindow()
{
    // Built when first asked for: most sessions never open it.
    if (m_mathWindow == nullptr) {
        m_mathWindow = new MathWindow(
            *m_partSession, *m_patternGrid, m_recipeFile,
            [this](std::string_view id) { return m_frame.action(id); }, this);
    }
    return m_mathWindow;
}

QWidget* CTonalmancerView::createPartSettingsPanel()
{
    m_settingsTree = named(new QTreeWidget(this), "settingsView", tr("Part settings"));
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
    attachContextMenu("settingsView", m_settingsTree);
    return m_settingsTree;
}

QWidget* CTonalmancerView::createMachinePanel()
{
    m_machinePanel = new MachinePanel(
        m_document, m_midiSettings, [this](std::string_view id) { return m_frame.action(id); },
        this);
    registerContextMenu("machineView", m_machinePanel->contextMenu());
    connect(m_machinePanel, &MachinePanel::statusMessage, this, [this](const QString& text) {
        if (QStatusBar* status = m_frame.statusBar())
            status->showMessage(text, 5000);
    });
    return m_machinePanel;
}

QString CTonalmancerView::selectedMachineName() const
{
    return m_machinePanel->selectedMachineName();
}

QWidget* CTonalmancerView::createPartPresetPanel()
{
    m_partPresetList = named(new QListWidget(this), "partPresets", tr("Part presets"));
    attachContextMenu("partPresets", m_partPresetList);
    return m_partPresetList;
}

QWidget* CTonalmancerView::createPatternPresetPanel()
{
    m_patternPresetList = named(new QListWidget(this), "patternPresets", tr("Pattern presets"));
    attachContextMenu("patternPresets", m_patternPresetList);
    return m_patternPresetList;
}

void CTonalmancerView::layOut(const Regions& regions)
{
    m_regions = regions;
    auto* partLists = createSplitter(Qt::Horizontal, QStringLiteral("partLists"), this);
    partLists->addWidget(titled(tr("&Part"), regions.partList, partLists));
    partLists->addWidget(titled(tr("Pa&tterns"), regions.patternList, partLists));
    partLists->setStretchFactor(0, 3);
    partLists->setStretchFactor(1, 2);
    auto* centre = createSplitter(Qt::Vertical, QStringLiteral("centre"), this);
    centre->addWidget(partLists);
    centre->addWidget(titled(tr("Pattern &editor"), regions.patternGrid, centre));
    centre->setStretchFactor(0, 1);
    centre->setStretchFactor(1, 2);

    m_sideStack = named(new QStackedWidget(this), "sideStack", tr("Settings or song"));
    m_sideStack->addWidget(regions.partSettings);
    m_sideStack->addWidget(regions.machines);
    auto* side = createSplitter(Qt::Vertical, QStringLiteral("side"), this);
    side->addWidget(titled(tr("&Settings / Song"), m_sideStack, side));
    side->addWidget(titled(tr("Part p&resets"), regions.partPresets, side));
    side->addWidget(titled(tr("Pattern pre&sets"), regions.patternPresets, side));

    auto* main = createSplitter(Qt::Horizontal, QStringLiteral("main"), this);
    main->addWidget(titled(tr("&Chord database"), regions.chordDatabase, main));
    main->addWidget(centre);
    main->addWidget(side);
    main->setStretchFactor(0, 3);
    main->setStretchFactor(1, 4);
    main->setStretchFactor(2, 2);
    main->setSizes({380, 560, 260});

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(main);
}

void CTonalmancerView::createKeyboardPanel()
{
    m_keyboard = new KeyboardPanel(*m_partSession, *m_chordDatabase, *m_partList, m_ports,
                                   m_midiSettings, &m_frame);
    registerUndoTarget(m_keyboard, m_partSession);
    m_keyboardDock =
        named(new QDockWidget(tr("Keyboard"), &m_frame), "keyboardDock", tr("Keyboard"));
    m_keyboardDock->setWidget(m_keyboard);
    m_keyboardDock->setAllowedAreas(Qt::BottomDockWidgetArea | Qt::TopDockWidgetArea);
    m_frame.addDockWidget(Qt::BottomDockWidgetArea, m_keyboardDock);
    QAction* toggle = m_frame.action("view.keyboard");
    toggle->setChecked(true);
    connect(toggle, &QAction::triggered, m_keyboardDock, &QDockWidget::setVisible);
    connect(m_keyboardDock, &QDockWidget::visibilityChanged, toggle, [this, toggle] {
        // Tabbed away counts as shown; only a closed dock is unchecked.
        toggle->setChecked(!m_keyboardDock->isHidden());
    });

    m_midiInput = new MidiInputController(midi::MidiInPortList::systemList(), this);
    m_keyboard->setMidiInput(m_midiInput);
    m_voicing = new VoicingCommands(*m_partList, *m_partSession, m_keyboard,
                                    [this](std::string_view id) { return m_frame.action(id); });
}

void CTonalmancerView::openMidiInput(bool reportFailure)
{
    const std::string& name = m_midiSettings.inputDeviceName();
    if (m_midiInput->isOpen() && m_midiInput->deviceName() == name)
        return;
    const QString failure = m_midiInput->open(name);
    if (failure.isEmpty())
        return;
    m_keyboard->inputLabel()->setText(tr("No MIDI input: %1").arg(failure));
    if (reportFailure)
        MessageBoxes::error(this, failure);
}

// ---- menus and command routing ---------------------------------------------------------------

void CTonalmancerView::attachContextMenu(std::string_view name, QWidget* widget)
{
    QMenu* menu = ActionFactory::buildContextMenu(
        name, widget, [this](std::string_view id) { return m_frame.action(id); });
    menu->setAccessibleName(tr("%1 commands").arg(widget->accessibleName()));
    registerContextMenu(name, menu);
    widget->setContextMenuPolicy(Qt::CustomContextMenu);
    auto* area = qobject_cast<QAbstractScrollArea*>(widget);
    connect(widget, &QWidget::customContextMenuRequested, this,
            [menu, widget, area](const QPoint& point) {
                const QWidget* origin = area != nullptr ? area->viewport() : widget;
                menu->popup(origin->mapToGlobal(point));
            });
}

void CTonalmancerView::registerContextMenu(std::string_view name, QMenu* menu)
{
    m_menus[std::string(name)] = menu;
}

QMenu* CTonalmancerView::contextMenu(std::string_view name) const
{
    const auto found = m_menus.find(name);
    return found == m_menus.end() ? nullptr : found->second;
}

void CTonalmancerView::registerUndoTarget(QWidget* region, UndoTarget* target)
{
    m_undoRouter->addTarget(region, target);
}

void CTonalmancerView::connectCommands()
{
    const auto on = [this](const char* id, const std::function<void()>& slot) {
        connect(m_frame.action(id), &QAction::triggered, this, [slot] { slot(); });
    };
    on("view.showBmx", [this] { showMachineView(true); });
    on("view.showSettings", [this] { showMachineView(false); });
}

// ---- start and end ---------------------------------------------------------------------------

void CTonalmancerView::initialUpdate()
{
    WaitCursor wait;
    if (m_ports) {
        m_midiSettings =
            midi::MidiSettings::read(m_dataFolder.file(midi::MidiSettings::kFileName), *m_ports);
    }
    m_chordDatabase->loadDefaults();
    openMidiInput(false); // a keyboard not plugged in at start is no reason for a message box
    m_partPresets.load(m_dataFolder.file(part::PartPresetList::kDefaultFileName));
    m_patternPresets.load(m_dataFolder.file(part::PatternPresetList::kDefaultFileName));
    refreshPresets();
    m_machinePanel->applySettings();
    m_partFiles->loadAtStart();
}

bool CTonalmancerView::openPartEditorFile(CommandLine::FileKind kind, const QString& path)
{
    if (kind == CommandLine::FileKind::Part)
        return m_partFiles->openAtStart(path);
    MessageBoxes::error(this, tr("The part editor cannot open %1 yet.").arg(path));
    return false;
}

QString CTonalmancerView::partTitle() const
{
    return m_partFiles->partTitle();
}

bool CTonalmancerView::mayClose()
{
    return m_partFiles->maySafelyDiscard();
}

void CTonalmancerView::shutdown()
{
    m_transport->stop(); // what playback changed in the settings is written too
    m_keyboard->stopSound();
    m_midiInput->close();
    if (m_settingsWritten || !m_ports)
        return;
    m_settingsWritten = true;
    m_chordDatabase->saveSettings();
    try {
        m_midiSettings.write(m_dataFolder.file(midi::MidiSettings::kFileName), *m_ports);
    } catch (const midi::CMIDIOutException&) {
        // A device that vanished since the start: the settings are not written, as on a
        // file that cannot be opened; nothing is reported on the way out.
    }
}

// ---- song machines and presets ---------------------------------------------------------------

void CTonalmancerView::showMachineView(bool machines)
{
    m_sideStack->setCurrentWidget(machines ? m_regions.machines : m_regions.partSettings);
}

bool CTonalmancerView::addPartAsMidiFile(QMimeData& dragData)
{
    return m_midiDrag->addTo(dragData, m_partSession->part(), m_partExports->midiExportOptions(),
                             m_partSession->filePath());
}

QString CTonalmancerView::lastDraggedMidiFile() const
{
    return m_midiDrag->lastFile();
}

int CTonalmancerView::currentPartPreset() const
{
    return m_partPresetList->currentRow();
}

void CTonalmancerView::notifyPartPresetsChanged()
{
    refreshPresets();
    Q_EMIT partPresetsChanged();
}

void CTonalmancerView::refreshPresets()
{
    const int current = m_partPresetList->currentRow();
    m_partPresetList->clear();
    for (const part::PartPreset& preset : m_partPresets.presets())
        m_partPresetList->addItem(QString::fromStdString(preset.name));
    m_partPresetList->setCurrentRow(std::min(current, m_partPresetList->count() - 1));
    m_patternPresetList->clear();
    for (int i = 0; i < m_patternPresets.count(); ++i)
        m_patternPresetList->addItem(QString::fromStdString(m_patternPresets.preset(i).name()));
}

} // namespace app
