#pragma once

#include "music/ChordSection.h"

#include <string>
#include <vector>

namespace music {

/** The top level of a chord collection: a named list of sections (at most 65535). */
struct ChordBaseGroup
{
    std::string name;
    std::vector<ChordSection> sections;

    friend bool operator==(const ChordBaseGroup&, const ChordBaseGroup&) = default;
};

} // namespace music
