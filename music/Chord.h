#pragma once

#include "music/Note.h"

#include <array>
#include <string>
#include <vector>

namespace music {

/** A concrete chord of a collection: a name and five note slots filled from the front. */
struct Chord
{
    static constexpr int kSlotCount = 5;

    std::string name;
    /** Note values; kEmptyNote (or anything from 120 up) marks an empty slot. */
    std::array<NoteValue, kSlotCount> slots{kEmptyNote, kEmptyNote, kEmptyNote, kEmptyNote,
                                            kEmptyNote};

    /** A chord holding the first five of `notes`, the rest of the slots empty. */
    static Chord fromNotes(std::string name, const std::vector<int>& notes);

    /** The number of slots holding a note (below 120), wherever they are. */
    int noteCount() const;
    /** The notes of the used slots, in slot order. */
    std::vector<NoteValue> notes() const;

    friend bool operator==(const Chord&, const Chord&) = default;
};

} // namespace music
