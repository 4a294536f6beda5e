#pragma once

#include "cli/Arguments.h"
#include "cli/Command.h"
#include "part/RenderOptions.h"

#include <vector>

namespace cli {

/**
 * The renderer options that several commands share:
 *   --index-option N      0 (extend the chord), 1 (off-event) or 2 (ignore); default 0
 *   --limit NOTE,OCTAVE   upper note limit, e.g. "C,4" or "F#,5" (octave 0..9); default off
 *   --tracks 11111111     eight 0/1 track switches, track 1 first; default all on
 *   --seed N              seeds the random source of chance cells (0..4294967295)
 * Add `partOptionSpecs()` to a command's options and read them with `parsePartOptions()`.
 */
std::vector<OptionSpec> partOptionSpecs();

/** The synopsis text of the options above, for a command's usage line. */
const char* partOptionsSynopsis();

/** Reads the options; throws UsageError on a malformed value. Seeds the random source. */
part::RenderOptions parsePartOptions(const Arguments& args);

} // namespace cli
