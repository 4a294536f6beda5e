#pragma once

#include "music/Result.h"
#include "song/BuzzSong.h"

#include <cstddef>
#include <vector>

namespace song {

/**
 * Removing machines and patterns from a song, keeping every reference consistent so that the
 * song still writes and reads back. A sequence event refers to pattern j of its machine by the
 * value j + 16; values below 16 are the tracker's control codes and are never changed.
 * Machine indices out of range make these do nothing.
 */

/** Why the master stays: every song needs the machine that all sound ends in. */
inline constexpr const char* kMasterCannotBeRemoved =
    "The master cannot be removed: every song needs it, all sound ends there.";

/**
 * Removes machine `machine` and what refers to it: MIDI bindings whose name is the single
 * character with the index's low byte as code (how the program has always matched them), its
 * parameter set and parameter window (by name), its pattern block and the input blocks fed by it,
 * its connections, and its sequences. Higher machine indices move down by one everywhere.
 * The master is refused with kMasterCannotBeRemoved and an index out of range with a message;
 * the song is then unchanged.
 */
music::Result removeMachine(BuzzSong& song, std::size_t machine);

/** Removes pattern j: its sequence events go, higher pattern references move down by one. */
void removePattern(BuzzSong& song, std::size_t machine, std::size_t pattern);

/** Removes the patterns at these positions (ascending) of the machine's list, as one selection. */
void removePatterns(BuzzSong& song, std::size_t machine, const std::vector<std::size_t>& selected);

/** Removes every pattern of the machine and every sequence of it. */
void removeAllPatterns(BuzzSong& song, std::size_t machine);

/** Removes the patterns that no sequence of the machine refers to. */
void removeUnusedPatterns(BuzzSong& song, std::size_t machine);

/**
 * Cuts every pattern of the machine after its last row with a note (other parameters do not
 * count; a pattern without notes keeps its length), then, when the note parameter is a track
 * parameter, removes the tracks that hold no note in any pattern, from the patterns and from the
 * machine's track state.
 */
void trimPatterns(BuzzSong& song, std::size_t machine);

} // namespace song
