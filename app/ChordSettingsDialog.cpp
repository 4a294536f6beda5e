#include "app/ChordSettingsDialog.h"

#include "app/CNoteKeyboard.h"
#include "app/NoteNames.h"
#include "app/PartSession.h"
#include "music/Note.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace app {

namespace {

constexpr int kHighestOctave = 9; // note values stay below 120

} // namespace

ChordSettingsDialog::ChordSettingsDialog(const QStringList& patterns, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Chord Settings"));
    setObjectName(QStringLiteral("chordSettingsDialog"));
    setAccessibleName(tr("Chord settings"));

    m_name = new QLineEdit(this);
    m_name->setObjectName(QStringLiteral("chordName"));
    m_name->setAccessibleName(tr("Chord name"));
    m_keyboard = new CNoteKeyboard(this);
    m_keyboard->setObjectName(QStringLiteral("chordNotes"));
    m_keyboard->setAccessibleName(tr("Chord notes"));
    m_keyboard->setToolTip(tr("Tick the notes of the chord; each gets its octave below."));

    auto* notes = new QGridLayout;
    for (int i = 0; i < part::PartChord::kMaxNotes; ++i) {
        const auto s = static_cast<std::size_t>(i);
        m_noteLabels[s] = new QLabel(this);
        m_octaves[s] = new QSpinBox(this);
        m_octaves[s]->setObjectName(QStringLiteral("octave%1").arg(i + 1));
        m_octaves[s]->setRange(0, kHighestOctave);
        m_octaves[s]->setPrefix(tr("octave "));
        m_octaves[s]->setAccessibleName(tr("Octave of note %1").arg(i + 1));
        m_noteLabels[s]->setBuddy(m_octaves[s]);
        notes->addWidget(m_noteLabels[s], i, 0);
        notes->addWidget(m_octaves[s], i, 1);
        connect(m_octaves[s], &QSpinBox::valueChanged, this, [this, s](int octave) {
            if (!m_updating && s < m_notes.size())
                m_notes[s].octave = octave;
        });
    }
    m_hint = new QLabel(this);
    m_hint->setObjectName(QStringLiteral("chordNotesHint"));
    m_hint->setWordWrap(true);

    m_pattern = new QComboBox(this);
    m_pattern->setObjectName(QStringLiteral("chordPattern"));
    m_pattern->setAccessibleName(tr("Pattern"));
    for (qsizetype i = 0; i < patterns.size(); ++i)
        m_pattern->addItem(patterns[i], static_cast<int>(i));
    m_length = new QSpinBox(this);
    m_length->setObjectName(QStringLiteral("chordLength"));
    m_length->setAccessibleName(tr("Length in rows"));
    m_length->setRange(1, PartSession::kMaxLength);
    m_length->setSuffix(tr(" rows"));

    auto* form = new QFormLayout;
    form->addRow(tr("&Name:"), m_name);
    form->addRow(tr("N&otes:"), m_keyboard);
    form->addRow(QString(), notes);
    form->addRow(QString(), m_hint);
    form->addRow(tr("&Pattern:"), m_pattern);
    form->addRow(tr("&Length:"), m_length);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    connect(m_keyboard, &CNoteKeyboard::ticksChanged, this, [this] { takeTicks(); });
    setChord({});
}

void ChordSettingsDialog::setChord(const part::PartChord& chord)
{
    m_name->setText(QString::fromStdString(chord.name));
    m_name->selectAll();
    m_notes.clear();
    for (int i = 0; i < chord.noteCount && i < part::PartChord::kMaxNotes; ++i) {
        const int value = chord.notes[static_cast<std::size_t>(i)];
        m_notes.push_back(
            {music::pitchClassOf(value), std::min(music::octaveOf(value), kHighestOctave)});
    }
    int row = m_pattern->findData(static_cast<int>(chord.pattern));
    if (row < 0) {
        // A chord of a damaged file may point past the patterns; keep its value selectable.
        m_pattern->addItem(tr("%1: (missing)").arg(chord.pattern), static_cast<int>(chord.pattern));
        row = m_pattern->count() - 1;
    }
    m_pattern->setCurrentIndex(row);
    m_length->setValue(chord.length);
    m_hint->clear();
    showNotes();
}

part::PartChord ChordSettingsDialog::chord() const
{
    part::PartChord chord;
    chord.name = m_name->text().toStdString();
    for (const Note& note : m_notes) {
        chord.notes[chord.noteCount++] =
            static_cast<music::NoteValue>(music::noteValue(note.octave, note.pitchClass));
    }
    chord.pattern = static_cast<std::uint16_t>(m_pattern->currentData().toInt());
    chord.length = static_cast<std::uint8_t>(m_length->value());
    return chord;
}

void ChordSettingsDialog::takeTicks()
{
    if (m_updating)
        return;
    const CNoteKeyboard::Ticks& ticks = m_keyboard->ticks();
    std::erase_if(m_notes, [&ticks](const Note& n) {
        return !ticks[static_cast<std::size_t>(n.pitchClass)];
    });
    m_hint->clear();
    for (int pc = 0; pc < CNoteKeyboard::kKeys; ++pc) {
        const bool present = std::any_of(m_notes.begin(), m_notes.end(),
                                         [pc](const Note& n) { return n.pitchClass == pc; });
        if (!ticks[static_cast<std::size_t>(pc)] || present)
            continue;
        if (m_notes.size() >= static_cast<std::size_t>(part::PartChord::kMaxNotes)) {
            m_hint->setText(tr("A chord holds at most %1 notes.").arg(part::PartChord::kMaxNotes));
            continue;
        }
        // Stacked above the last note, as chords are built.
        int octave = 4;
        if (!m_notes.empty()) {
            const Note& last = m_notes.back();
            octave = std::min(last.octave + (pc < last.pitchClass ? 1 : 0), kHighestOctave);
        }
        m_notes.push_back({pc, octave});
    }
    showNotes();
}

void ChordSettingsDialog::showNotes()
{
    m_updating = true;
    CNoteKeyboard::Ticks ticks{};
    for (const Note& note : m_notes)
        ticks[static_cast<std::size_t>(note.pitchClass)] = true;
    m_keyboard->setTicks(ticks); // drops a tick refused for an eighth note
    for (std::size_t i = 0; i < m_octaves.size(); ++i) {
        const bool used = i < m_notes.size();
        m_noteLabels[i]->setVisible(used);
        m_octaves[i]->setVisible(used);
        if (!used)
            continue;
        const QString name = NoteNames::name(m_notes[i].pitchClass);
        m_noteLabels[i]->setText(tr("Note &%1: %2").arg(i + 1).arg(name));
        m_octaves[i]->setAccessibleName(tr("Octave of note %1, %2").arg(i + 1).arg(name));
        m_octaves[i]->setValue(m_notes[i].octave);
    }
    m_updating = false;
}

} // namespace app
