#include "app/NoteSpinBox.h"

#include "music/Note.h"
#include "part/ChordTransforms.h"

#include <QRegularExpression>

namespace app {

NoteSpinBox::NoteSpinBox(QWidget* parent) : QSpinBox(parent)
{
    setRange(part::kLowestNote, part::kHighestNote);
    setAccelerated(true);
}

QString NoteSpinBox::textFromValue(int value) const
{
    return QString::fromStdString(music::noteNameWithOctave(value));
}

int NoteSpinBox::valueFromText(const QString& text) const
{
    const auto note = music::parseNoteNameWithOctave(text.trimmed().toStdString());
    return note ? *note : value();
}

QValidator::State NoteSpinBox::validate(QString& input, int&) const
{
    const QString text = input.trimmed();
    if (const auto note = music::parseNoteNameWithOctave(text.toStdString());
        note && *note >= minimum() && *note <= maximum())
        return QValidator::Acceptable;
    // A note on its way: "F", "F#", or a letter and a sharp typed before the octave.
    static const QRegularExpression partial(QStringLiteral("^[A-Ga-g]#?$|^$"));
    return partial.match(text).hasMatch() ? QValidator::Intermediate : QValidator::Invalid;
}

} // namespace app
