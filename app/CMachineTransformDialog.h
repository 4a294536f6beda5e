#pragma once

#include "music/Note.h"

#include <QDialog>

class QComboBox;
class QSpinBox;

namespace app {

/**
 * Asks how to transform the notes of machines' patterns: Transpose by a number of half-notes
 * (-119..119), or Invert (mirror) around an axis note. The values of the last use in this run
 * come back as the starting values.
 */
class CMachineTransformDialog : public QDialog
{
    Q_OBJECT
public:
    enum Mode
    {
        Transpose,
        Invert
    };

    explicit CMachineTransformDialog(Mode mode, QWidget* parent = nullptr);

    /** Half-notes to move the notes by (Transpose). */
    int halfNotes() const;
    /** The axis note, octave * 12 + pitch class (Invert). */
    music::NoteValue centre() const;

    QSpinBox* halfNotesBox() const { return m_halfNotes; }
    QComboBox* noteBox() const { return m_note; }
    QSpinBox* octaveBox() const { return m_octave; }

    void accept() override;

private:
    Mode m_mode;
    QSpinBox* m_halfNotes = nullptr;
    QComboBox* m_note = nullptr;
    QSpinBox* m_octave = nullptr;
};

} // namespace app
