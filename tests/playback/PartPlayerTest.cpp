#include "PlaybackTestSupport.h"

#include "player/PartPlayer.h"

#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

using player::PartPlayer;
using Bytes = std::vector<std::uint8_t>;
using Notes = std::vector<int>; // status, note, status, note...
using Flags = std::vector<std::pair<bool, bool>>;
constexpr auto kStarted = PartPlayer::StartResult::Started;

namespace {

class PartPlayerTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        static int argc = 1;
        static char* argv[] = {const_cast<char*>("playback_tests"), nullptr};
        [[maybe_unused]] static const auto* app =
            new QCoreApplication(argc, argv); // kept to the end
        change([](midi::MidiSettings& s) {
            s.setDeviceNumber(1);
            s.setChannel(3);
            s.setPort(2);
            s.setProgram(41);
        });
        m_player.setTempo(600, 20); // 5 ms steps keep the tests short
        QObject::connect(&m_player, &PartPlayer::failed,
                         [this](const QString& text) { m_failures.push_back(text.toStdString()); });
        QObject::connect(&m_player, &PartPlayer::playingChanged, [this](bool playing, bool single) {
            m_flags.emplace_back(playing, single);
        });
    }

    void change(const std::function<void(midi::MidiSettings&)>& edit)
    {
        midi::MidiSettings settings = m_player.settings();
        edit(settings);
        m_player.setSettings(settings);
    }

    /** Runs the event loop until the player finishes; false when it does not within 5 s. */
    bool runUntilFinished()
    {
        for (int ms = 0; ms < 5000 && m_player.isPlaying(); ++ms, QThread::msleep(1))
            QCoreApplication::processEvents();
        return !m_player.isPlaying();
    }

    /** Status and note of each note message the port received; velocities carry a jitter. */
    Notes notes() const
    {
        Notes out;
        for (const Bytes& m : m_ports->snapshot())
            if ((m[0] & 0xE0) == 0x80)
                out.insert(out.end(), {m[0], m[1]});
        return out;
    }

    std::shared_ptr<FakePortList> m_ports =
        std::make_shared<FakePortList>(std::vector<std::string>{"Fake: A", "Fake: B"});
    PartPlayer m_player{m_ports};
    std::vector<std::string> m_failures;
    Flags m_flags;
};

} // namespace

TEST(PartPlayerInterval, IsSixtyThousandOverBpmTimesTpbTruncated)
{
    // BPM, TPB and the step interval in milliseconds.
    const std::vector<std::tuple<int, int, std::uint16_t>> cases = {
        {120, 4, 125},     {126, 4, 119}, {1, 1, 60000},  {60000, 1, 1},
        {65535, 65535, 0}, {0, 4, 60000}, {-5, 4, 60000},
    };
    for (const auto& [bpm, tpb, interval] : cases)
        EXPECT_EQ(PartPlayer::intervalFor(bpm, tpb), interval) << bpm << " x " << tpb;
}

TEST_F(PartPlayerTest, PlaysThePartAfterPortSelectionAndProgram)
{
    ASSERT_EQ(m_player.playPart(makeTestPart(), part::kNoIndex), kStarted);
    EXPECT_TRUE(m_player.isPlaying());
    EXPECT_FALSE(m_player.isPlayingSingleChord());
    ASSERT_TRUE(runUntilFinished());

    // The port selection FF 01 02 goes first, but a device passes only the program change on.
    const std::vector<Bytes> received = m_ports->snapshot();
    ASSERT_FALSE(received.empty());
    EXPECT_EQ(received[0], (Bytes{0xC3, 41}));
    EXPECT_EQ(notes(), (Notes{0x93, 48, 0x93, 52, 0x83, 48, 0x93, 53, 0x83, 52, 0x93, 57, 0x83, 53,
                              0x83, 57}));
    EXPECT_EQ(received.size(), 9u);

    EXPECT_FALSE(m_player.isPlaying());
    EXPECT_EQ(m_flags, (Flags{{true, false}, {false, false}}));
    EXPECT_EQ(m_ports->closed, 1); // the device is open exactly while playing
    EXPECT_EQ(m_player.settings().programAt(2, 3), 41);
    EXPECT_TRUE(m_failures.empty());
}

