#include "midi/MidiFile.h"
#include "MidiTestSupport.h"
#include "midi/MidiEvent.h"
#include "midi/VariableLengthQuantity.h"
#include "music/FileBytes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#ifndef _WIN32
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

using midi::MidiEvent;
using midi::MidiFile;
using midi::VariableLengthQuantity;
using namespace miditest;
using Bytes = std::vector<std::uint8_t>;

namespace {

/** An event filled field by field: status, data bytes from 1 on, data length. */
MidiEvent raw(std::uint8_t status, const Bytes& dataBytes, std::uint32_t length = 0)
{
    MidiEvent event;
    event.setStatus(status);
    for (std::size_t i = 0; i < dataBytes.size(); ++i)
        event.setDataByte(static_cast<int>(i + 1), dataBytes[i]);
    event.setDataLength(length);
    return event;
}

} // namespace

TEST(VariableLengthQuantity, EncodesAndDecodesTheFormatsExamplesAndRejectsBadInput)
{
    // clang-format off
    const std::vector<std::pair<std::uint32_t, Bytes>> cases = {
        {0x00, {0x00}}, {0x40, {0x40}}, {0x7F, {0x7F}}, {0x80, {0x81, 0x00}},
        {0x2000, {0xC0, 0x00}}, {0x3FFF, {0xFF, 0x7F}}, {0x4000, {0x81, 0x80, 0x00}},
        {0x1FFFFF, {0xFF, 0xFF, 0x7F}}, {0x200000, {0x81, 0x80, 0x80, 0x00}},
        {0x0FFFFFFF, {0xFF, 0xFF, 0xFF, 0x7F}}};
    // clang-format on
    for (const auto& [value, bytes] : cases) {
        Bytes out;
        VariableLengthQuantity::append(out, value);
        EXPECT_EQ(out, bytes) << "value " << value;
        std::size_t pos = 0;
        EXPECT_EQ(VariableLengthQuantity::decode(std::string(bytes.begin(), bytes.end()), pos),
                  value);
        EXPECT_EQ(pos, bytes.size());
    }
    Bytes out;
    VariableLengthQuantity::append(out, 0x10000080);
    EXPECT_EQ(out, (Bytes{0x81, 0x00})) << "only 28 bits are kept";

    for (const std::string& text :
         {std::string(""), std::string("\x81"), std::string("\xFF\xFF\xFF"),
          std::string("\x81\x80\x80\x80\x00")}) {
        std::size_t pos = 0; // truncated or overlong input
        EXPECT_FALSE(VariableLengthQuantity::decode(text, pos).has_value());
        EXPECT_EQ(pos, 0u) << "the position stays where it was";
    }
}

TEST(MidiEvent, WritesEveryKindWithItsStatus)
{
    MidiEvent sequence = raw(0xFF, {0x00}, 2);
    sequence.setSequenceNumber(0x1234);
    MidiEvent sysex = raw(0xF0, {});
    sysex.setData({0x7E, 0x7F, 0xF7});

    using E = MidiEvent;
    const std::vector<std::pair<MidiEvent, Bytes>> cases = {
        {E::noteOn(0, E::packMessage(2, 60, 100)), {0x00, 0x92, 60, 100}},
        {E::noteOff(128, E::packMessage(15, 61, 79)), {0x81, 0x00, 0x8F, 61, 79}},
        // data bytes above 127 would read as status bytes: written as 127
        {E::noteOn(0, E::packMessage(0, 60, 128)), {0x00, 0x90, 60, 0x7F}},
        {E::noteOff(0, E::packMessage(1, 200, 255)), {0x00, 0x81, 0x7F, 0x7F}},
        {E::noteOn(0, E::packMessage(16, 1, 2)), {0x00, 0xA0, 1, 2}}, // channel 16 reaches 0xA0
        {E::tempo(0, 60000000 / 120), {0x00, 0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20}},
        {E::timeSignature(0, {4, 4, 24, 8}), {0x00, 0xFF, 0x58, 0x04, 0x04, 0x04, 0x18, 0x08}},
        {E::trackName(0x3FFF, "Ab"), {0xFF, 0x7F, 0xFF, 0x03, 0x02, 'A', 'b'}},
        {E::endOfTrack(0x200000), {0x81, 0x80, 0x80, 0x00, 0xFF, 0x2F, 0x00}},
        {E::trackName(0, ""), {0x00, 0xFF, 0x03, 0x00}},
        {sequence, {0x00, 0xFF, 0x00, 0x02, 0x12, 0x34}},
        {raw(0xC3, {5, 99}), {0x00, 0xC3, 5}}, // program change has one data byte
        {sysex, {0x00, 0xF0, 0x03, 0x7E, 0x7F, 0xF7}},
        {raw(0xFF, {0x54, 2, 3, 4, 5, 6}, 5), {0x00, 0xFF, 0x54, 0x05, 2, 3, 4, 5, 6}}, // SMPTE
        {raw(0xFF, {0x55, 0xAA, 0xBB}, 2), {0x00, 0xFF, 0x55, 0x02, 0xAA, 0xBB}},
        // 0x59 is not a two-byte inline case: its (empty) buffer is written
        {raw(0xFF, {0x59, 0xAA}), {0x00, 0xFF, 0x59, 0x00}},
        {raw(0xFF, {0x21, 3}, 1), {0x00, 0xFF, 0x21, 0x01, 0x03}}, // port
    };
    for (const auto& [event, bytes] : cases) {
        Bytes out;
        event.appendTo(out);
        EXPECT_EQ(out, bytes);
    }
}

