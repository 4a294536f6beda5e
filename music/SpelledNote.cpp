#include "music/SpelledNote.h"

#include <array>
#include <cctype>

namespace music {

namespace {

constexpr std::array<PitchClass, 7> kLetterPitchClasses = {0, 2, 4, 5, 7, 9, 11};
constexpr std::string_view kLetters = "CDEFGAB";

} // namespace

PitchClass SpelledNote::letterPitchClass(int letter)
{
    return kLetterPitchClasses[static_cast<std::size_t>(((letter % 7) + 7) % 7)];
}

PitchClass SpelledNote::pitchClass() const
{
    return pitchClassOf(letterPitchClass(letter) + accidental + 12);
}

std::string SpelledNote::text() const
{
    std::string out(1, kLetters[letter % 7]);
    for (int i = 0; i < accidental; ++i)
        out += '#';
    for (int i = 0; i > accidental; --i)
        out += 'b';
    return out;
}

std::optional<SpelledNote> SpelledNote::parse(std::string_view text)
{
    if (text.empty() || text.size() > 3)
        return std::nullopt;
    const std::size_t letter =
        kLetters.find(static_cast<char>(std::toupper(static_cast<unsigned char>(text[0]))));
    if (letter == std::string_view::npos)
        return std::nullopt;
    const std::string_view rest = text.substr(1);
    if (rest.find_first_not_of('#') != std::string_view::npos &&
        rest.find_first_not_of('b') != std::string_view::npos)
        return std::nullopt;
    const int count = static_cast<int>(rest.size());
    const bool sharp = !rest.empty() && rest[0] == '#';
    return SpelledNote{static_cast<std::uint8_t>(letter),
                       static_cast<std::int8_t>(sharp ? count : -count)};
}

std::optional<SpelledNote> SpelledNote::above(SpelledNote root, int semitones, int degree)
{
    const int letter = (root.letter + degree - 1) % 7;
    const int target = (root.pitchClass() + semitones) % 12;
    int accidental = (target - letterPitchClass(letter) + 12) % 12;
    if (accidental > 6)
        accidental -= 12;
    if (accidental < -2 || accidental > 2)
        return std::nullopt;
    return SpelledNote{static_cast<std::uint8_t>(letter), static_cast<std::int8_t>(accidental)};
}

} // namespace music
