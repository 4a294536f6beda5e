#include "app/CChordFromListDialog.h"

#include "app/NoteNames.h"
#include "music/ChordCollection.h"
#include "music/ChordTypeList.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace app {

CChordFromListDialog::CChordFromListDialog(const music::ChordTypeList& types, QWidget* parent)
    : QDialog(parent), m_types(types)
{
    setWindowTitle(tr("Add Chord From List"));
    m_type = new QComboBox(this);
    for (const music::ChordType& type : types.types()) {
        m_type->addItem(QStringLiteral("%1   (%2)")
                            .arg(QString::fromStdString(type.name()),
                                 QString::fromStdString(type.construction())));
    }
    m_base = new QComboBox(this);
    NoteNames::fill(m_base);
    m_octave = new QSpinBox(this);
    m_octave->setRange(0, 7);
    m_octave->setValue(4);
    m_octave->setToolTip(tr("The octave of the base note."));

    auto* form = new QFormLayout;
    form->addRow(tr("Chord &type:"), m_type);
    form->addRow(tr("&Base note:"), m_base);
    form->addRow(tr("&Octave:"), m_octave);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setEnabled(!types.isEmpty());
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

music::Chord CChordFromListDialog::chord() const
{
    const int index = m_type->currentIndex();
    if (index < 0 || index >= static_cast<int>(m_types.types().size()))
        return {};
    const music::ChordType& type = m_types.at(static_cast<std::size_t>(index));
    const music::IntervalList intervals = type.intervals();
    if (!intervals.isUsable())
        return {};
    music::Chord chord = music::ChordCollection::makeChord(
        type, intervals, static_cast<music::PitchClass>(m_base->currentIndex()));
    // Generated chords start in octave 0; lift them while every note stays below 120.
    const int shift = m_octave->value() * 12;
    for (auto& slot : chord.slots) {
        if (!music::isEmptyNote(slot) && slot + shift < music::kEmptyNote)
            slot = static_cast<music::NoteValue>(slot + shift);
    }
    return chord;
}

} // namespace app
