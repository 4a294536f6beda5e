#pragma once

#include "midi/StepMessage.h"

namespace midi {

/**
 * Where the step engine sends its note messages, in the order they are made: live playback
 * forwards them to the output device, the MIDI file writer stores them as timed events.
 */
class StepSink
{
public:
    virtual ~StepSink() = default;
    virtual void send(const StepMessage& message) = 0;
};

} // namespace midi
