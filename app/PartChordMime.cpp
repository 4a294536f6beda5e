#include "app/PartChordMime.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>
#include <QStringList>

namespace app {

namespace {

constexpr quint32 kFormatVersion = 1;

QString notesOf(const part::PartChord& chord)
{
    QStringList names;
    for (int i = 0; i < chord.noteCount && i < part::PartChord::kMaxNotes; ++i)
        names << QString::fromStdString(
            music::noteNameWithOctave(chord.notes[static_cast<std::size_t>(i)]));
    return names.join(QLatin1Char(' '));
}

std::vector<part::PartChord> readPrivate(QByteArray bytes)
{
    std::vector<part::PartChord> chords;
    QDataStream in(&bytes, QIODevice::ReadOnly);
    quint32 version = 0;
    quint32 count = 0;
    in >> version >> count;
    if (in.status() != QDataStream::Ok || version != kFormatVersion)
        return chords;
    // Foreign data may claim any count: read while there is data, never more than a part holds.
    for (quint32 i = 0; i < count && i < PartChordMime::kMaxChords && !in.atEnd(); ++i) {
        QString name;
        quint8 noteCount = 0;
        in >> name >> noteCount;
        if (in.status() != QDataStream::Ok || noteCount > part::PartChord::kMaxNotes)
            break;
        part::PartChord chord;
        chord.name = name.toStdString();
        chord.noteCount = noteCount;
        for (std::size_t n = 0; n < noteCount; ++n)
            in >> chord.notes[n];
        in >> chord.pattern >> chord.length;
        if (in.status() != QDataStream::Ok)
            break;
        chords.push_back(std::move(chord));
    }
    return chords;
}

} // namespace

QMimeData* PartChordMime::create(const std::vector<part::PartChord>& chords)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << kFormatVersion << static_cast<quint32>(chords.size());
    for (const part::PartChord& chord : chords) {
        const auto count = std::min<std::uint8_t>(chord.noteCount, part::PartChord::kMaxNotes);
        out << QString::fromStdString(chord.name) << count;
        for (std::size_t n = 0; n < count; ++n)
            out << chord.notes[n];
        out << chord.pattern << chord.length;
    }
    auto* data = new QMimeData;
    data->setData(QString::fromLatin1(kChordsMimeType), bytes);
    data->setText(text(chords));
    return data;
}

void PartChordMime::setRows(QMimeData& data, quint64 source, const std::vector<int>& rows)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << source;
    for (int row : rows)
        out << static_cast<qint32>(row);
    data.setData(QString::fromLatin1(kRowsMimeType), bytes);
}

std::vector<int> PartChordMime::rows(const QMimeData& data, quint64 source)
{
    QByteArray bytes = data.data(QString::fromLatin1(kRowsMimeType));
    QDataStream in(&bytes, QIODevice::ReadOnly);
    std::vector<int> rows;
    quint64 token = 0;
    in >> token;
    if (in.status() != QDataStream::Ok || token != source)
        return rows;
    while (!in.atEnd() && rows.size() < static_cast<std::size_t>(kMaxChords)) {
        qint32 row = 0;
        in >> row;
        if (in.status() != QDataStream::Ok)
            break;
        rows.push_back(row);
    }
    return rows;
}

bool PartChordMime::hasChords(const QMimeData* data)
{
    return data != nullptr &&
           (data->hasFormat(QString::fromLatin1(kChordsMimeType)) || data->hasText());
}

std::vector<part::PartChord> PartChordMime::chords(const QMimeData* data, std::uint16_t pattern,
                                                   std::uint8_t length)
{
    if (data == nullptr)
        return {};
    if (data->hasFormat(QString::fromLatin1(kChordsMimeType)))
        return readPrivate(data->data(QString::fromLatin1(kChordsMimeType)));
    std::vector<part::PartChord> chords;
    const QString text = data->text();
    for (const QStringView line : QStringView(text).split(QLatin1Char('\n'))) {
        if (chords.size() >= static_cast<std::size_t>(kMaxChords))
            break;
        if (auto chord = parseLine(line)) {
            chord->pattern = pattern;
            chord->length = length;
            chords.push_back(std::move(*chord));
        }
    }
    return chords;
}

QString PartChordMime::text(const std::vector<part::PartChord>& chords)
{
    QString text;
    for (const part::PartChord& chord : chords)
        text += QString::fromStdString(chord.name) + QLatin1Char('\t') + notesOf(chord) +
                QLatin1Char('\n');
    return text;
}

QString PartChordMime::notesText(const part::PartChord& chord)
{
    return notesOf(chord);
}

std::optional<int> PartChordMime::parseNote(QStringView text)
{
    if (text.isEmpty() || text.size() > 3)
        return std::nullopt;
    static constexpr int kLetterPitch[] = {9, 11, 0, 2, 4, 5, 7}; // A B C D E F G
    const QChar letter = text[0].toUpper();
    if (letter < QLatin1Char('A') || letter > QLatin1Char('G'))
        return std::nullopt;
    int pitch = kLetterPitch[letter.unicode() - u'A'];
    qsizetype at = 1;
    if (at < text.size() && (text[at] == QLatin1Char('#') || text[at] == QLatin1Char('b'))) {
        pitch += text[at] == QLatin1Char('#') ? 1 : -1;
        ++at;
    }
    int octave = 0;
    if (at < text.size()) {
        if (!text[at].isDigit() || at + 1 != text.size())
            return std::nullopt;
        octave = text[at].digitValue();
    }
    const int value = octave * 12 + pitch; // "Cb4" is B3, "B#3" is C4
    if (value < 0 || music::isEmptyNote(value))
        return std::nullopt;
    return value;
}

std::optional<part::PartChord> PartChordMime::parseLine(QStringView line)
{
    line = line.trimmed();
    QString name;
    QList<QStringView> tokens;
    if (const qsizetype tab = line.lastIndexOf(QLatin1Char('\t')); tab >= 0) {
        name = line.left(tab).trimmed().toString();
        tokens = line.mid(tab + 1).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    } else {
        // The name is at least the first word; the notes are the words after it that all read
        // as notes ("C major C0 E0 G0").
        tokens = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        qsizetype first = 1;
        while (first < tokens.size()) {
            bool allNotes = true;
            for (qsizetype i = first; i < tokens.size() && allNotes; ++i)
                allNotes = parseNote(tokens[i]).has_value();
            if (allNotes)
                break;
            ++first;
        }
        QStringList words;
        for (qsizetype i = 0; i < first && i < tokens.size(); ++i)
            words << tokens[i].toString();
        name = words.join(QLatin1Char(' '));
        tokens = tokens.mid(first);
    }
    if (tokens.isEmpty())
        return std::nullopt; // a chord without notes is no chord a musician meant to paste
    part::PartChord chord;
    chord.name = name.toStdString();
    for (const QStringView token : tokens) {
        const auto value = parseNote(token);
        if (!value)
            return std::nullopt;
        if (chord.noteCount < part::PartChord::kMaxNotes)
            chord.notes[chord.noteCount++] = static_cast<music::NoteValue>(*value);
    }
    return chord;
}

} // namespace app
