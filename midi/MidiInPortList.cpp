#include "midi/MidiInPortList.h"

#include "midi/SystemMidiInPortList.h"

#include <mutex>

namespace midi {

namespace {

std::mutex& listMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::shared_ptr<MidiInPortList>& currentList()
{
    static std::shared_ptr<MidiInPortList> list;
    return list;
}

} // namespace

std::shared_ptr<MidiInPortList> MidiInPortList::systemList()
{
    const std::lock_guard<std::mutex> lock(listMutex());
    if (!currentList())
        currentList() = std::make_shared<SystemMidiInPortList>();
    return currentList();
}

void MidiInPortList::setSystemList(std::shared_ptr<MidiInPortList> list)
{
    const std::lock_guard<std::mutex> lock(listMutex());
    currentList() = std::move(list);
}

} // namespace midi
