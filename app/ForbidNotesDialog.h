#pragma once

#include "part/PitchClassFlags.h"

#include <QDialog>

namespace app {

class CNoteKeyboard;

/**
 * "Forbid Notes": the part's twelve pitch-class flags on a one-octave keyboard. A ticked key is
 * a forbidden note: a chord note shifted up or down in a pattern never lands on it.
 */
class ForbidNotesDialog : public QDialog
{
    Q_OBJECT
public:
    explicit ForbidNotesDialog(QWidget* parent = nullptr);

    void setFlags(const part::PitchClassFlags& flags);
    /** The flags as entered; an allowed note keeps the value it had when it was allowed. */
    part::PitchClassFlags flags() const;

    CNoteKeyboard* keyboard() const { return m_keyboard; }

private:
    CNoteKeyboard* m_keyboard = nullptr;
    part::PitchClassFlags m_original = part::kAllPitchClassesAllowed;
};

} // namespace app
