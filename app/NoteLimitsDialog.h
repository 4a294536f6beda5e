#pragma once

#include "app/ChordTransformDialog.h"

namespace app {

class NoteSpinBox;

/**
 * "Note Limits": the lowest and the highest note the chords may use; notes outside move by
 * whole octaves into the range, so no pitch class changes. The range spans at least an octave.
 */
class NoteLimitsDialog : public ChordTransformDialog
{
    Q_OBJECT
public:
    NoteLimitsDialog(const part::Part& part, part::ChordSelection chords,
                     QWidget* parent = nullptr);

    /** Stored note values 0..119 (octave over the base octave * 12 + pitch class). */
    int low() const;
    int high() const;
    NoteSpinBox* lowBox() const { return m_low; }
    NoteSpinBox* highBox() const { return m_high; }

    void accept() override;

protected:
    part::ChordEdit transformed() const override;
    QString invalidReason() const override;

private:
    NoteSpinBox* m_low = nullptr;
    NoteSpinBox* m_high = nullptr;
};

} // namespace app
