#pragma once

#include <exception>

namespace midi {

/** Thrown by the device's constructor when its signalling event cannot be made. */
class CMIDIOutEventFailure : public std::exception
{
public:
    const char* what() const noexcept override;
};

} // namespace midi
