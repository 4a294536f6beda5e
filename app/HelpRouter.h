#pragma once

#include <QRect>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>

class QWidget;

namespace app {

class CHelpWindow;

/**
 * The program's help: the HTML manual beside the executable, opened in the user's browser (or in
 * a help window of the program's own when no browser starts), and the classic help requests of
 * the windows routed to it. Requests it cannot serve are answered with fixed messages.
 */
class HelpRouter
{
public:
    /** The help request numbers the windows send. */
    enum Request : unsigned
    {
        kContext = 1,
        kHelpOnHelp = 4,
        kSetIndex = 5,
        kCommand = 258,
        kSetWindowPosition = 515,
    };

    /** A window rectangle in units of 1/1024 of the screen's width and height. */
    struct RelativeRect
    {
        int x = 0;
        int y = 0;
        int dx = 0;
        int dy = 0;
    };

    /** Opens an address in the browser; replaceable so that tests start no browser. */
    using UrlOpener = std::function<bool(const QUrl&)>;

    /** `manualPath` is the manual's index page; empty when the program has no manual. */
    explicit HelpRouter(QString manualPath = {});
    ~HelpRouter();
    HelpRouter(const HelpRouter&) = delete;
    HelpRouter& operator=(const HelpRouter&) = delete;

    /** Finds "docs/index.html" beside the executable or in the installed documentation. */
    static QString findManual(const QString& applicationDir);

    bool isAvailable() const { return !m_manualPath.isEmpty(); }
    const QString& manualPath() const { return m_manualPath; }

    /**
     * Handles one help request. Without a manual nothing happens. Returns the text of the message
     * box that was shown, empty when none was.
     */
    QString request(QWidget* parent, unsigned command, unsigned data, const RelativeRect& rect);
    QString request(QWidget* parent, unsigned command, unsigned data = 0)
    {
        return request(parent, command, data, RelativeRect());
    }

    /** Opens the manual's first page ("Help Topics"). */
    bool openTopics();
    /**
     * The page of a context number: its anchor "topic-N" when the manual has one; a number with
     * bit 15 set is tried without that bit first. Falls back to the first page.
     */
    QUrl topicUrl(unsigned context) const;

    /**
     * Converts a rectangle given in 1/1024 of the screen to pixels:
     * left = width * x / 1024, top = height * y / 1024, and the size likewise from dx and dy.
     */
    static QRect windowRectFromRelative(QSize screen, const RelativeRect& rect);
    /** The rectangle kept from the last window-position request (null before the first). */
    QRect windowRect() const { return m_windowRect; }

    static void setUrlOpener(UrlOpener opener);
    /** The program's own help window; nullptr until a page was shown in it. */
    CHelpWindow* helpWindow() const { return m_window.get(); }

private:
    /** Opens a page in the browser, else in the program's own help window. */
    bool open(const QUrl& url);

    QString m_manualPath;
    QString m_manualText; // for the anchor look-up of context numbers
    QRect m_windowRect;
    std::unique_ptr<CHelpWindow> m_window;
};

} // namespace app
