#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace song {

/** A MIDI controller binding of the MIDI section; its five bytes belong to the tracker. */
struct MidiBinding
{
    std::string machineName;
    std::array<std::uint8_t, 5> bytes{};

    bool operator==(const MidiBinding&) const = default;
};

} // namespace song