TEST_F(PartPlayerTest, StopAndRestartEndOnlyTheSoundingNotesOnce)
{
    m_player.setTempo(1, 1); // a minute per step: only stop ends it
    ASSERT_EQ(m_player.playPart(makeTestPart(), 0), kStarted);
    ASSERT_EQ(m_player.playSingleChord(makeTestPart(), 1), kStarted);
    m_player.stop();
    m_player.stop(); // only while playing
    // The first playback's two notes and their note-offs, then the single chord's.
    EXPECT_EQ(notes(), (Notes{0x93, 48, 0x93, 52, 0x83, 48, 0x83, 52, 0x93, 53, 0x93, 57, 0x83, 53,
                              0x83, 57}));
    EXPECT_FALSE(m_player.isPlaying());
    EXPECT_EQ(m_flags, (Flags{{true, false}, {false, false}, {true, true}, {false, false}}));
    EXPECT_EQ(m_ports->opened, 2);
    EXPECT_EQ(m_ports->closed, 2);
}

TEST_F(PartPlayerTest, NoDeviceAsksForSettingsAndGivesUpSilently)
{
    change([](midi::MidiSettings& s) { s.setDeviceNumber(255); });
    int asked = 0;
    m_player.setSettingsRequest([&asked](midi::MidiSettings&) { ++asked; });
    EXPECT_EQ(m_player.playPart(makeTestPart(), 0), PartPlayer::StartResult::NoDeviceChosen);
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(m_failures.empty());
    EXPECT_EQ(m_ports->opened, 0);

    m_player.setSettingsRequest([](midi::MidiSettings& s) { s.setDeviceNumber(0); });
    EXPECT_EQ(m_player.playPart(makeTestPart(), 0), kStarted);
    EXPECT_EQ(m_player.settings().deviceNumber(), 0);
    m_player.stop();
}

TEST_F(PartPlayerTest, PlaybackThatCannotStartSaysWhyAndStaysIdle)
{
    m_ports->refused = 1;
    for (const std::uint16_t device : {std::uint16_t{1}, std::uint16_t{9}}) {
        change([device](midi::MidiSettings& s) { s.setDeviceNumber(device); });
        EXPECT_EQ(m_player.playPart(makeTestPart(), 0), PartPlayer::StartResult::UnableToOpen);
    }
    EXPECT_EQ(m_failures,
              (std::vector<std::string>{"unable to open device", "unable to open device"}));
    EXPECT_TRUE(m_flags.empty());

    change([](midi::MidiSettings& s) { s.setDeviceNumber(0); });
    part::Part silent = makeTestPart();
    silent.chord(0).length = silent.chord(1).length = 0;
    EXPECT_EQ(m_player.playPart(part::Part::makeNew(), 0), PartPlayer::StartResult::NothingToPlay);
    EXPECT_EQ(m_player.playPart(silent, 0), PartPlayer::StartResult::NothingToPlay);
    EXPECT_EQ(m_failures.size(), 2u);
    EXPECT_FALSE(m_player.isPlaying());
    EXPECT_EQ(m_ports->opened, m_ports->closed);
}

TEST_F(PartPlayerTest, DeviceFailureWhilePlayingEndsWithTheMessage)
{
    m_ports->failAfter = 4; // program change, two notes, then the step 2 note-off fails
    m_ports->failureText = "The JACK server has shut down.";
    ASSERT_EQ(m_player.playPart(makeTestPart(), 0), kStarted);
    ASSERT_TRUE(runUntilFinished());
    EXPECT_FALSE(m_player.isPlaying());
    EXPECT_EQ(m_failures, (std::vector<std::string>{"The JACK server has shut down."}));
    EXPECT_EQ(m_ports->closed, 1);
}

