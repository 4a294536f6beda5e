#include "app/CTonalmancerApp.h"

#include "app/AppIcons.h"
#include "app/CMainFrame.h"
#include "app/CTonalmancerDoc.h"
#include "app/CTonalmancerView.h"
#include "app/ChordDatabaseCommands.h"
#include "app/ChordDatabasePanel.h"
#include "app/FirstPaintProbe.h"
#include "app/MessageBoxes.h"
#include "midi/SystemMidiPortList.h"

#include <QApplication>

namespace app {

CTonalmancerApp::CTonalmancerApp(std::shared_ptr<midi::MidiPortList> ports, QObject* parent)
    : QObject(parent), m_ports(std::move(ports))
{}

CTonalmancerApp::~CTonalmancerApp()
{
    // The view writes the settings when the window closes; a run that ends without closing it
    // (a test, a session ending) writes them here.
    if (CTonalmancerView* v = view())
        v->shutdown();
}

void CTonalmancerApp::setApplicationNames()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Tonalmancer"));
    QCoreApplication::setApplicationName(QStringLiteral("Tonalmancer"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TM_VERSION));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Tonalmancer"));
    QGuiApplication::setDesktopFileName(desktopFileName());
}

QString CTonalmancerApp::desktopFileName()
{
    return QStringLiteral(TM_APP_ID);
}

CTonalmancerView* CTonalmancerApp::view() const
{
    return m_frame ? m_frame->view() : nullptr;
}

bool CTonalmancerApp::start(const QStringList& arguments, bool show)
{
    const CommandLine line = CommandLine::parse(arguments);
    if (line.request() != CommandLine::Request::Run) {
        MessageBoxes::error(nullptr, QString::fromLatin1(kUsage));
        return false;
    }

    const music::Result resolved =
        music::DataFolder::resolve(QCoreApplication::applicationDirPath().toStdString(),
                                   line.dataDir().toStdString(), m_dataFolder);
    if (!resolved) {
        MessageBoxes::error(nullptr, QString::fromStdString(resolved.message()));
        return false;
    }
    if (!m_ports)
        m_ports = std::make_shared<midi::SystemMidiPortList>(m_dataFolder.root());

    m_document = std::make_unique<CTonalmancerDoc>(m_dataFolder);
    m_frame = std::make_unique<CMainFrame>();
    auto* view = new CTonalmancerView(*m_frame, *m_document, m_dataFolder, m_ports);
    m_frame->setDocumentAndView(m_document.get(), view);
    view->initialUpdate();
    if (!m_partEditorOpener) {
        m_partEditorOpener = [view](CommandLine::FileKind kind, const QString& path) {
            return view->openPartEditorFile(kind, path);
        };
    }
    openFromCommandLine(line);

    m_frame->restoreWindowState();
    if (show) {
        FirstPaintProbe::afterFirstPaint(*m_frame, [this] { completeStart(); });
        m_frame->showMaximized();
    } else {
        completeStart();
    }
    return true;
}

void CTonalmancerApp::completeStart()
{
    // The desktop's icon theme is searched file by file where it has no valid cache (some
    // thousand look-ups for the commands' icons), and the window system gets the application
    // icon in every size: neither shows in the window's first frame, which has the program's
    // own drawings on its buttons. Nor does the hidden machine list.
    if (CTonalmancerView* shown = view())
        shown->completeStart();
    m_frame->applyThemeIcons();
    QApplication::setWindowIcon(AppIcons::application());
}

void CTonalmancerApp::openFromCommandLine(const CommandLine& line)
{
    const bool song = !line.file().isEmpty() && line.fileKind() == CommandLine::FileKind::Song;
    if (!song || !m_frame->openSong(line.file()))
        m_document->newSong();
    if (line.file().isEmpty() || song)
        return;

    if (line.fileKind() == CommandLine::FileKind::ChordDatabase) {
        view()->chordDatabase()->menuCommands().loadChordListFrom(line.file());
    } else if (m_partEditorOpener) {
        m_partEditorOpener(line.fileKind(), line.file());
    } else {
        MessageBoxes::error(nullptr, tr("The part editor cannot open %1 yet.").arg(line.file()));
    }
}

} // namespace app
