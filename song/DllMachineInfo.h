#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace song {

/** One parameter description as a machine DLL's `GetInfo` record holds it. */
struct DllParameterInfo
{
    std::int32_t type = 2; // 0 note, 1 switch, 2 byte, 3 word; other values kept as read
    std::string name;
    std::string description;
    std::int32_t minValue = 0;
    std::int32_t maxValue = 0;
    std::int32_t noValue = 0;
    std::int32_t flags = 0;
    std::int32_t defaultValue = 0;
};

/**
 * The machine description a machine DLL gives through `GetInfo`: the fields the machine database
 * needs plus a few that `dll-info` shows. Counts are kept as the DLL states them.
 */
struct DllMachineInfo
{
    std::int32_t type = 0; // the DLL's own type field; the database takes the type from the folder
    std::int32_t version = 0;
    std::int32_t flags = 0;
    std::int32_t minTracks = 0;
    std::int32_t maxTracks = 0;
    std::int32_t globalParameterCount = 0;
    std::int32_t trackParameterCount = 0;
    std::string name;
    std::string shortName;
    std::string author;
    std::vector<DllParameterInfo> parameters; // global ones first, then the track ones
    bool is64Bit = false;                     // the image is PE32+
};

} // namespace song
