#pragma once

#include "music/Result.h"
#include "song/BuzzSong.h"
#include "song/SpecDataStore.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace song {

/**
 * Edits of a song's machines as a whole: naming, cloning, adding, and cleaning up sequences.
 * Each keeps the song readable: connections, the input blocks of patterns, sequences, parameter
 * sets (PARA), parameter windows (PDLG), MIDI bindings and names stay consistent, so that the
 * song writes and reads back. A failure leaves the song unchanged and says why.
 */

/** Amplitude and panning of a new connection: full level, centre. */
inline constexpr std::uint16_t kUnityAmplitude = 0x4000;
inline constexpr std::uint16_t kCentrePanning = 0x4000;

/**
 * A name for a new machine based on `base`: `base` itself when no machine has it, else base2,
 * base3, ... (the way the tracker names copies). Names compare ignoring case.
 */
std::string freeMachineName(const BuzzSong& song, std::string_view base);

/**
 * Whether `name` can name machine `machine` (kNameNotFound for a new machine): not empty, no
 * zero byte, no blank at the end (the reader would drop it), and no other machine of that name
 * ignoring case.
 */
music::Result checkMachineName(const BuzzSong& song, std::size_t machine, std::string_view name);

/**
 * Renames a machine; its parameter set, parameter window and MIDI bindings follow the name. The
 * master keeps its name.
 */
music::Result renameMachine(BuzzSong& song, std::size_t machine, const std::string& newName);

/**
 * Adds a copy of a machine as the last machine: free name (freeMachineName), its state, data and
 * patterns, its parameter set under the new name, and the same connections as the original with
 * the same amplitude and panning (the copy's patterns keep the original's input automation, and
 * the machines it feeds get a copy of the original's). Sequences, parameter windows and MIDI
 * bindings are not copied. The master cannot be cloned. `clone` receives the copy's index.
 */
music::Result cloneMachine(BuzzSong& song, std::size_t machine, std::size_t& clone);

/**
 * Adds a machine of the machine database as the last machine: free name after its short name,
 * every parameter at its default, the entry's minimum track count, no patterns, and a connection
 * at full level from it to the master, or to `connectTo` (the master or an effect). The machine
 * data and attributes come from `machineData` (the DLL's entry of specdata.dat) when given. The
 * part writer can write into it at once. `databaseIndex` is the entry's place in the database.
 */
music::Result addMachine(BuzzSong& song, const MachineDatabaseEntry& entry,
                         std::size_t databaseIndex, const SpecDataEntry* machineData,
                         std::optional<std::size_t> connectTo, std::size_t& added);

/** Removes every sequence without events; returns how many were removed. */
std::size_t removeEmptySequences(BuzzSong& song);

/**
 * Where a new machine's sound goes: `connectTo` when given, which must be the master or an
 * effect, else the master. Shared by adding and pasting machines.
 */
music::Result newMachineDestination(const BuzzSong& song, std::optional<std::size_t> connectTo,
                                    std::size_t& destination);

/** Whether the song can take one more machine with `connections` more connections. */
music::Result checkRoomForMachine(const BuzzSong& song, std::size_t connections);

/** A position for a new machine that no other machine takes (the tracker's float bits). */
std::pair<std::uint32_t, std::uint32_t> freeMachinePosition(const BuzzSong& song, bool effect);

} // namespace song
