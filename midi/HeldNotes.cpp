#include "midi/HeldNotes.h"

#include <algorithm>

namespace midi {

HeldNotes::Change HeldNotes::apply(const MidiInputEvent& event)
{
    Change change;
    const auto channelBit = static_cast<std::uint16_t>(1U << (event.channel & 0x0F));
    switch (event.kind) {
    case MidiInputEvent::Kind::NoteOn: {
        if (event.note > 127)
            break;
        std::uint16_t& held = m_channels[event.note];
        change.notesChanged = held == 0;
        held = static_cast<std::uint16_t>(held | channelBit);
        change.keyPressed = true;
        m_lastChord = notes();
        break;
    }
    case MidiInputEvent::Kind::NoteOff: {
        if (event.note > 127)
            break;
        std::uint16_t& held = m_channels[event.note];
        const bool was = held != 0;
        held = static_cast<std::uint16_t>(held & ~channelBit);
        change.notesChanged = was && held == 0;
        break;
    }
    case MidiInputEvent::Kind::Pedal: {
        const bool down = event.value >= 64;
        if (down && !m_pedalDown) {
            m_captured = chordToCapture();
            change.captured = true;
        }
        m_pedalDown = down;
        break;
    }
    case MidiInputEvent::Kind::AllNotesOff:
        for (std::uint16_t& held : m_channels) {
            if ((held & channelBit) != 0) {
                held = static_cast<std::uint16_t>(held & ~channelBit);
                change.notesChanged = change.notesChanged || held == 0;
            }
        }
        break;
    }
    return change;
}

void HeldNotes::clear()
{
    m_channels.fill(0);
    m_pedalDown = false;
}

std::vector<int> HeldNotes::notes() const
{
    std::vector<int> out;
    for (int note = 0; note < 128; ++note) {
        if (m_channels[static_cast<std::size_t>(note)] != 0)
            out.push_back(note);
    }
    return out;
}

bool HeldNotes::isDown(int note) const
{
    return note >= 0 && note < 128 && m_channels[static_cast<std::size_t>(note)] != 0;
}

bool HeldNotes::isEmpty() const
{
    return std::all_of(m_channels.begin(), m_channels.end(),
                       [](std::uint16_t held) { return held == 0; });
}

std::vector<int> HeldNotes::chordToCapture() const
{
    std::vector<int> down = notes();
    return down.empty() ? m_lastChord : down;
}

} // namespace midi
