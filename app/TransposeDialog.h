#pragma once

#include "app/ChordTransformDialog.h"

class QSpinBox;

namespace app {

/** "Transpose": a number of half-notes, up or down; chord names follow ("Am7" +2 is "Bm7"). */
class TransposeDialog : public ChordTransformDialog
{
    Q_OBJECT
public:
    TransposeDialog(const part::Part& part, part::ChordSelection chords, QWidget* parent = nullptr);

    /** Half-notes, -119..119; negative moves down. */
    int halfNotes() const;
    QSpinBox* halfNotesBox() const { return m_halfNotes; }

    void accept() override;

protected:
    part::ChordEdit transformed() const override;
    QString invalidReason() const override;

private:
    QSpinBox* m_halfNotes = nullptr;
};

} // namespace app
