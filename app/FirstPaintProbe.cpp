#include "app/FirstPaintProbe.h"

#include <QEvent>
#include <QTimer>
#include <QWidget>

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

void FirstPaintProbe::afterFirstPaint(QWidget& window, std::function<void()> then)
{
    window.installEventFilter(new FirstPaintProbe(&window, std::move(then)));
}

bool FirstPaintProbe::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Paint && !m_seen) {
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
