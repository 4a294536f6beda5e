#include "app/AddPresetDialog.h"

#include "part/PartPreset.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

AddPresetDialog::AddPresetDialog(const QString& what, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("addPresetDialog"));
    setWindowTitle(QString::fromLatin1(kTitle));
    setAccessibleName(windowTitle());
    auto* prompt = new QLabel(what, this);
    prompt->setObjectName(QStringLiteral("addPresetWhat"));
    prompt->setWordWrap(true);
    prompt->setVisible(!what.isEmpty());
    m_name = new QLineEdit(QString::fromLatin1(part::PartPreset::kDefaultName), this);
    m_name->setObjectName(QStringLiteral("addPresetName"));
    m_name->setAccessibleName(tr("Preset name"));
    m_name->selectAll();

    auto* form = new QFormLayout;
    form->addRow(tr("&Name:"), m_name);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("addPresetButtons"));
    m_ok = buttons->button(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    // A preset without a name could not be told apart in the list.
    connect(m_name, &QLineEdit::textChanged, this,
            [this](const QString& text) { m_ok->setEnabled(!text.trimmed().isEmpty()); });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(prompt);
    layout->addLayout(form);
    layout->addWidget(buttons);
    setMinimumWidth(fontMetrics().averageCharWidth() * 45); // room for a descriptive name
}

QString AddPresetDialog::name() const
{
    return m_name->text();
}

} // namespace app
