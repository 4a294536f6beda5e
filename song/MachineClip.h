#pragma once

#include "music/Result.h"
#include "song/BuzzSong.h"

#include <cstddef>
#include <optional>

namespace song {

/**
 * A machine with its patterns, lifted out of one song to paste into another song or the same one:
 * what the window's clipboard carries. A plain value that holds no index into its song: the
 * machine's record, state and database description, its patterns without their input blocks
 * (those belong to the connections of the song it came from), and the song's description of its
 * parameters when the song had one.
 */
struct MachineClip
{
    SongMachine machine;
    MachinePatterns patterns;
    std::optional<MachineParameterSet> parameterSet;

    bool operator==(const MachineClip&) const = default;
};

/** Copies machine `machine` into `clip`; the master cannot be copied (a song has one). */
music::Result copyMachine(const BuzzSong& song, std::size_t machine, MachineClip& clip);

/**
 * Adds the clip's machine as the last machine of `song`: a free name after the clip's
 * (freeMachineName), a free position, its patterns and parameter set, and one connection at full
 * level to the master or to `connectTo` (the master or an effect). Its sequences and
 * connections stay behind in the song it came from. A clip whose patterns or state don't fit its
 * machine's row sizes is refused. `pasted` receives the new machine's index.
 */
music::Result pasteMachine(BuzzSong& song, const MachineClip& clip,
                           std::optional<std::size_t> connectTo, std::size_t& pasted);

} // namespace song
