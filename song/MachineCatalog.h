#pragma once

#include "music/Result.h"
#include "song/MachineDatabase.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace song {

/**
 * What the song reader needs from the machine database and the per-DLL store: lookups, learning
 * a machine, scanning one DLL, and recording the first machine data seen for each DLL.
 * DataFolderMachineCatalog works on the files of a data folder; MemoryMachineCatalog keeps
 * everything in memory (tests, fuzzing).
 */
class MachineCatalog
{
public:
    using Attributes = std::vector<std::pair<std::string, std::int32_t>>;

    virtual ~MachineCatalog() = default;

    /** (Re)loads the machine database; fails with its message and code 11. */
    virtual music::Result loadDatabase() = 0;
    /** The entry for a DLL name (case-insensitive, the last match wins) or kNotFound. */
    virtual std::size_t findByDllName(std::string_view dllName) const = 0;
    virtual const MachineDatabaseEntry& entry(std::size_t index) const = 0;

    /** Adds a machine learned from a song and reloads the database. */
    virtual music::Result learn(const MachineDatabaseEntry& entry) = 0;
    /** Scans one DLL into the database and reloads it; `changed` tells whether anything was added.
     */
    virtual music::Result scanDll(const std::filesystem::path& dllPath, bool& changed) = 0;

    /** Loads the per-DLL store before the first machine of a song; never fatal. */
    virtual void loadMachineData() = 0;
    virtual bool hasMachineData(std::string_view dllName) const = 0;
    virtual void addMachineData(std::string dllName, std::vector<std::uint8_t> data,
                                Attributes attributes) = 0;
    /** Writes the per-DLL store back after the machines of a song; never fatal. */
    virtual void saveMachineData() = 0;
};

} // namespace song
