#pragma once

#include "song/MachineCatalog.h"
#include "song/MachineDatabase.h"
#include "song/SpecDataStore.h"

#include <filesystem>

namespace song {

/**
 * The machine catalog of a data folder: `machines.ini` (the machine database) and `specdata.dat`
 * (the per-DLL store). Learning and scanning write `machines.ini` through MachineScanner and
 * reload it.
 */
class DataFolderMachineCatalog : public MachineCatalog
{
public:
    explicit DataFolderMachineCatalog(std::filesystem::path directory)
        : m_directory(std::move(directory))
    {}

    music::Result loadDatabase() override;
    std::size_t findByDllName(std::string_view dllName) const override;
    const MachineDatabaseEntry& entry(std::size_t index) const override;
    music::Result learn(const MachineDatabaseEntry& entry) override;
    music::Result scanDll(const std::filesystem::path& dllPath, bool& changed) override;

    void loadMachineData() override;
    bool hasMachineData(std::string_view dllName) const override;
    void addMachineData(std::string dllName, std::vector<std::uint8_t> data,
                        Attributes attributes) override;
    void saveMachineData() override;

    const MachineDatabase& database() const { return m_database; }
    const std::filesystem::path& directory() const { return m_directory; }

private:
    std::filesystem::path m_directory;
    MachineDatabase m_database;
    SpecDataStore m_machineData;
    bool m_machineDataChanged = false;
    bool m_machineDataUsable = false; // false after finding a damaged specdata.dat
};

} // namespace song
