#include "app/PatternCellEdits.h"

#include "part/TrackOctave.h"

#include <algorithm>

namespace app {

using Action = PatternKey::Action;
using part::CellKind;
using part::PatternCell;

std::optional<PatternCell> PatternCellEdits::entered(const PatternKey& key,
                                                     std::uint8_t entryOctave)
{
    switch (key.action) {
    case Action::ChordNote:
        return PatternCell{CellKind::ChordNote, static_cast<std::uint8_t>(key.value), 0};
    case Action::FixedNote: {
        const int octave = std::min(entryOctave + key.octaveOffset, part::TrackOctave::kMaxOctave);
        return PatternCell{CellKind::FixedNote, static_cast<std::uint8_t>(key.value),
                           static_cast<std::uint8_t>(octave)};
    }
    case Action::Off:
        return PatternCell{CellKind::Off, 0, 0};
    case Action::Clear:
        return PatternCell{};
    default:
        return std::nullopt;
    }
}

PatternCell PatternCellEdits::modified(const PatternCell& cell, Action action, int trackOctave)
{
    if (action == Action::Clear)
        return PatternCell{};
    PatternCell result = cell;
    const bool chordNote =
        cell.kind == CellKind::ChordNote || cell.kind == CellKind::ChanceChordNote;
    if (chordNote) {
        switch (action) {
        case Action::Chance:
            result.kind =
                cell.kind == CellKind::ChordNote ? CellKind::ChanceChordNote : CellKind::ChordNote;
            break;
        case Action::ShiftUp:
            result.octave = cell.octave == part::kShiftUp ? 0 : part::kShiftUp;
            break;
        case Action::ShiftDown:
            result.octave = cell.octave == part::kShiftDown ? 0 : part::kShiftDown;
            break;
        default:
            break;
        }
    } else if (cell.kind == CellKind::FixedNote &&
               (action == Action::ShiftUp || action == Action::ShiftDown)) {
        // Octave byte 0 stands for the track's octave, so explicit octaves run from 1 to 9.
        const int from = cell.octave == 0 ? trackOctave : cell.octave;
        const int to = from + (action == Action::ShiftUp ? 1 : -1);
        if (to >= 1 && to <= part::TrackOctave::kMaxOctave)
            result.octave = static_cast<std::uint8_t>(to);
    }
    return result;
}

QRect PatternCellEdits::clipped(const QRect& rect)
{
    return rect.intersected(QRect(0, 0, part::kTrackCount, part::kRowCount));
}

void PatternCellEdits::modify(part::Pattern& pattern, const QRect& rect, Action action,
                              std::uint8_t baseOctave)
{
    const QRect area = clipped(rect);
    for (int track = area.left(); track <= area.right(); ++track) {
        const int trackOctave =
            part::TrackOctave::forFixedNote(pattern.trackOctave(track), baseOctave);
        for (int row = area.top(); row <= area.bottom(); ++row)
            pattern.setCell(track, row, modified(pattern.cell(track, row), action, trackOctave));
    }
}

void PatternCellEdits::clear(part::Pattern& pattern, const QRect& rect)
{
    modify(pattern, rect, Action::Clear, 0);
}

PatternClipboard::Block PatternCellEdits::copy(const part::Pattern& pattern, const QRect& rect)
{
    const QRect area = clipped(rect);
    PatternClipboard::Block block;
    block.tracks = area.width();
    block.rows = area.height();
    for (int row = area.top(); row <= area.bottom(); ++row) {
        for (int track = area.left(); track <= area.right(); ++track)
            block.cells.push_back(pattern.cell(track, row));
    }
    return block;
}

QRect PatternCellEdits::paste(part::Pattern& pattern, const PatternClipboard::Block& block,
                              const QPoint& topLeft)
{
    const QRect area = clipped(QRect(topLeft, QSize(block.tracks, block.rows)));
    for (int row = area.top(); row <= area.bottom(); ++row) {
        for (int track = area.left(); track <= area.right(); ++track)
            pattern.setCell(track, row, block.at(track - topLeft.x(), row - topLeft.y()));
    }
    return area;
}

} // namespace app
