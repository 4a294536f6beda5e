#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace song {

/** A parameter as the song's PARA section describes it. */
struct ParameterDescription
{
    std::uint8_t type = 2; // 0 note, 1 switch, 2 byte, 3 word
    std::string name;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    std::int32_t noValue = 0;
    std::int32_t flags = 0;
    std::int32_t defaultValue = 0;

    bool operator==(const ParameterDescription&) const = default;
};

/** The parameter descriptions a song carries for one of its machines (PARA). */
struct MachineParameterSet
{
    std::string machineName;
    std::string dllName;
    std::uint32_t globalCount = 0;
    std::uint32_t trackCount = 0;
    std::vector<ParameterDescription> parameters; // globalCount global ones, then the track ones

    bool operator==(const MachineParameterSet&) const = default;
};

} // namespace song
