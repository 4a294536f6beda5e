#include "midi/ChordSettler.h"
#include "midi/HeldNotes.h"
#include "midi/MidiInputEvent.h"
#include "midi/RtMidiInPort.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

using midi::ChordSettler;
using midi::HeldNotes;
using midi::MidiInputEvent;
using Kind = MidiInputEvent::Kind;

namespace {

MidiInputEvent on(int note, int channel = 0)
{
    return {Kind::NoteOn, static_cast<std::uint8_t>(channel), static_cast<std::uint8_t>(note), 90};
}
MidiInputEvent off(int note, int channel = 0)
{
    return {Kind::NoteOff, static_cast<std::uint8_t>(channel), static_cast<std::uint8_t>(note), 0};
}
MidiInputEvent pedal(int value)
{
    return {Kind::Pedal, 0, 0, static_cast<std::uint8_t>(value)};
}

} // namespace

TEST(MidiInputEvent, KeepsNotesPedalAndAllNotesOffAndDropsTheRest)
{
    using Bytes = std::vector<std::uint8_t>;
    const std::vector<std::pair<Bytes, std::optional<MidiInputEvent>>> cases = {
        {{0x90, 60, 100}, MidiInputEvent{Kind::NoteOn, 0, 60, 100}},
        {{0x9F, 127, 1}, MidiInputEvent{Kind::NoteOn, 15, 127, 1}},
        {{0x93, 64, 0}, MidiInputEvent{Kind::NoteOff, 3, 64, 0}}, // velocity 0 lets go
        {{0x80, 60, 64}, MidiInputEvent{Kind::NoteOff, 0, 60, 64}},
        {{0xB0, 64, 127}, MidiInputEvent{Kind::Pedal, 0, 0, 127}},
        {{0xB2, 64, 0}, MidiInputEvent{Kind::Pedal, 2, 0, 0}},
        {{0xB0, 123, 0}, MidiInputEvent{Kind::AllNotesOff, 0, 0, 0}},
        {{0xB0, 120, 0}, MidiInputEvent{Kind::AllNotesOff, 0, 0, 0}},
        {{0xB0, 1, 64}, std::nullopt}, // modulation wheel
        {{0xE0, 0, 64}, std::nullopt}, // pitch bend
        {{0xC0, 5}, std::nullopt},     // program change
        {{0x90, 60}, std::nullopt},    // cut short
        {{0x90, 60, 100, 1}, std::nullopt},
        {{0x90, 200, 100}, std::nullopt}, // a data byte with the top bit set
        {{60, 100, 0}, std::nullopt},     // no status byte
        {{0xF8}, std::nullopt},           // clock
        {{}, std::nullopt},
    };
    for (const auto& [bytes, expected] : cases) {
        EXPECT_EQ(MidiInputEvent::fromBytes(bytes.data(), bytes.size()), expected)
            << "first byte " << (bytes.empty() ? -1 : bytes[0]);
    }
    EXPECT_EQ(MidiInputEvent::fromBytes(nullptr, 3), std::nullopt);
}

