#include "midi/CMIDIOutEventFailure.h"

namespace midi {

const char* CMIDIOutEventFailure::what() const noexcept
{
    return "Unable to create a signalling event for CMIDIOutDevice object.";
}

} // namespace midi
