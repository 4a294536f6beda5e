#include "midi/SystemMidiInPortList.h"

#include "midi/RtMidiInPort.h"

namespace midi {

std::vector<std::string> SystemMidiInPortList::inputNames()
{
    return RtMidiInPort::portNames();
}

music::Result SystemMidiInPortList::open(const std::string& name, MidiInPort::Handlers handlers,
                                         std::unique_ptr<MidiInPort>& port)
{
    std::unique_ptr<RtMidiInPort> opened;
    const music::Result result = RtMidiInPort::open(name, std::move(handlers), opened);
    if (result)
        port = std::move(opened);
    return result;
}

} // namespace midi
