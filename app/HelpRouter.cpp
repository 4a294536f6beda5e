#include "app/HelpRouter.h"

#include "app/CHelpWindow.h"
#include "app/MessageBoxes.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace app {

namespace {

HelpRouter::UrlOpener& urlOpener()
{
    static HelpRouter::UrlOpener opener;
    return opener;
}

constexpr unsigned kBit15 = 0x8000;

} // namespace

HelpRouter::~HelpRouter() = default;

HelpRouter::HelpRouter(QString manualPath) : m_manualPath(std::move(manualPath))
{
    if (m_manualPath.isEmpty())
        return;
    QFile file(m_manualPath);
    if (file.open(QIODevice::ReadOnly))
        m_manualText = QString::fromUtf8(file.readAll());
}

QString HelpRouter::findManual(const QString& applicationDir)
{
    const QDir dir(applicationDir);
    const QStringList candidates = {
        dir.filePath(QStringLiteral("docs/index.html")),
        dir.filePath(QStringLiteral("../share/doc/tonalmancer/manual/index.html")),
    };
    for (const QString& candidate : candidates) {
        if (QFileInfo::exists(candidate))
            return QFileInfo(candidate).absoluteFilePath();
    }
    return {};
}

QString HelpRouter::request(QWidget* parent, unsigned command, unsigned data,
                            const RelativeRect& rect)
{
    if (!isAvailable())
        return {};
    QString message;
    switch (command) {
    case kCommand:
        message = QStringLiteral("APP::HELP_COMMAND not available");
        break;
    case kHelpOnHelp:
        message = QStringLiteral("APP::HELP_HELPONHELP not available");
        break;
    case kSetIndex:
        message = QStringLiteral("APP::HELP_SETINDEX not available");
        break;
    case kSetWindowPosition: {
        const QScreen* screen = parent != nullptr && parent->screen() != nullptr
                                    ? parent->screen()
                                    : QGuiApplication::primaryScreen();
        const QSize size = screen != nullptr ? screen->size() : QSize(1024, 768);
        m_windowRect = windowRectFromRelative(size, rect);
        return {};
    }
    case kContext:
        open(topicUrl(data));
        return {};
    default:
        openTopics();
        return {};
    }
    MessageBoxes::show(parent, message, QMessageBox::Information);
    return message;
}

bool HelpRouter::openTopics()
{
    return isAvailable() && open(QUrl::fromLocalFile(m_manualPath));
}

QUrl HelpRouter::topicUrl(unsigned context) const
{
    QUrl url = QUrl::fromLocalFile(m_manualPath);
    std::vector<unsigned> tries;
    if ((context & kBit15) != 0)
        tries.push_back(context & ~kBit15);
    tries.push_back(context);
    for (const unsigned number : tries) {
        const QString anchor = QStringLiteral("topic-%1").arg(number);
        if (m_manualText.contains(QStringLiteral("id=\"%1\"").arg(anchor))) {
            url.setFragment(anchor);
            return url;
        }
    }
    return url;
}

QRect HelpRouter::windowRectFromRelative(QSize screen, const RelativeRect& rect)
{
    // 64-bit products: a large screen times a large coordinate must not overflow.
    const auto scale = [](int extent, int units) {
        return static_cast<int>(static_cast<qint64>(extent) * units / 1024);
    };
    const int left = scale(screen.width(), rect.x);
    const int top = scale(screen.height(), rect.y);
    const int right = left + scale(screen.width(), rect.dx);
    const int bottom = top + scale(screen.height(), rect.dy);
    return QRect(left, top, right - left, bottom - top);
}

void HelpRouter::setUrlOpener(UrlOpener opener)
{
    urlOpener() = std::move(opener);
}

bool HelpRouter::open(const QUrl& url)
{
    if (urlOpener() ? urlOpener()(url) : QDesktopServices::openUrl(url))
        return true;
    if (!m_window) {
        m_window = std::make_unique<CHelpWindow>();
        if (!m_windowRect.isNull())
            m_window->setGeometry(m_windowRect);
    }
    m_window->showPage(url);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    return true;
}

} // namespace app
