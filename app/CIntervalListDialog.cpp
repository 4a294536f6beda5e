#include "app/CIntervalListDialog.h"

#include "app/ActionFactory.h"
#include "music/IntervalTable.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace app {

CIntervalListDialog::CIntervalListDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Intervals"));
    m_list = new QTreeWidget(this);
    m_list->setRootIsDecorated(false);
    m_list->setHeaderLabels(
        {QStringLiteral("HS"), QStringLiteral("Symbol"), QStringLiteral("Name")});
    m_list->setToolTip(QString::fromLatin1(kTip));
    for (int semitones = 0; semitones < music::IntervalTable::kRowCount; ++semitones) {
        auto* item = new QTreeWidgetItem(m_list);
        item->setText(0, QString::number(semitones));
        item->setTextAlignment(0, Qt::AlignRight | Qt::AlignVCenter);
        item->setText(1, ActionFactory::toQString(music::IntervalTable::symbol(semitones)));
        item->setText(2, ActionFactory::toQString(music::IntervalTable::name(semitones)));
    }
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_list->header()->setStretchLastSection(true);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addWidget(buttons);
    resize(340, 520);
}

} // namespace app
