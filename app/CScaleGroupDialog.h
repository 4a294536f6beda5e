#pragma once

#include "app/CNoteKeyboard.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace music {
class ScaleList;
}

namespace app {

/**
 * "Add Scale/Group" and the settings of a scale group: a name, a base note, the ticked notes
 * (optionally taken from a scale type) and whether the group keeps to its notes.
 */
class CScaleGroupDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kUseScaleTip = "Use scale notes.";
    static constexpr const char* kNoScaleTip = "Do not use scale notes.";

    CScaleGroupDialog(const QString& title, const music::ScaleList& scales,
                      QWidget* parent = nullptr);

    QString name() const;
    void setName(const QString& name);
    int baseNote() const;
    void setBaseNote(int pitchClass);
    CNoteKeyboard::Ticks ticks() const { return m_keyboard->ticks(); }
    void setTicks(const CNoteKeyboard::Ticks& ticks) { m_keyboard->setTicks(ticks); }
    bool scaleFlag() const;
    void setScaleFlag(bool on);

    QLineEdit* nameEdit() const { return m_name; }
    CNoteKeyboard* keyboard() const { return m_keyboard; }

private:
    void applyScale();
    void updateFlagTip();

    const music::ScaleList& m_scales;
    QLineEdit* m_name = nullptr;
    QComboBox* m_base = nullptr;
    QComboBox* m_scale = nullptr;
    CNoteKeyboard* m_keyboard = nullptr;
    QCheckBox* m_flag = nullptr;
};

} // namespace app
