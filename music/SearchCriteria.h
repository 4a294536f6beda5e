#pragma once

#include "music/Note.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace music {

/**
 * What a chord or scale search looks for: pitch classes that must all be present, a text the
 * name must contain and a text it must not contain. Both texts are kept in lower case and an
 * empty text is no condition.
 */
class SearchCriteria
{
public:
    /** Chord searches look for at most five notes. */
    static constexpr std::size_t kMaxChordNotes = 5;

    using Ticks = std::array<bool, kPitchClassCount>;

    SearchCriteria() = default;

    /** The ticked pitch classes from C upward, the first five only; texts lower-cased. */
    static SearchCriteria forChords(const Ticks& ticks, std::string_view include,
                                    std::string_view skip);
    /** Every ticked pitch class from C upward; texts lower-cased. */
    static SearchCriteria forScales(const Ticks& ticks, std::string_view include,
                                    std::string_view skip);

    const std::vector<PitchClass>& notes() const { return m_notes; }
    const std::string& include() const { return m_include; }
    const std::string& skip() const { return m_skip; }

    /** The text test on a name (the name is lower-cased for the comparison). */
    bool matchesName(std::string_view name) const;
    /**
     * The note test: every searched pitch class is among `present` (indexed by pitch class).
     * Passes when no note is searched.
     */
    bool matchesPitchClasses(const Ticks& present) const;

private:
    std::vector<PitchClass> m_notes;
    std::string m_include;
    std::string m_skip;
    mutable std::string m_buffer; // the lower-cased name, reused to spare allocations
};

} // namespace music
