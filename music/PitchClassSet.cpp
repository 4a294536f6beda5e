#include "music/PitchClassSet.h"

namespace music {

PitchClassSet::PitchClassSet(std::initializer_list<int> pitchClasses)
{
    for (const int pc : pitchClasses)
        insert(pc);
}

PitchClassSet PitchClassSet::fromNotes(const std::vector<int>& notes)
{
    PitchClassSet set;
    for (const int note : notes)
        set.insert(note);
    return set;
}

std::vector<PitchClass> PitchClassSet::pitchClasses() const
{
    std::vector<PitchClass> out;
    for (int pc = 0; pc < kPitchClassCount; ++pc) {
        if (contains(pc))
            out.push_back(static_cast<PitchClass>(pc));
    }
    return out;
}

} // namespace music
