#include "music/KnownChordType.h"

namespace music {

int KnownChordType::naturalSemitones(int degree)
{
    // The major scale, continued over a second octave.
    static constexpr std::array<int, 7> kMajor = {0, 2, 4, 5, 7, 9, 11};
    if (degree < 1)
        return 0;
    return kMajor[static_cast<std::size_t>((degree - 1) % 7)] + 12 * ((degree - 1) / 7);
}

std::string KnownChordType::degreeText(int degree, int semitones)
{
    const int accidental = semitones - naturalSemitones(degree);
    std::string out;
    for (int i = 0; i < accidental; ++i)
        out += '#';
    for (int i = 0; i > accidental; --i)
        out += 'b';
    return out + std::to_string(degree);
}

std::string KnownChordType::degreeText(int pitchClass) const
{
    const std::size_t at = static_cast<std::size_t>(pitchClass);
    if (pitchClass < 0 || pitchClass > 11 || degree[at] == 0)
        return {};
    return degreeText(degree[at], semitones[at]);
}

} // namespace music
