#pragma once

#include "music/Result.h"
#include "song/BuzzSong.h"
#include "song/ByteCursor.h"

#include <cstdint>
#include <string>
#include <vector>

namespace song {

// Readers of the sections of a Buzz song that need nothing but the song read so far. Each reads
// from the cursor's position, checks every count against the bytes that remain and fails with the
// FileErrorCode of the step that failed; what it read goes into `song`.

/** A failed read step: `code` from FileErrorCode, `message` shown when not empty. */
music::Result sectionFailure(int code, std::string message = {});

/** The magic and the section directory at the start of the file. */
music::Result readSongHeader(ByteCursor& c, BuzzSong& song);
/** CONN: the connections between machines. */
music::Result readConnections(ByteCursor& c, BuzzSong& song);
/** SEQU: the song length, the loop and the sequence of each machine. */
music::Result readSequences(ByteCursor& c, BuzzSong& song);
/** MIDI: the MIDI bindings. */
music::Result readMidiBindings(ByteCursor& c, BuzzSong& song);
/** PDLG: the open parameter windows. */
music::Result readParameterWindows(ByteCursor& c, BuzzSong& song);
/** PATT: one pattern block per machine read before; the machines' row sizes must be known. */
music::Result readPatterns(ByteCursor& c, BuzzSong& song);
/** PARA: the song's own parameter descriptions, appended to `sets`. */
music::Result readParameterSets(ByteCursor& c, std::vector<MachineParameterSet>& sets);
/** Index and name of each wave of a WAVT table; stops quietly where the table is not understood. */
std::vector<WaveEntry> parseWaves(const std::vector<std::uint8_t>& table);

} // namespace song
