#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace midi {

class CMIDIOutDevice;

/**
 * A short MIDI message packed into 32 bits as the device takes it: byte 0 = command | channel,
 * byte 1 = data 1, byte 2 = data 2. It also keeps the data pair packed on its own and a time
 * stamp (milliseconds, the caller's clock), and sends itself through a device.
 */
class ShortMessage
{
public:
    ShortMessage() = default;
    ShortMessage(std::uint8_t command, std::uint8_t channel, std::uint8_t data1, std::uint8_t data2,
                 std::uint32_t timeStamp = 0);
    /** Wraps an already packed message. */
    static ShortMessage fromPacked(std::uint32_t packed, std::uint32_t timeStamp = 0);

    /** command | channel | data1 << 8 | data2 << 16. */
    static std::uint32_t pack(std::uint8_t command, std::uint8_t channel, std::uint8_t data1,
                              std::uint8_t data2);
    /** data2 << 8 | data1. */
    static std::uint16_t packData(std::uint8_t data1, std::uint8_t data2);

    /**
     * The bytes that go on the wire for a packed message: three for note, key pressure,
     * controller and pitch-bend messages, two for program change and channel pressure, the
     * status alone for one-byte system messages. Data bytes above 127 are sent as 127, since
     * MIDI data bytes have seven bits.
     */
    static std::vector<std::uint8_t> wireBytes(std::uint32_t packed);
    /** The same bytes without allocating: `size` of the three are used. */
    struct Wire
    {
        std::array<std::uint8_t, 3> bytes{};
        std::size_t size = 0;
    };
    static Wire wire(std::uint32_t packed);

    std::uint32_t message() const { return m_message; }
    std::uint16_t data() const { return m_data; }
    std::uint32_t timeStamp() const { return m_timeStamp; }
    void setTimeStamp(std::uint32_t timeStamp) { m_timeStamp = timeStamp; }

    std::uint8_t status() const { return static_cast<std::uint8_t>(m_message & 0xFF); }
    std::uint8_t command() const { return static_cast<std::uint8_t>(m_message & 0xF0); }
    std::uint8_t channel() const { return static_cast<std::uint8_t>(m_message & 0x0F); }
    std::uint8_t data1() const { return static_cast<std::uint8_t>((m_message >> 8) & 0xFF); }
    std::uint8_t data2() const { return static_cast<std::uint8_t>((m_message >> 16) & 0xFF); }

    /** Sends the packed message; see CMIDIOutDevice::send. */
    void sendTo(CMIDIOutDevice& device) const;

private:
    std::uint32_t m_message = 0;
    std::uint16_t m_data = 0;
    std::uint32_t m_timeStamp = 0;
};

} // namespace midi
