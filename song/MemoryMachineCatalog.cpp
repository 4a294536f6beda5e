#include "song/MemoryMachineCatalog.h"

#include "music/TextLineReader.h"

namespace song {

std::size_t MemoryMachineCatalog::findByDllName(std::string_view dllName) const
{
    std::size_t found = MachineDatabase::kNotFound;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        if (music::equalsIgnoringCase(m_entries[i].dllName, dllName))
            found = i;
    }
    return found;
}

music::Result MemoryMachineCatalog::learn(const MachineDatabaseEntry& entry)
{
    m_entries.push_back(entry);
    return music::Result::success();
}

music::Result MemoryMachineCatalog::scanDll(const std::filesystem::path& /*dllPath*/, bool& changed)
{
    changed = false;
    return music::Result::failure("Error:\nUnable to load library\nmaybe it is no dynamic link "
                                  "library");
}

bool MemoryMachineCatalog::hasMachineData(std::string_view dllName) const
{
    return m_machineData.find(dllName) != m_machineData.end();
}

void MemoryMachineCatalog::addMachineData(std::string dllName, std::vector<std::uint8_t> data,
                                          Attributes attributes)
{
    m_machineData.emplace(std::move(dllName),
                          std::make_pair(std::move(data), std::move(attributes)));
}

} // namespace song
