#pragma once

#include "midi/MidiInputEvent.h"

#include <functional>
#include <string>

namespace midi {

/**
 * One opened MIDI input port of the system. Its events reach the handlers on a thread of the
 * port's own, never on the caller's: a window passes them on through queued signals.
 *
 * When the device is unplugged or its server goes away, `ended` is called once with the
 * system's message and no event follows; the port does nothing else (the caller closes it).
 * Destroying the port closes it; no handler runs after the destructor has returned. A handler
 * must not destroy its own port.
 */
class MidiInPort
{
public:
    struct Handlers
    {
        /** Each note-on, note-off, pedal and all-notes-off message, in the order received. */
        std::function<void(const MidiInputEvent&)> event;
        /** The device has gone; the text says why ("The JACK server has shut down."). */
        std::function<void(const std::string&)> ended;
    };

    virtual ~MidiInPort() = default;

    /** The stable name the port was opened by ("JACK: keys:out", "ALSA: Keystation:port 0"). */
    virtual const std::string& name() const = 0;
};

} // namespace midi
