#pragma once

#include <QMainWindow>

#include "music/Result.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>

class QAction;
class QToolBar;

namespace app {

class CTempoBar;
class ContextHelp;
class CUnknownMachineDialogs;
class HelpRouter;
class CTonalmancerDoc;
class CTonalmancerView;

/**
 * The main window: menu bar and accelerators built from the command table, the toolbar with the
 * commands that have a second prompt line, the tempo bar at the top and the status bar that shows
 * the prompt of the command under the mouse ("Ready" when idle). It keeps the two playing flags.
 */
class CMainFrame : public QMainWindow
{
    Q_OBJECT
public:
    static constexpr std::string_view kIdleText = "Ready";

    explicit CMainFrame(QWidget* parent = nullptr);
    ~CMainFrame() override;

    /** The action of a menu-bar, accelerator or toolbar command; nullptr for an unknown id. */
    QAction* action(std::string_view id) const;
    CTempoBar* tempoBar() const { return m_tempoBar; }
    QToolBar* toolBar() const { return m_toolBar; }

    void setDocumentAndView(CTonalmancerDoc* document, CTonalmancerView* view);
    CTonalmancerView* view() const { return m_view; }

    /** The two playing flags; the Play and Play chord commands show checked while theirs is set. */
    void setPlayingFlags(bool playingPart, bool playingChord);
    bool isPlayingPart() const { return m_playingPart; }
    bool isPlayingChord() const { return m_playingChord; }
    /** Shows each playing command checked exactly while its flag is set. */
    void updateCommandStates();

    /**
     * Gives the commands the desktop theme's icons where it has their freedesktop names; until
     * then they show the program's own drawings.
     */
    void applyThemeIcons();

    /** Restores size, position, toolbar layout and splitters of the last run. */
    void restoreWindowState();

    // The song commands after their file dialogs; failures are shown in message boxes.
    bool openSong(const QString& path);
    bool reloadSong();
    bool saveSong();
    bool saveSongAs(const QString& path);
    bool loadDefaultSong();
    bool saveSongAsDefault();
    /**
     * Adds one machine DLL to the machine database behind a progress dialog, then says what it
     * did; false (and shown) on failure.
     */
    bool scanSingleFile(const QString& dllPath);
    /**
     * Rebuilds the machine database from the tracker's gear folder on a worker thread behind a
     * cancellable progress dialog, then sums up what was added, skipped and refused. False when
     * it failed or was cancelled.
     */
    bool scanGearDirectory(const QString& gearPath);
    /**
     * Before a changed song is left (new, open, reload, exit): asks whether to save it and does.
     * False when the user cancels or the save fails; true when the song may go.
     */
    bool maybeSaveSong();

    /** The manual and the help requests of the windows. */
    HelpRouter& help() { return *m_help; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void createActions();
    void createMenus();
    void createToolBars();
    void updateTitle();
    void connectDocumentCommands();
    bool reportLoad(const music::Result& result);
    bool reportSave(const music::Result& result);
    QString songFolder() const;

    std::map<std::string, QAction*, std::less<>> m_actions;
    CTempoBar* m_tempoBar = nullptr;
    QToolBar* m_toolBar = nullptr;
    CTonalmancerDoc* m_document = nullptr;
    CTonalmancerView* m_view = nullptr;
    bool m_playingPart = false;
    bool m_playingChord = false;
    std::unique_ptr<HelpRouter> m_help;
    std::unique_ptr<ContextHelp> m_contextHelp; // F1 help; declared after m_help, which it uses
    std::unique_ptr<CUnknownMachineDialogs> m_machineDialogs;
};

} // namespace app
