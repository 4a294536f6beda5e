#include "FakePorts.h"

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

namespace {

using Bytes = std::vector<std::uint8_t>;

std::shared_ptr<FakePortList> twoPorts()
{
    return std::make_shared<FakePortList>(std::vector<std::string>{"Fake: A", "Fake: B"});
}

/** Waits (bounded) until the log holds `count` messages; long messages arrive from the worker. */
bool waitForMessages(FakePortLog& log, std::size_t count)
{
    for (int i = 0; i < 500; ++i) {
        if (log.snapshot().size() >= count)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return false;
}

} // namespace

TEST(CMIDIOutDevice, DoesNothingWhileClosed)
{
    const auto ports = twoPorts();
    CMIDIOutDevice device(ports);
    EXPECT_FALSE(device.isOpen());
    EXPECT_NO_THROW(device.send(ShortMessage::pack(0x90, 0, 60, 100)));
    EXPECT_NO_THROW(device.sendLong({0xF0, 0x7E, 0xF7}));
    EXPECT_NO_THROW(device.close());
    EXPECT_EQ(ports->log->opened, 0);
    EXPECT_TRUE(ports->log->messages.empty());
}

TEST(CMIDIOutDevice, OpenFailsQuietlyForDevicesItCannotOpen)
{
    const auto ports = twoPorts();
    ports->refuse(1);
    CMIDIOutDevice device(ports);
    for (const unsigned number : {1u, 2u, 255u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(device.open(number)) << number;
        EXPECT_FALSE(device.isOpen());
        device.send(ShortMessage::pack(0x90, 0, 60, 100)); // still closed: nothing
    }
    EXPECT_EQ(ports->log->opened, 0);
    EXPECT_TRUE(ports->log->messages.empty());
}

TEST(CMIDIOutDevice, OpenWhileOpenedClosesTheFirstPort)
{
    const auto ports = twoPorts();
    CMIDIOutDevice device(ports);
    ASSERT_TRUE(device.open(0));
    ASSERT_TRUE(device.open(1));
    EXPECT_EQ(ports->log->opened, 2);
    EXPECT_EQ(ports->log->closed, 1);
    EXPECT_TRUE(device.isOpen());
    device.close();
    device.close();
    EXPECT_EQ(ports->log->closed, 2);
    EXPECT_FALSE(device.isOpen());

    ASSERT_TRUE(device.open(0));
    EXPECT_FALSE(device.open(7)); // a failed open still closed the first port
    EXPECT_FALSE(device.isOpen());
    EXPECT_EQ(ports->log->closed, 3);
}

TEST(CMIDIOutDevice, SendsWireBytesButNeverStatusFfOrDataWithoutStatus)
{
    const auto ports = twoPorts();
    CMIDIOutDevice device(ports);
    ASSERT_TRUE(device.open(0));
    device.send(3u << 16 | 0x1FF); // port selection: not for real ports
    device.send(0x000000FF);       // a bare System Reset is not sent either
    device.send(0x00643C);         // no status byte
    device.send(ShortMessage::pack(0xC0, 2, 41, 0));
    device.send(ShortMessage::pack(0x90, 2, 60, 100));
    EXPECT_EQ(ports->log->snapshot(), (std::vector<Bytes>{{0xC2, 41}, {0x92, 60, 100}}));
}

TEST(CMIDIOutDevice, SendFailureThrowsTheSystemTextCutTo127Characters)
{
    const auto ports = twoPorts();
    ports->log->failAfter = 1;
    CMIDIOutDevice device(ports);
    ASSERT_TRUE(device.open(0));
    device.send(ShortMessage::pack(0x90, 0, 60, 100));
    try {
        device.send(ShortMessage::pack(0x80, 0, 60, 0));
        FAIL() << "no exception";
    } catch (const midi::CMIDIOutException& error) {
        EXPECT_STREQ(error.what(), "The port has gone away.");
        const midi::CMIDIOutException copy = error;
        EXPECT_STREQ(copy.what(), error.what());
    }
    EXPECT_TRUE(device.isOpen()); // the caller decides to stop

    const midi::CMIDIOutException longText(std::string(300, 'x'));
    EXPECT_EQ(std::string(longText.what()), std::string(127, 'x'));
}

TEST(CMIDIOutDevice, WorkerSendsLongMessagesInOrder)
{
    const auto ports = twoPorts();
    CMIDIOutDevice device(ports);
    ASSERT_TRUE(device.open(1));
    std::vector<Bytes> expected;
    for (std::uint8_t i = 0; i < 50; ++i) {
        expected.push_back({0xF0, 0x7D, i, 0xF7});
        device.sendLong(expected.back());
    }
    ASSERT_TRUE(waitForMessages(*ports->log, expected.size()));
    EXPECT_EQ(ports->log->snapshot(), expected);
}

TEST(CMIDIOutDevice, LongMessageFailureIsReportedByTheNextSend)
{
    const auto ports = twoPorts();
    ports->log->failAfter = 0;
    ports->log->failureText = "SysEx refused.";
    CMIDIOutDevice device(ports);
    ASSERT_TRUE(device.open(0));
    device.sendLong({0xF0, 0x01, 0xF7});
    bool thrown = false;
    for (int i = 0; i < 500 && !thrown; ++i) {
        try {
            device.send(0x000000FF); // not forwarded, but reports the worker's failure
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        } catch (const midi::CMIDIOutException& error) {
            EXPECT_STREQ(error.what(), "SysEx refused.");
            thrown = true;
        }
    }
    EXPECT_TRUE(thrown);
    EXPECT_NO_THROW(device.send(0x000000FF)); // reported once
}

TEST(CMIDIOutDevice, ClosingAndDestroyingWithQueuedMessagesEndsTheWorker)
{
    const auto ports = twoPorts();
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
    EXPECT_EQ(ports->log->opened, 20);
    EXPECT_EQ(ports->log->closed, 20);
}

TEST(CMIDIOutDevice, CapabilitiesNameTheDeviceAndRejectBadNumbers)
{
    const auto ports = twoPorts();
    EXPECT_EQ(CMIDIOutDevice::deviceCount(ports.get()), 2u);
    EXPECT_EQ(CMIDIOutDevice::capabilities(1, ports.get()).name, "Fake: B");
    EXPECT_THROW(CMIDIOutDevice::capabilities(2, ports.get()), midi::CMIDIOutException);
    EXPECT_THROW(CMIDIOutDevice::capabilities(255, ports.get()), midi::CMIDIOutException);
}

TEST(CMIDIOutDevice, ConstructionWithoutADeviceListFailsWithTheEventMessage)
{
    try {
        CMIDIOutDevice device(nullptr);
        FAIL() << "no exception";
    } catch (const midi::CMIDIOutEventFailure& error) {
        EXPECT_STREQ(error.what(),
                     "Unable to create a signalling event for CMIDIOutDevice object.");
    }
}
