#include "app/CChordDialog.h"

#include "app/NoteNames.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QVBoxLayout>

namespace app {

CChordDialog::CChordDialog(const QString& title, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(title);
    m_name = new QLineEdit(QStringLiteral("noname"), this);
    m_name->selectAll();
    auto* grid = new QGridLayout;
    auto* nameLabel = new QLabel(tr("&Name:"), this);
    nameLabel->setBuddy(m_name);
    grid->addWidget(nameLabel, 0, 0);
    grid->addWidget(m_name, 0, 1, 1, 2);
    grid->addWidget(new QLabel(tr("Note"), this), 1, 1);
    grid->addWidget(new QLabel(tr("Octave"), this), 1, 2);
    for (int slot = 0; slot < music::Chord::kSlotCount; ++slot) {
        const auto s = static_cast<std::size_t>(slot);
        m_notes[s] = new QComboBox(this);
        m_notes[s]->addItem(QStringLiteral("x"), -1);
        NoteNames::fill(m_notes[s]);
        m_notes[s]->setToolTip(tr("The note of this slot; x leaves it empty."));
        m_octaves[s] = new QSpinBox(this);
        m_octaves[s]->setRange(0, 9);
        m_octaves[s]->setValue(4);
        auto* label = new QLabel(tr("Note &%1:").arg(slot + 1), this);
        label->setBuddy(m_notes[s]);
        grid->addWidget(label, slot + 2, 0);
        grid->addWidget(m_notes[s], slot + 2, 1);
        grid->addWidget(m_octaves[s], slot + 2, 2);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(buttons);
}

void CChordDialog::setChord(const music::Chord& chord)
{
    m_name->setText(QString::fromStdString(chord.name));
    m_name->selectAll();
    for (std::size_t s = 0; s < m_notes.size(); ++s) {
        const int value = chord.slots[s];
        if (music::isEmptyNote(value)) {
            m_notes[s]->setCurrentIndex(0);
            continue;
        }
        m_notes[s]->setCurrentIndex(music::pitchClassOf(value) + 1);
        m_octaves[s]->setValue(music::octaveOf(value));
    }
}

music::Chord CChordDialog::chord() const
{
    std::vector<int> notes;
    for (std::size_t s = 0; s < m_notes.size(); ++s) {
        const int pitchClass = m_notes[s]->currentData().toInt();
        if (pitchClass >= 0)
            notes.push_back(music::noteValue(m_octaves[s]->value(), pitchClass));
    }
    return music::Chord::fromNotes(m_name->text().toStdString(), notes);
}

} // namespace app
