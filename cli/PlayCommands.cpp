// The playback commands. They run in LivePlayback.cpp, or fail in NoLiveMidi.cpp in builds
// without MIDI devices; their usage is the same in both.

#include "cli/Command.h"
#include "cli/LiveMidi.h"
#include "cli/PartOptions.h"

namespace cli {

void registerPlayCommands(std::vector<Command>& commands)
{
    commands.push_back(
        {"devices",
         "",
         liveSummary("List the MIDI output devices: number<TAB>name (the built-in synth first)"),
         {},
         0,
         0,
         runDevices});

    std::vector<OptionSpec> playOptions = partOptionSpecs();
    for (const char* option : {"part", "device", "single-chord", "bpm", "tpb", "channel", "port",
                               "program", "velocity"}) {
        playOptions.push_back({option, true, false});
    }
    playOptions.push_back({"print-messages", false, false});
    commands.push_back(
        {"play",
         std::string("--part FILE.prt [--device N|NAME] [--single-chord N] [--bpm N] [--tpb N] "
                     "[--channel N] [--port N] [--program N] [--velocity N] [--print-messages] ") +
             partOptionsSynopsis(),
         liveSummary("Play a part (or one chord of it) through a MIDI output device; Ctrl+C stops"),
         playOptions, 0, 0, runPlay});
}

} // namespace cli
