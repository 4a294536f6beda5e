#include "app/CScaleDialog.h"

#include "app/NoteNames.h"
#include "music/ChordDatabaseEdits.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

CScaleDialog::CScaleDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(QStringLiteral("Add Scale"));
    m_name = new QLineEdit(QStringLiteral("noname"), this);
    m_name->selectAll();
    m_pattern = new QLineEdit(QStringLiteral("oooooooooooo"), this);
    m_pattern->setToolTip(QString::fromLatin1(kPatternTip));
    m_pattern->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    auto* sample = new QGroupBox(tr("Sample scale"), this);
    sample->setToolTip(QString::fromLatin1(kLearnTip));
    m_base = new QComboBox(sample);
    NoteNames::fill(m_base);
    m_keyboard = new CNoteKeyboard(sample);
    auto* learnButton = new QPushButton(tr("&Learn"), sample);
    learnButton->setToolTip(QString::fromLatin1(kLearnTip));
    connect(learnButton, &QPushButton::clicked, this, &CScaleDialog::learn);
    auto* sampleForm = new QFormLayout(sample);
    sampleForm->addRow(tr("&Base note:"), m_base);
    sampleForm->addRow(tr("N&otes:"), m_keyboard);
    sampleForm->addRow(QString(), learnButton);

    m_keepDefault = new QCheckBox(tr("&Keep the default list up to date"), this);
    m_keepDefault->setToolTip(tr("Save the whole list as the default list after adding."));

    auto* form = new QFormLayout;
    form->addRow(tr("&Name:"), m_name);
    form->addRow(tr("&Pattern:"), m_pattern);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(sample);
    layout->addWidget(m_keepDefault);
    layout->addWidget(buttons);
}

QString CScaleDialog::name() const
{
    return m_name->text();
}

QString CScaleDialog::pattern() const
{
    return m_pattern->text();
}

void CScaleDialog::setName(const QString& name)
{
    m_name->setText(name);
}

void CScaleDialog::setPattern(const QString& pattern)
{
    m_pattern->setText(pattern);
}

bool CScaleDialog::keepDefaultCurrent() const
{
    return m_keepDefault->isChecked();
}

void CScaleDialog::setKeepDefaultCurrent(bool on)
{
    m_keepDefault->setChecked(on);
}

void CScaleDialog::learn()
{
    m_pattern->setText(QString::fromStdString(music::ChordDatabaseEdits::scalePatternFromTicks(
        m_keyboard->ticks(), static_cast<music::PitchClass>(m_base->currentIndex()))));
}

} // namespace app
