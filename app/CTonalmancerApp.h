#pragma once

#include "music/DataFolder.h"

#include <QObject>
#include <QStringList>

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
    static constexpr const char* kUsage = "Usage: tonalmancer [--data DIR] [SONG.bmx] [PART.prt]";

    /** `ports` lists the MIDI outputs; null uses the system's. */
    explicit CTonalmancerApp(std::shared_ptr<midi::MidiPortList> ports = {},
                             QObject* parent = nullptr);
    ~CTonalmancerApp() override;

    /** Sets the names QSettings and the dialogs use; call before the first window exists. */
    static void setApplicationNames();

    /**
     * Starts the program with its arguments (without the program name). Returns false, having
     * shown why, when the data folder cannot be used or the arguments are wrong. `show` false
     * keeps the window hidden (tests).
     */
    bool start(const QStringList& arguments, bool show = true);

    CMainFrame* mainFrame() const { return m_frame.get(); }
    CTonalmancerDoc* document() const { return m_document.get(); }
    CTonalmancerView* view() const;
    const music::DataFolder& dataFolder() const { return m_dataFolder; }

private:
    std::shared_ptr<midi::MidiPortList> m_ports;
    music::DataFolder m_dataFolder;
    std::unique_ptr<CTonalmancerDoc> m_document;
    std::unique_ptr<CMainFrame> m_frame;
};

} // namespace app
