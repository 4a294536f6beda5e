#pragma once

#include "music/Result.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace song {

/** Parameter types of a machine; note, switch and byte are one byte wide, word two. */
enum class ParameterType : std::uint8_t
{
    Note = 0,
    Switch = 1,
    Byte = 2,
    Word = 3
};

/** One parameter of a machine as the database describes it. */
struct MachineParameter
{
    std::string name;
    std::uint8_t width = 1; // bytes: 1 or 2
    char scope = 'g';       // 'g' global, 't' per track
    int type = 2;           // ParameterType value as stored; other values are kept as read
    std::int32_t noValue = 0;
    std::int32_t defaultValue = 0;

    bool isGlobal() const { return scope == 'g'; }
};

/** One machine (DLL) of the database. */
struct MachineDatabaseEntry
{
    std::string dllName; // the DLL's file name without extension, or a built-in name
    std::string shortName;
    std::uint8_t type = 1; // 0 master, 1 generator, 2 effect
    std::uint16_t minTracks = 0;
    std::uint16_t maxTracks = 0;
    std::uint16_t totalParameterCount = 0; // as stored; may disagree with the list (the mixer)
    std::uint16_t globalParameterCount = 0;
    std::uint16_t trackParameterCount = 0;
    std::uint8_t globalRowSize = 0;           // bytes of one row of the global parameters
    std::uint8_t trackRowSize = 0;            // bytes of one row of one track
    std::vector<MachineParameter> parameters; // global ones first

    /**
     * The end of the short name of an entry learned from a song: its track range is what that
     * song used, not what the machine allows, and a scan of the machine's DLL replaces it.
     */
    static constexpr std::string_view kLearnedMark = " (learned)";

    /** Index of the parameter with this name (case-insensitive), or -1. */
    int findParameter(std::string_view name) const;
    /** Whether the entry was learned from a song (see kLearnedMark). */
    bool isLearned() const { return shortName.ends_with(kLearnedMark); }
};

/**
 * The machine descriptions of `machines.ini` in the data folder. The song reader resolves every
 * machine of a song through it; the position of an entry is its database index.
 */
class MachineDatabase
{
public:
    static constexpr std::size_t kNotFound = 21000;
    static constexpr int kErrorNotFound = 11; // file error code when machines.ini is missing

    /**
     * Reads `machines.ini` from `directory`: exactly as many entries as its count line says.
     * An entry's parameter lines are counted as its global plus track parameters, not by its
     * stored total: the built-in mixer stores a total of 0 above its eight parameters, and
     * trusting that would misread every entry after it.
     * Fails with "machines.ini not found\n please scan the buzz\gear-directory" and code 11 when
     * the file cannot be opened; an entry that cannot be read discards everything.
     */
    music::Result load(const std::filesystem::path& directory);
    void clear();

    std::size_t size() const { return m_entries.size(); }
    const MachineDatabaseEntry& entry(std::size_t index) const { return m_entries[index]; }
    const std::vector<MachineDatabaseEntry>& entries() const { return m_entries; }
    /** The count line as it was read. */
    std::uint16_t countAsRead() const { return m_countAsRead; }

    /** The entry for a DLL name (case-insensitive; the last match wins), or kNotFound. */
    std::size_t findByDllName(std::string_view dllName) const;

    /** The five entries every full scan writes first: Master, Freeverb, Aux Return, Mixer Aux,
     * Mixer. */
    static std::vector<MachineDatabaseEntry> builtInEntries();

    /** The lines of one entry as machines.ini holds them (ten lines, then six per parameter). */
    static std::string formatEntry(const MachineDatabaseEntry& entry);

private:
    std::vector<MachineDatabaseEntry> m_entries;
    std::uint16_t m_countAsRead = 0;
};

} // namespace song
