#include "midi/SystemMidiPortList.h"

#include "midi/BuiltInSynth.h"
#include "midi/JackMidiOutPort.h"
#include "midi/RtMidiOutPort.h"

#include <string_view>

namespace midi {

SystemMidiPortList::SystemMidiPortList(std::filesystem::path dataFolder)
    : m_dataFolder(std::move(dataFolder))
{}

std::vector<std::string> SystemMidiPortList::deviceNames()
{
    std::vector<std::string> names;
    if (!BuiltInSynth::findSoundFont(m_dataFolder).empty())
        names.emplace_back(BuiltInSynth::kDeviceName);
    for (std::string& name : RtMidiOutPort::portNames())
        names.push_back(std::move(name));
    return names;
}

std::unique_ptr<MidiOutPort> SystemMidiPortList::openPort(unsigned number)
{
    const std::vector<std::string> names = deviceNames();
    if (number >= names.size())
        return nullptr;
    const std::string& name = names[number];
    if (name == BuiltInSynth::kDeviceName)
        return BuiltInSynth::open(m_dataFolder);
    // A JACK port is reached natively where that is built (frame-exact), else through RtMidi.
    constexpr std::string_view kJack = "JACK: ";
    if (name.starts_with(kJack)) {
        if (std::unique_ptr<MidiOutPort> port = JackMidiOutPort::open(name.substr(kJack.size())))
            return port;
    }
    return RtMidiOutPort::open(name);
}

} // namespace midi
