#include "app/CTonalmancerView.h"

#include "app/ActionFactory.h"
#include "app/CMainFrame.h"
#include "app/CTempoBar.h"
#include "app/CTonalmancerDoc.h"
#include "app/ChordDatabasePanel.h"
#include "app/ChordTransformCommands.h"
#include "app/DefaultFilesReader.h"
#include "app/KeyboardPanel.h"
#include "app/MachinePanel.h"
#include "app/MathWindow.h"
#include "app/MessageBoxes.h"
#include "app/MidiInputController.h"
#include "app/PartExportCommands.h"
#include "app/PartFileCommands.h"
#include "app/PartListPanel.h"
#include "app/PartMidiDrag.h"
#include "app/PartPresetSource.h"
#include "app/PartSession.h"
#include "app/PartSettingsPanel.h"
#include "app/PatternGridPanel.h"
#include "app/PatternListPanel.h"
#include "app/PatternPresetSource.h"
#include "app/PatternTrackCommands.h"
#include "app/PresetPanel.h"
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
#include <QLabel>
#include <QMenu>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
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
    // Parsed beside the building of the panels, taken by initialUpdate().
    m_defaultFiles = std::make_unique<DefaultFilesReader>(m_dataFolder);
    setObjectName(QStringLiteral("tonalmancerView"));
    setAccessibleName(tr("Tonalmancer workbench"));
    m_undoRouter = new UndoRouter(m_frame.action("edit.undo"), m_frame.action("edit.redo"), this);
    m_partSession = new PartSession(this);
    m_partFiles = new PartFileCommands(*this, *m_partSession, m_dataFolder,
                                       [this](std::string_view id) { return m_frame.action(id); });

    Regions regions;
    regions.chordDatabase = createChordDatabasePanel();
    // The presets first: the part list and the pattern list add to them.
    regions.partPresets = createPartPresetPanel();
    regions.patternPresets = createPatternPresetPanel();
    regions.partList = createPartListPanel();
    regions.patternList = createPatternListPanel();
    regions.patternGrid = createPatternGridPanel();
    regions.partSettings = createPartSettingsPanel();
    regions.machines = createMachineRegion();
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
    m_patternList = new PatternListPanel(
        *m_partSession, *m_patternPresetPanel, *m_patternPresetSource,
        [this](std::string_view id) { return m_frame.action(id); }, this);
    registerContextMenu("patternList", m_patternList->contextMenu());
    return m_patternList;
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
    m_partSettings = new PartSettingsPanel(
        *m_partSession, [this](std::string_view id) { return m_frame.action(id); }, this);
    registerContextMenu("settingsView", m_partSettings->contextMenu());
    return m_partSettings;
}

QWidget* CTonalmancerView::createMachineRegion()
{
    auto* region = named(new QWidget(this), "machineRegion", tr("Machines of the song"));
    auto* layout = new QVBoxLayout(region);
    layout->setContentsMargins(0, 0, 0, 0);
    return region;
}

MachinePanel* CTonalmancerView::machinePanel()
{
    if (m_machinePanel != nullptr)
        return m_machinePanel;
    // It lists the song as it is now and takes the Machines commands from here on.
    m_machinePanel = new MachinePanel(
        m_document, m_midiSettings, [this](std::string_view id) { return m_frame.action(id); },
        m_regions.machines);
    m_regions.machines->layout()->addWidget(m_machinePanel);
    m_regions.machines->setFocusProxy(m_machinePanel);
    registerContextMenu("machineView", m_machinePanel->contextMenu());
    connect(m_machinePanel, &MachinePanel::statusMessage, this, [this](const QString& text) {
        if (QStatusBar* status = m_frame.statusBar())
            status->showMessage(text, 5000);
    });
    return m_machinePanel;
}

void CTonalmancerView::completeStart()
{
    // The machine list is hidden behind the part settings until View > Machines: building it
    // (and measuring its columns) would only delay the first frame.
    machinePanel();
}

QString CTonalmancerView::selectedMachineName() const
{
    // Before the panel is built nothing in it can have been selected.
    return m_machinePanel != nullptr ? m_machinePanel->selectedMachineName() : QString();
}

QWidget* CTonalmancerView::createPartPresetPanel()
{
    auto source = std::make_unique<PartPresetSource>();
    m_partPresetSource = source.get();
    m_partPresetPanel = new PresetPanel(
        std::move(source), *m_partSession,
        [this](std::string_view id) { return m_frame.action(id); }, m_dataFolder, this);
    registerContextMenu("partPresets", m_partPresetPanel->contextMenu());
    return m_partPresetPanel;
}

QWidget* CTonalmancerView::createPatternPresetPanel()
{
    auto source = std::make_unique<PatternPresetSource>();
    m_patternPresetSource = source.get();
    m_patternPresetPanel = new PresetPanel(
        std::move(source), *m_partSession,
        [this](std::string_view id) { return m_frame.action(id); }, m_dataFolder, this);
    registerContextMenu("patternPresets", m_patternPresetPanel->contextMenu());
    return m_patternPresetPanel;
}

const part::PartPresetList& CTonalmancerView::partPresets() const
{
    return m_partPresetSource->list();
}

const part::PatternPresetList& CTonalmancerView::patternPresets() const
{
    return m_patternPresetSource->list();
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
    // The settings keep the height that shows them all; the preset lists share the rest.
    side->setStretchFactor(0, 0);
    side->setStretchFactor(1, 1);
    side->setStretchFactor(2, 1);

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
    DefaultFilesReader::Files files =
        m_defaultFiles ? m_defaultFiles->take() : DefaultFilesReader::read(m_dataFolder);
    m_defaultFiles.reset();
    m_chordDatabase->loadDefaults(files);
    openMidiInput(false); // a keyboard not plugged in at start is no reason for a message box
    if (files.partPresets)
        m_partPresetSource->adopt(std::move(*files.partPresets));
    m_partPresetPanel->showReplacedList();
    if (files.patternPresets)
        m_patternPresetSource->adopt(std::move(*files.patternPresets));
    m_patternPresetPanel->showReplacedList();
    if (m_machinePanel != nullptr) // else it reads the settings when it is built
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
    if (machines)
        machinePanel();
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
    return m_partPresetPanel->currentPreset();
}

} // namespace app
