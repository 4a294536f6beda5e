#include "app/PatternCellText.h"

#include "app/NoteNames.h"
#include "music/Note.h"

#include <QCoreApplication>
#include <QRegularExpression>

namespace app {

namespace {

using part::CellKind;
using part::PatternCell;

QString tr(const char* text)
{
    return QCoreApplication::translate("PatternCellText", text);
}

bool isChordNote(CellKind kind)
{
    return kind == CellKind::ChordNote || kind == CellKind::ChanceChordNote;
}

QString raw(const PatternCell& cell)
{
    return QStringLiteral("k%1:%2:%3")
        .arg(static_cast<int>(cell.kind))
        .arg(cell.value)
        .arg(cell.octave);
}

/** A byte from decimal text; nothing outside 0..255. */
std::optional<std::uint8_t> byteOf(const QString& text)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok || value < 0 || value > 255)
        return std::nullopt;
    return static_cast<std::uint8_t>(value);
}

} // namespace

QString PatternCellText::format(const PatternCell& cell)
{
    switch (cell.kind) {
    case CellKind::Nothing:
        return QString();
    case CellKind::Off:
        return QStringLiteral("off");
    case CellKind::ChordNote:
    case CellKind::ChanceChordNote: {
        QString text = QString::number(cell.value + 1);
        if (cell.kind == CellKind::ChanceChordNote)
            text.prepend(QLatin1Char('?'));
        if (cell.octave == part::kShiftUp)
            text += QLatin1Char('+');
        else if (cell.octave == part::kShiftDown)
            text += QLatin1Char('-');
        return text;
    }
    case CellKind::FixedNote:
        if (cell.value >= music::kPitchClassCount)
            return raw(cell);
        return NoteNames::name(cell.value) +
               (cell.octave == 0 ? QStringLiteral("t") : QString::number(cell.octave));
    }
    return raw(cell);
}

std::optional<PatternCell> PatternCellText::parse(const QString& input)
{
    const QString text = input.trimmed().toLower();
    if (text.isEmpty() || text == QStringLiteral(".") || text == QStringLiteral("---"))
        return PatternCell{};
    if (text == QStringLiteral("off") || text == QStringLiteral("==="))
        return PatternCell{CellKind::Off, 0, 0};

    static const QRegularExpression chordNote(QStringLiteral("^(\\?)?(\\d{1,3})([+-])?$"));
    if (const auto m = chordNote.match(text); m.hasMatch()) {
        const int index = m.captured(2).toInt();
        if (index < 1 || index > kMaxChordNote)
            return std::nullopt;
        PatternCell cell{m.capturedLength(1) > 0 ? CellKind::ChanceChordNote : CellKind::ChordNote,
                         static_cast<std::uint8_t>(index - 1), 0};
        if (m.captured(3) == QStringLiteral("+"))
            cell.octave = part::kShiftUp;
        else if (m.captured(3) == QStringLiteral("-"))
            cell.octave = part::kShiftDown;
        return cell;
    }

    static const QRegularExpression fixedNote(QStringLiteral("^([a-g]#?)-?(t|\\d{1,3})$"));
    if (const auto m = fixedNote.match(text); m.hasMatch()) {
        const auto pitchClass = music::parseNoteName(m.captured(1).toStdString());
        if (!pitchClass)
            return std::nullopt;
        std::uint8_t octave = 0; // the track's octave
        if (m.captured(2) != QStringLiteral("t")) {
            const auto explicitOctave = byteOf(m.captured(2));
            // Octave byte 0 means the track's octave, so an explicit octave starts at 1.
            if (!explicitOctave || *explicitOctave == 0)
                return std::nullopt;
            octave = *explicitOctave;
        }
        return PatternCell{CellKind::FixedNote, *pitchClass, octave};
    }

    static const QRegularExpression rawCell(QStringLiteral("^k(\\d{1,3}):(\\d{1,3}):(\\d{1,3})$"));
    if (const auto m = rawCell.match(text); m.hasMatch()) {
        const auto kind = byteOf(m.captured(1));
        const auto value = byteOf(m.captured(2));
        const auto octave = byteOf(m.captured(3));
        if (!kind || !value || !octave)
            return std::nullopt;
        return PatternCell{static_cast<CellKind>(*kind), *value, *octave};
    }
    return std::nullopt;
}

QString PatternCellText::describe(const PatternCell& cell)
{
    if (isChordNote(cell.kind)) {
        QString text = (cell.kind == CellKind::ChanceChordNote ? tr("chance chord note %1")
                                                               : tr("chord note %1"))
                           .arg(cell.value + 1);
        if (cell.octave == part::kShiftUp)
            text += tr(", shift up");
        else if (cell.octave == part::kShiftDown)
            text += tr(", shift down");
        return text;
    }
    switch (cell.kind) {
    case CellKind::Nothing:
        return tr("empty");
    case CellKind::Off:
        return tr("off");
    case CellKind::FixedNote:
        if (cell.value >= music::kPitchClassCount)
            break;
        if (cell.octave == 0)
            return tr("fixed note %1 in the track's octave").arg(NoteNames::name(cell.value));
        return tr("fixed note %1%2").arg(NoteNames::name(cell.value)).arg(cell.octave);
    default:
        break;
    }
    return tr("kind %1, value %2, octave byte %3")
        .arg(static_cast<int>(cell.kind))
        .arg(cell.value)
        .arg(cell.octave);
}

QString PatternCellText::trackOctaveWords(std::uint8_t setting)
{
    switch (setting) {
    case 8:
        return tr("base - 2");
    case 9:
        return tr("base - 1");
    case 10:
        return tr("base + 1");
    case 11:
        return tr("base + 2");
    default:
        break;
    }
    // 1..7 replace the base octave by the setting plus 1; other values act as the base.
    if (setting >= 1 && setting <= 7)
        return tr("octave %1").arg(setting + 1);
    return tr("base");
}

} // namespace app
