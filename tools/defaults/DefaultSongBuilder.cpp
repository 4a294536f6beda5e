// The recipe of the shipped default song (data/default.bmx): the song a newcomer starts from,
// built from the song model and written by the program's own writer, so it is valid by
// construction. The song tests compare data/default.bmx with these bytes; the build target
// regenerate-defaults rewrites the file after a change here.
#include "DefaultSongBuilder.h"

#include "song/MachineDatabase.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <bit>
#include <string>
#include <vector>

namespace defaults {

using song::BuzzSong;
using song::MachineDatabase;
using song::MachineDatabaseEntry;
using song::MachineParameterSet;
using song::ParameterDescription;

namespace {

constexpr std::int32_t kStateFlag = 2; // the tracker keeps the value as machine state

ParameterDescription param(std::uint8_t type, std::string name, std::int32_t minimum,
                           std::int32_t maximum, std::int32_t noValue, std::int32_t defaultValue,
                           std::int32_t flags = kStateFlag)
{
    return {type, std::move(name), minimum, maximum, noValue, flags, defaultValue};
}

/** The master as the tracker describes it: volume 0 is full level. */
MachineParameterSet masterParameters()
{
    return {"Master",
            "Master",
            3,
            0,
            {param(3, "Volume", 0, 0x4000, 0xFFFF, 0), param(3, "BPM", 16, 512, 0xFFFF, 126),
             param(2, "TPB", 1, 32, 0xFF, 4)}};
}

} // namespace

MachineParameterSet dynamiteParameters()
{
    MachineParameterSet set{kDynamiteName, kDynamiteDll, 25, 2, {}};
    auto& p = set.parameters;
    p = {param(2, "Coarse tune", 1, 0xFF, 0, 0x80),     param(2, "Fine tune", 1, 0xFF, 0, 0x80),
         param(2, "Amplification", 1, 0xFF, 0, 0x20),   param(2, "Env Attack", 0, 0xFE, 0xFF, 4),
         param(2, "Env Decay", 1, 0xFF, 0, 0xFF),       param(2, "Routing", 0, 10, 0xFF, 0),
         param(3, "Release_____", 1, 0xFFFF, 0, 0xF000)};
    const std::int32_t pipeLengths[] = {0xFE, 0xFF, 0x100, 0x101, 0x102, 0x100};
    for (int pipe = 1; pipe <= 6; ++pipe) {
        p.push_back(
            param(3, "Pipe" + std::to_string(pipe) + " Length", 1, 1023, 0, pipeLengths[pipe - 1]));
        p.push_back(param(3, std::string(10, ' ') + "FBack", 1, 0xFFFF, 0, 0xF000));
        p.push_back(param(3, "_____Filter___", 1, 0xFFFF, 0, 0x4000));
    }
    p.push_back(param(0, "Note", 1, 156, 0, 0x80, 0)); // a note is an event, not state
    p.push_back(param(2, "Volume", 0, 0xFE, 0xFF, 0x80));
    return set;
}

/** The database entry of the generator: its own descriptions, with the DLL's name and tracks. */
MachineDatabaseEntry dynamiteEntry()
{
    MachineDatabaseEntry e = *song::SongReader::entryFromParameterSet(dynamiteParameters(), 1, 0);
    e.shortName = kDynamiteName;
    e.minTracks = 1;
    e.maxTracks = 32;
    return e;
}

namespace {

/** One row of machine state: state parameters at their defaults, the others at their no-value. */
std::vector<std::uint8_t> stateRow(const MachineParameterSet& set, bool global)
{
    std::vector<std::uint8_t> row;
    for (std::size_t i = 0; i < set.parameters.size(); ++i) {
        if ((i < set.globalCount) != global)
            continue;
        const ParameterDescription& d = set.parameters[i];
        const std::int32_t value = (d.flags & kStateFlag) != 0 ? d.defaultValue : d.noValue;
        row.push_back(static_cast<std::uint8_t>(value & 0xFF));
        if (d.type == 3)
            row.push_back(static_cast<std::uint8_t>((value >> 8) & 0xFF));
    }
    return row;
}

song::SongMachine machineOf(const MachineParameterSet& set, const MachineDatabaseEntry& entry,
                            std::uint16_t tracks, float x, float y)
{
    song::SongMachine m;
    m.name = set.machineName;
    m.type = entry.type;
    m.dllName = entry.type == 0 ? "" : entry.dllName;
    m.x = std::bit_cast<std::uint32_t>(x);
    m.y = std::bit_cast<std::uint32_t>(y);
    m.globalState = stateRow(set, true);
    m.trackCount = tracks;
    const std::vector<std::uint8_t> track = stateRow(set, false);
    for (std::uint16_t t = 0; t < tracks; ++t)
        m.trackState.insert(m.trackState.end(), track.begin(), track.end());
    m.description = entry;
    m.globalRowSize = entry.globalRowSize;
    m.trackRowSize = entry.trackRowSize;
    return m;
}

} // namespace

/**
 * The master and one Dynamite 6 with four tracks feeding it at full level, one empty sequence for
 * the generator, no patterns, 16 ticks looped whole, at 126 BPM and 4 ticks per beat. The song
 * carries the parameter descriptions of both machines, so that a database without the generator
 * can still learn it. The waves table and the wave data are the two zero bytes (no waves) that
 * the tracker itself writes for a song without waves, and the empty song info (BLAH) it always
 * writes is kept as a section of its own.
 */
BuzzSong defaultSong()
{
    const MachineParameterSet master = masterParameters();
    const MachineParameterSet dynamite = dynamiteParameters();
    const MachineDatabaseEntry masterEntry = MachineDatabase::builtInEntries()[0];

    BuzzSong s;
    s.machines() = {machineOf(master, masterEntry, 0, 0.0f, 0.0f),
                    machineOf(dynamite, dynamiteEntry(), kDynamiteTracks, -0.5f, 0.0f)};
    s.patternBlocks() = {{0, {}}, {kDynamiteTracks, {}}};
    s.connections() = {{1, 0, kUnity, kUnity}};
    s.addSequence(1);
    s.setSongLength(16, 0, 16);
    s.parameterSets() = {master, dynamite};
    s.setParameterWindowFlag(1);
    s.setWaveTable({0, 0});
    s.setWaveData({0, 0});
    s.setHasWaveData(true);
    s.rawSections() = {{"BLAH", {0, 0, 0, 0}}};
    return s;
}

music::Result defaultSongBytes(std::string& bytes)
{
    return song::SongWriter::toBytes(defaultSong(), bytes);
}

} // namespace defaults
