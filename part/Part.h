#pragma once

#include "part/PartChord.h"
#include "part/PatternList.h"
#include "part/PitchClassFlags.h"

#include <cstdint>
#include <string>
#include <vector>

namespace part {

/** The value of a 16-bit index that points nowhere (no selection, no current chord). */
inline constexpr std::uint16_t kNoIndex = 65000;

/**
 * A part: the ordered chords, the patterns they are rendered through, and the editor state that
 * the part file keeps with them. A plain value; copies are independent.
 *
 * A default-constructed part has no chords and no patterns (as a fresh preset record does);
 * `Part::makeNew()` gives the editor's new part with one empty pattern.
 */
class Part
{
public:
    static constexpr std::uint16_t kDefaultBpm = 126;
    static constexpr std::uint16_t kDefaultTpb = 4;
    static constexpr std::uint8_t kDefaultBaseOctave = 4;
    /** Chord counts are 16-bit in the files. */
    static constexpr int kMaxChords = 65535;

    /** No chords, one empty "noname" pattern, default tempo, base octave and flags. */
    static Part makeNew();

    // The chord list.
    int count() const { return static_cast<int>(m_chords.size()); }
    /** index 0..count()-1; throws std::out_of_range outside. */
    const PartChord& chord(int index) const { return m_chords.at(index); }
    PartChord& chord(int index) { return m_chords.at(index); }
    const std::vector<PartChord>& chords() const { return m_chords; }
    /** False (nothing changes) when the list is full. A length above 64 is lowered to 64. */
    bool append(PartChord chord);
    /**
     * Inserts before `index` (clamped to 0..count()); false when the list is full. A length
     * above 64 is lowered to 64.
     */
    bool insert(int index, PartChord chord);
    /** Out of range: nothing happens. */
    void remove(int index);
    void clearChords() { m_chords.clear(); }

    /** The name of the chord list (saved with it; empty by default). */
    const std::string& name() const { return m_name; }
    void setName(std::string name) { m_name = std::move(name); }

    const PatternList& patterns() const { return m_patterns; }
    PatternList& patterns() { return m_patterns; }

    /** The base octave B that track octaves resolve against. */
    std::uint8_t baseOctave() const { return m_baseOctave; }
    void setBaseOctave(std::uint8_t octave) { m_baseOctave = octave; }

    /** The pattern shown in the editor; new chords get it. */
    std::uint16_t currentPattern() const { return m_currentPattern; }
    void setCurrentPattern(std::uint16_t index) { m_currentPattern = index; }

    /** The selected range of chords; kNoIndex in either field means no selection. */
    std::uint16_t selectionFirst() const { return m_selectionFirst; }
    std::uint16_t selectionLast() const { return m_selectionLast; }
    void setSelection(std::uint16_t first, std::uint16_t last)
    {
        m_selectionFirst = first;
        m_selectionLast = last;
    }
    bool hasSelection() const
    {
        return m_selectionFirst != kNoIndex && m_selectionLast != kNoIndex;
    }

    const PitchClassFlags& pitchClassFlags() const { return m_flags; }
    void setPitchClassFlags(const PitchClassFlags& flags) { m_flags = flags; }

    /** Tempo: one pattern row lasts 60000 / (bpm * tpb) milliseconds. */
    std::uint16_t beatsPerMinute() const { return m_bpm; }
    std::uint16_t ticksPerBeat() const { return m_tpb; }
    void setTempo(std::uint16_t bpm, std::uint16_t tpb)
    {
        m_bpm = bpm;
        m_tpb = tpb;
    }

    friend bool operator==(const Part&, const Part&) = default;

private:
    std::string m_name;
    std::vector<PartChord> m_chords;
    PatternList m_patterns;
    std::uint8_t m_baseOctave = kDefaultBaseOctave;
    std::uint16_t m_currentPattern = 0;
    std::uint16_t m_selectionFirst = kNoIndex;
    std::uint16_t m_selectionLast = kNoIndex;
    PitchClassFlags m_flags = kAllPitchClassesAllowed;
    std::uint16_t m_bpm = kDefaultBpm;
    std::uint16_t m_tpb = kDefaultTpb;
};

} // namespace part
