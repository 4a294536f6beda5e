#include "app/FirstPaintProbe.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <cstdio>
#include <cstdlib>

namespace app {

namespace {

void say(const char* line)
{
    std::fputs(line, stdout);
    std::fflush(stdout);
}

} // namespace

FirstPaintProbe::FirstPaintProbe(QWidget& window, std::function<void()> then)
    : QObject(&window), m_window(window), m_then(std::move(then))
{}

void FirstPaintProbe::afterFirstPaint(QWidget& window, std::function<void()> then)
{
    auto* probe = new FirstPaintProbe(window, std::move(then));
    window.installEventFilter(probe);
    // The window system's expose reaches the native window, not the widget: watched for the
    // benchmark only, from the application.
    if (!qEnvironmentVariableIsEmpty(kVariable))
        QCoreApplication::instance()->installEventFilter(probe);
}

bool FirstPaintProbe::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Expose && !m_mapped && watched == m_window.windowHandle() &&
        m_window.windowHandle()->isExposed()) {
        m_mapped = true;
        say("mapped\n");
        QCoreApplication::instance()->removeEventFilter(this);
    }
    if (event->type() == QEvent::Paint && !m_seen && watched == &m_window) {
        m_seen = true;
        // The window paints first, its children in the same pass, then the frame is flushed:
        // a zero timer runs once all of that is done.
        QTimer::singleShot(0, this, [this] {
            const bool probing = !qEnvironmentVariableIsEmpty(kVariable);
            if (probing)
                say("first paint\n");
            const std::function<void()> then = std::move(m_then);
            if (then)
                then();
            if (probing) {
                say("ready\n");
                std::_Exit(0);
            }
            deleteLater();
        });
    }
    return QObject::eventFilter(watched, event);
}

} // namespace app