TEST(MidiFile, ReleaseEmptiesTheFileAndInitialiseStartsAnew)
{
    MidiFile file;
    file.addTrack();
    file.release();
    EXPECT_FALSE(file.isValid());
    EXPECT_TRUE(file.tracks().empty());
    file.release(); // a second release does nothing
    file.initialise();
    EXPECT_TRUE(file.isValid());
    EXPECT_EQ(file.toBytes(), (Bytes{'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1, 0, 0, 0, 0x60}));
}

TEST(MidiFile, SavedFileHasPatchedChunkLengthsAndEventsInTheLastTrack)
{
    const auto dir = scratchFolder("save");
    MidiFile file;
    file.addEndOfTrack(5); // no track yet: dropped
    file.addTrack();
    file.addTempo(500000, 0);
    file.addTrack(); // stays empty: an empty chunk
    file.addTrack();
    file.addNoteOn(0, MidiEvent::packMessage(0, 60, 64));
    file.addNoteOff(96, MidiEvent::packMessage(0, 60, 63));
    const Bytes expected = {
        'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1,    0,    3,  0,    96,             // header
        'M', 'T', 'r', 'k', 0, 0, 0, 7, 0, 0xFF, 0x51, 3,  0x07, 0xA1, 0x20,     // tempo
        'M', 'T', 'r', 'k', 0, 0, 0, 0,                                          // empty
        'M', 'T', 'r', 'k', 0, 0, 0, 8, 0, 0x90, 60,   64, 0x60, 0x80, 60,   63, // notes
    };
    EXPECT_EQ(file.toBytes(), expected);
    ASSERT_TRUE(file.save(dir / "out.mid").ok());
    EXPECT_EQ(music::readFileBytes(dir / "out.mid"), std::string(expected.begin(), expected.end()));
    std::filesystem::remove_all(dir);
}

#ifndef _WIN32
TEST(MidiFile, FailedSaveSaysWhyAndLeavesTheOldFile)
{
    const auto dir = scratchFolder("fail");
    const auto path = dir / "song.mid";
    std::ofstream(path, std::ios::binary) << "old content";
    MidiFile file;
    file.addTrack();
    // A folder that is a regular file: nothing can be created inside, even as root.
    EXPECT_EQ(file.save(path / "out.mid").message(), "failed to open file");

    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // No room after 1000 bytes: the write fails with EFBIG instead of killing the child.
        signal(SIGXFSZ, SIG_IGN);
        rlimit limit{1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        for (int i = 0; i < 1000; ++i)
            file.addNoteOn(0, MidiEvent::packMessage(0, 60, 64));
        const auto result = file.save(path);
        _exit(!result.ok() && result.message() == "failed to write file" ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(music::readFileBytes(path), "old content");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir),
                            std::filesystem::directory_iterator()),
              1)
        << "no temporary file is left behind";
    std::filesystem::remove_all(dir);
}
#endif

TEST(MidiTrack, ChannelEventsWrittenDirectlyMatchTheEventEncoderByteForByte)
{
    // Delta, status and data bytes: every channel kind, a one- and two-data-byte status, data
    // above seven bits, the longest delta, and statuses that a channel byte above 15 makes
    // (no channel status at all).
    struct Case
    {
        std::uint32_t delta;
        std::uint8_t status;
        std::uint8_t data1;
        std::uint8_t data2;
    };
    const Case cases[] = {
        {0, 0x90, 60, 100},         {127, 0x80, 60, 0},       {128, 0x9F, 127, 127},
        {0x3FFF, 0xA3, 1, 2},       {0x200000, 0xB0, 7, 200}, {0x0FFFFFFF, 0xC5, 41, 99},
        {5, 0xD0, 255, 255},        {6, 0xE2, 0, 64},         {7, 0xEF, 128, 129},
        {0xFFFFFFFF, 0x91, 10, 20}, {3, 0x20, 60, 100},       {4, 0xF0, 60, 100},
        {9, 0xFF, 0x2F, 0},         {10, 0xF7, 1, 1},
    };
    for (const Case& c : cases) {
        midi::MidiEvent event;
        event.setDeltaTime(c.delta);
        event.setStatus(c.status);
        event.setDataByte(1, c.data1);
        event.setDataByte(2, c.data2);
        midi::MidiTrack viaEvent;
        viaEvent.addEvent(event);
        midi::MidiTrack direct;
        direct.addChannelEvent(c.delta, c.status, c.data1, c.data2);
        EXPECT_EQ(direct.bytes(), viaEvent.bytes()) << "status " << int(c.status);
        EXPECT_EQ(direct.eventCount(), 1u);
    }
}
