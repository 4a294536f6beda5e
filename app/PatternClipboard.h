#pragma once

#include "part/PatternCell.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

class QMimeData;

namespace app {

/**
 * Rectangles of pattern cells on the system clipboard. They travel twice: exactly, as the bytes
 * of every cell under a private type that only this program reads, and as plain text, one line
 * per row with the cells' texts (PatternCellText) separated by tabs and "." for an empty cell, so
 * that a pattern can be pasted into a mail, edited there and pasted back.
 */
class PatternClipboard
{
public:
    static constexpr const char* kMimeType = "application/x-tonalmancer-pattern-cells";

    /** A rectangle of cells, row by row; tracks 1..8, rows 1..64. */
    struct Block
    {
        int tracks = 0;
        int rows = 0;
        std::vector<part::PatternCell> cells; // rows * tracks, row-major

        const part::PatternCell& at(int track, int row) const
        {
            return cells.at(static_cast<std::size_t>(row * tracks + track));
        }
        friend bool operator==(const Block&, const Block&) = default;
    };

    static std::unique_ptr<QMimeData> toMimeData(const Block& block);

    /**
     * The cells on the clipboard: the private data when it is there and whole, else the plain
     * text. Nothing when neither holds cells; `error` then says why, in the user's words.
     */
    static std::optional<Block> fromMimeData(const QMimeData& data, QString* error = nullptr);

    static QString toText(const Block& block);
    /** Rows of cells separated by tabs or blanks; lines may be ragged (short rows are padded). */
    static std::optional<Block> fromText(const QString& text, QString* error = nullptr);
};

} // namespace app
