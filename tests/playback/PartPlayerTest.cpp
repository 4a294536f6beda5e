#include "FakePorts.h"
#include "TestPart.h"

#include "app/player/PartPlayer.h"
#include "midi/ShortMessage.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using player::PartPlayer;
using Bytes = std::vector<std::uint8_t>;

namespace {

void ensureApplication()
{
    static int argc = 1;
    static char name[] = "playback_tests";
    static char* argv[] = {name, nullptr};
    if (QCoreApplication::instance() == nullptr)
        new QCoreApplication(argc, argv); // lives for the whole test run
}

/** Runs the event loop until the player finishes; false when it does not within `limitMs`. */
bool runUntilFinished(PartPlayer& player, int limitMs = 5000)
{
    if (!player.isPlaying())
        return true;
    QEventLoop loop;
    bool done = false;
    QObject::connect(&player, &PartPlayer::finished, &loop, [&] {
        done = true;
        loop.quit();
    });
    QTimer::singleShot(limitMs, &loop, &QEventLoop::quit);
    loop.exec();
    return done;
}

/** Note messages only, as (status, note), velocities left out: they carry a random jitter. */
std::vector<std::pair<int, int>> notesOf(const std::vector<Bytes>& messages)
{
    std::vector<std::pair<int, int>> notes;
    for (const Bytes& m : messages) {
        if ((m[0] & 0xE0) == 0x80)
            notes.emplace_back(m[0], m[1]);
    }
    return notes;
}

class PartPlayerTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ensureApplication();
        midi::MidiSettings settings;
        settings.setDeviceNumber(1);
        settings.setChannel(3);
        settings.setPort(2);
        settings.setProgram(41);
        m_player.setSettings(settings);
        m_player.setTempo(600, 20); // 5 ms steps keep the tests short
        QObject::connect(&m_player, &PartPlayer::failed,
                         [this](const QString& text) { m_failures.push_back(text.toStdString()); });
        QObject::connect(&m_player, &PartPlayer::messageSent,
                         [this](quint32 packed) { m_sent.push_back(packed); });
        QObject::connect(&m_player, &PartPlayer::playingChanged, [this](bool playing, bool single) {
            m_flags.emplace_back(playing, single);
        });
    }

    std::shared_ptr<FakePortList> m_ports =
        std::make_shared<FakePortList>(std::vector<std::string>{"Fake: A", "Fake: B"});
    PartPlayer m_player{m_ports};
    std::vector<std::string> m_failures;
    std::vector<quint32> m_sent;
    std::vector<std::pair<bool, bool>> m_flags;
};

} // namespace

TEST(PartPlayerInterval, IsSixtyThousandOverBpmTimesTpbTruncated)
{
    struct Case
    {
        int bpm, tpb;
        std::uint16_t interval;
    };
    const std::vector<Case> cases = {
        {120, 4, 125},     {126, 4, 119}, {1, 1, 60000},  {60000, 1, 1},
        {65535, 65535, 0}, {0, 4, 60000}, {-5, 4, 60000},
    };
    for (const Case& c : cases)
        EXPECT_EQ(PartPlayer::intervalFor(c.bpm, c.tpb), c.interval) << c.bpm << " x " << c.tpb;
}

TEST_F(PartPlayerTest, PlaysThePartAfterPortSelectionAndProgram)
{
    ASSERT_EQ(m_player.playPart(makeTestPart(), part::kNoIndex), PartPlayer::StartResult::Started);
    EXPECT_TRUE(m_player.isPlaying());
    EXPECT_FALSE(m_player.isPlayingSingleChord());
    ASSERT_TRUE(runUntilFinished(m_player));

    ASSERT_GE(m_sent.size(), 2u);
    EXPECT_EQ(m_sent[0], 0x0201FFu); // FF 01 port 2 goes to the device...
    const std::vector<Bytes> received = m_ports->log->snapshot();
    ASSERT_FALSE(received.empty());
    EXPECT_EQ(received[0], (Bytes{0xC3, 41})); // ...which passes only the program change on
    const std::vector<std::pair<int, int>> expected = {{0x93, 48}, {0x93, 52}, {0x83, 48},
                                                       {0x93, 53}, {0x83, 52}, {0x93, 57},
                                                       {0x83, 53}, {0x83, 57}};
    EXPECT_EQ(notesOf(received), expected);
    EXPECT_EQ(received.size(), m_sent.size() - 1);

    EXPECT_FALSE(m_player.isPlaying());
    EXPECT_EQ(m_flags, (std::vector<std::pair<bool, bool>>{{true, false}, {false, false}}));
    EXPECT_EQ(m_ports->log->closed, 1); // the device is open exactly while playing
    EXPECT_EQ(m_player.settings().programAt(2, 3), 41);
    EXPECT_TRUE(m_failures.empty());
}

TEST_F(PartPlayerTest, SingleChordEndsAfterItsChord)
{
    ASSERT_EQ(m_player.playSingleChord(makeTestPart(), 1), PartPlayer::StartResult::Started);
    EXPECT_TRUE(m_player.isPlayingSingleChord());
    ASSERT_TRUE(runUntilFinished(m_player));
    const std::vector<std::pair<int, int>> expected = {
        {0x93, 53}, {0x93, 57}, {0x83, 53}, {0x83, 57}};
    EXPECT_EQ(notesOf(m_ports->log->snapshot()), expected);
    EXPECT_EQ(m_flags, (std::vector<std::pair<bool, bool>>{{true, true}, {false, false}}));
}

