#include "app/CMachineChooserDialog.h"

#include "app/MachineDatabaseModel.h"
#include "app/MachineListModel.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

CMachineChooserDialog::CMachineChooserDialog(const QString& title,
                                             const std::vector<song::MachineDatabaseEntry>& entries,
                                             std::vector<std::size_t> candidates, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("machineChooserDialog"));
    setWindowTitle(title);
    setAccessibleName(title);

    m_kind = new QComboBox(this);
    m_kind->setObjectName(QStringLiteral("machineKind"));
    m_kind->setAccessibleName(tr("Kind of machine"));
    // The filter values of the settings file, All first.
    m_kind->addItem(tr("All"), MachineListModel::All);
    m_kind->addItem(tr("Generators"), MachineListModel::Generators);
    m_kind->addItem(tr("Synths"), MachineListModel::Synths);
    m_kind->addItem(tr("Samplers"), MachineListModel::Samplers);
    m_kind->addItem(tr("Effects"), MachineListModel::Effects);

    m_search = new QLineEdit(this);
    m_search->setObjectName(QStringLiteral("machineSearch"));
    m_search->setAccessibleName(tr("Search machines"));
    m_search->setPlaceholderText(tr("Part of the name"));
    m_search->setClearButtonEnabled(true);

    m_model = new MachineDatabaseModel(entries, std::move(candidates), this);
    m_list = new QListView(this);
    m_list->setObjectName(QStringLiteral("machineChoices"));
    m_list->setAccessibleName(tr("Machines of the machine database"));
    m_list->setModel(m_model);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setMinimumSize(360, 260);

    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_buttons->setObjectName(QStringLiteral("buttons"));
    m_buttons->setAccessibleName(tr("Choose or cancel"));

    auto* form = new QFormLayout;
    form->addRow(tr("&Kind:"), m_kind);
    form->addRow(tr("&Search:"), m_search);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_buttons);

    connect(m_kind, &QComboBox::currentIndexChanged, this, [this] { updateList(); });
    connect(m_search, &QLineEdit::textChanged, this, [this] { updateList(); });
    connect(m_list, &QAbstractItemView::doubleClicked, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    updateList();
    m_search->setFocus();
}

void CMachineChooserDialog::setKindFilter(std::uint8_t filter)
{
    const int found = m_kind->findData(filter);
    m_kind->setCurrentIndex(found < 0 ? 0 : found);
}

void CMachineChooserDialog::updateList()
{
    m_model->setFilter(static_cast<std::uint8_t>(m_kind->currentData().toInt()), m_search->text());
    if (m_model->rowCount() > 0)
        m_list->setCurrentIndex(m_model->index(0, 0));
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(m_model->rowCount() > 0);
}

std::optional<std::size_t> CMachineChooserDialog::chosen() const
{
    const QModelIndex current = m_list->currentIndex();
    if (!current.isValid() || !m_list->selectionModel()->isSelected(current))
        return std::nullopt;
    return m_model->entryAt(current.row());
}

} // namespace app
