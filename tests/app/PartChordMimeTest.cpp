// Part chords on the clipboard: the private form keeps everything, the text form reads what a
// musician would type, and foreign or damaged data never yields more than it holds.
#include "app/PartChordMime.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>

#include <gtest/gtest.h>

#include <memory>

namespace {

using app::PartChordMime;

part::PartChord chord(std::string name, std::initializer_list<music::NoteValue> notes,
                      std::uint16_t pattern = 0, std::uint8_t length = 16)
{
    part::PartChord c;
    c.name = std::move(name);
    c.setNotes(notes);
    c.pattern = pattern;
    c.length = length;
    return c;
}

TEST(PartChordMime, PrivateFormKeepsNamesNoteOrderPatternsAndLengths)
{
    const std::vector<part::PartChord> chords = {
        chord("Am7/G", {43, 45, 48, 52, 55}, 3, 64), chord("", {}, 0, 1), // no name, no notes
        chord("seven", {0, 11, 2, 9, 4, 7, 5}, 65535, 255) // order kept, all seven notes
    };
    std::unique_ptr<QMimeData> data(PartChordMime::create(chords));
    EXPECT_EQ(PartChordMime::chords(data.get(), 9, 9), chords);
    EXPECT_EQ(data->text(),
              QStringLiteral("Am7/G\tG3 A3 C4 E4 G4\n\t\nseven\tC0 B0 D0 A0 E0 G0 F0\n"));
}

TEST(PartChordMime, DamagedPrivateDataYieldsOnlyTheWholeChordsItHolds)
{
    std::unique_ptr<QMimeData> good(
        PartChordMime::create({chord("C", {0, 4, 7}), chord("F", {5})}));
    const QByteArray bytes = good->data(QString::fromLatin1(PartChordMime::kChordsMimeType));

    const auto read = [](const QByteArray& raw) {
        QMimeData data;
        data.setData(QString::fromLatin1(PartChordMime::kChordsMimeType), raw);
        return PartChordMime::chords(&data, 0, 16).size();
    };
    EXPECT_EQ(read(bytes), 2u);
    EXPECT_EQ(read(bytes.left(bytes.size() - 1)), 1u) << "the last chord is cut short";
    EXPECT_EQ(read(QByteArray()), 0u);

    // A count far beyond the data, and a chord claiming more notes than a chord holds.
    QByteArray lying;
    QDataStream out(&lying, QIODevice::WriteOnly);
    out << quint32(1) << quint32(4000000000u) << QStringLiteral("X") << quint8(200);
    EXPECT_EQ(read(lying), 0u);
}

TEST(PartChordMime, TextLinesReadAsChordsWhenTheyEndInNotes)
{
    struct Case
    {
        const char* line;
        const char* name; // nullptr: not a chord
        std::vector<music::NoteValue> notes;
    };
    const Case cases[] = {
        {"Am\tA0 C1 E1", "Am", {9, 12, 16}},
        {"C major C4 E4 G4", "C major", {48, 52, 55}}, // the name may have spaces
        {"  G7   G2 B2 D3 F3  ", "G7", {31, 35, 38, 41}},
        {"Bb\tBb3 D4 F4", "Bb", {46, 50, 53}}, // flats are read as well
        {"odd Cb4 B#3 E", "odd", {47, 48, 4}}, // across the octave; no digit: octave 0
        {"C E G", "C", {4, 7}},                // the first word is always the name
        {"big C0 D0 E0 F0 G0 A0 B0 C1", "big", {0, 2, 4, 5, 7, 9, 11}}, // seven kept
        {"Intro", nullptr, {}},                                         // no notes
        {"Dear Anna, the chords are", nullptr, {}},                     // prose
        {"X\tC4 H4", nullptr, {}}, // after a tab every word must be a note
        {"X\tC10", nullptr, {}},
        {"X\tCb0", nullptr, {}}, // below the lowest note
        {"", nullptr, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        const auto read = PartChordMime::parseLine(QString::fromLatin1(c.line));
        ASSERT_EQ(read.has_value(), c.name != nullptr);
        if (!read)
            continue;
        EXPECT_EQ(read->name, c.name);
        EXPECT_EQ(std::vector<music::NoteValue>(read->notes.begin(),
                                                read->notes.begin() + read->noteCount),
                  c.notes);
    }
}

TEST(PartChordMime, PlainTextGetsTheGivenPatternAndLengthAndSkipsOtherLines)
{
    QMimeData data;
    data.setText(QStringLiteral("Hello,\r\nDm\tD4 F4 A4\r\n\r\nG7 G3 B3 D4 F4\nthanks"));
    const std::vector<part::PartChord> read = PartChordMime::chords(&data, 2, 24);
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[0], chord("Dm", {50, 53, 57}, 2, 24));
    EXPECT_EQ(read[1], chord("G7", {43, 47, 50, 53}, 2, 24));
}

} // namespace