TEST_F(PartPlayerTest, AChannelChangeWhilePlayingEndsEachNoteOnTheChannelItStartedOn)
{
    // Changed after step 0: the notes of step 0 end on channel 3 (at a later step, or at stop);
    // the notes started afterwards play and end on channel 9.
    bool changed = false;
    QObject::connect(&m_player, &PartPlayer::stepPlayed, [&](int chord, int row) {
        if (chord == 0 && row == 0 && !changed) {
            changed = true;
            change([](midi::MidiSettings& s) { s.setChannel(9); });
        }
    });
    ASSERT_EQ(m_player.playPart(makeTestPart(), 0), kStarted);
    ASSERT_TRUE(runUntilFinished());
    EXPECT_EQ(notes(), (Notes{0x93, 48, 0x93, 52, 0x83, 48, 0x99, 53, 0x83, 52, 0x99, 57, 0x89, 53,
                              0x89, 57}));

    change([](midi::MidiSettings& s) { s.setChannel(3); });
    {
        const std::lock_guard<std::mutex> lock(m_ports->mutex);
        m_ports->messages.clear();
    }
    m_player.setTempo(1, 1); // a minute a step: only stop ends it
    ASSERT_EQ(m_player.playPart(makeTestPart(), 0), kStarted);
    change([](midi::MidiSettings& s) { s.setChannel(9); });
    m_player.stop();
    EXPECT_EQ(notes(), (Notes{0x93, 48, 0x93, 52, 0x83, 48, 0x83, 52}));
}

TEST_F(PartPlayerTest, VelocityAbove127IsUsedOnceThenLoweredInTheSettings)
{
    change([](midi::MidiSettings& s) { s.setVelocity(200); });
    ASSERT_EQ(m_player.playSingleChord(makeTestPart(), 0), kStarted);
    ASSERT_TRUE(runUntilFinished());
    EXPECT_EQ(m_player.settings().velocity(), 127);
    for (const Bytes& m : m_ports->snapshot())
        EXPECT_LE(m.back(), 127); // never a status byte in a data byte on the wire
}

TEST_F(PartPlayerTest, ALoopStartsOverAtTheRangeOrTheChordUntilItIsTurnedOff)
{
    // One round of the whole part, and of chord 1 alone.
    const Notes part = {0x93, 48, 0x93, 52, 0x83, 48, 0x93, 53,
                        0x83, 52, 0x93, 57, 0x83, 53, 0x83, 57};
    const Notes chord1 = {0x93, 53, 0x93, 57, 0x83, 53, 0x83, 57};
    const auto join = [](std::initializer_list<Notes> rounds) {
        Notes all;
        for (const Notes& r : rounds)
            all.insert(all.end(), r.begin(), r.end());
        return all;
    };
    struct Case
    {
        const char* what;
        bool singleChord;
        int loopChord; // where every round after the first starts
        Notes expected;
    };
    // Both start at chord 1 and play three rounds: the part has no selected range, so its loop
    // comes back to chord 0.
    const Case cases[] = {
        {"part", false, 0, join({chord1, part, part})},
        {"chord", true, 1, join({chord1, chord1, chord1})},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        {
            const std::lock_guard<std::mutex> lock(m_ports->mutex);
            m_ports->messages.clear();
        }
        int rounds = 0;
        const QMetaObject::Connection counting =
            QObject::connect(&m_player, &PartPlayer::stepPlayed, [&](int chord, int row) {
                const bool starts = row == 0 && (chord == c.loopChord || rounds == 0);
                if (starts && ++rounds == 3)
                    m_player.setLooping(false); // the third round is the last
            });
        m_player.setLooping(true);
        ASSERT_EQ(c.singleChord ? m_player.playSingleChord(makeTestPart(), 1)
                                : m_player.playPart(makeTestPart(), 1),
                  kStarted);
        ASSERT_TRUE(runUntilFinished());
        QObject::disconnect(counting);
        EXPECT_EQ(notes(), c.expected);
    }
}

