#pragma once

#include "app/CommandLine.h"
#include "music/DataFolder.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

namespace midi {
class MidiPortList;
}

namespace app {

class CMainFrame;
class CTonalmancerDoc;
class CTonalmancerView;

/**
 * The application object: lives for the whole run and starts the program in a fixed order:
 * names and style, the document, the main frame and the main view (which reads the settings file
 * and loads the default files), the song of the command line, then the window maximised.
 */
class CTonalmancerApp : public QObject
{
    Q_OBJECT
public:
    static constexpr const char* kUsage = CommandLine::kUsage;

    /**
     * Opens a part (.prt) or a preset file (.spr, .ppr) named on the command line in the part
     * editor; returns false when it could not, having shown why. The code that builds the part
     * editor sets it (before start(), or in start() once the view exists); while none is set,
     * such files are refused with a message and the program starts without them.
     */
    using PartEditorOpener = std::function<bool(CommandLine::FileKind kind, const QString& path)>;

    /** `ports` lists the MIDI outputs; null uses the system's. */
    explicit CTonalmancerApp(std::shared_ptr<midi::MidiPortList> ports = {},
                             QObject* parent = nullptr);
    ~CTonalmancerApp() override;

    /**
     * Sets the names QSettings and the dialogs use and the desktop entry the window belongs to;
     * call before the first window exists. The window icon follows once the window is on screen.
     */
    static void setApplicationNames();

    /** The desktop entry's name without ".desktop"; the window system matches windows by it. */
    static QString desktopFileName();

    void setPartEditorOpener(PartEditorOpener opener) { m_partEditorOpener = std::move(opener); }

    /**
     * Starts the program with its arguments (without the program name). Returns false, having
     * shown why, when the data folder cannot be used or the arguments are wrong. A file that
     * cannot be opened is reported and the program starts without it. `show` false keeps the
     * window hidden (tests) and completes the start at once; else the window is shown and the
     * start is completed right after its first frame (completeStart()).
     */
    bool start(const QStringList& arguments, bool show = true);

    CMainFrame* mainFrame() const { return m_frame.get(); }
    CTonalmancerDoc* document() const { return m_document.get(); }
    CTonalmancerView* view() const;
    const music::DataFolder& dataFolder() const { return m_dataFolder; }

private:
    void openFromCommandLine(const CommandLine& line);
    /** What the first frame does not need: the desktop theme's icons, the window icon. */
    void completeStart();

    std::shared_ptr<midi::MidiPortList> m_ports;
    PartEditorOpener m_partEditorOpener;
    music::DataFolder m_dataFolder;
    std::unique_ptr<CTonalmancerDoc> m_document;
    std::unique_ptr<CMainFrame> m_frame;
};

} // namespace app
