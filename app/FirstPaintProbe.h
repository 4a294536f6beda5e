#pragma once

#include <QObject>

#include <functional>

class QWidget;

namespace app {

/**
 * Runs a step of the start-up once the main window's first frame is on screen: on the event
 * loop's next turn after the window's first paint (and the flush that follows it in the same
 * pass), so the step does not hold the frame back.
 *
 * For the start-up benchmark: with TM_EXIT_AFTER_FIRST_PAINT set, "mapped" is printed on stdout
 * when the window is first exposed on the screen (before anything is painted in it), "first
 * paint" before the step, "ready" after it, and then the process exits at once, without the
 * usual shutdown (nothing is written).
 */
class FirstPaintProbe : public QObject
{
    Q_OBJECT
public:
    static constexpr const char* kVariable = "TM_EXIT_AFTER_FIRST_PAINT";

    /** Watches `window` (which owns the probe) and runs `then` after its first frame. */
    static void afterFirstPaint(QWidget& window, std::function<void()> then);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    FirstPaintProbe(QWidget& window, std::function<void()> then);
    QWidget& m_window;
    std::function<void()> m_then;
    bool m_seen = false;
    bool m_mapped = false;
};

} // namespace app
