#pragma once

#include "cli/Command.h"

#include <functional>
#include <string>
#include <vector>

namespace cli {

// The commands that reach the system's MIDI devices. A build with live MIDI implements them in
// LivePlayback.cpp and LiveInput.cpp; a build without (the Windows cross build, which has no
// RtMidi, FluidSynth or Qt) links NoLiveMidi.cpp, whose versions say so and fail.

/** True when this build plays through MIDI devices and listens to MIDI inputs. */
bool haveLiveMidi();

/** A command's one-line summary, marked when this build cannot run the command. */
inline std::string liveSummary(const std::string& summary)
{
    return haveLiveMidi() ? summary : summary + " (not in this build)";
}

/** `devices`: the MIDI output devices, number<TAB>name. */
int runDevices(const Arguments& args, Context& context);
/** `play`: plays a part or one chord of it through a MIDI output device until it ends or Ctrl+C. */
int runPlay(const Arguments& args, Context& context);
/** `inputs`: the MIDI input devices by the names that listenForChords takes. */
int runInputs(const Arguments& args, Context& context);

/**
 * Opens the MIDI input device named by `port` (its name, or a part of exactly one name) and calls
 * `onChord` with the MIDI note numbers of every chord played that settles, until Ctrl+C or until
 * the device goes away. Returns the exit status; failures print their message.
 */
int listenForChords(const std::string& port, Context& context,
                    const std::function<void(const std::vector<int>& notes)>& onChord);

} // namespace cli
