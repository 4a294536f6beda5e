#include "midi/CMIDIOutDevice.h"

#include "midi/CMIDIOutEventFailure.h"
#include "midi/CMIDIOutException.h"
#include "midi/ShortMessage.h"

namespace midi {

CMIDIOutDevice::CMIDIOutDevice() : CMIDIOutDevice(MidiPortList::systemList())
{}

CMIDIOutDevice::CMIDIOutDevice(std::shared_ptr<MidiPortList> ports) : m_ports(std::move(ports))
{
    // The event is a plain object here and cannot fail to exist; a device without a list of
    // ports has nothing to signal for, which is the one way construction can fail.
    if (!m_ports)
        throw CMIDIOutEventFailure();
}

CMIDIOutDevice::~CMIDIOutDevice()
{
    close();
}

bool CMIDIOutDevice::open(unsigned deviceNumber)
{
    close();
    std::unique_ptr<MidiOutPort> port = m_ports->openPort(deviceNumber);
    if (!port)
        return false;
    {
        const std::lock_guard<std::mutex> lock(m_queueMutex);
        m_workerError.clear();
        m_workerFailed = false;
    }
    m_lookaheadNs = port->lookaheadNs();
    m_port = std::move(port);
    m_state = kOpened;
    m_worker = std::thread([this] { runWorker(); });
    return true;
}

void CMIDIOutDevice::close()
{
    if (m_state.load() != kOpened)
        return;
    // The worker reads the state after waking, so it must be closed before the signal.
    m_state = kClosed;
    m_event.signal();
    m_worker.join();
    {
        const std::lock_guard<std::mutex> lock(m_queueMutex);
        m_queue.clear();
    }
    const std::lock_guard<std::mutex> lock(m_portMutex);
    m_port.reset(); // a port with a lookahead delivers what it holds at once before it closes
    m_lookaheadNs = 0;
}

void CMIDIOutDevice::send(std::uint32_t packedMessage, std::int64_t dueNs)
{
    if (m_state.load() != kOpened)
        return;
    if (m_workerFailed.load()) {
        std::lock_guard<std::mutex> lock(m_queueMutex);
        const std::string error = std::move(m_workerError);
        m_workerError.clear();
        m_workerFailed = false;
        throw CMIDIOutException(error);
    }
    const auto status = static_cast<std::uint8_t>(packedMessage & 0xFF);
    if (status < 0x80 || status == 0xFF)
        return;
    const ShortMessage::Wire wire = ShortMessage::wire(packedMessage);
    if (m_lookaheadNs > 0) {
        // The port takes short messages beside the worker's long ones without a lock.
        m_port->sendShort(wire.bytes.data(), wire.size, dueNs);
        return;
    }
    const std::lock_guard<std::mutex> lock(m_portMutex);
    if (m_port)
        m_port->sendShort(wire.bytes.data(), wire.size, dueNs);
}

void CMIDIOutDevice::sendLong(std::vector<std::uint8_t> bytes)
{
    if (m_state.load() != kOpened || bytes.empty())
        return;
    {
        const std::lock_guard<std::mutex> lock(m_queueMutex);
        m_queue.push_back(std::move(bytes));
    }
    m_event.signal();
}

unsigned CMIDIOutDevice::deviceCount(MidiPortList* ports)
{
    if (ports == nullptr)
        return static_cast<unsigned>(MidiPortList::systemList()->deviceNames().size());
    return static_cast<unsigned>(ports->deviceNames().size());
}

CMIDIOutDevice::Capabilities CMIDIOutDevice::capabilities(unsigned deviceNumber,
                                                          MidiPortList* ports)
{
    const std::vector<std::string> names =
        ports == nullptr ? MidiPortList::systemList()->deviceNames() : ports->deviceNames();
    if (deviceNumber >= names.size())
        throw CMIDIOutException("The device identifier is out of range.");
    return Capabilities{names[deviceNumber]};
}

void CMIDIOutDevice::sendToPort(const std::vector<std::uint8_t>& bytes)
{
    const std::lock_guard<std::mutex> lock(m_portMutex);
    if (m_port)
        m_port->sendMessage(bytes);
}

void CMIDIOutDevice::runWorker()
{
    while (m_state.load() == kOpened) {
        m_event.wait();
        if (m_state.load() != kOpened)
            break;
        // Signals given while the worker was busy are kept as one, so drain everything.
        for (;;) {
            std::vector<std::uint8_t> message;
            {
                const std::lock_guard<std::mutex> lock(m_queueMutex);
                if (m_queue.empty())
                    break;
                message = std::move(m_queue.front());
                m_queue.pop_front();
            }
            try {
                sendToPort(message);
            } catch (const CMIDIOutException& error) {
                const std::lock_guard<std::mutex> lock(m_queueMutex);
                if (m_workerError.empty())
                    m_workerError = error.what();
                m_workerFailed = true;
            }
            if (m_state.load() != kOpened)
                break;
        }
    }
}

} // namespace midi
