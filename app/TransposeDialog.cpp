#include "app/TransposeDialog.h"

#include <QFormLayout>
#include <QSettings>
#include <QSpinBox>

namespace app {

namespace {

const QString kLastKey = QStringLiteral("transforms/transposeHalfNotes");

} // namespace

TransposeDialog::TransposeDialog(const part::Part& part, part::ChordSelection chords,
                                 QWidget* parent)
    : ChordTransformDialog(tr("Transpose"), part, std::move(chords), parent)
{
    setObjectName(QStringLiteral("transposeDialog"));
    setAccessibleName(tr("Transpose"));
    m_halfNotes = new QSpinBox(this);
    m_halfNotes->setObjectName(QStringLiteral("transposeHalfNotes"));
    m_halfNotes->setAccessibleName(tr("Half-notes"));
    m_halfNotes->setRange(-part::kHighestNote, part::kHighestNote);
    m_halfNotes->setSuffix(tr(" half-notes"));
    m_halfNotes->setToolTip(tr("Up by this many half-notes; a negative number moves down. "
                               "12 is an octave."));
    m_halfNotes->setValue(QSettings().value(kLastKey, 2).toInt());
    form()->addRow(tr("&Move by:"), m_halfNotes);
    connect(m_halfNotes, &QSpinBox::valueChanged, this, [this] { refresh(); });
    m_halfNotes->selectAll();
    refresh();
}

int TransposeDialog::halfNotes() const
{
    return m_halfNotes->value();
}

void TransposeDialog::accept()
{
    QSettings().setValue(kLastKey, halfNotes());
    ChordTransformDialog::accept();
}

part::ChordEdit TransposeDialog::transformed() const
{
    return part::transposeChords(part(), chords(), halfNotes());
}

QString TransposeDialog::invalidReason() const
{
    return halfNotes() == 0 ? tr("Choose how many half-notes to move.") : QString();
}

} // namespace app
