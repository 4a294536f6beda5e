#pragma once

#include "music/Chord.h"

#include <string>
#include <vector>

namespace music {

/** The third level of a chord collection: a named list of chords (at most 65535). */
struct ChordSubsection
{
    std::string name;
    std::vector<Chord> chords;

    friend bool operator==(const ChordSubsection&, const ChordSubsection&) = default;
};

} // namespace music
