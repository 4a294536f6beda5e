#pragma once

#include "music/Note.h"

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace music {

/**
 * A set of pitch classes as twelve bits, bit k for the pitch class k semitones above C. A small
 * value type: the chord namer compares chord types with played notes by masking these bits.
 */
class PitchClassSet
{
public:
    static constexpr std::uint16_t kAll = 0x0FFF;

    constexpr PitchClassSet() = default;
    /** The set of the low twelve bits of `mask`. */
    constexpr explicit PitchClassSet(std::uint16_t mask)
        : m_mask(static_cast<std::uint16_t>(mask & kAll))
    {}
    PitchClassSet(std::initializer_list<int> pitchClasses);

    /** The pitch classes of note values (MIDI note numbers or octave * 12 + pitch class). */
    static PitchClassSet fromNotes(const std::vector<int>& notes);

    constexpr std::uint16_t mask() const { return m_mask; }
    constexpr bool isEmpty() const { return m_mask == 0; }
    constexpr int count() const
    {
        // Three nibbles looked up: the build does not assume a popcount instruction.
        constexpr int kBits[16] = {0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4};
        return kBits[m_mask & 15] + kBits[m_mask >> 4 & 15] + kBits[m_mask >> 8 & 15];
    }
    /** Whether the pitch class of `value` (taken mod 12) is in the set. */
    constexpr bool contains(int value) const { return (m_mask >> wrap(value) & 1U) != 0; }
    constexpr void insert(int value) { m_mask = static_cast<std::uint16_t>(m_mask | bit(value)); }
    constexpr void remove(int value)
    {
        m_mask = static_cast<std::uint16_t>(m_mask & ~bit(value) & kAll);
    }

    /** The set seen from `root`: pitch class root + k becomes k. */
    constexpr PitchClassSet relativeTo(int root) const
    {
        const int r = wrap(root);
        const unsigned m = m_mask;
        return PitchClassSet(static_cast<std::uint16_t>((m >> r | m << (12 - r)) & kAll));
    }
    /** The set moved up by `semitones`; relativeTo(x).transposed(x) is the set itself. */
    constexpr PitchClassSet transposed(int semitones) const { return relativeTo(-semitones); }

    /** The pitch classes in ascending order from C. */
    std::vector<PitchClass> pitchClasses() const;

    friend constexpr bool operator==(PitchClassSet, PitchClassSet) = default;

private:
    static constexpr int wrap(int value) { return ((value % 12) + 12) % 12; }
    static constexpr std::uint16_t bit(int value)
    {
        return static_cast<std::uint16_t>(1U << wrap(value));
    }

    std::uint16_t m_mask = 0;
};

} // namespace music