TEST(HeldNotes, TracksKeysAcrossChannelsAndCapturesWithThePedal)
{
    HeldNotes held;
    // The event, then the notes down and what it changed: notes, key pressed, captured.
    struct Step
    {
        MidiInputEvent event;
        std::vector<int> down;
        bool notesChanged;
        bool keyPressed;
        bool captured;
    };
    const std::vector<Step> steps = {
        {on(64), {64}, true, true, false},
        {on(67), {64, 67}, true, true, false},
        {on(72), {64, 67, 72}, true, true, false},
        {on(72), {64, 67, 72}, false, true, false},    // struck again: no new note
        {on(72, 1), {64, 67, 72}, false, true, false}, // the same key on another channel
        {off(72), {64, 67, 72}, false, false, false},  // still held on channel 1
        {off(72, 1), {64, 67}, true, false, false},
        {off(50), {64, 67}, false, false, false},   // never down
        {pedal(100), {64, 67}, false, false, true}, // captures the keys down
        {pedal(90), {64, 67}, false, false, false}, // still down: no second capture
        {pedal(10), {64, 67}, false, false, false},
        {off(64), {67}, true, false, false},
        {off(67), {}, true, false, false},
        {pedal(64), {}, false, false, true}, // no key down: the last chord
        {on(60, 2), {60}, true, true, false},
        {on(62, 3), {60, 62}, true, true, false},
        {MidiInputEvent{Kind::AllNotesOff, 2, 0, 0}, {62}, true, false, false},
        {MidiInputEvent{Kind::AllNotesOff, 9, 0, 0}, {62}, false, false, false},
    };
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const Step& s = steps[i];
        const HeldNotes::Change change = held.apply(s.event);
        SCOPED_TRACE("step " + std::to_string(i));
        EXPECT_EQ(held.notes(), s.down);
        EXPECT_EQ(change.notesChanged, s.notesChanged);
        EXPECT_EQ(change.keyPressed, s.keyPressed);
        EXPECT_EQ(change.captured, s.captured);
        if (i == 8) {
            EXPECT_EQ(held.captured(), (std::vector<int>{64, 67}));
        }
        if (i == 13) {
            EXPECT_EQ(held.captured(), (std::vector<int>{64, 67, 72}));
        }
    }
    EXPECT_EQ(held.lastChord(), (std::vector<int>{60, 62}));
    held.clear();
    EXPECT_TRUE(held.isEmpty());
    EXPECT_FALSE(held.pedalDown());
    EXPECT_EQ(held.chordToCapture(), (std::vector<int>{60, 62}));
}

TEST(ChordSettler, NamesEachSettledChordOnceAndNothingWhileLettingGo)
{
    using namespace std::chrono_literals;
    const ChordSettler::Clock::time_point t0{};
    ChordSettler settler(60ms);
    // At a time (ms): an update with held notes and a key press, or a poll with its result.
    struct Step
    {
        int ms;
        bool poll;
        std::vector<int> notes; // held, or the chord expected from poll (empty: nothing)
        bool keyPressed = false;
    };
    const std::vector<Step> steps = {
        {0, false, {64}, true},
        {5, false, {64, 67}, true},
        {50, true, {}}, // not settled yet
        {55, false, {64, 67, 72}, true},
        {114, true, {}},           // 59 ms after the last change
        {115, true, {64, 67, 72}}, // settled
        {500, true, {}},           // once only
        {600, false, {64, 67}},    // letting go note by note
        {700, true, {}},
        {710, false, {}},
        {800, true, {}},
        {900, false, {64}, true}, // the same chord struck again
        {901, false, {64, 67}, true},
        {902, false, {64, 67, 72}, true},
        {1000, true, {}},
        {1100, false, {64, 67}}, // a note let go after a chord that was not reported
        {1200, true, {}},
        {1300, false, {64, 67, 71}, true},
        {1400, true, {64, 67, 71}}, // a new chord
        {1500, false, {60}, true},  // a quick chord let go before it settles
        {1510, false, {}},
        {1600, true, {}},
    };
    for (const Step& s : steps) {
        const auto at = t0 + std::chrono::milliseconds(s.ms);
        if (!s.poll) {
            settler.update(s.notes, s.keyPressed, at);
            EXPECT_EQ(settler.due(), at + 60ms);
            continue;
        }
        const std::optional<std::vector<int>> got = settler.poll(at);
        EXPECT_EQ(got.value_or(std::vector<int>{}), s.notes) << "at " << s.ms << " ms";
    }
    EXPECT_FALSE(settler.due().has_value());
    settler.reset();
    settler.update({64, 67, 71}, true, t0);
    EXPECT_EQ(settler.poll(t0 + 60ms), (std::vector<int>{64, 67, 71})); // forgotten by reset
}

TEST(RtMidiInPort, FindsAlsaAddressesInPortNames)
{
    const std::vector<std::pair<const char*, std::optional<std::pair<int, int>>>> cases = {
        {"Midi Through:Midi Through Port-0 14:0", std::pair{14, 0}},
        {"Keystation 49:Keystation 49 MIDI 1 20:1", std::pair{20, 1}},
        {"Device:Port 2", std::nullopt},
        {"Device:Port a:0", std::nullopt},
        {"Device:Port 1:", std::nullopt},
        {"Device:Port :1", std::nullopt},
        {"Device:Port 1:2x", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [name, address] : cases)
        EXPECT_EQ(midi::RtMidiInPort::alsaAddress(name), address) << name;
}
