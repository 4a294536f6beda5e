#pragma once

#include <cstdint>
#include <vector>

namespace song {

/** One entry of a sequence: at a tick position, a pattern reference (16 + pattern) or a control
 * code. */
struct SequenceEvent
{
    std::uint16_t position = 0;
    std::uint16_t value = 0;

    bool operator==(const SequenceEvent&) const = default;
};

/** The sequence of one machine (SEQU). The stored event count is the size of `events`. */
struct SongSequence
{
    static constexpr std::uint16_t kFirstPatternValue = 16; // values below are control codes

    std::uint16_t machine = 0;
    // Widths as read. The writer stores values in the width SongWriter::valueWidth gives and
    // positions in SongWriter::positionWidth, so that nothing is cut and header and values agree.
    std::uint8_t positionWidth = 1; // bytes per stored position: 1 or 2
    std::uint8_t eventWidth = 1;    // bytes per stored value: 1 or 2
    std::vector<SequenceEvent> events;

    bool operator==(const SongSequence&) const = default;
};

} // namespace song
