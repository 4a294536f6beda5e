#pragma once

#include "part/Part.h"

#include <string>

namespace part {

/**
 * One part preset: a named copy of a part's chords, patterns, tempo, selection, base octave and
 * flags. A new record is named "noname" with 126 BPM, 4 TPB, base octave 4, all flags 1, no
 * selection and empty chord and pattern lists. The current pattern is not kept (it reads as 0).
 */
struct PartPreset
{
    static constexpr const char* kDefaultName = "noname";

    std::string name = kDefaultName;
    Part part;

    friend bool operator==(const PartPreset&, const PartPreset&) = default;
};

} // namespace part
