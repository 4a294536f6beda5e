#include "midi/ShortMessage.h"

#include "midi/CMIDIOutDevice.h"

#include <algorithm>

namespace midi {

ShortMessage::ShortMessage(std::uint8_t command, std::uint8_t channel, std::uint8_t data1,
                           std::uint8_t data2, std::uint32_t timeStamp)
    : m_message(pack(command, channel, data1, data2)), m_data(packData(data1, data2)),
      m_timeStamp(timeStamp)
{}

ShortMessage ShortMessage::fromPacked(std::uint32_t packed, std::uint32_t timeStamp)
{
    ShortMessage m;
    m.m_message = packed;
    m.m_data = packData(m.data1(), m.data2());
    m.m_timeStamp = timeStamp;
    return m;
}

std::uint32_t ShortMessage::pack(std::uint8_t command, std::uint8_t channel, std::uint8_t data1,
                                 std::uint8_t data2)
{
    return static_cast<std::uint32_t>(command | channel) | static_cast<std::uint32_t>(data1) << 8 |
           static_cast<std::uint32_t>(data2) << 16;
}

std::uint16_t ShortMessage::packData(std::uint8_t data1, std::uint8_t data2)
{
    return static_cast<std::uint16_t>(data2 << 8 | data1);
}

ShortMessage::Wire ShortMessage::wire(std::uint32_t packed)
{
    const auto byteAt = [packed](int shift) {
        return static_cast<std::uint8_t>((packed >> shift) & 0xFF);
    };
    const auto dataByte = [&](int shift) { return std::min<std::uint8_t>(byteAt(shift), 0x7F); };
    const std::uint8_t status = byteAt(0);
    switch (status & 0xF0) {
    case 0x80:
    case 0x90:
    case 0xA0:
    case 0xB0:
    case 0xE0:
        return {{status, dataByte(8), dataByte(16)}, 3};
    case 0xC0:
    case 0xD0:
        return {{status, dataByte(8), 0}, 2};
    default:
        break;
    }
    switch (status) {
    case 0xF1: // time code quarter frame
    case 0xF3: // song select
        return {{status, dataByte(8), 0}, 2};
    case 0xF2: // song position
        return {{status, dataByte(8), dataByte(16)}, 3};
    default:
        return {{status, 0, 0}, 1};
    }
}

std::vector<std::uint8_t> ShortMessage::wireBytes(std::uint32_t packed)
{
    const Wire bytes = wire(packed);
    return {bytes.bytes.begin(), bytes.bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size)};
}

void ShortMessage::sendTo(CMIDIOutDevice& device) const
{
    device.send(m_message);
}

} // namespace midi
