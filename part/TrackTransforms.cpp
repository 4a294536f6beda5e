#include "part/TrackTransforms.h"

#include <algorithm>
#include <array>

namespace part {

namespace {

bool isTrack(int track)
{
    return track >= 0 && track < kTrackCount;
}

bool hasEntry(const PatternCell& cell)
{
    return cell.kind != CellKind::Nothing;
}

/** The pattern with its tracks in the order `order` (new track t is old track order[t]). */
Pattern reordered(const Pattern& pattern, const std::array<int, kTrackCount>& order)
{
    Pattern out = pattern;
    TrackOctaves octaves{};
    for (int t = 0; t < kTrackCount; ++t) {
        const int old = order[static_cast<std::size_t>(t)];
        octaves[static_cast<std::size_t>(t)] = pattern.trackOctave(old);
        for (int row = 0; row < kRowCount; ++row)
            out.setCell(t, row, pattern.cell(old, row));
    }
    out.setTrackOctaves(octaves);
    return out;
}

std::array<int, kTrackCount> identity()
{
    std::array<int, kTrackCount> order{};
    for (int t = 0; t < kTrackCount; ++t)
        order[static_cast<std::size_t>(t)] = t;
    return order;
}

} // namespace

Pattern mergeTracks(const Pattern& pattern, int target, int source)
{
    if (!isTrack(target) || !isTrack(source) || target == source)
        return pattern;
    const int later = std::max(target, source);
    Pattern out = pattern;
    for (int row = 0; row < kRowCount; ++row) {
        const PatternCell& t = pattern.cell(target, row);
        const PatternCell& s = pattern.cell(source, row);
        PatternCell merged = t;
        if (hasEntry(t) && hasEntry(s))
            merged = pattern.cell(later, row);
        else if (hasEntry(s))
            merged = s;
        out.setCell(target, row, merged);
        out.setCell(source, row, PatternCell{});
    }
    out.setTrackOctave(source, 0);
    return out;
}

int mergeConflicts(const Pattern& pattern, int target, int source)
{
    if (!isTrack(target) || !isTrack(source) || target == source)
        return 0;
    int conflicts = 0;
    for (int row = 0; row < kRowCount; ++row) {
        if (hasEntry(pattern.cell(target, row)) && hasEntry(pattern.cell(source, row)))
            ++conflicts;
    }
    return conflicts;
}

Pattern moveTrack(const Pattern& pattern, int from, int to)
{
    if (!isTrack(from) || !isTrack(to) || from == to)
        return pattern;
    std::array<int, kTrackCount> order = identity();
    const auto first = order.begin();
    if (from < to)
        std::rotate(first + from, first + from + 1, first + to + 1);
    else
        std::rotate(first + to, first + from, first + from + 1);
    return reordered(pattern, order);
}

Pattern swapTracks(const Pattern& pattern, int a, int b)
{
    if (!isTrack(a) || !isTrack(b) || a == b)
        return pattern;
    std::array<int, kTrackCount> order = identity();
    std::swap(order[static_cast<std::size_t>(a)], order[static_cast<std::size_t>(b)]);
    return reordered(pattern, order);
}

} // namespace part
