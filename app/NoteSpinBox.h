#pragma once

#include <QSpinBox>

namespace app {

/**
 * A chord note chosen by name and octave: shows "C#2" for the stored note value 25 (octave
 * above the part's base octave times 12 plus pitch class) and steps by half-notes. Typing "f#3"
 * or "F#3" works; the range is the stored notes' 0..119 ("C0".."B9").
 */
class NoteSpinBox : public QSpinBox
{
    Q_OBJECT
public:
    explicit NoteSpinBox(QWidget* parent = nullptr);

protected:
    QString textFromValue(int value) const override;
    int valueFromText(const QString& text) const override;
    QValidator::State validate(QString& input, int& position) const override;
};

} // namespace app
