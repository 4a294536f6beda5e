#pragma once

#include "music/ChordCollection.h"
#include "music/ChordTypeList.h"
#include "music/ScaleList.h"

#include <array>
#include <string_view>

namespace music {

/**
 * The recipe of the shipped "default.crd": "Generate List" over the shipped chord types, plus a
 * base group "Scales" with the common scales on all twelve roots, so that a scale search finds
 * something out of the box. tools/make-default-crd.sh writes the file with it, and a test checks
 * that the shipped file is what the recipe gives.
 */
class DefaultDatabase
{
public:
    /** The scales of the "Scales" group, by their names in the shipped "default.scl". */
    static constexpr std::array<std::string_view, 12> kScaleGroups = {
        "major",         "natural minor",    "harmonic minor",
        "melodic minor", "major pentatonic", "minor pentatonic",
        "blues",         "dorian",           "phrygian",
        "lydian",        "mixolydian",       "locrian"};

    /** Builds the database; names of kScaleGroups missing from `scales` are left out. */
    static ChordCollection build(const ChordTypeList& types, const ScaleList& scales);
};

} // namespace music
