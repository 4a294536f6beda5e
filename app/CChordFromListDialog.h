#pragma once

#include "music/Chord.h"

#include <QDialog>

class QComboBox;
class QSpinBox;

namespace music {
class ChordTypeList;
}

namespace app {

/** "From List": a chord made from a chord type on a base note, in a chosen octave. */
class CChordFromListDialog : public QDialog
{
    Q_OBJECT
public:
    CChordFromListDialog(const music::ChordTypeList& types, QWidget* parent = nullptr);

    /** The chord, or an unnamed empty chord when the type is not valid. */
    music::Chord chord() const;

    QComboBox* typeBox() const { return m_type; }
    QComboBox* baseBox() const { return m_base; }
    QSpinBox* octaveBox() const { return m_octave; }

private:
    const music::ChordTypeList& m_types;
    QComboBox* m_type = nullptr;
    QComboBox* m_base = nullptr;
    QSpinBox* m_octave = nullptr;
};

} // namespace app
