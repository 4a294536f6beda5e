#pragma once

#include "part/TrackOctave.h"

#include <QObject>

#include <array>
#include <vector>

namespace app {

class PatternGridPanel;

/**
 * Commands on whole tracks of the current pattern, from the track headers' menu: Move Left,
 * Move Right, Swap With (another track) and Merge Into (another track). Each is one live undo
 * step ("Move tracks", "Merge tracks") and carries the tracks' octave settings.
 *
 * The track switches are render options, not part of the pattern, yet a muted track stays
 * muted when it moves: the switches are reordered with the tracks, and back again when the
 * move is undone or forward when it is redone.
 */
class PatternTrackCommands : public QObject
{
    Q_OBJECT
public:
    /** New track order: position i holds the track that was at order[i]. */
    using Order = std::array<int, part::kTrackCount>;

    /** `panel` owns this object. */
    explicit PatternTrackCommands(PatternGridPanel& panel);

    /** Moves `track` by `by` places (-1 left, +1 right); false at the edge. */
    bool moveTrack(int track, int by);
    bool swapTracks(int a, int b);
    /** Merges `source` into `target`; on a row where both have an entry, the later track's wins. */
    bool mergeTrack(int source, int target);

private:
    void bindMenu();
    void updateMenu();
    /** Moves (or swaps) `from` and `to` as one "Move tracks" step; `order` is its result. */
    bool reorder(const Order& order, int from, int to, bool swap);
    void reorderSwitches(const Order& order, bool inverse);
    void showStatus(const QString& text);

    PatternGridPanel& m_panel;
    // The orders of the "Move tracks" steps that undo and redo can reach, newest last.
    std::vector<Order> m_undoOrders;
    std::vector<Order> m_redoOrders;
};

} // namespace app
