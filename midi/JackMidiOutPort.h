#pragma once

#include "midi/MidiOutPort.h"

#include <memory>
#include <string>

namespace midi {

/**
 * A JACK MIDI port reached through JACK itself rather than RtMidi (Linux only; elsewhere `open`
 * gives nothing and RtMidi is used). Every short message is placed into JACK's MIDI buffer at the
 * frame of its due time, so an onset is exact to about a frame whatever the period: the process
 * callback learns where JACK's frames stand against JACK's clock from each cycle's first frame and
 * the moment it woke (FrameClock), and follows the frame counter when an overrun sets it back.
 * The sending thread hands messages over through a
 * lock-free ring; nothing on either side locks or allocates.
 *
 * The program's client is "Tonalmancer" with the output "midi_out", connected to the chosen port.
 * A message handed over later than its due time goes out at the start of the next cycle, in
 * order. Closing (destroying) delivers everything still queued at once, at the start of the next
 * cycle, so a stop ends every sounding note without waiting for due times. A server that shuts
 * down or a port that goes away makes the next send throw CMIDIOutException with JACK's reason.
 */
class JackMidiOutPort : public MidiOutPort
{
public:
    /** How much earlier than the period alone a message is wanted: a playback thread's wake-up. */
    static constexpr std::int64_t kScheduleMarginNs = 10'000'000;

    ~JackMidiOutPort() override;
    JackMidiOutPort(const JackMidiOutPort&) = delete;
    JackMidiOutPort& operator=(const JackMidiOutPort&) = delete;

    /**
     * Opens the program's client on the server that JACK_DEFAULT_SERVER names and connects it to
     * `portName` ("client:port"); nothing when there is no server, no such port, or on Windows and
     * macOS.
     */
    static std::unique_ptr<JackMidiOutPort> open(const std::string& portName);

    /** Long (system-exclusive) messages go out at the start of the next cycle. */
    void sendMessage(const std::vector<std::uint8_t>& bytes) override;
    /** Queues the message for the frame of `dueNs`; from one thread at a time. */
    void sendShort(const std::uint8_t* bytes, std::size_t size, std::int64_t dueNs) override;
    /** One JACK period plus kScheduleMarginNs. */
    std::int64_t lookaheadNs() const override;

private:
    struct Impl;
    explicit JackMidiOutPort(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};

} // namespace midi
