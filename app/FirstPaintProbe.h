#pragma once

#include <QObject>

class QWidget;

namespace app {

/**
 * For the start-up benchmark: when TM_EXIT_AFTER_FIRST_PAINT is set, the main window's first
 * frame ends the process. After the window's first paint (and the flush that follows it in the
 * same pass) "first paint" is printed on stdout and the process exits at once, without the usual
 * shutdown (nothing is written). Without the variable nothing is installed.
 */
class FirstPaintProbe : public QObject
{
    Q_OBJECT
public:
    static constexpr const char* kVariable = "TM_EXIT_AFTER_FIRST_PAINT";

    /** Watches `window` when the variable is set; the probe is owned by the window. */
    static void installIfAsked(QWidget& window);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit FirstPaintProbe(QObject* parent) : QObject(parent) {}
    bool m_seen = false;
};

} // namespace app
