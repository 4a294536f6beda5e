#include "midi/MidiPortList.h"

#include "midi/SystemMidiPortList.h"

#include <mutex>

namespace midi {

namespace {

std::mutex& listMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::shared_ptr<MidiPortList>& currentList()
{
    static std::shared_ptr<MidiPortList> list;
    return list;
}

} // namespace

std::shared_ptr<MidiPortList> MidiPortList::systemList()
{
    const std::lock_guard<std::mutex> lock(listMutex());
    if (!currentList())
        currentList() = std::make_shared<SystemMidiPortList>(std::filesystem::path());
    return currentList();
}

void MidiPortList::setSystemList(std::shared_ptr<MidiPortList> list)
{
    const std::lock_guard<std::mutex> lock(listMutex());
    currentList() = std::move(list);
}

} // namespace midi