TEST_F(PartPlayerTest, StopSendsNoteOffsForSoundingTracksOnly)
{
    m_player.setTempo(1, 1); // a minute per step: only stop ends it
    ASSERT_EQ(m_player.playPart(makeTestPart(), 0), PartPlayer::StartResult::Started);
    m_player.stop();
    m_player.stop(); // only while playing
    const std::vector<std::pair<int, int>> expected = {
        {0x93, 48}, {0x93, 52}, {0x83, 48}, {0x83, 52}};
    EXPECT_EQ(notesOf(m_ports->log->snapshot()), expected);
    EXPECT_FALSE(m_player.isPlaying());
    EXPECT_EQ(m_ports->log->closed, 1);
}

TEST_F(PartPlayerTest, NoDeviceAsksForSettingsAndGivesUpSilently)
{
    midi::MidiSettings settings = m_player.settings();
    settings.setDeviceNumber(255);
    m_player.setSettings(settings);
    int asked = 0;
    m_player.setSettingsRequest([&asked](midi::MidiSettings&) { ++asked; });
    EXPECT_EQ(m_player.playPart(makeTestPart(), 0), PartPlayer::StartResult::NoDeviceChosen);
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(m_failures.empty());
    EXPECT_EQ(m_ports->log->opened, 0);

    m_player.setSettingsRequest([](midi::MidiSettings& s) { s.setDeviceNumber(0); });
    EXPECT_EQ(m_player.playPart(makeTestPart(), 0), PartPlayer::StartResult::Started);
    EXPECT_EQ(m_player.settings().deviceNumber(), 0);
    m_player.stop();
}

TEST_F(PartPlayerTest, UnopenableDeviceSaysSoAndStaysIdle)
{
    for (const std::uint16_t device : {std::uint16_t{1}, std::uint16_t{9}}) {
        m_ports->refuse(1);
        midi::MidiSettings settings = m_player.settings();
        settings.setDeviceNumber(device);
        m_player.setSettings(settings);
        EXPECT_EQ(m_player.playPart(makeTestPart(), 0), PartPlayer::StartResult::UnableToOpen);
        EXPECT_FALSE(m_player.isPlaying());
    }
    EXPECT_EQ(m_failures,
              (std::vector<std::string>{"unable to open device", "unable to open device"}));
    EXPECT_TRUE(m_flags.empty());
}

TEST_F(PartPlayerTest, EmptyPartPlaysNothing)
{
    part::Part empty = part::Part::makeNew();
    EXPECT_EQ(m_player.playPart(empty, 0), PartPlayer::StartResult::NothingToPlay);
    part::Part silent = makeTestPart();
    silent.chord(0).length = 0;
    silent.chord(1).length = 0;
    EXPECT_EQ(m_player.playPart(silent, 0), PartPlayer::StartResult::NothingToPlay);
    EXPECT_FALSE(m_player.isPlaying());
    EXPECT_EQ(m_ports->log->opened, m_ports->log->closed);
}

TEST_F(PartPlayerTest, DeviceFailureWhilePlayingEndsWithTheMessage)
{
    m_ports->log->failAfter = 4; // program change, two notes, then the step 2 note-off fails
    m_ports->log->failureText = "The JACK server has shut down.";
    ASSERT_EQ(m_player.playPart(makeTestPart(), 0), PartPlayer::StartResult::Started);
    ASSERT_TRUE(runUntilFinished(m_player));
    EXPECT_FALSE(m_player.isPlaying());
    EXPECT_EQ(m_failures, (std::vector<std::string>{"The JACK server has shut down."}));
    EXPECT_EQ(m_ports->log->closed, 1);
}

TEST_F(PartPlayerTest, ChangesWhilePlayingApplyToTheFollowingMessages)
{
    m_player.setTempo(1, 1);
    ASSERT_EQ(m_player.playPart(makeTestPart(), 0), PartPlayer::StartResult::Started);
    midi::MidiSettings settings = m_player.settings();
    settings.setChannel(9);
    m_player.setSettings(settings);
    m_player.stop();
    const std::vector<Bytes> received = m_ports->log->snapshot();
    ASSERT_EQ(received.size(), 5u);
    EXPECT_EQ(received[3][0], 0x89); // the note-offs of stop use the new channel
    EXPECT_EQ(received[4][0], 0x89);
}

TEST_F(PartPlayerTest, VelocityAbove127IsUsedOnceThenLoweredInTheSettings)
{
    midi::MidiSettings settings = m_player.settings();
    settings.setVelocity(200);
    m_player.setSettings(settings);
    ASSERT_EQ(m_player.playSingleChord(makeTestPart(), 0), PartPlayer::StartResult::Started);
    ASSERT_TRUE(runUntilFinished(m_player));
    EXPECT_EQ(m_player.settings().velocity(), 127);
    for (const Bytes& m : m_ports->log->snapshot())
        EXPECT_LE(m.back(), 127); // never a status byte in a data byte on the wire
}

TEST_F(PartPlayerTest, PlayingAgainRestartsCleanly)
{
    m_player.setTempo(1, 1);
    ASSERT_EQ(m_player.playPart(makeTestPart(), 0), PartPlayer::StartResult::Started);
    ASSERT_EQ(m_player.playSingleChord(makeTestPart(), 1), PartPlayer::StartResult::Started);
    m_player.stop();
    const std::vector<std::pair<int, int>> expected = {
        {0x93, 48}, {0x93, 52}, {0x83, 48}, {0x83, 52}, // first playback stopped
        {0x93, 53}, {0x93, 57}, {0x83, 53}, {0x83, 57}};
    EXPECT_EQ(notesOf(m_ports->log->snapshot()), expected);
    EXPECT_EQ(m_ports->log->opened, 2);
    EXPECT_EQ(m_ports->log->closed, 2);
}
