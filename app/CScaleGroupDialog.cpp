#include "app/CScaleGroupDialog.h"

#include "app/NoteNames.h"
#include "music/ScaleList.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace app {

CScaleGroupDialog::CScaleGroupDialog(const QString& title, const music::ScaleList& scales,
                                     QWidget* parent)
    : QDialog(parent), m_scales(scales)
{
    setWindowTitle(title);
    m_name = new QLineEdit(QStringLiteral("noname"), this);
    m_name->selectAll();
    m_base = new QComboBox(this);
    NoteNames::fill(m_base);
    m_base->setToolTip(tr("The note the group's notes are counted from."));
    m_scale = new QComboBox(this);
    m_scale->addItem(tr("(tick the notes yourself)"));
    for (const music::ScaleType& scale : scales.scales())
        m_scale->addItem(QString::fromStdString(scale.name()));
    m_scale->setToolTip(tr("Tick the notes of a scale on the base note."));
    m_keyboard = new CNoteKeyboard(this);
    m_flag = new QCheckBox(tr("&Keep to these notes"), this);
    m_flag->setChecked(true);

    auto* form = new QFormLayout;
    form->addRow(tr("&Name:"), m_name);
    form->addRow(tr("&Base note:"), m_base);
    form->addRow(tr("&Scale:"), m_scale);
    form->addRow(tr("N&otes:"), m_keyboard);
    form->addRow(QString(), m_flag);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);

    connect(m_scale, &QComboBox::currentIndexChanged, this, &CScaleGroupDialog::applyScale);
    connect(m_base, &QComboBox::currentIndexChanged, this, &CScaleGroupDialog::applyScale);
    connect(m_flag, &QCheckBox::toggled, this, &CScaleGroupDialog::updateFlagTip);
    updateFlagTip();
}

QString CScaleGroupDialog::name() const
{
    return m_name->text();
}

void CScaleGroupDialog::setName(const QString& name)
{
    m_name->setText(name);
    m_name->selectAll();
}

int CScaleGroupDialog::baseNote() const
{
    return m_base->currentIndex();
}

void CScaleGroupDialog::setBaseNote(int pitchClass)
{
    m_base->setCurrentIndex(pitchClass);
}

bool CScaleGroupDialog::scaleFlag() const
{
    return m_flag->isChecked();
}

void CScaleGroupDialog::setScaleFlag(bool on)
{
    m_flag->setChecked(on);
}

void CScaleGroupDialog::applyScale()
{
    const int scale = m_scale->currentIndex() - 1;
    if (scale < 0 || scale >= static_cast<int>(m_scales.scales().size()))
        return;
    const auto& type = m_scales.at(static_cast<std::size_t>(scale));
    m_keyboard->setTicks(type.ticksFrom(static_cast<music::PitchClass>(baseNote())));
    if (m_name->text() == QStringLiteral("noname") || m_name->text().isEmpty() ||
        m_name->property("generated").toBool()) {
        m_name->setText(NoteNames::name(baseNote()) + QLatin1Char(' ') +
                        QString::fromStdString(type.name()));
        m_name->setProperty("generated", true);
    }
}

void CScaleGroupDialog::updateFlagTip()
{
    m_flag->setToolTip(QString::fromLatin1(m_flag->isChecked() ? kUseScaleTip : kNoScaleTip));
}

} // namespace app
