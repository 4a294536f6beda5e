#pragma once

#include "song/MachineCatalog.h"

#include <map>

namespace song {

/** A machine catalog held in memory; scanning a DLL is not possible and always fails. */
class MemoryMachineCatalog : public MachineCatalog
{
public:
    MemoryMachineCatalog() = default;
    explicit MemoryMachineCatalog(std::vector<MachineDatabaseEntry> entries)
        : m_entries(std::move(entries))
    {}

    music::Result loadDatabase() override { return music::Result::success(); }
    std::size_t findByDllName(std::string_view dllName) const override;
    const MachineDatabaseEntry& entry(std::size_t index) const override { return m_entries[index]; }
    music::Result learn(const MachineDatabaseEntry& entry) override;
    music::Result scanDll(const std::filesystem::path& dllPath, bool& changed) override;

    void loadMachineData() override {}
    bool hasMachineData(std::string_view dllName) const override;
    void addMachineData(std::string dllName, std::vector<std::uint8_t> data,
                        Attributes attributes) override;
    void saveMachineData() override {}

    const std::vector<MachineDatabaseEntry>& entries() const { return m_entries; }
    std::size_t machineDataCount() const { return m_machineData.size(); }

private:
    std::vector<MachineDatabaseEntry> m_entries;
    std::map<std::string, std::pair<std::vector<std::uint8_t>, Attributes>, std::less<>>
        m_machineData;
};

} // namespace song
