#include "app/PatternClipboard.h"

#include "app/PatternCellText.h"
#include "part/TrackOctave.h"

#include <QCoreApplication>
#include <QMimeData>
#include <QRegularExpression>
#include <QStringList>

namespace app {

namespace {

// Private data: magic, version, tracks, rows, then kind, value and octave byte of every cell.
constexpr char kMagic[] = "TMPC";
constexpr int kMagicSize = 4;
constexpr char kVersion = 1;
constexpr int kHeaderSize = kMagicSize + 3;

QString tr(const char* text)
{
    return QCoreApplication::translate("PatternClipboard", text);
}

void setError(QString* error, const QString& text)
{
    if (error != nullptr)
        *error = text;
}

std::optional<PatternClipboard::Block> fromBytes(const QByteArray& bytes)
{
    if (bytes.size() < kHeaderSize || !bytes.startsWith(kMagic) || bytes[kMagicSize] != kVersion)
        return std::nullopt;
    PatternClipboard::Block block;
    block.tracks = static_cast<unsigned char>(bytes[kMagicSize + 1]);
    block.rows = static_cast<unsigned char>(bytes[kMagicSize + 2]);
    if (block.tracks < 1 || block.tracks > part::kTrackCount || block.rows < 1 ||
        block.rows > part::kRowCount || bytes.size() != kHeaderSize + block.tracks * block.rows * 3)
        return std::nullopt;
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData()) + kHeaderSize;
    for (int i = 0; i < block.tracks * block.rows; ++i, data += 3)
        block.cells.push_back({static_cast<part::CellKind>(data[0]), data[1], data[2]});
    return block;
}

} // namespace

std::unique_ptr<QMimeData> PatternClipboard::toMimeData(const Block& block)
{
    auto data = std::make_unique<QMimeData>();
    QByteArray bytes(kMagic, kMagicSize);
    bytes.append(kVersion);
    bytes.append(static_cast<char>(block.tracks));
    bytes.append(static_cast<char>(block.rows));
    for (const part::PatternCell& cell : block.cells) {
        bytes.append(static_cast<char>(cell.kind));
        bytes.append(static_cast<char>(cell.value));
        bytes.append(static_cast<char>(cell.octave));
    }
    data->setData(QString::fromLatin1(kMimeType), bytes);
    data->setText(toText(block));
    return data;
}

std::optional<PatternClipboard::Block> PatternClipboard::fromMimeData(const QMimeData& data,
                                                                      QString* error)
{
    const QString type = QString::fromLatin1(kMimeType);
    if (data.hasFormat(type)) {
        if (auto block = fromBytes(data.data(type)))
            return block;
    }
    if (data.hasText())
        return fromText(data.text(), error);
    setError(error, tr("The clipboard holds no pattern cells."));
    return std::nullopt;
}

QString PatternClipboard::toText(const Block& block)
{
    QString text;
    for (int row = 0; row < block.rows; ++row) {
        QStringList cells;
        for (int track = 0; track < block.tracks; ++track) {
            const QString cell = PatternCellText::format(block.at(track, row));
            cells << (cell.isEmpty() ? QStringLiteral(".") : cell);
        }
        text += cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
    }
    return text;
}

std::optional<PatternClipboard::Block> PatternClipboard::fromText(const QString& text,
                                                                  QString* error)
{
    QStringList lines = text.split(QRegularExpression(QStringLiteral("\r\n|\r|\n")));
    while (!lines.isEmpty() && lines.back().trimmed().isEmpty())
        lines.removeLast();
    while (!lines.isEmpty() && lines.front().trimmed().isEmpty())
        lines.removeFirst();
    if (lines.isEmpty()) {
        setError(error, tr("The clipboard holds no pattern cells."));
        return std::nullopt;
    }
    // A pattern has 64 rows and 8 tracks; what lies beyond could never be pasted.
    lines = lines.mid(0, part::kRowCount);

    static const QRegularExpression blanks(QStringLiteral("[ \\t]+"));
    std::vector<QStringList> rows;
    int tracks = 1;
    for (const QString& line : lines) {
        // Tabs keep empty cells in place; text typed with blanks has "." for them.
        QStringList cells = line.contains(QLatin1Char('\t'))
                                ? line.split(QLatin1Char('\t'))
                                : line.trimmed().split(blanks, Qt::SkipEmptyParts);
        cells = cells.mid(0, part::kTrackCount);
        tracks = std::max(tracks, static_cast<int>(cells.size()));
        rows.push_back(cells);
    }

    Block block;
    block.tracks = tracks;
    block.rows = static_cast<int>(rows.size());
    block.cells.resize(static_cast<std::size_t>(block.tracks * block.rows));
    for (int row = 0; row < block.rows; ++row) {
        const QStringList& cells = rows[static_cast<std::size_t>(row)];
        for (int track = 0; track < static_cast<int>(cells.size()); ++track) {
            const auto cell = PatternCellText::parse(cells[track]);
            if (!cell) {
                setError(error, tr("Row %1, track %2: \"%3\" is no pattern cell.")
                                    .arg(row + 1)
                                    .arg(track + 1)
                                    .arg(cells[track].trimmed()));
                return std::nullopt;
            }
            block.cells[static_cast<std::size_t>(row * block.tracks + track)] = *cell;
        }
    }
    return block;
}

} // namespace app
