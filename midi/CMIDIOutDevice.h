#pragma once

#include "midi/AutoResetEvent.h"
#include "midi/MidiOutPort.h"
#include "midi/MidiPortList.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace midi {

/**
 * One opened MIDI output device, chosen by its number in the device list (the built-in synth,
 * then the system's ports; see MidiPortList).
 *
 * Closed or opened. While opened, a worker thread sends queued long (system-exclusive) messages
 * asynchronously: sendLong puts the bytes into a lock-guarded queue and signals the worker's
 * auto-reset event. The worker lives exactly as long as the opened state.
 *
 * Short messages whose status byte is 0xFF are not forwarded: on a real port 0xFF is a System
 * Reset, and the program uses 0xFF 0x01 port as its port-selection message, which only the
 * driver of the original platform understood. Messages without a status byte are dropped too.
 *
 * open, close and sendLong are called from the thread that owns the device; send from it or
 * from a playback thread it hands sending over to, and from both at once only for a port without
 * a lookahead (the port lock orders them). Sending a short message to a port with a lookahead
 * (native JACK) takes no lock and allocates nothing, so a real-time playback thread may call it;
 * such a port takes short messages from one thread at a time. The worker is the only other
 * thread.
 */
class CMIDIOutDevice
{
public:
    /** What the system tells about a device without opening it. */
    struct Capabilities
    {
        std::string name;
    };

    /** A device over the process-wide device list. Throws CMIDIOutEventFailure. */
    CMIDIOutDevice();
    /** A device over its own list (tests use a list of fake ports). */
    explicit CMIDIOutDevice(std::shared_ptr<MidiPortList> ports);
    /** Closes the device, ending its worker. */
    ~CMIDIOutDevice();
    CMIDIOutDevice(const CMIDIOutDevice&) = delete;
    CMIDIOutDevice& operator=(const CMIDIOutDevice&) = delete;

    /**
     * Opens device `deviceNumber`, closing an opened one first. False, with the device left
     * closed and no worker started, when the number names no device or the system refuses it.
     */
    bool open(unsigned deviceNumber);
    /** Ends the worker, drops queued long messages and closes the port; nothing when closed. */
    void close();
    bool isOpen() const { return m_state.load() == kOpened; }

    /**
     * Sends a packed short message (see ShortMessage::pack); nothing when closed. Throws
     * CMIDIOutException with the system's error text when the port fails, or when a long message
     * sent by the worker since the last call failed. `dueNs` (steady_clock nanoseconds) is when
     * the message should sound; only a port with a lookahead uses it, the others send at once.
     */
    void send(std::uint32_t packedMessage, std::int64_t dueNs = MidiOutPort::kNow);
    /**
     * How long before its due time the opened port needs a message (0 when closed or for a port
     * that sends at once). A player sends that much ahead so that every event lands on time.
     */
    std::int64_t lookaheadNs() const { return m_lookaheadNs; }
    /** Queues a complete system-exclusive message (F0 ... F7) for the worker; nothing when closed.
     */
    void sendLong(std::vector<std::uint8_t> bytes);

    /** Number of devices in the process-wide list (or in `ports`). */
    static unsigned deviceCount(MidiPortList* ports = nullptr);
    /** The device's name; throws CMIDIOutException for a number that names no device. */
    static Capabilities capabilities(unsigned deviceNumber, MidiPortList* ports = nullptr);

private:
    static constexpr int kClosed = 0;
    static constexpr int kOpened = 1;

    void runWorker();
    void sendToPort(const std::vector<std::uint8_t>& bytes);

    std::shared_ptr<MidiPortList> m_ports;
    std::unique_ptr<MidiOutPort> m_port; // the opened port; null while closed
    std::mutex m_portMutex;              // the caller's thread and the worker both send
    AutoResetEvent m_event;
    std::thread m_worker;
    std::mutex m_queueMutex; // guards m_queue and m_workerError
    std::deque<std::vector<std::uint8_t>> m_queue;
    std::string m_workerError;               // a failed long message, reported by the next send
    std::atomic<bool> m_workerFailed{false}; // m_workerError is set: send looks without the lock
    std::int64_t m_lookaheadNs = 0;          // of the opened port
    std::atomic<int> m_state{kClosed};
};

} // namespace midi
