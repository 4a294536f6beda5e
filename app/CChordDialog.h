#pragma once

#include "music/Chord.h"

#include <QDialog>

#include <array>

class QComboBox;
class QLineEdit;
class QSpinBox;

namespace app {

/** A chord given by its name and up to five notes with octaves ("By Notes", chord settings). */
class CChordDialog : public QDialog
{
    Q_OBJECT
public:
    explicit CChordDialog(const QString& title, QWidget* parent = nullptr);

    void setChord(const music::Chord& chord);
    /** The chord as entered; empty slots ("x") are packed to the back. */
    music::Chord chord() const;

    QLineEdit* nameEdit() const { return m_name; }
    QComboBox* noteBox(int slot) const { return m_notes.at(static_cast<std::size_t>(slot)); }
    QSpinBox* octaveBox(int slot) const { return m_octaves.at(static_cast<std::size_t>(slot)); }

private:
    QLineEdit* m_name = nullptr;
    std::array<QComboBox*, music::Chord::kSlotCount> m_notes{};
    std::array<QSpinBox*, music::Chord::kSlotCount> m_octaves{};
};

} // namespace app
