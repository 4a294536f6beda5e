#include "midi/MidiEvent.h"

#include "midi/VariableLengthQuantity.h"

#include <algorithm>

namespace midi {

namespace {

MidiEvent channelEvent(std::uint32_t delta, std::uint8_t status, std::uint32_t packedMessage)
{
    MidiEvent event;
    event.setDeltaTime(delta);
    event.setStatus(status);
    event.setDataByte(1, static_cast<std::uint8_t>((packedMessage >> 8) & 0xFF));
    event.setDataByte(2, static_cast<std::uint8_t>((packedMessage >> 16) & 0xFF));
    return event;
}

MidiEvent metaEvent(std::uint32_t delta, std::uint8_t type, std::uint32_t length)
{
    MidiEvent event;
    event.setDeltaTime(delta);
    event.setStatus(MidiEvent::kMeta);
    event.setDataByte(1, type);
    event.setDataLength(length);
    return event;
}

void appendBytes(std::vector<std::uint8_t>& out, const std::vector<std::uint8_t>& bytes)
{
    out.insert(out.end(), bytes.begin(), bytes.end());
}

} // namespace

MidiEvent MidiEvent::noteOn(std::uint32_t delta, std::uint32_t packedMessage)
{
    // (channel - 0x70) mod 256: the same as 0x90 + channel, also for channel bytes above 15.
    const auto status = static_cast<std::uint8_t>((packedMessage & 0xFF) - 0x70);
    return channelEvent(delta, status, packedMessage);
}

MidiEvent MidiEvent::noteOff(std::uint32_t delta, std::uint32_t packedMessage)
{
    const auto status = static_cast<std::uint8_t>((packedMessage & 0xFF) + kNoteOff);
    return channelEvent(delta, status, packedMessage);
}

MidiEvent MidiEvent::tempo(std::uint32_t delta, std::uint32_t microsecondsPerQuarter)
{
    MidiEvent event = metaEvent(delta, kMetaTempo, 3);
    event.setTempoValue(microsecondsPerQuarter);
    return event;
}

MidiEvent MidiEvent::timeSignature(std::uint32_t delta, const std::array<std::uint8_t, 4>& bytes)
{
    MidiEvent event = metaEvent(delta, kMetaTimeSignature, 4);
    for (int i = 0; i < 4; ++i)
        event.setDataByte(2 + i, bytes[static_cast<std::size_t>(i)]);
    return event;
}

MidiEvent MidiEvent::trackName(std::uint32_t delta, std::string_view text)
{
    MidiEvent event = metaEvent(delta, kMetaTrackName, 0);
    event.setData(std::vector<std::uint8_t>(text.begin(), text.end()));
    return event;
}

MidiEvent MidiEvent::marker(std::uint32_t delta, std::string_view text)
{
    MidiEvent event = metaEvent(delta, kMetaMarker, 0);
    event.setData(std::vector<std::uint8_t>(text.begin(), text.end()));
    return event;
}

MidiEvent MidiEvent::endOfTrack(std::uint32_t delta)
{
    return metaEvent(delta, kMetaEndOfTrack, 0);
}

std::uint8_t MidiEvent::dataByte(int index) const
{
    if (index < 1 || index > static_cast<int>(m_bytes.size()))
        return 0;
    return m_bytes[static_cast<std::size_t>(index - 1)];
}

void MidiEvent::setDataByte(int index, std::uint8_t value)
{
    if (index < 1 || index > static_cast<int>(m_bytes.size()))
        return;
    m_bytes[static_cast<std::size_t>(index - 1)] = value;
}

void MidiEvent::setData(std::vector<std::uint8_t> bytes)
{
    m_data = std::move(bytes);
    m_dataLength = static_cast<std::uint32_t>(m_data.size());
}

void MidiEvent::appendTo(std::vector<std::uint8_t>& out) const
{
    VariableLengthQuantity::append(out, m_delta);
    out.push_back(m_status); // no running status: the status is written every time

    if (m_status >= 0x80 && m_status <= 0xEF) {
        // A data byte has seven bits: a larger value would read as a status byte, so it is
        // written as 127 and no reader can mistake the file.
        const auto data = [this](int index) {
            return std::min<std::uint8_t>(dataByte(index), 0x7F);
        };
        out.push_back(data(1));
        const std::uint8_t kind = m_status & 0xF0;
        if (kind != 0xC0 && kind != 0xD0)
            out.push_back(data(2));
        return;
    }
    if (m_status == kSystemExclusive || m_status == kSystemExclusiveEscape) {
        VariableLengthQuantity::append(out, m_dataLength);
        appendBytes(out, m_data);
        return;
    }
    if (m_status != kMeta)
        return;

    const std::uint8_t type = metaType();
    out.push_back(type);
    VariableLengthQuantity::append(out, m_dataLength);
    const auto appendDataBytes = [&](int first, int last) {
        for (int i = first; i <= last; ++i)
            out.push_back(dataByte(i));
    };
    switch (type) {
    case kMetaSequenceNumber:
        out.push_back(static_cast<std::uint8_t>(m_sequenceNumber >> 8));
        out.push_back(static_cast<std::uint8_t>(m_sequenceNumber & 0xFF));
        break;
    case 0x01:
    case 0x02:
    case kMetaTrackName:
    case 0x04:
    case 0x05:
    case 0x06:
    case 0x07:
        if (m_dataLength != 0)
            appendBytes(out, m_data);
        break;
    case 0x20:
    case 0x21:
        appendDataBytes(2, 2);
        break;
    case kMetaEndOfTrack:
        break;
    case kMetaTempo:
        out.push_back(static_cast<std::uint8_t>((m_tempo >> 16) & 0xFF));
        out.push_back(static_cast<std::uint8_t>((m_tempo >> 8) & 0xFF));
        out.push_back(static_cast<std::uint8_t>(m_tempo & 0xFF));
        break;
    case 0x54:
        appendDataBytes(2, 6);
        break;
    case 0x55:
        // Two inline bytes keyed on 0x55, not on the key signature 0x59: kept as the format
        // writer has always done it (the program never makes either type).
        appendDataBytes(2, 3);
        break;
    case kMetaTimeSignature:
        appendDataBytes(2, 5);
        break;
    default:
        appendBytes(out, m_data);
        break;
    }
}

} // namespace midi
