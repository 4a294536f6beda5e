// The live MIDI commands of a build without MIDI devices (the Windows cross build has no RtMidi,
// FluidSynth or Qt): each says so and fails. Files are read and written as in every build.

#include "cli/LiveMidi.h"

namespace cli {

namespace {

constexpr const char* kNoPlayback =
    "Live playback is not available in this build of tonalmancer-cli: it was built without MIDI "
    "devices. Write a MIDI file with 'tonalmancer-cli midi' instead.";
constexpr const char* kNoInput =
    "MIDI input is not available in this build of tonalmancer-cli: it was built without MIDI "
    "devices.";

} // namespace

bool haveLiveMidi()
{
    return false;
}

int runDevices(const Arguments&, Context& context)
{
    return context.fail(kNoPlayback);
}

int runPlay(const Arguments&, Context& context)
{
    return context.fail(kNoPlayback);
}

int runInputs(const Arguments&, Context& context)
{
    return context.fail(kNoInput);
}

int listenForChords(const std::string&, Context& context,
                    const std::function<void(const std::vector<int>&)>&)
{
    return context.fail(kNoInput);
}

} // namespace cli