TEST_F(PartPlayerTest, PortAndProgramChangedWhilePlayingAreSentAtOnce)
{
    std::vector<quint32> sent;
    QObject::connect(&m_player, &PartPlayer::messageSent,
                     [&sent](quint32 packed) { sent.push_back(packed); });
    m_player.setTempo(1, 1); // a minute per step: nothing but the changes is sent meanwhile
    ASSERT_EQ(m_player.playPart(makeTestPart(), 0), kStarted);
    sent.clear();
    change([](midi::MidiSettings& s) { s.setProgram(50); });
    change([](midi::MidiSettings& s) { s.setPort(7); });
    change([](midi::MidiSettings& s) { s.setVelocity(90); }); // nothing to send
    EXPECT_EQ(sent, (std::vector<quint32>{0x32C3, 0x0701FF, 0x32C3}));
    EXPECT_EQ(m_player.settings().programAt(7, 3), 50);
    m_player.stop();
}

TEST_F(PartPlayerTest, AScheduledPortGetsEveryStepOnAnExactGridAndAStopAtOnce)
{
    // A port with a lookahead gets each message with the time it is due: steps exactly one
    // interval apart (5 ms), counted from one lookahead after the start; what is sent at once
    // (program change, a stop's note-offs) carries no due time.
    constexpr std::int64_t kLookahead = 40'000'000;
    constexpr std::int64_t kStep = 5'000'000;
    m_ports->lookaheadNs = kLookahead;
    const auto started = std::chrono::steady_clock::now().time_since_epoch();
    ASSERT_EQ(m_player.playPart(makeTestPart(), part::kNoIndex), kStarted);
    ASSERT_TRUE(runUntilFinished());

    std::vector<std::int64_t> due;
    {
        const std::lock_guard<std::mutex> lock(m_ports->mutex);
        due = m_ports->dueTimes;
    }
    ASSERT_EQ(due.size(), 9u);
    EXPECT_EQ(due[0], midi::MidiOutPort::kNow); // the program change
    const std::int64_t first = due[1];
    EXPECT_GE(first, std::chrono::nanoseconds(started).count() + kLookahead);
    // The notes come at steps 0, 0, 2, 4, 4, 4, 6 and the last note-off one step after row 7.
    const std::vector<std::int64_t> steps = {0, 0, 2, 4, 4, 4, 6, 8};
    for (std::size_t i = 0; i < steps.size(); ++i)
        EXPECT_EQ(due[i + 1] - first, steps[i] * kStep) << "message " << i + 1;

    m_player.setTempo(1, 1); // a minute per step: only stop ends it
    {
        const std::lock_guard<std::mutex> lock(m_ports->mutex);
        m_ports->dueTimes.clear();
    }
    ASSERT_EQ(m_player.playPart(makeTestPart(), 0), kStarted);
    m_player.stop();
    {
        const std::lock_guard<std::mutex> lock(m_ports->mutex);
        due = m_ports->dueTimes;
    }
    ASSERT_EQ(due.size(), 5u); // program change, two notes, their two note-offs
    EXPECT_NE(due[1], midi::MidiOutPort::kNow);
    EXPECT_EQ(due[3], midi::MidiOutPort::kNow);
    EXPECT_EQ(due[4], midi::MidiOutPort::kNow);
}

TEST_F(PartPlayerTest, ALiveEditReachesThePlaybackThreadFromTheNextStep)
{
    // Made right after the start (step 0 has played): row 2 of track 0 now plays chord note 2
    // instead of stopping the note. The chord F then plays it too, one octave of notes up.
    part::Part edited = makeTestPart();
    edited.patterns().pattern(0).setCell(0, 2, {part::CellKind::ChordNote, 2, 0});
    ASSERT_EQ(m_player.playPart(makeTestPart(), part::kNoIndex), kStarted);
    m_player.updatePart(edited);
    ASSERT_TRUE(runUntilFinished());
    EXPECT_EQ(notes(), (Notes{0x93, 48, 0x93, 52, 0x83, 48, 0x93, 55, 0x83, 55, 0x93, 53,
                              0x83, 52, 0x93, 57, 0x83, 53, 0x93, 60, 0x83, 60, 0x83, 57}));
    m_player.updatePart(makeTestPart()); // idle: nothing happens
    EXPECT_FALSE(m_player.isPlaying());
}
