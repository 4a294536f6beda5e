#pragma once

#include <QObject>

class QWidget;

namespace app {

class HelpRouter;

/**
 * F1 anywhere in the program: finds the help context of the window or region in use and sends it
 * to the help router as a context request, which opens the manual at that topic. A widget's
 * context is its own (`setContext`), else that of its class in the table of the windows, else
 * that of its parent; the main window's is the first topic.
 */
class ContextHelp : public QObject
{
    Q_OBJECT
public:
    /** Filters the application's keys; `router` must outlive this object. */
    explicit ContextHelp(HelpRouter& router, QObject* parent = nullptr);
    ~ContextHelp() override;

    /** Gives a widget (a panel, a dialog) a context number of its own. */
    static void setContext(QWidget* widget, unsigned context);
    /** The context of `widget` as F1 finds it; 0 when neither it nor a parent has one. */
    static unsigned contextOf(const QWidget* widget);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    HelpRouter& m_router;
};

} // namespace app
