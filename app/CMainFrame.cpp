#include "app/CMainFrame.h"

#include "app/ActionFactory.h"
#include "app/AppIcons.h"
#include "app/CAboutDialog.h"
#include "app/CTempoBar.h"
#include "app/CTonalmancerDoc.h"
#include "app/CTonalmancerView.h"
#include "app/CUnknownMachineDialogs.h"
#include "app/CommandTable.h"
#include "app/ContextHelp.h"
#include "app/FileFilters.h"
#include "app/GearScanRunner.h"
#include "app/HelpRouter.h"
#include "app/MessageBoxes.h"
#include "app/PartSession.h"
#include "music/Utf8Path.h"
#include "song/FileErrorCode.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QSettings>
#include <QStatusBar>
#include <QToolBar>

namespace app {

namespace {

// Toolbar buttons: every command with a second prompt line, grouped; About is left out because
// it would repeat the Help button's tooltip.
constexpr std::string_view kToolbarLayout[] = {
    "file.open",
    "file.save",
    "",
    "part.new",
    "part.load",
    "part.save",
    "",
    "part.play",
    "part.playChord",
    "part.stop",
    "",
    "part.createMidiFile",
    "part.createBuzzPatternsButton",
    "part.addToPresetsButton",
    "part.printChordList",
    "",
    "view.showBmx",
    "view.showSettings",
    "",
    "help.topics",
    "file.exit",
};

} // namespace

CMainFrame::CMainFrame(QWidget* parent) : QMainWindow(parent)
{
    setObjectName(QStringLiteral("mainFrame"));
    m_help =
        std::make_unique<HelpRouter>(HelpRouter::findManual(QApplication::applicationDirPath()));
    m_contextHelp = std::make_unique<ContextHelp>(*m_help);
    m_machineDialogs = std::make_unique<CUnknownMachineDialogs>(this);
    createActions();
    createMenus();
    createToolBars();

    QStatusBar* status = statusBar();
    // Status tips clear the message when the mouse leaves a command; show the idle text then.
    connect(status, &QStatusBar::messageChanged, this, [status](const QString& message) {
        if (message.isEmpty())
            status->showMessage(ActionFactory::toQString(kIdleText));
    });
    status->showMessage(ActionFactory::toQString(kIdleText));
    updateTitle();
    resize(1200, 800);
}

CMainFrame::~CMainFrame() = default;

QAction* CMainFrame::action(std::string_view id) const
{
    const auto found = m_actions.find(id);
    return found == m_actions.end() ? nullptr : found->second;
}

void CMainFrame::createActions()
{
    for (const auto table : {commands::menuBar(), commands::keyAndToolbarOnly()}) {
        for (const CommandEntry& entry : table) {
            if (m_actions.count(entry.id) != 0)
                continue;
            QAction* created = ActionFactory::createAction(entry, this);
            created->setIcon(AppIcons::ownForCommand(entry.id));
            // Accelerators work anywhere in the main window, menus open or not.
            addAction(created);
            m_actions.emplace(std::string(entry.id), created);
        }
    }
    // Some keyboards send Enter from the keypad for the pattern accelerators.
    action("pattern.new")
        ->setShortcuts({QKeySequence(QStringLiteral("Ctrl+Return")),
                        QKeySequence(QStringLiteral("Ctrl+Enter"))});
    action("pattern.copy")
        ->setShortcuts({QKeySequence(QStringLiteral("Ctrl+Shift+Return")),
                        QKeySequence(QStringLiteral("Ctrl+Shift+Enter"))});

    action("edit.redo")
        ->setShortcuts(
            {QKeySequence(QStringLiteral("Ctrl+Shift+Z")), QKeySequence(QStringLiteral("Ctrl+Y"))});

    connect(action("file.exit"), &QAction::triggered, this, &QWidget::close);
    connect(action("help.topics"), &QAction::triggered, this, [this] {
        if (!m_help->openTopics())
            MessageBoxes::show(this, tr("The manual could not be found beside the program."),
                               QMessageBox::Information);
    });
    connect(action("help.about"), &QAction::triggered, this, [this] {
        CAboutDialog dialog(this);
        dialog.exec();
    });
    for (const char* id : {"part.play", "part.playChord"}) {
        // A click toggles the check mark; the flags decide what it shows.
        connect(action(id), &QAction::triggered, this, [this] { updateCommandStates(); });
    }
}

void CMainFrame::applyThemeIcons()
{
    for (const AppIcons::CommandIcon& entry : AppIcons::commandIcons()) {
        QAction* command = action(entry.commandId);
        if (command != nullptr && !entry.themeName.empty())
            command->setIcon(AppIcons::forCommand(entry.commandId));
    }
}

void CMainFrame::createMenus()
{
    QMenu* menu = nullptr;
    std::string_view current;
    for (const CommandEntry& entry : commands::menuBar()) {
        if (menu == nullptr || entry.path != current) {
            menu = menuBar()->addMenu(ActionFactory::toQString(entry.path));
            current = entry.path;
        }
        menu->addAction(action(entry.id));
        // Separators between the groups of a menu.
        if (entry.id == "file.update" || entry.id == "file.saveAs" ||
            entry.id == "file.saveAsDefault" || entry.id == "chords.manager" ||
            entry.id == "chords.continueSearch" || entry.id == "chords.generate" ||
            entry.id == "chords.save" || entry.id == "part.createMidiFile" ||
            entry.id == "part.saveAsDefault" || entry.id == "part.addPatternToPresets" ||
            entry.id == "machines.add" || entry.id == "help.topics")
            menu->addSeparator();
    }
}

void CMainFrame::createToolBars()
{
    m_toolBar = addToolBar(tr("Commands"));
    m_toolBar->setObjectName(QStringLiteral("commandBar"));
    m_toolBar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    for (const std::string_view id : kToolbarLayout) {
        if (id.empty())
            m_toolBar->addSeparator();
        else
            m_toolBar->addAction(action(id));
    }

    m_tempoBar = new CTempoBar(this);
    addToolBar(Qt::TopToolBarArea, m_tempoBar);
}

void CMainFrame::setDocumentAndView(CTonalmancerDoc* document, CTonalmancerView* view)
{
    m_document = document;
    m_view = view;
    setCentralWidget(view);
    if (m_document != nullptr) {
        m_document->setUnknownMachineHandler(m_machineDialogs.get());
        connect(m_document, &CTonalmancerDoc::songChanged, this, &CMainFrame::updateTitle);
        connect(m_document, &CTonalmancerDoc::modifiedChanged, this, &CMainFrame::updateTitle);
        connectDocumentCommands();
    }
    if (m_view != nullptr) {
        connect(m_view->partSession(), &PartSession::modifiedChanged, this,
                &CMainFrame::updateTitle);
        connect(m_view->partSession(), &PartSession::filePathChanged, this,
                &CMainFrame::updateTitle);
    }
    updateTitle();
}

void CMainFrame::connectDocumentCommands()
{
    const QString filter = QString::fromLatin1(CTonalmancerDoc::kFileFilter);
    connect(action("file.new"), &QAction::triggered, this, [this] {
        if (maybeSaveSong())
            m_document->newSong();
    });
    connect(action("file.open"), &QAction::triggered, this, [this, filter] {
        if (!maybeSaveSong())
            return;
        const QString path =
            QFileDialog::getOpenFileName(this, tr("Open Buzz Song"), songFolder(), filter);
        if (!path.isEmpty())
            openSong(path);
    });
    connect(action("file.update"), &QAction::triggered, this, [this] {
        if (maybeSaveSong())
            reloadSong();
    });
    connect(action("file.save"), &QAction::triggered, this, [this] { saveSong(); });
    connect(action("file.saveAs"), &QAction::triggered, this, [this, filter] {
        const QString path =
            QFileDialog::getSaveFileName(this, tr("Save Buzz Song"), songFolder(), filter);
        if (!path.isEmpty())
            saveSongAs(path);
    });
    connect(action("machines.scanFile"), &QAction::triggered, this, [this] {
        const QString path = QFileDialog::getOpenFileName(
            this, tr("Scan Single File"), QString(),
            FileFilters::fromPairs(QString::fromLatin1(CUnknownMachineDialogs::kDllFilter)));
        if (!path.isEmpty())
            scanSingleFile(path);
    });
    connect(action("machines.scanGear"), &QAction::triggered, this, [this] {
        const QString path = QFileDialog::getExistingDirectory(this, tr("Select \\Gear Directory"));
        if (!path.isEmpty())
            scanGearDirectory(path);
    });
    connect(action("file.loadDefault"), &QAction::triggered, this, [this] {
        if (maybeSaveSong())
            loadDefaultSong();
    });
    connect(action("file.saveAsDefault"), &QAction::triggered, this,
            [this] { saveSongAsDefault(); });
}

QString CMainFrame::songFolder() const
{
    if (m_document != nullptr && !m_document->path().isEmpty())
        return QFileInfo(m_document->path()).absolutePath();
    return m_document != nullptr
               ? QString::fromStdString(m_document->dataFolder().userFolder().string())
               : QString();
}

bool CMainFrame::reportLoad(const music::Result& result)
{
    if (result) {
        // A song read with warnings is usable; say what the reader had to assume.
        if (!m_document->readWarnings().isEmpty())
            MessageBoxes::show(this, m_document->readWarnings().join(QStringLiteral("\n\n")),
                               QMessageBox::Warning);
        return true;
    }
    // The reader's own message first (not a Buzz file, unknown machine), unless a dialog on the
    // way has shown it already; then the code.
    if (!result.message().empty() && !m_machineDialogs->messageShown())
        MessageBoxes::error(this, QString::fromStdString(result.message()));
    MessageBoxes::error(this, QString::fromStdString(song::loadErrorText(result.code())));
    return false;
}

bool CMainFrame::reportSave(const music::Result& result)
{
    if (result)
        return true;
    MessageBoxes::error(this, QString::fromStdString(song::saveErrorText(result.code())));
    return false;
}

bool CMainFrame::openSong(const QString& path)
{
    m_machineDialogs->resetMessageShown();
    return reportLoad(m_document->open(path));
}

bool CMainFrame::reloadSong()
{
    if (m_document->path().isEmpty())
        return false; // a new song has no file to read again
    m_machineDialogs->resetMessageShown();
    return reportLoad(m_document->reload());
}

bool CMainFrame::saveSong()
{
    if (m_document->path().isEmpty()) {
        const QString path =
            QFileDialog::getSaveFileName(this, tr("Save Buzz Song"), songFolder(),
                                         QString::fromLatin1(CTonalmancerDoc::kFileFilter));
        return !path.isEmpty() && saveSongAs(path);
    }
    return reportSave(m_document->save());
}

bool CMainFrame::saveSongAs(const QString& path)
{
    return reportSave(m_document->saveAs(path));
}

bool CMainFrame::loadDefaultSong()
{
    m_machineDialogs->resetMessageShown();
    return reportLoad(m_document->loadDefault());
}

bool CMainFrame::scanSingleFile(const QString& dllPath)
{
    const GearScanRunner::Outcome outcome = GearScanRunner::scanSingleFile(
        this, m_document->dataFolder().root(), music::pathFromUtf8(dllPath.toStdString()));
    if (!outcome.result) {
        MessageBoxes::error(this, QString::fromStdString(outcome.result.message()));
        return false;
    }
    MessageBoxes::show(this, GearScanRunner::singleSummary(outcome), QMessageBox::Information);
    return true;
}

bool CMainFrame::scanGearDirectory(const QString& gearPath)
{
    const GearScanRunner::Outcome outcome = GearScanRunner::scanGearDirectory(
        this, m_document->dataFolder().root(), music::pathFromUtf8(gearPath.toStdString()));
    if (!outcome.result) {
        MessageBoxes::error(this, QString::fromStdString(outcome.result.message()));
        return false;
    }
    MessageBoxes::show(this, GearScanRunner::gearSummary(outcome), QMessageBox::Information);
    return !outcome.report.cancelled;
}

bool CMainFrame::maybeSaveSong()
{
    if (m_document == nullptr || !m_document->isModified())
        return true;
    const QMessageBox::StandardButton answer = MessageBoxes::show(
        this, tr("The song has been changed.\nDo you want to save it?"), QMessageBox::Question,
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    if (answer == QMessageBox::Cancel)
        return false;
    return answer == QMessageBox::No || saveSong();
}

bool CMainFrame::saveSongAsDefault()
{
    return reportSave(m_document->saveAsDefault());
}

void CMainFrame::setPlayingFlags(bool playingPart, bool playingChord)
{
    m_playingPart = playingPart;
    m_playingChord = playingChord;
    updateCommandStates();
}

void CMainFrame::updateCommandStates()
{
    action("part.play")->setChecked(m_playingPart);
    action("part.playChord")->setChecked(m_playingChord);
}

void CMainFrame::updateTitle()
{
    const QString name = m_document != nullptr ? m_document->title() : tr("Untitled");
    // The song, then the part; each with "*" while it has unsaved changes.
    const bool modified = m_document != nullptr && m_document->isModified();
    const QString part =
        m_view != nullptr ? QStringLiteral(" - ") + m_view->partTitle() : QString();
    setWindowTitle(name + (modified ? QStringLiteral("*") : QString()) + part +
                   QStringLiteral(" - Tonalmancer"));
    const bool hasSong = m_document != nullptr && m_document->hasSong();
    action("file.save")->setEnabled(hasSong);
    action("file.saveAs")->setEnabled(hasSong);
    action("file.saveAsDefault")->setEnabled(hasSong);
    action("file.update")->setEnabled(m_document != nullptr && !m_document->path().isEmpty());
}

void CMainFrame::restoreWindowState()
{
    QSettings settings;
    restoreGeometry(settings.value(QStringLiteral("mainFrame/geometry")).toByteArray());
    restoreState(settings.value(QStringLiteral("mainFrame/state")).toByteArray());
    if (m_view != nullptr)
        m_view->restoreLayout(settings);
}

void CMainFrame::closeEvent(QCloseEvent* event)
{
    if (!maybeSaveSong() || (m_view != nullptr && !m_view->mayClose())) {
        event->ignore();
        return;
    }
    QSettings settings;
    settings.setValue(QStringLiteral("mainFrame/geometry"), saveGeometry());
    settings.setValue(QStringLiteral("mainFrame/state"), saveState());
    if (m_view != nullptr) {
        m_view->saveLayout(settings);
        m_view->shutdown();
    }
    event->accept();
}

} // namespace app
