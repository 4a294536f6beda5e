#include "midi/SystemMidiPortList.h"

#include "midi/BuiltInSynth.h"
#include "midi/RtMidiOutPort.h"

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
    if (names[number] == BuiltInSynth::kDeviceName)
        return BuiltInSynth::open(m_dataFolder);
    return RtMidiOutPort::open(names[number]);
}

} // namespace midi
