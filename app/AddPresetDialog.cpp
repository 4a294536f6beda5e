#include "app/AddPresetDialog.h"

#include "part/PartPreset.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

AddPresetDialog::AddPresetDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Add Preset"));
    setObjectName(QStringLiteral("addPresetDialog"));
    setAccessibleName(tr("Add preset"));
    m_name = new QLineEdit(QString::fromLatin1(part::PartPreset::kDefaultName), this);
    m_name->setObjectName(QStringLiteral("presetName"));
    m_name->setAccessibleName(tr("Preset name"));
    m_name->selectAll();
    auto* form = new QFormLayout;
    form->addRow(tr("&Name:"), m_name);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    // A preset without a name could not be told apart in the list.
    connect(m_name, &QLineEdit::textChanged, buttons, [buttons](const QString& text) {
        buttons->button(QDialogButtonBox::Ok)->setEnabled(!text.trimmed().isEmpty());
    });
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

QString AddPresetDialog::name() const
{
    return m_name->text();
}

} // namespace app
