#pragma once

#include "midi/CMIDIOutException.h"
#include "midi/MidiPortList.h"
#include "part/Part.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/**
 * A device list whose ports record what reaches them, for device, settings and player tests that
 * must not depend on the machine's MIDI systems. It must outlive the ports it opens.
 */
class FakePortList : public midi::MidiPortList
{
public:
    explicit FakePortList(std::vector<std::string> names) : m_names(std::move(names)) {}

    std::vector<std::string> deviceNames() override { return m_names; }
    std::unique_ptr<midi::MidiOutPort> openPort(unsigned number) override
    {
        if (number >= m_names.size() || number == refused)
            return nullptr;
        return std::make_unique<Port>(*this);
    }
    std::vector<std::vector<std::uint8_t>> snapshot()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return messages;
    }

    std::mutex mutex;
    std::vector<std::vector<std::uint8_t>> messages; // by every port opened
    std::vector<std::int64_t> dueTimes;              // of each message, beside `messages`
    std::int64_t lookaheadNs = 0; // > 0: the ports schedule, like a native JACK port
    int opened = 0;
    int closed = 0;
    int failAfter = -1; // the ports throw once this many messages went through (-1: never)
    std::string failureText = "The port has gone away.";
    unsigned refused = 0xFFFFFFFF; // a device number that is listed but cannot be opened

private:
    struct Port : midi::MidiOutPort
    {
        explicit Port(FakePortList& list) : m_list(list)
        {
            const std::lock_guard<std::mutex> lock(m_list.mutex);
            ++m_list.opened;
        }
        ~Port() override
        {
            const std::lock_guard<std::mutex> lock(m_list.mutex);
            ++m_list.closed;
        }
        void sendMessage(const std::vector<std::uint8_t>& bytes) override
        {
            sendShort(bytes.data(), bytes.size(), kNow);
        }
        void sendShort(const std::uint8_t* bytes, std::size_t size, std::int64_t dueNs) override
        {
            const std::lock_guard<std::mutex> lock(m_list.mutex);
            if (m_list.failAfter >= 0 && std::ssize(m_list.messages) >= m_list.failAfter)
                throw midi::CMIDIOutException(m_list.failureText);
            m_list.messages.emplace_back(bytes, bytes + size);
            m_list.dueTimes.push_back(dueNs);
        }
        std::int64_t lookaheadNs() const override { return m_list.lookaheadNs; }
        FakePortList& m_list;
    };
    std::vector<std::string> m_names;
};

/**
 * Two chords of four rows on one pattern, base octave 4: C E G, then F A C.
 * Row 0: track 0 plays chord note 0, track 1 chord note 1; row 2: track 0 stops.
 * Played as a part it sends, per step (on / off with notes):
 *   0: on 48, on 52    2: off 48
 *   4: on 53, off 52, on 57    6: off 53    end: off 57
 */
inline part::Part makeTestPart()
{
    part::Part p = part::Part::makeNew();
    p.setBaseOctave(4);
    part::Pattern& pattern = p.patterns().pattern(0);
    pattern.setCell(0, 0, {part::CellKind::ChordNote, 0, 0});
    pattern.setCell(1, 0, {part::CellKind::ChordNote, 1, 0});
    pattern.setCell(0, 2, {part::CellKind::Off, 0, 0});
    part::PartChord chord;
    chord.length = 4;
    chord.name = "C";
    chord.setNotes({0, 4, 7});
    p.append(chord);
    chord.name = "F";
    chord.setNotes({5, 9, 12});
    p.append(chord);
    p.setTempo(120, 4);
    return p;
}
