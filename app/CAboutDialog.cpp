#include "app/CAboutDialog.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QListWidget>
#include <QVBoxLayout>

namespace app {

QStringList CAboutDialog::lines()
{
    return {
        QStringLiteral("         Tonalmancer v0.7"),
        QString(),
        QStringLiteral("Questions and bug reports: the project's issue tracker"),
        QStringLiteral("Thanks to everyone who makes music with the Buzz tracker"),
        QStringLiteral("---------------------------------------------------------"),
        QStringLiteral("use this program on your own risk"),
        QString(),
    };
}

CAboutDialog::CAboutDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("About Tonalmancer"));
    m_list = new QListWidget(this);
    // A fixed-pitch font keeps the leading blanks and the dash line as they were laid out.
    m_list->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_list->addItems(lines());
    m_list->setSelectionMode(QAbstractItemView::NoSelection);
    m_list->setFocusPolicy(Qt::NoFocus);
    const int width = m_list->sizeHintForColumn(0) + 2 * m_list->frameWidth() + 24;
    const int height = m_list->sizeHintForRow(0) * (m_list->count() + 1) + 2 * m_list->frameWidth();
    m_list->setMinimumSize(width, height);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addWidget(buttons);
}

} // namespace app
