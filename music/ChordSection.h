#pragma once

#include "music/ChordSubsection.h"
#include "music/Note.h"

#include <string>
#include <vector>

namespace music {

/**
 * The second level of a chord collection. With the scale flag set it is a scale group: a note is
 * allowed in it only when its pitch class equals one of `notes` (at most 255 values; "Add
 * Scale/Group" stores pitch classes, and a larger value read from a file allows nothing, while
 * the scale search takes every listed value modulo 12). Without the flag every note is allowed
 * and `notes` is not stored.
 */
struct ChordSection
{
    std::string name;
    bool scaleFlag = false;
    std::vector<NoteValue> notes;
    std::vector<ChordSubsection> subsections;

    /** Whether a note of this pitch class (or note value) is allowed in the section. */
    bool allows(int note) const
    {
        if (!scaleFlag)
            return true;
        for (const NoteValue listed : notes) {
            if (listed == pitchClassOf(note))
                return true;
        }
        return false;
    }

    friend bool operator==(const ChordSection&, const ChordSection&) = default;
};

} // namespace music
