#include "app/MessageBoxes.h"

#include <QApplication>

namespace app {

namespace {

MessageBoxes::Handler& currentHandler()
{
    static MessageBoxes::Handler handler;
    return handler;
}

QString& captionShown()
{
    static QString caption;
    return caption;
}

/** Keeps the caption of the box being shown for currentCaption(); boxes may nest. */
class CaptionScope
{
public:
    explicit CaptionScope(const QString& caption) : m_previous(captionShown())
    {
        captionShown() = caption.isEmpty() ? QApplication::applicationName() : caption;
    }
    ~CaptionScope() { captionShown() = m_previous; }
    CaptionScope(const CaptionScope&) = delete;
    CaptionScope& operator=(const CaptionScope&) = delete;

private:
    QString m_previous;
};

} // namespace

QString MessageBoxes::currentCaption()
{
    return captionShown();
}

QMessageBox::StandardButton MessageBoxes::show(QWidget* parent, const QString& text,
                                               QMessageBox::Icon icon,
                                               QMessageBox::StandardButtons buttons,
                                               const QString& caption)
{
    const CaptionScope scope(caption);
    if (currentHandler())
        return currentHandler()(parent, text, icon, buttons);
    QMessageBox box(icon, captionShown(), text, buttons, parent);
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
