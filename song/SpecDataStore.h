#pragma once

#include "music/Result.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace song {

/** The machine data and attributes of the first song machine seen with one DLL. */
struct SpecDataEntry
{
    std::string dllName;
    std::vector<std::uint8_t> machineData;
    std::vector<std::pair<std::string, std::int32_t>> attributes; // name, value
};

/**
 * The per-DLL store `specdata.dat` in the data folder, so that new machines can be created with
 * valid machine data. Binary, little-endian: entry count (u16); per entry the DLL-name length
 * (u16) and the name without a zero byte, the machine data size (u32) and the data, the attribute
 * count (u16), then per attribute its name with a zero byte and its value (s32).
 *
 * DLL names are compared ignoring case, as the machine database does.
 */
class SpecDataStore
{
public:
    static constexpr std::string_view kFileName = "specdata.dat";
    static constexpr int kErrorDamaged = 12; // code of a load that found a damaged file

    /**
     * Reads `specdata.dat` from `directory`, replacing what the store held. A missing file gives
     * an empty store and an empty file is written at once (best effort: a folder that cannot be
     * written still gives an empty store and success). A file that is cut short or whose
     * lengths run past its end fails with "specdata.dat is damaged" and leaves the store empty.
     */
    music::Result load(const std::filesystem::path& directory);
    /** Parses the bytes of a `specdata.dat`; every length is checked against what remains. */
    music::Result loadFromBytes(std::string_view bytes);

    /** Writes the whole store to `directory` through a safe file writer. */
    music::Result save(const std::filesystem::path& directory) const;
    /** The bytes `save` writes. At most 65535 entries are written (the count is 16-bit). */
    std::string toBytes() const;

    bool contains(std::string_view dllName) const { return find(dllName) != nullptr; }
    /** The entry of a DLL (case-insensitive), or nullptr. The pointer lives until the next change.
     */
    const SpecDataEntry* find(std::string_view dllName) const;

    /** Adds an entry; does nothing when the DLL already has one (the first machine seen wins). */
    void add(std::string dllName, std::vector<std::uint8_t> machineData,
             std::vector<std::pair<std::string, std::int32_t>> attributes);

    std::size_t size() const { return m_entries.size(); }
    const std::vector<SpecDataEntry>& entries() const { return m_entries; }
    void clear() { m_entries.clear(); }

private:
    std::vector<SpecDataEntry> m_entries;
};

} // namespace song
