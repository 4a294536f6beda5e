#pragma once

#include "app/CNoteKeyboard.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace app {

/** "Add Scale": a name and an x/o pattern, which can be learnt from a sample scale. */
class CScaleDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kPatternTip =
        "Enter string for construction. 12 letters(notes). x-on, o-off.";
    static constexpr const char* kLearnTip =
        "Define a sample scale and use 'Learn' to extract construction data.";

    explicit CScaleDialog(QWidget* parent = nullptr);

    QString name() const;
    QString pattern() const;
    void setName(const QString& name);
    void setPattern(const QString& pattern);
    /** Whether the whole list is saved as the default list at once after adding. */
    bool keepDefaultCurrent() const;
    void setKeepDefaultCurrent(bool on);
    void learn();

    QLineEdit* nameEdit() const { return m_name; }
    QLineEdit* patternEdit() const { return m_pattern; }
    QComboBox* baseBox() const { return m_base; }
    CNoteKeyboard* keyboard() const { return m_keyboard; }

private:
    QLineEdit* m_name = nullptr;
    QLineEdit* m_pattern = nullptr;
    QComboBox* m_base = nullptr;
    CNoteKeyboard* m_keyboard = nullptr;
    QCheckBox* m_keepDefault = nullptr;
};

} // namespace app
