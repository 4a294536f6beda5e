#pragma once

#include "song/MachineDatabase.h"

#include <cstdint>
#include <string>
#include <vector>

namespace song {

/** A named value the tracker stores with a machine. */
struct MachineAttribute
{
    std::string name;
    std::int32_t value = 0;

    bool operator==(const MachineAttribute&) const = default;
};

/** One machine of a song's MACH section. */
struct SongMachine
{
    std::string name;      // unique within the song; PARA, MIDI and PDLG refer to it
    std::uint8_t type = 1; // 0 master, otherwise a DLL machine (1 generator, 2 effect as read)
    std::string dllName;   // empty for the master
    std::uint32_t x = 0;   // position, the tracker's float bits kept exactly
    std::uint32_t y = 0;
    std::vector<std::uint8_t> data; // the machine's own data, kept raw
    std::vector<MachineAttribute> attributes;
    std::vector<std::uint8_t> globalState; // globalRowSize bytes: current global values
    std::uint16_t trackCount = 0;
    std::vector<std::uint8_t> trackState; // trackRowSize * trackCount bytes

    // Resolved through the machine database when the song was read.
    std::size_t databaseIndex = MachineDatabase::kNotFound;
    std::uint16_t globalRowSize = 0; // bytes
    std::uint16_t trackRowSize = 0;  // bytes of one track
    /** The database entry the machine resolved to, copied so that edits need no database. */
    MachineDatabaseEntry description;

    bool isMaster() const { return type == 0; }
};

} // namespace song
