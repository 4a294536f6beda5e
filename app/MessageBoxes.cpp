#include "app/MessageBoxes.h"

#include <QApplication>

namespace app {

namespace {

MessageBoxes::Handler& currentHandler()
{
    static MessageBoxes::Handler handler;
    return handler;
}

} // namespace

QMessageBox::StandardButton MessageBoxes::show(QWidget* parent, const QString& text,
                                               QMessageBox::Icon icon,
                                               QMessageBox::StandardButtons buttons)
{
    if (currentHandler())
        return currentHandler()(parent, text, icon, buttons);
    QMessageBox box(icon, QApplication::applicationName(), text, buttons, parent);
    // A wait cursor left over from file work would hide that the box waits for the user.
    const bool busy = QApplication::overrideCursor() != nullptr;
    if (busy)
        QApplication::setOverrideCursor(Qt::ArrowCursor);
    const auto answer = static_cast<QMessageBox::StandardButton>(box.exec());
    if (busy)
        QApplication::restoreOverrideCursor();
    return answer;
}

void MessageBoxes::setHandler(Handler handler)
{
    currentHandler() = std::move(handler);
}

} // namespace app
