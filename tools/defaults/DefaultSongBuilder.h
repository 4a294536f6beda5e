#pragma once

#include "music/Result.h"
#include "song/BuzzSong.h"
#include "song/MachineDatabase.h"
#include "song/MachineParameterSet.h"

#include <cstdint>
#include <string>

// The shipped default song: the master and the polyphonic generator Dynamite 6. The song tests
// compare data/default.bmx with these bytes; after a change here, the build target
// regenerate-defaults rewrites data/ (cmake --build --preset dev --target regenerate-defaults).
namespace defaults {

inline constexpr const char* kDynamiteDll = "MadBrain's Dynamite 6";
inline constexpr const char* kDynamiteName = "Dynamite6";
inline constexpr std::uint16_t kUnity = 0x4000;     // connection amplitude 1.0, panning centre
inline constexpr std::uint16_t kDynamiteTracks = 4; // the demo part plays up to four notes at once

/** The polyphonic generator as it describes itself: 25 global and 2 track parameters. */
song::MachineParameterSet dynamiteParameters();

/** The database entry of the generator: its own descriptions, with the DLL's name and tracks. */
song::MachineDatabaseEntry dynamiteEntry();
/** The default song as a model. */
song::BuzzSong defaultSong();
/** The default song's file bytes, written by the program's own writer. */
music::Result defaultSongBytes(std::string& bytes);

} // namespace defaults
