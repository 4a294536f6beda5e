#include "song/MachineClip.h"

#include "song/MachineEdits.h"

namespace song {

namespace {

/** Whether every byte count of the clip agrees with its machine's row sizes. */
bool fits(const MachineClip& clip)
{
    const SongMachine& m = clip.machine;
    if (m.globalState.size() != m.globalRowSize ||
        m.trackState.size() != std::size_t{m.trackRowSize} * m.trackCount)
        return false;
    for (const SongPattern& p : clip.patterns.patterns) {
        if (p.globalRows.size() != std::size_t{p.rows} * m.globalRowSize ||
            p.trackRows.size() != std::size_t{p.rows} * m.trackRowSize * clip.patterns.trackCount)
            return false;
    }
    return true;
}

} // namespace

music::Result copyMachine(const BuzzSong& song, std::size_t machine, MachineClip& clip)
{
    if (machine >= song.machineCount() || machine >= song.patternBlocks().size())
        return music::Result::failure("The song has no machine " + std::to_string(machine) + ".");
    if (song.machines()[machine].isMaster())
        return music::Result::failure("The master cannot be copied: a song has one master.");
    MachineClip copy;
    copy.machine = song.machines()[machine];
    copy.patterns = song.patternBlocks()[machine];
    for (SongPattern& p : copy.patterns.patterns)
        p.inputs.clear();
    if (const std::size_t set = song.findParameterSet(copy.machine.name);
        set != BuzzSong::kNameNotFound)
        copy.parameterSet = song.parameterSets()[set];
    clip = std::move(copy);
    return music::Result::success();
}

music::Result pasteMachine(BuzzSong& song, const MachineClip& clip,
                           std::optional<std::size_t> connectTo, std::size_t& pasted)
{
    if (clip.machine.isMaster())
        return music::Result::failure("A song has one master; it cannot take another.");
    if (!fits(clip))
        return music::Result::failure("The copied machine is damaged and cannot be pasted.");
    std::size_t destination = 0;
    if (music::Result target = newMachineDestination(song, connectTo, destination); !target)
        return target;
    if (music::Result room = checkRoomForMachine(song, 1); !room)
        return room;

    SongMachine m = clip.machine;
    m.name = freeMachineName(song, clip.machine.name);
    std::tie(m.x, m.y) = freeMachinePosition(song, m.type == 2);
    MachinePatterns patterns = clip.patterns;
    for (SongPattern& p : patterns.patterns)
        p.inputs.clear();
    if (clip.parameterSet) {
        MachineParameterSet set = *clip.parameterSet;
        set.machineName = m.name;
        song.parameterSets().push_back(std::move(set));
    }
    const std::size_t index = song.machineCount();
    song.machines().push_back(std::move(m));
    song.patternBlocks().push_back(std::move(patterns));
    song.addConnection({static_cast<std::uint16_t>(index), static_cast<std::uint16_t>(destination),
                        kUnityAmplitude, kCentrePanning});
    pasted = index;
    return music::Result::success();
}

} // namespace song
