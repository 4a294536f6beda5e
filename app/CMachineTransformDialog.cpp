#include "app/CMachineTransformDialog.h"

#include "app/NoteNames.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

namespace app {

namespace {

// The values of the last accepted dialog, offered again (per run).
int g_lastHalfNotes = 12;
music::NoteValue g_lastCentre = music::noteValue(4, 0); // C-4

} // namespace

CMachineTransformDialog::CMachineTransformDialog(Mode mode, QWidget* parent)
    : QDialog(parent), m_mode(mode)
{
    setObjectName(QStringLiteral("machineTransformDialog"));
    const QString title = mode == Transpose ? tr("Transpose") : tr("Invert");
    setWindowTitle(title);
    setAccessibleName(title);

    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    layout->addLayout(form);
    if (mode == Transpose) {
        m_halfNotes = new QSpinBox(this);
        m_halfNotes->setObjectName(QStringLiteral("halfNotes"));
        m_halfNotes->setAccessibleName(tr("Half-notes"));
        m_halfNotes->setRange(-music::kPitchClassCount * 10 + 1, music::kPitchClassCount * 10 - 1);
        m_halfNotes->setValue(g_lastHalfNotes);
        m_halfNotes->setToolTip(tr("Half-notes to move the notes by; negative moves them down."));
        form->addRow(tr("&Half-notes:"), m_halfNotes);
    } else {
        m_note = new QComboBox(this);
        m_note->setObjectName(QStringLiteral("axisNote"));
        m_note->setAccessibleName(tr("Axis note"));
        NoteNames::fill(m_note);
        m_note->setCurrentIndex(g_lastCentre % music::kPitchClassCount);
        m_octave = new QSpinBox(this);
        m_octave->setObjectName(QStringLiteral("axisOctave"));
        m_octave->setAccessibleName(tr("Axis octave"));
        m_octave->setRange(0, 9);
        m_octave->setValue(g_lastCentre / music::kPitchClassCount);
        auto* row = new QHBoxLayout;
        row->addWidget(m_note);
        row->addWidget(m_octave);
        form->addRow(tr("&Axis note:"), row);
        auto* hint = new QLabel(tr("Each note is mirrored around the axis: a note a third above "
                                   "it lands a third below."),
                                this);
        hint->setObjectName(QStringLiteral("axisHint"));
        hint->setAccessibleName(tr("How the notes are mirrored"));
        hint->setWordWrap(true);
        layout->addWidget(hint);
    }
    auto* notice = new QLabel(tr("Notes that would leave the tracker's range C-0 to B-9 stay as "
                                 "they are and are listed afterwards."),
                              this);
    notice->setObjectName(QStringLiteral("rangeNotice"));
    notice->setAccessibleName(tr("Notes out of range"));
    notice->setWordWrap(true);
    layout->addWidget(notice);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("buttons"));
    buttons->setAccessibleName(tr("Apply or cancel"));
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

int CMachineTransformDialog::halfNotes() const
{
    return m_halfNotes != nullptr ? m_halfNotes->value() : 0;
}

music::NoteValue CMachineTransformDialog::centre() const
{
    if (m_note == nullptr)
        return g_lastCentre;
    return music::noteValue(m_octave->value(), m_note->currentIndex());
}

void CMachineTransformDialog::accept()
{
    if (m_mode == Transpose)
        g_lastHalfNotes = halfNotes();
    else
        g_lastCentre = centre();
    QDialog::accept();
}

} // namespace app
