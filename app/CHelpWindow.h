#pragma once

#include <QWidget>

class QTextBrowser;
class QUrl;

namespace app {

/**
 * The program's own help window: the HTML manual in a text browser, used when no web browser
 * can be started. Links inside the manual move within it; links to other sites go to the
 * system's browser, if there is one.
 */
class CHelpWindow : public QWidget
{
    Q_OBJECT
public:
    explicit CHelpWindow(QWidget* parent = nullptr);

    /** Shows a page of the manual, scrolled to the url's fragment (a topic anchor) when given. */
    void showPage(const QUrl& url);
    QTextBrowser* browser() const { return m_browser; }

private:
    QTextBrowser* m_browser = nullptr;
};

} // namespace app
