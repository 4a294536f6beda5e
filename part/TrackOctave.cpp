#include "part/TrackOctave.h"

namespace part {

namespace {

/**
 * Applies a track setting to `octave` in the unsigned arithmetic `Word` on purpose: an octave
 * below 0 wraps to a large number and is then capped at 9 like any octave above 9.
 */
template <typename Word> int resolveOctave(std::uint8_t setting, Word octave)
{
    Word result = octave;
    switch (setting) {
    case 8:
        result = static_cast<Word>(octave - 2);
        break;
    case 9:
        result = static_cast<Word>(octave - 1);
        break;
    case 10:
        result = static_cast<Word>(octave + 1);
        break;
    case 11:
        result = static_cast<Word>(octave + 2);
        break;
    default:
        if (setting >= 1 && setting <= 7)
            result = static_cast<Word>(setting + 1);
        break;
    }
    return result > TrackOctave::kMaxOctave ? TrackOctave::kMaxOctave : static_cast<int>(result);
}

} // namespace

int TrackOctave::forFixedNote(std::uint8_t setting, std::uint8_t baseOctave)
{
    return resolveOctave<std::uint16_t>(setting, baseOctave);
}

int TrackOctave::forChordNote(std::uint8_t setting, std::uint8_t octave)
{
    return resolveOctave<std::uint8_t>(setting, octave);
}

const char* TrackOctave::label(std::uint8_t setting)
{
    static const char* const kLabels[] = {"B", "2", "3",   "4",   "5",   "6",
                                          "7", "8", "B-2", "B-1", "B+1", "B+2"};
    return setting < 12 ? kLabels[setting] : "B";
}

} // namespace part
