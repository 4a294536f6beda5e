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
using miditest::scratchFolder;
using Bytes = std::vector<std::uint8_t>;

namespace {

Bytes encoded(const MidiEvent& event)
{
    Bytes out;
    event.appendTo(out);
    return out;
}

Bytes fileBytes(const std::filesystem::path& path)
{
    const auto text = music::readFileBytes(path);
    return text ? Bytes(text->begin(), text->end()) : Bytes{};
}

} // namespace

TEST(VariableLengthQuantity, EncodesTheFormatsExamples)
{
    const struct
    {
        std::uint32_t value;
        Bytes bytes;
    } cases[] = {
        {0x00, {0x00}},
        {0x40, {0x40}},
        {0x7F, {0x7F}},
        {0x80, {0x81, 0x00}},
        {0x2000, {0xC0, 0x00}},
        {0x3FFF, {0xFF, 0x7F}},
        {0x4000, {0x81, 0x80, 0x00}},
        {0x1FFFFF, {0xFF, 0xFF, 0x7F}},
        {0x200000, {0x81, 0x80, 0x80, 0x00}},
        {0x0FFFFFFF, {0xFF, 0xFF, 0xFF, 0x7F}},
    };
    for (const auto& c : cases) {
        Bytes out;
        VariableLengthQuantity::append(out, c.value);
        EXPECT_EQ(out, c.bytes) << "value " << c.value;

        const std::string text(c.bytes.begin(), c.bytes.end());
        std::size_t pos = 0;
        EXPECT_EQ(VariableLengthQuantity::decode(text, pos), c.value);
        EXPECT_EQ(pos, c.bytes.size());
    }
}

TEST(VariableLengthQuantity, KeepsOnlyTwentyEightBitsOfLargerValues)
{
    Bytes out;
    VariableLengthQuantity::append(out, 0x10000080);
    EXPECT_EQ(out, (Bytes{0x81, 0x00}));
}

TEST(VariableLengthQuantity, RejectsTruncatedAndOverlongInput)
{
    for (const std::string& text :
         {std::string(""), std::string("\x81"), std::string("\xFF\xFF\xFF"),
          std::string("\x81\x80\x80\x80\x00")}) {
        std::size_t pos = 0;
        EXPECT_FALSE(VariableLengthQuantity::decode(text, pos).has_value());
        EXPECT_EQ(pos, 0u) << "the position stays where it was";
    }
}

