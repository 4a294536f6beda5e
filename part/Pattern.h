#pragma once

#include "part/PatternCell.h"
#include "part/RowRecord.h"
#include "part/TrackOctave.h"

#include <array>
#include <string>

namespace part {

/**
 * One step-sequencer pattern: 8 tracks by 64 rows of cells, held track by track, and one octave
 * setting per track. The size is fixed; files that declare other sizes are read as 8 x 64.
 */
class Pattern
{
public:
    static constexpr const char* kDefaultName = "noname";

    /** An empty pattern named "noname": all cells 0, all track octaves 0. */
    Pattern() = default;
    explicit Pattern(std::string name) : m_name(std::move(name)) {}

    const std::string& name() const { return m_name; }
    void setName(std::string name) { m_name = std::move(name); }

    /** track 0..7, row 0..63; throws std::out_of_range outside (a programming error). */
    const PatternCell& cell(int track, int row) const;
    void setCell(int track, int row, const PatternCell& cell);

    const TrackOctaves& trackOctaves() const { return m_trackOctaves; }
    void setTrackOctaves(const TrackOctaves& block) { m_trackOctaves = block; }
    std::uint8_t trackOctave(int track) const { return m_trackOctaves.at(track); }
    void setTrackOctave(int track, std::uint8_t setting) { m_trackOctaves.at(track) = setting; }

    /** Row 0..63 as renderers read it; an index outside gives an empty row. */
    RowRecord row(int index) const;

    /** The number of cells whose kind is not Nothing. */
    int usedCellCount() const;

    friend bool operator==(const Pattern&, const Pattern&) = default;

private:
    static std::size_t indexOf(int track, int row);

    std::string m_name = kDefaultName;
    std::array<PatternCell, kTrackCount * kRowCount> m_cells{}; // track-major
    TrackOctaves m_trackOctaves{};
};

} // namespace part
