#include "app/CHelpWindow.h"

#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace app {

CHelpWindow::CHelpWindow(QWidget* parent) : QWidget(parent, Qt::Window)
{
    setObjectName(QStringLiteral("helpWindow"));
    setAccessibleName(tr("Tonalmancer help"));
    setWindowTitle(tr("Tonalmancer Help"));
    m_browser = new QTextBrowser(this);
    m_browser->setObjectName(QStringLiteral("helpBrowser"));
    m_browser->setAccessibleName(tr("Manual"));
    m_browser->setOpenExternalLinks(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_browser);
    resize(760, 640);
}

void CHelpWindow::showPage(const QUrl& url)
{
    // The same page is not read again; a fragment scrolls to its anchor, none to the top.
    m_browser->setSource(url);
}

} // namespace app
