#pragma once

#include <QMessageBox>
#include <QString>

#include <functional>

namespace app {

/**
 * Every message box of the program goes through `show`, so that tests can replace the modal box
 * by a recorder (`setHandler`) and see exactly what the user would have been told.
 */
class MessageBoxes
{
public:
    /** Receives the text, the icon and the buttons; returns the button "pressed". */
    using Handler = std::function<QMessageBox::StandardButton(
        QWidget* parent, const QString& text, QMessageBox::Icon icon,
        QMessageBox::StandardButtons buttons)>;

    /** `caption` titles the box; empty gives the program's name. */
    static QMessageBox::StandardButton show(QWidget* parent, const QString& text,
                                            QMessageBox::Icon icon = QMessageBox::Critical,
                                            QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                            const QString& caption = QString());
    /** The caption of the box being shown, for handlers; the program's name when none was given. */
    static QString currentCaption();

    static void error(QWidget* parent, const QString& text)
    {
        show(parent, text, QMessageBox::Critical);
    }
    static bool askYesNo(QWidget* parent, const QString& text, const QString& caption = QString())
    {
        return show(parent, text, QMessageBox::Question, QMessageBox::Yes | QMessageBox::No,
                    caption) == QMessageBox::Yes;
    }

    /** Replaces the modal box; an empty handler restores it. */
    static void setHandler(Handler handler);
};

} // namespace app
