#include "midi/RtMidiSystems.h"

#include "midi/JackWatch.h"

#include <RtMidi.h>

#include <cctype>

#ifdef TM_HAVE_ALSA
#include <alsa/asoundlib.h>
#endif

namespace midi {

namespace {

#ifdef TM_HAVE_ALSA
void ignoreAlsaText(const char*, int, const char*, int, const char*, ...)
{}

bool alsaSequencerAvailable()
{
    snd_lib_error_set_handler(ignoreAlsaText);
    snd_seq_t* sequencer = nullptr;
    if (snd_seq_open(&sequencer, "default", SND_SEQ_OPEN_OUTPUT, 0) < 0)
        return false;
    snd_seq_close(sequencer);
    return true;
}
#endif

const char* apiLabel(RtMidi::Api api)
{
    switch (api) {
    case RtMidi::LINUX_ALSA:
        return "ALSA";
    case RtMidi::UNIX_JACK:
        return "JACK";
    case RtMidi::WINDOWS_MM:
        return "WinMM";
    case RtMidi::MACOSX_CORE:
        return "CoreMIDI";
    default:
        return nullptr;
    }
}

bool allDigits(std::string_view text)
{
    if (text.empty())
        return false;
    for (const char c : text) {
        if (std::isdigit(static_cast<unsigned char>(c)) == 0)
            return false;
    }
    return true;
}

} // namespace

std::vector<RtMidiSystems::System> RtMidiSystems::running()
{
    std::vector<RtMidi::Api> compiled;
    RtMidi::getCompiledApi(compiled);
    std::vector<System> out;
    for (const RtMidi::Api api : compiled) {
        if (apiLabel(api) == nullptr)
            continue;
#ifdef TM_HAVE_ALSA
        if (api == RtMidi::LINUX_ALSA && !alsaSequencerAvailable())
            continue;
#endif
#ifdef TM_HAVE_JACK
        if (api == RtMidi::UNIX_JACK && !JackWatch::serverRunning())
            continue;
#endif
        out.push_back({static_cast<int>(api), apiLabel(api)});
    }
    return out;
}

std::string RtMidiSystems::stableName(std::string_view label, std::string_view portName)
{
    std::string name(portName);
    if (label == "ALSA") {
        // "Midi Through:Midi Through Port-0 14:0": the numbers change with every start.
        const std::size_t blank = name.find_last_of(' ');
        if (blank != std::string::npos) {
            const std::string_view tail = std::string_view(name).substr(blank + 1);
            const std::size_t colon = tail.find(':');
            if (colon != std::string_view::npos && allDigits(tail.substr(0, colon)) &&
                allDigits(tail.substr(colon + 1))) {
                name.erase(blank);
            }
        }
    }
    return std::string(label) + ": " + name;
}

} // namespace midi
