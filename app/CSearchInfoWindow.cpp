#include "app/CSearchInfoWindow.h"

#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

namespace app {

CSearchInfoWindow::CSearchInfoWindow(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Search Info"));
    m_list = new QListWidget(this);
    m_list->setToolTip(QString::fromLatin1(kListTip));
    auto* heading = new QLabel(tr("Scale &groups that match the last search:"), this);
    heading->setBuddy(m_list);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(m_list);
    resize(320, 400);
    connect(m_list, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { Q_EMIT hitActivated(m_list->row(item)); });
    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0)
            Q_EMIT hitActivated(row);
    });
}

void CSearchInfoWindow::setResults(const QStringList& names)
{
    const QSignalBlocker blocker(m_list);
    m_list->clear();
    m_list->addItems(names);
}

QStringList CSearchInfoWindow::results() const
{
    QStringList names;
    for (int row = 0; row < m_list->count(); ++row)
        names << m_list->item(row)->text();
    return names;
}

} // namespace app
