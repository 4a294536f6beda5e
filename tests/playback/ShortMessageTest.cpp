#include "midi/ShortMessage.h"

#include <gtest/gtest.h>

#include <vector>

using midi::ShortMessage;

TEST(ShortMessage, PacksCommandChannelAndDataLowByteFirst)
{
    struct Case
    {
        std::uint8_t command, channel, data1, data2;
        std::uint32_t packed;
    };
    const std::vector<Case> cases = {
        {0x90, 0x00, 60, 100, 0x00643C90},
        {0x80, 0x0F, 0, 0, 0x0000008F},
        {0xC0, 0x03, 127, 0, 0x00007FC3},
        {0xB0, 0x09, 7, 127, 0x007F07B9},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ShortMessage::pack(c.command, c.channel, c.data1, c.data2), c.packed);
        const ShortMessage m(c.command, c.channel, c.data1, c.data2, 42);
        EXPECT_EQ(m.message(), c.packed);
        EXPECT_EQ(m.status(), c.command | c.channel);
        EXPECT_EQ(m.data1(), c.data1);
        EXPECT_EQ(m.data2(), c.data2);
        EXPECT_EQ(m.timeStamp(), 42u);
    }
}

TEST(ShortMessage, PacksTheDataPairWithTheFirstByteLow)
{
    EXPECT_EQ(ShortMessage::packData(0x3C, 0x64), 0x643C);
    EXPECT_EQ(ShortMessage::packData(0xFF, 0x00), 0x00FF);
    EXPECT_EQ(ShortMessage::fromPacked(0x00643C90).data(), 0x643C);
}

TEST(ShortMessage, WireBytesHaveTheLengthOfTheirStatus)
{
    struct Case
    {
        std::uint32_t packed;
        std::vector<std::uint8_t> bytes;
    };
    const std::vector<Case> cases = {
        {0x00643C90, {0x90, 0x3C, 0x64}}, // note on
        {0x00003C81, {0x81, 0x3C, 0x00}}, // note off keeps its velocity byte
        {0x00642AC3, {0xC3, 0x2A}},       // program change: one data byte
        {0x000040D0, {0xD0, 0x40}},       // channel pressure
        {0x004020E5, {0xE5, 0x20, 0x40}}, // pitch bend
        {0x000000F8, {0xF8}},             // clock: status alone
        {0x00000AF3, {0xF3, 0x0A}},       // song select
        {0x00C83C90, {0x90, 0x3C, 0x7F}}, // velocity 200 would read as a status byte: 127
        {0x00649990, {0x90, 0x7F, 0x64}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ShortMessage::wireBytes(c.packed), c.bytes) << std::hex << c.packed;
}
