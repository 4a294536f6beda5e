#include "app/CTonalmancerApp.h"

#include "app/CMainFrame.h"
#include "app/CTonalmancerDoc.h"
#include "app/CTonalmancerView.h"
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
    QCoreApplication::setApplicationVersion(QStringLiteral("0.7"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Tonalmancer"));
}

CTonalmancerView* CTonalmancerApp::view() const
{
    return m_frame ? m_frame->view() : nullptr;
}

bool CTonalmancerApp::start(const QStringList& arguments, bool show)
{
    QString dataDir;
    QString songPath;
    QString partPath;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == QStringLiteral("--data") && i + 1 < arguments.size()) {
            dataDir = arguments[++i];
        } else if (argument.startsWith(QStringLiteral("--data="))) {
            dataDir = argument.mid(7);
        } else if (argument.endsWith(QStringLiteral(".prt"), Qt::CaseInsensitive) &&
                   partPath.isEmpty()) {
            partPath = argument; // a part opens in the part editor, beside the song
        } else if (argument.startsWith(QStringLiteral("-")) || !songPath.isEmpty()) {
            MessageBoxes::error(nullptr, QString::fromLatin1(kUsage));
            return false;
        } else {
            songPath = argument;
        }
    }

    const music::Result resolved = music::DataFolder::resolve(
        QCoreApplication::applicationDirPath().toStdString(), dataDir.toStdString(), m_dataFolder);
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
    view->initialUpdate(partPath);

    if (songPath.isEmpty()) {
        m_document->newSong();
    } else if (!m_frame->openSong(songPath)) {
        m_document->newSong();
    }

    m_frame->restoreWindowState();
    if (show)
        m_frame->showMaximized();
    return true;
}

} // namespace app
