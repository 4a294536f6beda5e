#include "song/BuzzNote.h"

namespace song {

std::uint8_t BuzzNote::encode(int pitchClass, int octave)
{
    if (pitchClass == kEmptyMarker || octave == kEmptyMarker)
        return kNoNote;
    return static_cast<std::uint8_t>(octave * 16 + pitchClass + 1);
}

BuzzNote::Decoded BuzzNote::decode(std::uint8_t value)
{
    if (value == kNoNote)
        return {};
    const int v = value - 1;
    return {v % 16, v / 16};
}

} // namespace song
