#pragma once

#include "part/PartChord.h"

#include <QDialog>
#include <QStringList>

#include <array>
#include <vector>

class QComboBox;
class QLabel;
class QLineEdit;
class QSpinBox;

namespace app {

class CNoteKeyboard;

/**
 * "Chord Settings" of a part chord: its name, its notes as keys of a one-octave keyboard with
 * an octave for each, its pattern and its length (1..64 rows).
 *
 * Pattern cells address a chord's notes by position, so the notes keep their order: a key
 * ticked is added after the others (in the octave that puts it above the last note), a key
 * unticked takes its notes out, and a new octave moves a note without moving its place. A
 * pitch class the chord holds twice stays twice until its key is unticked.
 */
class ChordSettingsDialog : public QDialog
{
    Q_OBJECT
public:
    /** `patterns` lists the part's patterns as the pattern column shows them, by index. */
    explicit ChordSettingsDialog(const QStringList& patterns, QWidget* parent = nullptr);

    void setChord(const part::PartChord& chord);
    /** The chord as entered. */
    part::PartChord chord() const;

    QLineEdit* nameEdit() const { return m_name; }
    CNoteKeyboard* keyboard() const { return m_keyboard; }
    /** The octave of the chord's note `index` (0..6); hidden when the chord has fewer notes. */
    QSpinBox* octaveBox(int index) const { return m_octaves.at(static_cast<std::size_t>(index)); }
    QComboBox* patternBox() const { return m_pattern; }
    QSpinBox* lengthBox() const { return m_length; }

private:
    struct Note
    {
        int pitchClass = 0;
        int octave = 0;
    };

    void takeTicks();
    void showNotes();

    QLineEdit* m_name = nullptr;
    CNoteKeyboard* m_keyboard = nullptr;
    std::array<QLabel*, part::PartChord::kMaxNotes> m_noteLabels{};
    std::array<QSpinBox*, part::PartChord::kMaxNotes> m_octaves{};
    QLabel* m_hint = nullptr;
    QComboBox* m_pattern = nullptr;
    QSpinBox* m_length = nullptr;
    std::vector<Note> m_notes; // in chord order
    bool m_updating = false;
};

} // namespace app
