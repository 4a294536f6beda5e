// The pattern grid's cell texts and clipboard data: what the user types and pastes must read back
// to the same cells, and text that is no cell must be refused rather than half-read.
#include "app/PatternCellText.h"
#include "app/PatternCellEdits.h"
#include "app/PatternClipboard.h"

#include <QMimeData>

#include <gtest/gtest.h>

namespace {

using app::PatternCellText;
using app::PatternClipboard;
using part::CellKind;
using part::PatternCell;

TEST(PatternCellText, EveryKindOfCellReadsBackFromItsText)
{
    const std::pair<PatternCell, const char*> cases[] = {
        {{}, ""},
        {{CellKind::ChordNote, 0, 0}, "1"},
        {{CellKind::ChordNote, 6, part::kShiftUp}, "7+"},
        {{CellKind::ChordNote, 1, part::kShiftDown}, "2-"},
        {{CellKind::ChanceChordNote, 2, 0}, "?3"},
        {{CellKind::ChanceChordNote, 2, part::kShiftUp}, "?3+"},
        {{CellKind::ChordNote, 255, 0}, "256"}, // a file may address any note
        {{CellKind::FixedNote, 1, 4}, "C#4"},
        {{CellKind::FixedNote, 11, 0}, "Bt"},
        {{CellKind::Off, 0, 0}, "off"},
        // What the keys cannot make is kept byte for byte.
        {{static_cast<CellKind>(7), 3, 1}, "k7:3:1"},
        {{CellKind::FixedNote, 14, 4}, "k3:14:4"},
    };
    for (const auto& [cell, text] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(PatternCellText::format(cell), QString::fromLatin1(text));
        EXPECT_EQ(PatternCellText::parse(QString::fromLatin1(text)), cell);
    }
}

TEST(PatternCellText, ReadsTrackerSpellingsAndRefusesWhatIsNoCell)
{
    const std::pair<const char*, std::optional<PatternCell>> cases[] = {
        {" c#4 ", PatternCell{CellKind::FixedNote, 1, 4}},
        {"C-4", PatternCell{CellKind::FixedNote, 0, 4}},
        {"===", PatternCell{CellKind::Off, 0, 0}},
        {"OFF", PatternCell{CellKind::Off, 0, 0}},
        {".", PatternCell{}},
        {"---", PatternCell{}},
        {"0", std::nullopt},   // chord notes count from 1
        {"257", std::nullopt}, // beyond a byte
        {"C#0", std::nullopt}, // octave byte 0 is the track's octave: "C#t"
        {"H4", std::nullopt},  // sharps only, no German names
        {"Db4", std::nullopt}, // no flats
        {"?", std::nullopt},   // half typed
        {"3++", std::nullopt}, // one shift only
        {"k300:1:1", std::nullopt},
        {"Cmaj7", std::nullopt},
    };
    for (const auto& [text, cell] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(PatternCellText::parse(QString::fromLatin1(text)), cell);
    }
}

TEST(PatternCellText, TrackOctaveSettingsAreNamedInWords)
{
    const std::pair<std::uint8_t, const char*> cases[] = {
        {0, "base"},      {1, "octave 2"},  {7, "octave 8"}, {8, "base - 2"}, {9, "base - 1"},
        {10, "base + 1"}, {11, "base + 2"}, {200, "base"}, // a damaged byte plays at the base
                                                           // octave
    };
    for (const auto& [setting, words] : cases)
        EXPECT_EQ(PatternCellText::trackOctaveWords(setting), QString::fromLatin1(words));
}

PatternClipboard::Block sampleBlock()
{
    PatternClipboard::Block block{3, 2, {}};
    block.cells = {
        {CellKind::ChordNote, 0, 0},      {},
        {CellKind::FixedNote, 1, 0},      {CellKind::Off, 0, 0},
        {static_cast<CellKind>(9), 8, 7}, {CellKind::ChanceChordNote, 3, part::kShiftDown}};
    return block;
}

TEST(PatternClipboard, BlocksSurviveTheClipboardExactlyAndAsText)
{
    const PatternClipboard::Block block = sampleBlock();
    const auto data = PatternClipboard::toMimeData(block);
    EXPECT_EQ(data->text(), QStringLiteral("1\t.\tC#t\noff\tk9:8:7\t?4-\n"));
    EXPECT_EQ(PatternClipboard::fromMimeData(*data), block);

    // Text alone, as from a mail: the same cells.
    QMimeData textOnly;
    textOnly.setText(data->text());
    EXPECT_EQ(PatternClipboard::fromMimeData(textOnly), block);
}

TEST(PatternClipboard, DamagedPrivateDataFallsBackToTheText)
{
    const auto good = PatternClipboard::toMimeData(sampleBlock());
    const QString type = QString::fromLatin1(PatternClipboard::kMimeType);
    const QByteArray bytes = good->data(type);
    const QByteArray damaged[] = {
        bytes.left(bytes.size() - 1),                          // cut short
        bytes + QByteArray(1, '\0'),                           // a byte too many
        QByteArray("TMPC\x01\x09\x01") + QByteArray(27, '\0'), // 9 tracks
        QByteArray("TMPC\x01\x01") + QByteArray(1, '\0'),      // 0 rows
        QByteArray("XXXX") + bytes.mid(4),
    };
    for (const QByteArray& data : damaged) {
        QMimeData mime;
        mime.setData(type, data);
        mime.setText(QStringLiteral("2"));
        const auto block = PatternClipboard::fromMimeData(mime);
        ASSERT_TRUE(block.has_value());
        EXPECT_EQ(block->cells, (std::vector<PatternCell>{{CellKind::ChordNote, 1, 0}}));
    }
}

TEST(PatternClipboard, TextIsReadRaggedOrBlankSeparatedAndRefusedWithTheCellNamed)
{
    QString error;
    auto block = PatternClipboard::fromText(QStringLiteral("\r\n1 2 3\r\n4\r\n\r\n"), &error);
    ASSERT_TRUE(block.has_value());
    EXPECT_EQ(block->tracks, 3);
    EXPECT_EQ(block->rows, 2);
    EXPECT_EQ(block->at(0, 1), (PatternCell{CellKind::ChordNote, 3, 0}));
    EXPECT_EQ(block->at(2, 1), PatternCell{}); // a short row is padded

    // More than a pattern holds is cut to 8 tracks by 64 rows.
    block = PatternClipboard::fromText(QStringLiteral("1 1 1 1 1 1 1 1 1 1\n").repeated(100));
    ASSERT_TRUE(block.has_value());
    EXPECT_EQ(block->tracks, 8);
    EXPECT_EQ(block->rows, 64);

    EXPECT_FALSE(PatternClipboard::fromText(QStringLiteral("1\t2\nC#4\tCmaj7"), &error));
    EXPECT_EQ(error, QStringLiteral("Row 2, track 2: \"Cmaj7\" is no pattern cell."));
    EXPECT_FALSE(PatternClipboard::fromText(QStringLiteral(" \n\t\n"), &error));
    EXPECT_EQ(error, QStringLiteral("The clipboard holds no pattern cells."));
}

TEST(PatternCellEdits, PastingIsCutAtThePatternsEdges)
{
    part::Pattern pattern;
    const PatternClipboard::Block block = sampleBlock();
    const QRect written = app::PatternCellEdits::paste(pattern, block, QPoint(6, 63));
    EXPECT_EQ(written, QRect(6, 63, 2, 1));
    EXPECT_EQ(pattern.cell(6, 63), block.at(0, 0));
    EXPECT_EQ(pattern.cell(7, 63), block.at(1, 0));
    EXPECT_EQ(pattern.usedCellCount(), 1); // the second cell is empty; nothing else written
}

TEST(PatternCellEdits, FixedNoteOctavesStayWithinOneToNine)
{
    using Action = app::PatternKey::Action;
    const auto fixed = [](std::uint8_t octave) {
        return PatternCell{CellKind::FixedNote, 0, octave};
    };
    // {cell, action, octave the track plays in, expected octave byte}
    const std::tuple<PatternCell, Action, int, int> cases[] = {
        {fixed(4), Action::ShiftUp, 4, 5},   {fixed(9), Action::ShiftUp, 4, 9},
        {fixed(1), Action::ShiftDown, 4, 1}, // 0 would mean the track's octave
        {fixed(0), Action::ShiftUp, 6, 7},   // from the track's octave
        {fixed(0), Action::ShiftDown, 1, 0}, // already as low as an explicit octave goes
    };
    for (const auto& [cell, action, trackOctave, expected] : cases) {
        EXPECT_EQ(app::PatternCellEdits::modified(cell, action, trackOctave).octave, expected)
            << int(cell.octave) << " " << trackOctave;
    }
    // Entry octave 9 on the upper row stays at 9.
    const auto entered = app::PatternCellEdits::entered({Action::FixedNote, 2, 1}, 9);
    ASSERT_TRUE(entered.has_value());
    EXPECT_EQ(entered->octave, 9);
}

} // namespace
