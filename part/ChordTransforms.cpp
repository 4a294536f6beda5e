#include "part/ChordTransforms.h"

#include "part/ChordName.h"

#include <algorithm>
#include <functional>
#include <set>
#include <string>

namespace part {

namespace {

/** A chord's meaningful notes as ints, so arithmetic may leave the byte range before checks. */
std::vector<int> notesOf(const PartChord& chord)
{
    const int count = std::min<int>(chord.noteCount, PartChord::kMaxNotes);
    return std::vector<int>(chord.notes.begin(), chord.notes.begin() + count);
}

void setNotes(PartChord& chord, const std::vector<int>& notes)
{
    for (std::size_t i = 0; i < notes.size(); ++i)
        chord.notes[i] = static_cast<music::NoteValue>(notes[i]);
}

/** The position of the lowest note, the first of equal ones. Needs a non-empty list. */
std::size_t lowestIndex(const std::vector<int>& notes)
{
    return static_cast<std::size_t>(std::min_element(notes.begin(), notes.end()) - notes.begin());
}

int floorDiv(int value, int divisor)
{
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

/** Sorted, unique and inside the part. */
std::vector<int> validSelection(const Part& part, const ChordSelection& selection)
{
    std::set<int> unique;
    for (int index : selection) {
        if (index >= 0 && index < part.count())
            unique.insert(index);
    }
    return {unique.begin(), unique.end()};
}

bool inRange(const std::vector<int>& notes)
{
    return std::all_of(notes.begin(), notes.end(),
                       [](int n) { return n >= kLowestNote && n <= kHighestNote; });
}

std::string outOfRangeMessage(const Part& part, const std::vector<int>& chords)
{
    std::string names;
    for (std::size_t i = 0; i < chords.size() && i < 5; ++i)
        names += (i ? ", \"" : "\"") + part.chord(chords[i]).name + "\"";
    if (chords.size() > 5)
        names += ", ...";
    return "Notes of " + names + " would leave the note range " +
           music::noteNameWithOctave(kLowestNote) + ".." + music::noteNameWithOctave(kHighestNote) +
           "; nothing was changed.";
}

/**
 * Applies `change` to the notes of every selected chord, all or nothing: when a result leaves
 * the note range the part is returned unchanged with those chords listed.
 */
ChordEdit editNotes(const Part& part, const ChordSelection& selection,
                    const std::function<std::vector<int>(std::vector<int>)>& change)
{
    ChordEdit edit{part, music::Result::success(), {}, {}};
    std::vector<std::pair<int, std::vector<int>>> changed;
    for (int index : validSelection(part, selection)) {
        std::vector<int> notes = notesOf(part.chord(index));
        if (notes.empty())
            continue;
        notes = change(std::move(notes));
        if (!inRange(notes))
            edit.outOfRange.push_back(index);
        changed.emplace_back(index, std::move(notes));
    }
    if (!edit.outOfRange.empty()) {
        edit.result = music::Result::failure(outOfRangeMessage(part, edit.outOfRange));
        return edit;
    }
    for (const auto& [index, notes] : changed)
        setNotes(edit.part.chord(index), notes);
    return edit;
}

std::vector<int> closePosition(std::vector<int> notes)
{
    const std::size_t low = lowestIndex(notes);
    const int bass = music::pitchClassOf(notes[low]);
    std::vector<int> out(notes.size());
    std::set<int> used{bass};
    out[low] = bass;
    for (std::size_t i = 0; i < notes.size(); ++i) {
        if (i == low)
            continue;
        int value = bass + ((notes[i] % 12 - bass) % 12 + 12) % 12;
        while (used.count(value) != 0)
            value += 12;
        used.insert(value);
        out[i] = value;
    }
    return out;
}

} // namespace

ChordSelection allChords(const Part& part)
{
    return part.count() == 0 ? ChordSelection{} : chordRange(0, part.count() - 1);
}

ChordSelection chordRange(int first, int last)
{
    if (first > last)
        std::swap(first, last);
    ChordSelection out;
    for (int i = std::max(first, 0); i <= last; ++i)
        out.push_back(i);
    return out;
}

ChordSelection selectedChords(const Part& part)
{
    if (!part.hasSelection())
        return {};
    return chordRange(part.selectionFirst(), part.selectionLast());
}

ChordEdit transposeChords(const Part& part, const ChordSelection& selection, int halfNotes)
{
    ChordEdit edit = editNotes(part, selection, [halfNotes](std::vector<int> notes) {
        for (int& n : notes)
            n += halfNotes;
        return notes;
    });
    if (!edit)
        return edit;
    for (int index : validSelection(part, selection)) {
        PartChord& chord = edit.part.chord(index);
        if (ChordName::needsMark(chord.name, halfNotes))
            edit.markedNames.push_back(index);
        chord.name = ChordName::transposed(chord.name, halfNotes);
    }
    return edit;
}

Part normalizeChords(const Part& part, const ChordSelection& selection)
{
    // Close position never leaves the range: 11 + 11 + 12 * 6 is the highest it can give.
    return editNotes(part, selection, closePosition).part;
}

ChordEdit invertChords(const Part& part, const ChordSelection& selection)
{
    return editNotes(part, selection, [](std::vector<int> notes) {
        notes[lowestIndex(notes)] += 12;
        return notes;
    });
}

ChordEdit mirrorChords(const Part& part, const ChordSelection& selection, MirrorAxis axis)
{
    const int twiceAxis = 2 * (axis.note % 12) + (axis.halfStepAbove ? 1 : 0);
    return editNotes(part, selection, [twiceAxis](std::vector<int> notes) {
        const int octave = floorDiv(notes[lowestIndex(notes)], 12);
        for (int& n : notes)
            n = twiceAxis - n;
        const int shift = 12 * (octave - floorDiv(notes[lowestIndex(notes)], 12));
        for (int& n : notes)
            n += shift;
        return notes;
    });
}

ChordEdit limitChordNotes(const Part& part, const ChordSelection& selection, int low, int high)
{
    if (low < kLowestNote || high > kHighestNote || low > high || high - low < 11) {
        return ChordEdit{part,
                         music::Result::failure("The note limits must lie within " +
                                                music::noteNameWithOctave(kLowestNote) + ".." +
                                                music::noteNameWithOctave(kHighestNote) +
                                                " and span at least an octave."),
                         {},
                         {}};
    }
    return editNotes(part, selection, [low, high](std::vector<int> notes) {
        for (int& n : notes) {
            if (n < low)
                n += 12 * ((low - n + 11) / 12);
            else if (n > high)
                n -= 12 * ((n - high + 11) / 12);
        }
        return notes;
    });
}

} // namespace part
