#pragma once

#include <QDialog>

class QLineEdit;

namespace app {

/** "Add Preset": asks for the name of a new preset, starting as "noname". */
class AddPresetDialog : public QDialog
{
    Q_OBJECT
public:
    explicit AddPresetDialog(QWidget* parent = nullptr);

    QString name() const;
    QLineEdit* nameEdit() const { return m_name; }

private:
    QLineEdit* m_name = nullptr;
};

} // namespace app