TEST(MidiEvent, WritesEveryKindWithItsStatus)
{
    MidiEvent sequence;
    sequence.setStatus(0xFF);
    sequence.setDataByte(1, 0x00);
    sequence.setDataLength(2);
    sequence.setSequenceNumber(0x1234);

    MidiEvent program;
    program.setStatus(0xC3);
    program.setDataByte(1, 5);
    program.setDataByte(2, 99); // not written: program change has one data byte

    MidiEvent sysex;
    sysex.setStatus(0xF0);
    sysex.setData({0x7E, 0x7F, 0xF7});

    MidiEvent smpte;
    smpte.setStatus(0xFF);
    smpte.setDataByte(1, 0x54);
    smpte.setDataLength(5);
    for (int i = 2; i <= 6; ++i)
        smpte.setDataByte(i, static_cast<std::uint8_t>(i));

    MidiEvent type55;
    type55.setStatus(0xFF);
    type55.setDataByte(1, 0x55);
    type55.setDataLength(2);
    type55.setDataByte(2, 0xAA);
    type55.setDataByte(3, 0xBB);

    MidiEvent keySignature; // 0x59 is not a two-byte inline case: its (empty) buffer is written
    keySignature.setStatus(0xFF);
    keySignature.setDataByte(1, 0x59);
    keySignature.setDataByte(2, 0xAA);

    MidiEvent port;
    port.setStatus(0xFF);
    port.setDataByte(1, 0x21);
    port.setDataLength(1);
    port.setDataByte(2, 3);

    MidiEvent emptyText = MidiEvent::trackName(0, "");

    const struct
    {
        const char* what;
        MidiEvent event;
        Bytes bytes;
    } cases[] = {
        {"note on",
         MidiEvent::noteOn(0, MidiEvent::packMessage(2, 60, 100)),
         {0x00, 0x92, 60, 100}},
        {"note off",
         MidiEvent::noteOff(128, MidiEvent::packMessage(15, 61, 79)),
         {0x81, 0x00, 0x8F, 61, 79}},
        {"velocity above 7 bits kept",
         MidiEvent::noteOn(0, MidiEvent::packMessage(0, 60, 128)),
         {0x00, 0x90, 60, 0x80}},
        {"channel byte 16 reaches 0xA0",
         MidiEvent::noteOn(0, MidiEvent::packMessage(16, 1, 2)),
         {0x00, 0xA0, 1, 2}},
        {"tempo 120 BPM",
         MidiEvent::tempo(0, 60000000 / 120),
         {0x00, 0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20}},
        {"time signature",
         MidiEvent::timeSignature(0, {4, 4, 24, 8}),
         {0x00, 0xFF, 0x58, 0x04, 0x04, 0x04, 0x18, 0x08}},
        {"track name",
         MidiEvent::trackName(0x3FFF, "Ab"),
         {0xFF, 0x7F, 0xFF, 0x03, 0x02, 'A', 'b'}},
        {"empty track name", emptyText, {0x00, 0xFF, 0x03, 0x00}},
        {"end of track",
         MidiEvent::endOfTrack(0x200000),
         {0x81, 0x80, 0x80, 0x00, 0xFF, 0x2F, 0x00}},
        {"sequence number", sequence, {0x00, 0xFF, 0x00, 0x02, 0x12, 0x34}},
        {"program change", program, {0x00, 0xC3, 5}},
        {"system exclusive", sysex, {0x00, 0xF0, 0x03, 0x7E, 0x7F, 0xF7}},
        {"smpte offset", smpte, {0x00, 0xFF, 0x54, 0x05, 2, 3, 4, 5, 6}},
        {"type 0x55", type55, {0x00, 0xFF, 0x55, 0x02, 0xAA, 0xBB}},
        {"type 0x59", keySignature, {0x00, 0xFF, 0x59, 0x00}},
        {"port", port, {0x00, 0xFF, 0x21, 0x01, 0x03}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(encoded(c.event), c.bytes) << c.what;
}

TEST(MidiFile, HeaderCountsTheTracksAdded)
{
    MidiFile file;
    EXPECT_EQ(file.toBytes(), (Bytes{'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1, 0, 0, 0, 0x60}));
    file.addTrack();
    file.addTrack();
    const auto header = file.headerBytes();
    EXPECT_EQ(Bytes(header.begin(), header.end()),
              (Bytes{0x4D, 0x54, 0x68, 0x64, 0, 0, 0, 6, 0, 1, 0, 2, 0, 0x60}));
}

TEST(MidiFile, EventsGoToTheLastTrackAndNowhereBeforeTheFirst)
{
    MidiFile file;
    file.addEndOfTrack(5); // no track yet: dropped
    file.addTrack();
    file.addTimeSignature(0, {4, 4, 24, 8});
    file.addTrack();
    file.addTrackName(0, "x");
    file.addEndOfTrack(0);
    ASSERT_EQ(file.tracks().size(), 2u);
    EXPECT_EQ(file.tracks()[0].eventCount(), 1u);
    EXPECT_EQ(file.tracks()[1].eventCount(), 2u);

    file.release();
    EXPECT_FALSE(file.isValid());
    EXPECT_TRUE(file.tracks().empty());
    file.release(); // a second release does nothing
    file.initialise();
    EXPECT_TRUE(file.isValid());
    EXPECT_EQ(file.trackCount(), 0);
}

TEST(MidiFile, SavedFileHasPatchedChunkLengthsAndEmptyTracks)
{
    const auto dir = scratchFolder("save");
    MidiFile file;
    file.addTrack();
    file.addTempo(500000, 0);
    file.addTrack(); // stays empty: an empty chunk
    file.addTrack();
    file.addNoteOn(0, MidiEvent::packMessage(0, 60, 64));
    file.addNoteOff(96, MidiEvent::packMessage(0, 60, 63));

    const auto path = dir / "out.mid";
    ASSERT_TRUE(file.save(path).ok());
    const Bytes bytes = fileBytes(path);
    EXPECT_EQ(bytes, file.toBytes());
    const Bytes expected = {
        'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1,    0,    3,  0,    96,             // header
        'M', 'T', 'r', 'k', 0, 0, 0, 7, 0, 0xFF, 0x51, 3,  0x07, 0xA1, 0x20,     // tempo
        'M', 'T', 'r', 'k', 0, 0, 0, 0,                                          // empty
        'M', 'T', 'r', 'k', 0, 0, 0, 8, 0, 0x90, 60,   64, 0x60, 0x80, 60,   63, // notes
    };
    EXPECT_EQ(bytes, expected);
    std::filesystem::remove_all(dir);
}

TEST(MidiFile, SaveThatCannotOpenKeepsNothingAndSaysSo)
{
    const auto dir = scratchFolder("open");
    // A folder that is a regular file: nothing can be created inside, even as root.
    std::ofstream(dir / "plain") << "x";
    MidiFile file;
    file.addTrack();
    const auto result = file.save(dir / "plain" / "out.mid");
    EXPECT_FALSE(result.ok());
    EXPECT_EQ(result.message(), "failed to open file");
    std::filesystem::remove_all(dir);
}

#ifndef _WIN32
TEST(MidiFile, SaveThatFailsHalfWayLeavesTheOldFile)
{
    const auto dir = scratchFolder("half");
    const auto path = dir / "song.mid";
    std::ofstream(path, std::ios::binary) << "old content";

    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // No room after 1000 bytes: the write fails with EFBIG instead of killing the child.
        signal(SIGXFSZ, SIG_IGN);
        rlimit limit{1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        MidiFile big;
        big.addTrack();
        for (int i = 0; i < 1000; ++i)
            big.addNoteOn(0, MidiEvent::packMessage(0, 60, 64));
        const auto result = big.save(path);
        _exit(!result.ok() && result.message() == "failed to write file" ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    const auto old = music::readFileBytes(path);
    ASSERT_TRUE(old.has_value());
    EXPECT_EQ(*old, "old content");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir),
                            std::filesystem::directory_iterator()),
              1)
        << "no temporary file is left behind";
    std::filesystem::remove_all(dir);
}
#endif
