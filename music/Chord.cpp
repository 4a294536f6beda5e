#include "music/Chord.h"

namespace music {

Chord Chord::fromNotes(std::string name, const std::vector<int>& notes)
{
    Chord chord;
    chord.name = std::move(name);
    for (std::size_t i = 0; i < notes.size() && i < kSlotCount; ++i)
        chord.slots[i] = static_cast<NoteValue>(notes[i]);
    return chord;
}

int Chord::noteCount() const
{
    int count = 0;
    for (const NoteValue slot : slots)
        count += isEmptyNote(slot) ? 0 : 1;
    return count;
}

std::vector<NoteValue> Chord::notes() const
{
    std::vector<NoteValue> out;
    for (const NoteValue slot : slots) {
        if (!isEmptyNote(slot))
            out.push_back(slot);
    }
    return out;
}

} // namespace music
