#include "music/IntervalTable.h"

#include "music/TextLineReader.h"

#include <array>

namespace music {

namespace {

struct Row
{
    std::string_view symbol;
    std::string_view name;
};

constexpr std::array<Row, IntervalTable::kRowCount> kRows = {{
    {"1", "unison"},
    {"b2", "minor 2nd"},
    {"2", "major 2nd"},
    {"b3", "minor 3rd"},
    {"3", "major 3rd"},
    {"4", "perfect 4th"},
    {"b5", "diminished 5th"},
    {"5", "perfect 5th"},
    {"b6", "minor 6th"},
    {"6", "major 6th"},
    {"b7", "minor 7th"},
    {"7", "major 7th"},
    {"8", "octave"},
    {"b9", "flat 9th"},
    {"9", "9th"},
    {"#9th", "sharp 9th"},
    {"10", "major 10th"},
    {"11", "11th"},
    {"#11", "augmented 11th"},
    {"12", "perfect 12th"},
    {"b13", "flat 13th"},
    {"13", "13th"},
}};

} // namespace

std::string_view IntervalTable::symbol(int semitones)
{
    if (semitones < 0 || semitones >= kRowCount)
        return {};
    return kRows[static_cast<std::size_t>(semitones)].symbol;
}

std::string_view IntervalTable::name(int semitones)
{
    if (semitones < 0 || semitones >= kRowCount)
        return {};
    return kRows[static_cast<std::size_t>(semitones)].name;
}

int IntervalTable::semitonesOfSymbol(std::string_view token)
{
    for (int i = 0; i < kRowCount; ++i) {
        if (equalsIgnoringCase(token, kRows[static_cast<std::size_t>(i)].symbol))
            return i;
    }
    return -1;
}

} // namespace music
