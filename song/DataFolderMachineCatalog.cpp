#include "song/DataFolderMachineCatalog.h"

#include "song/MachineScanner.h"

namespace song {

music::Result DataFolderMachineCatalog::loadDatabase()
{
    m_database.clear();
    return m_database.load(m_directory);
}

std::size_t DataFolderMachineCatalog::findByDllName(std::string_view dllName) const
{
    return m_database.findByDllName(dllName);
}

const MachineDatabaseEntry& DataFolderMachineCatalog::entry(std::size_t index) const
{
    return m_database.entry(index);
}

music::Result DataFolderMachineCatalog::learn(const MachineDatabaseEntry& entry)
{
    if (music::Result added = MachineScanner::addEntry(m_directory, entry); !added)
        return added;
    return loadDatabase();
}

music::Result DataFolderMachineCatalog::scanDll(const std::filesystem::path& dllPath, bool& changed)
{
    if (music::Result scanned = MachineScanner::scanSingleDll(m_directory, dllPath, changed);
        !scanned)
        return scanned;
    return loadDatabase();
}

void DataFolderMachineCatalog::loadMachineData()
{
    // A damaged store must not keep a song from opening; it is then left as it is on disk.
    m_machineDataUsable = m_machineData.load(m_directory).ok();
    m_machineDataChanged = false;
}

bool DataFolderMachineCatalog::hasMachineData(std::string_view dllName) const
{
    return m_machineData.contains(dllName);
}

void DataFolderMachineCatalog::addMachineData(std::string dllName, std::vector<std::uint8_t> data,
                                              Attributes attributes)
{
    m_machineData.add(std::move(dllName), std::move(data), std::move(attributes));
    m_machineDataChanged = true;
}

void DataFolderMachineCatalog::saveMachineData()
{
    // Best effort: a read-only data folder still opens songs.
    if (m_machineDataChanged && m_machineDataUsable)
        m_machineData.save(m_directory);
    m_machineDataChanged = false;
}

} // namespace song
