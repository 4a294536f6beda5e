#pragma once

#include <string_view>

namespace music {

/**
 * The fixed table of the intervals a chord is built from: 22 rows for 0..21 semitones above the
 * chord's base note, each with the symbol used in construction strings and the name shown in the
 * interval list. The symbol of 15 semitones is "#9th" (with the letters), every other symbol is
 * bare; stored chord-type files rely on that spelling.
 */
class IntervalTable
{
public:
    static constexpr int kRowCount = 22;

    /** The symbol of `semitones` (0..21); empty text outside that range. */
    static std::string_view symbol(int semitones);
    /** The name of `semitones` (0..21); empty text outside that range. */
    static std::string_view name(int semitones);
    /** The semitone count whose symbol equals `token` ignoring case; -1 when none does. */
    static int semitonesOfSymbol(std::string_view token);
};

} // namespace music
