#pragma once

#include "app/ChordTransformDialog.h"

class QComboBox;

namespace app {

/**
 * "Mirror": the chords' intervals turned upside down around an axis, a note or the point
 * between a note and the next one ("between D# and E" turns C major into C minor).
 */
class MirrorDialog : public ChordTransformDialog
{
    Q_OBJECT
public:
    MirrorDialog(const part::Part& part, part::ChordSelection chords, QWidget* parent = nullptr);

    part::MirrorAxis axis() const;
    void setAxis(part::MirrorAxis axis);
    /** 24 axes: "C", "between C and C#", "C#", ...; item data is pitch class * 2 (+1). */
    QComboBox* axisBox() const { return m_axis; }

    void accept() override;

protected:
    part::ChordEdit transformed() const override;

private:
    QComboBox* m_axis = nullptr;
};

} // namespace app
