#include "part/ChordOrder.h"

#include "music/TextLineReader.h"

#include <algorithm>
#include <set>

namespace part {

namespace {

std::vector<int> validSelection(const Part& part, const ChordSelection& selection)
{
    std::set<int> unique;
    for (int index : selection) {
        if (index >= 0 && index < part.count())
            unique.insert(index);
    }
    return {unique.begin(), unique.end()};
}

std::vector<int> sortedNotes(const PartChord& chord)
{
    const int count = std::min<int>(chord.noteCount, PartChord::kMaxNotes);
    std::vector<int> notes(chord.notes.begin(), chord.notes.begin() + count);
    std::sort(notes.begin(), notes.end());
    return notes;
}

bool less(const PartChord& a, const PartChord& b, ChordSortKey key)
{
    if (key == ChordSortKey::Name)
        return music::toLower(a.name) < music::toLower(b.name);
    return sortedNotes(a) < sortedNotes(b);
}

/**
 * Where a selection field points after the chords in `removed` (sorted) are gone; a field on a
 * removed chord moves to the equal chord before it.
 */
std::uint16_t remapped(std::uint16_t index, const std::vector<int>& removed, int newCount)
{
    if (index == kNoIndex || newCount == 0)
        return kNoIndex;
    const auto before = std::upper_bound(removed.begin(), removed.end(), index) - removed.begin();
    const int moved = std::min(static_cast<int>(index) - static_cast<int>(before), newCount - 1);
    return static_cast<std::uint16_t>(std::max(moved, 0));
}

} // namespace

bool sameNotes(const PartChord& a, const PartChord& b)
{
    const int count = std::min<int>(a.noteCount, PartChord::kMaxNotes);
    return a.noteCount == b.noteCount &&
           std::equal(a.notes.begin(), a.notes.begin() + count, b.notes.begin());
}

Part sortChords(const Part& part, const ChordSelection& selection, ChordSortKey key,
                bool descending)
{
    const std::vector<int> positions = validSelection(part, selection);
    std::vector<PartChord> chords;
    for (int index : positions)
        chords.push_back(part.chord(index));
    std::stable_sort(chords.begin(), chords.end(), [&](const PartChord& a, const PartChord& b) {
        return descending ? less(b, a, key) : less(a, b, key);
    });
    Part out = part;
    for (std::size_t i = 0; i < positions.size(); ++i)
        out.chord(positions[i]) = std::move(chords[i]);
    return out;
}

Part removeDoubleChords(const Part& part, const ChordSelection& selection)
{
    const std::vector<int> positions = validSelection(part, selection);
    const std::set<int> selected(positions.begin(), positions.end());
    std::vector<int> removed;
    for (int index : positions) {
        if (selected.count(index - 1) != 0 && sameNotes(part.chord(index - 1), part.chord(index)))
            removed.push_back(index);
    }
    if (removed.empty())
        return part;
    Part out = part;
    for (auto it = removed.rbegin(); it != removed.rend(); ++it)
        out.remove(*it);
    out.setSelection(remapped(part.selectionFirst(), removed, out.count()),
                     remapped(part.selectionLast(), removed, out.count()));
    return out;
}

} // namespace part
