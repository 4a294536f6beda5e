#pragma once

#include "cli/Command.h"
#include "song/BuzzSong.h"

#include <filesystem>

#include <string>
#include <vector>

namespace cli {

/**
 * The options every command that reads songs accepts: --learn (learn unknown machines from the
 * song's own parameter descriptions) and --scan-dll DLL (answer an offer to scan a machine DLL;
 * may be given once per unknown machine).
 */
std::vector<OptionSpec> songReadingOptions();

/** `options` followed by the song-reading options. */
std::vector<OptionSpec> withSongReading(std::vector<OptionSpec> options);

/**
 * Reads a song with the machine database of the data folder, answering unknown machines from
 * --learn and --scan-dll (a machine the song describes is learned with --learn, else scanned).
 * Prints the reader's warnings on stderr; on failure also the reader's message and "Error
 * loading file" with the code, and returns false.
 */
bool loadSong(const std::filesystem::path& path, const Arguments& args, Context& context,
              song::BuzzSong& out);

/** Writes a song; on failure prints "Error saving file" with the code. Returns the exit code. */
int saveSong(const song::BuzzSong& song, const std::filesystem::path& path, Context& context);

} // namespace cli
