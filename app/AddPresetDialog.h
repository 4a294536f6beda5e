#pragma once

#include <QDialog>

class QLineEdit;
class QPushButton;

namespace app {

/**
 * "Add Preset": asks for the name of a new pattern or part preset. The name starts as "noname",
 * selected so that typing replaces it; OK stays disabled while the name is blank.
 */
class AddPresetDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kTitle = "Add Preset";

    /** `what` says what becomes the preset ("The current pattern"), shown above the name. */
    explicit AddPresetDialog(const QString& what = {}, QWidget* parent = nullptr);

    QString name() const;
    QLineEdit* nameEdit() const { return m_name; }
    QPushButton* okButton() const { return m_ok; }

private:
    QLineEdit* m_name = nullptr;
    QPushButton* m_ok = nullptr;
};

} // namespace app
