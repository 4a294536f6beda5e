#pragma once

#include <array>
#include <exception>
#include <string_view>

namespace midi {

/**
 * A failure of the MIDI output system while sending or querying a port. Carries the system's own
 * error text (RtMidi's message, FluidSynth's or JACK's reason) in a fixed buffer of 128
 * characters, so copying never allocates or throws; longer texts are cut.
 */
class CMIDIOutException : public std::exception
{
public:
    explicit CMIDIOutException(std::string_view errorText) noexcept;

    const char* what() const noexcept override { return m_text.data(); }

private:
    std::array<char, 128> m_text{};
};

} // namespace midi
