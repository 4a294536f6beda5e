#include "PlaybackTestSupport.h"

#include "midi/CMIDIOutDevice.h"
#include "midi/CMIDIOutEventFailure.h"
#include "midi/CMIDIOutException.h"
#include "midi/ShortMessage.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

using midi::CMIDIOutDevice;
using midi::ShortMessage;
using Bytes = std::vector<std::uint8_t>;

namespace {

const std::uint32_t kNoteOn = ShortMessage::pack(0x90, 0, 60, 100);

/** The text of the exception `action` throws, empty when it throws none. */
template <typename Exception, typename Action> std::string thrownText(Action action)
{
    try {
        action();
    } catch (const Exception& error) {
        return error.what();
    }
    return {};
}

class CMIDIOutDeviceTest : public ::testing::Test
{
protected:
    std::string sendFailure(std::uint32_t message)
    {
        return thrownText<midi::CMIDIOutException>([&] { m_device.send(message); });
    }

    std::shared_ptr<FakePortList> m_ports =
        std::make_shared<FakePortList>(std::vector<std::string>{"Fake: A", "Fake: B"});
    CMIDIOutDevice m_device{m_ports};
};

} // namespace

TEST_F(CMIDIOutDeviceTest, IsOpenOnlyBetweenASuccessfulOpenAndCloseAndSendsNothingOtherwise)
{
    EXPECT_NO_THROW(m_device.send(kNoteOn)); // closed: nothing happens
    EXPECT_NO_THROW(m_device.sendLong({0xF0, 0x7E, 0xF7}));
    EXPECT_NO_THROW(m_device.close());
    m_ports->refused = 1;
    for (const unsigned number : {1u, 2u, 255u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(m_device.open(number)) << number;
        EXPECT_FALSE(m_device.isOpen());
        m_device.send(kNoteOn);
    }
    EXPECT_EQ(m_ports->opened, 0);
    EXPECT_TRUE(m_ports->snapshot().empty());

    // Opening again closes the port in use first, also when the new one fails.
    ASSERT_TRUE(m_device.open(0));
    EXPECT_FALSE(m_device.open(7));
    EXPECT_FALSE(m_device.isOpen());
    ASSERT_TRUE(m_device.open(0));
    m_device.close();
    m_device.close();
    EXPECT_EQ(m_ports->opened, 2);
    EXPECT_EQ(m_ports->closed, 2);

    EXPECT_THROW(CMIDIOutDevice::capabilities(2, m_ports.get()), midi::CMIDIOutException);
    EXPECT_EQ(thrownText<midi::CMIDIOutEventFailure>([] { CMIDIOutDevice device(nullptr); }),
              "Unable to create a signalling event for CMIDIOutDevice object.");
}

TEST_F(CMIDIOutDeviceTest, SendsWireBytesButNeverStatusFfOrDataWithoutStatus)
{
    ASSERT_TRUE(m_device.open(0));
    m_device.send(3u << 16 | 0x1FF); // port selection: not for real ports
    m_device.send(0x000000FF);       // a bare System Reset is not sent either
    m_device.send(0x00643C);         // no status byte
    m_device.send(ShortMessage::pack(0xC0, 2, 41, 0));
    m_device.send(ShortMessage::pack(0x90, 2, 60, 100));
    EXPECT_EQ(m_ports->snapshot(), (std::vector<Bytes>{{0xC2, 41}, {0x92, 60, 100}}));
}

TEST_F(CMIDIOutDeviceTest, SendFailureThrowsTheSystemTextCutTo127Characters)
{
    m_ports->failAfter = 1;
    ASSERT_TRUE(m_device.open(0));
    EXPECT_EQ(sendFailure(kNoteOn), "");
    EXPECT_EQ(sendFailure(ShortMessage::pack(0x80, 0, 60, 0)), "The port has gone away.");
    EXPECT_TRUE(m_device.isOpen()); // the caller decides to stop

    const midi::CMIDIOutException longText(std::string(300, 'x'));
    const midi::CMIDIOutException copy = longText;
    EXPECT_EQ(std::string(copy.what()), std::string(127, 'x'));
}

TEST_F(CMIDIOutDeviceTest, WorkerSendsLongMessagesInOrder)
{
    ASSERT_TRUE(m_device.open(1));
    std::vector<Bytes> expected;
    for (std::uint8_t i = 0; i < 50; ++i) {
        expected.push_back({0xF0, 0x7D, i, 0xF7});
        m_device.sendLong(expected.back());
    }
    for (int i = 0; i < 500 && m_ports->snapshot().size() < expected.size(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_EQ(m_ports->snapshot(), expected);
}

TEST_F(CMIDIOutDeviceTest, LongMessageFailureIsReportedOnceByTheNextSend)
{
    m_ports->failAfter = 0;
    m_ports->failureText = "SysEx refused.";
    ASSERT_TRUE(m_device.open(0));
    m_device.sendLong({0xF0, 0x01, 0xF7});
    std::string text; // a System Reset is not forwarded, but reports the worker's failure
    for (int i = 0; i < 500 && (text = sendFailure(0x000000FF)).empty(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_EQ(text, "SysEx refused.");
    EXPECT_EQ(sendFailure(0x000000FF), "");
}

TEST(CMIDIOutDevice, ClosingAndDestroyingWithQueuedMessagesEndsTheWorker)
{
    const auto ports = std::make_shared<FakePortList>(std::vector<std::string>{"A", "B"});
    {
        CMIDIOutDevice device(ports);
        for (int round = 0; round < 20; ++round) {
            ASSERT_TRUE(device.open(static_cast<unsigned>(round % 2)));
            for (int i = 0; i < 100; ++i)
                device.sendLong({0xF0, 0x00, 0xF7});
            if (round % 3 == 0)
                device.close();
        }
    } // destroyed while opened: must not hang or leak the port
    EXPECT_EQ(ports->opened, 20);
    EXPECT_EQ(ports->closed, 20);
}

TEST(ShortMessage, PacksLowByteFirstAndWiresTheLengthOfTheStatus)
{
    const std::vector<std::pair<std::uint32_t, Bytes>> cases = {
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
    for (const auto& [packed, bytes] : cases)
        EXPECT_EQ(ShortMessage::wireBytes(packed), bytes) << std::hex << packed;
    EXPECT_EQ(ShortMessage::pack(0x90, 0x0F, 60, 100), 0x00643C9Fu) << "data low byte first";
}
