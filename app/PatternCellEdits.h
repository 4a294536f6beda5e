#pragma once

#include "app/PatternClipboard.h"
#include "app/PatternKeyMap.h"
#include "part/Pattern.h"

#include <QRect>

#include <cstdint>
#include <optional>

namespace app {

/**
 * The pattern grid's edits as values: what a key makes of a cell, and copying, clearing and
 * pasting rectangles. A rectangle's x runs over tracks (0..7) and its y over rows (0..63); parts
 * outside the pattern are ignored.
 */
class PatternCellEdits
{
public:
    /**
     * The cell a key enters (chord note, fixed note, off, clear); nothing for keys that change a
     * cell rather than replace it. A fixed note gets `entryOctave` plus the key row's offset as
     * its octave byte (at most 9); entry octave 0 on the lower row gives the track's octave.
     */
    static std::optional<part::PatternCell> entered(const PatternKey& key,
                                                    std::uint8_t entryOctave);

    /**
     * A cell changed by Chance, ShiftUp, ShiftDown or Clear. Chance turns a chord note into a
     * chance chord note and back; a shift sets the chord note's shift or, pressed again, removes
     * it. On a fixed note the shifts move its octave by one within 1..9, starting from the
     * octave the track plays it in (`trackOctave`) when it has none of its own.
     */
    static part::PatternCell modified(const part::PatternCell& cell, PatternKey::Action action,
                                      int trackOctave);

    /** Applies `modified` to every cell of `rect`; the track octaves come from the pattern. */
    static void modify(part::Pattern& pattern, const QRect& rect, PatternKey::Action action,
                       std::uint8_t baseOctave);

    static void clear(part::Pattern& pattern, const QRect& rect);
    static PatternClipboard::Block copy(const part::Pattern& pattern, const QRect& rect);
    /** Writes `block` with its top left at `topLeft`, cut at the pattern's edges; the cells
     * written. */
    static QRect paste(part::Pattern& pattern, const PatternClipboard::Block& block,
                       const QPoint& topLeft);

    /** `rect` cut to the pattern (8 tracks x 64 rows); empty when it lies outside. */
    static QRect clipped(const QRect& rect);
};

} // namespace app
