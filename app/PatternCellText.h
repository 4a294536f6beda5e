#pragma once

#include "part/PatternCell.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace app {

/**
 * The text of a pattern cell, as the grid shows it, its edit popup takes it and the clipboard
 * carries it as plain text:
 *
 *     ""      nothing              "3"     chord note 3 (1 is the chord's first note)
 *     "3+"    chord note 3, shifted two half-notes up ("3-": down)
 *     "?3"    chance chord note 3 (sounds with even odds; "?3+" shifted)
 *     "C#4"   fixed note C# in octave 4       "C#t"   fixed note C# in the track's octave
 *     "off"   off-event (stops the track's note)
 *
 * Cells that the keys cannot make but a file may hold (an unknown kind byte, a fixed note above
 * B) are written raw as "k7:3:1" (kind, value, octave byte), so that they read back unchanged.
 * Bytes that a cell's kind ignores (the value of an off-event, an octave byte of a chord note
 * other than a shift) are not shown.
 */
class PatternCellText
{
public:
    static QString format(const part::PatternCell& cell);

    /**
     * Reads what `format` writes, ignoring case and surrounding blanks. Also takes "." and "---"
     * for nothing, "===" for off and "C-4" for C4. Nothing when the text is no cell.
     */
    static std::optional<part::PatternCell> parse(const QString& text);

    /** The cell in words for assistive technology: "chord note 2, shift up", "empty". */
    static QString describe(const part::PatternCell& cell);

    /** A track's octave setting in words: "base", "octave 5", "base - 2". */
    static QString trackOctaveWords(std::uint8_t setting);

    /** The highest chord-note index a cell can hold, shown 1-based (the byte's 255 + 1). */
    static constexpr int kMaxChordNote = 256;
};

} // namespace app
