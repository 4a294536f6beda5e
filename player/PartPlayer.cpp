#include "player/PartPlayer.h"

#include "midi/CMIDIOutException.h"
#include "midi/ShortMessage.h"
#include "player/PlaybackClock.h"

#include <chrono>

namespace player {

namespace {

constexpr std::int64_t kNsPerMs = 1'000'000;
/** Behind by more than this (a stalled machine), the schedule restarts instead of catching up. */
constexpr std::int64_t kMaxLagNs = 250 * kNsPerMs;
/** The longest the playback thread sleeps without looking at its commands and the stop flag. */
constexpr std::int64_t kSliceNs = 2 * kNsPerMs;
/** How often the owner's thread signals what was played (the window redraws at this pace). */
constexpr std::chrono::milliseconds kNoticeInterval{5};

} // namespace

PartPlayer::PartPlayer(QObject* parent) : PartPlayer(midi::MidiPortList::systemList(), parent)
{}

PartPlayer::PartPlayer(std::shared_ptr<midi::MidiPortList> ports, QObject* parent)
    : QObject(parent), m_device(std::make_unique<midi::CMIDIOutDevice>(std::move(ports))),
      m_engine(*this)
{
    m_noticeTimer.setInterval(kNoticeInterval);
    connect(&m_noticeTimer, &QTimer::timeout, this, &PartPlayer::drainNotices);
}

PartPlayer::~PartPlayer()
{
    // Quietly: nobody listens any more, but the notes must not hang on the synth.
    const QSignalBlocker blocker(this);
    if (m_playing)
        finish(QString());
    joinThread();
}

void PartPlayer::setSettings(const midi::MidiSettings& settings)
{
    const midi::MidiSettings before = m_settings;
    m_settings = settings;
    if (!m_playing)
        return;
    // The device stays the one opened; its number is taken on the next start.
    const int port = m_settings.port() & 0x7F;
    const int channel = m_settings.channel() & 0x0F;
    if (m_threaded) {
        command({Command::Kind::Channel, static_cast<std::uint32_t>(channel), {}, nullptr});
        command({Command::Kind::Velocity,
                 static_cast<std::uint32_t>(m_settings.velocity()),
                 {},
                 nullptr});
    } else {
        m_engine.setChannel(static_cast<std::uint8_t>(channel));
        m_engine.setVelocity(m_settings.velocity());
    }
    if (m_settings.port() != before.port())
        sendPacked(static_cast<std::uint32_t>(port) << 16 | 0x1FF);
    if (m_settings.port() != before.port() || m_settings.channel() != before.channel() ||
        m_settings.program() != before.program()) {
        m_settings.setProgramAt(port, channel, static_cast<std::uint8_t>(m_settings.program()));
        sendPacked(midi::ShortMessage::pack(0xC0, static_cast<std::uint8_t>(channel),
                                            static_cast<std::uint8_t>(m_settings.program()), 0));
    }
}

void PartPlayer::setRenderOptions(const part::RenderOptions& options)
{
    m_options = options;
    if (m_threaded)
        command({Command::Kind::Options, 0, options, nullptr});
    else if (m_playing)
        m_engine.setRenderOptions(options);
}

void PartPlayer::updatePart(const part::Part& part)
{
    if (!m_playing)
        return;
    if (!m_threaded) {
        m_engine.updatePart(part);
        return;
    }
    // The copy is made here; the thread swaps it in and the part it played comes back in it.
    freeHandedParts(false);
    auto copy = std::make_unique<part::Part>(part);
    part::Part* handed = copy.get();
    m_handedParts.push_back(std::move(copy));
    command({Command::Kind::Part, 0, {}, handed});
}

void PartPlayer::setTempo(int beatsPerMinute, int ticksPerBeat)
{
    m_interval = intervalFor(beatsPerMinute, ticksPerBeat);
}

std::uint16_t PartPlayer::intervalFor(int beatsPerMinute, int ticksPerBeat)
{
    const double ticksPerMinute = static_cast<double>(beatsPerMinute) * ticksPerBeat;
    if (ticksPerMinute <= 0.0)
        return 60000; // a tempo of 0 would divide by zero: the slowest step instead
    const double milliseconds = 60000.0 / ticksPerMinute;
    return static_cast<std::uint16_t>(static_cast<long long>(milliseconds) & 0xFFFF);
}

PartPlayer::StartResult PartPlayer::playPart(const part::Part& part, std::uint16_t selectedChord)
{
    return start(part, selectedChord, false);
}

PartPlayer::StartResult PartPlayer::playSingleChord(const part::Part& part,
                                                    std::uint16_t selectedChord)
{
    return start(part, selectedChord, true);
}

PartPlayer::StartResult PartPlayer::start(const part::Part& part, std::uint16_t selectedChord,
                                          bool singleChord)
{
    if (m_playing)
        stop();
    if (part.count() == 0)
        return StartResult::NothingToPlay;

    if (m_settings.deviceNumber() == midi::MidiSettings::kNoDevice && m_settingsRequest)
        m_settingsRequest(m_settings);
    if (m_settings.deviceNumber() == midi::MidiSettings::kNoDevice)
        return StartResult::NoDeviceChosen;

    if (!m_device->open(m_settings.deviceNumber())) {
        Q_EMIT failed(QString::fromLatin1(kUnableToOpenDevice));
        return StartResult::UnableToOpen;
    }

    const int port = m_settings.port();
    const int channel = m_settings.channel() & 0x0F;
    m_settings.setProgramAt(port, channel, static_cast<std::uint8_t>(m_settings.program()));
    m_playing = true;
    m_singleChord = singleChord;
    m_deviceFailure.clear();
    Q_EMIT playingChanged(true, singleChord);

    // Port selection (0xFF 0x01 port), then the program, before every playback.
    m_dueNs = midi::MidiOutPort::kNow;
    sendPacked(static_cast<std::uint32_t>(port & 0xFF) << 16 | 0x1FF);
    sendPacked(midi::ShortMessage::pack(0xC0, static_cast<std::uint8_t>(channel),
                                        static_cast<std::uint8_t>(m_settings.program()), 0));

    m_engine.setRenderOptions(m_options);
    m_engine.setChannel(static_cast<std::uint8_t>(channel));
    m_engine.setVelocity(m_settings.velocity());
    // The first step is due one lookahead from now, on the schedule of all the others.
    const std::int64_t firstDueNs = PlaybackClock::now() + m_device->lookaheadNs();
    m_dueNs = firstDueNs;
    const bool started = singleChord ? m_engine.startSingleChord(part, selectedChord)
                                     : m_engine.startPart(part, selectedChord);
    // A loop of the part starts over at the range's first chord, a loop of a chord at the chord.
    std::uint16_t first = part.selectionFirst();
    std::uint16_t last = part.selectionLast();
    m_roundFirst = singleChord || !midi::StepEngine::resolveRange(part, first, last)
                       ? m_engine.currentChord()
                       : first;
    if (!m_deviceFailure.isEmpty()) {
        finish(m_deviceFailure);
        return StartResult::Started;
    }
    if (!started) {
        finish(QString());
        return StartResult::NothingToPlay;
    }
    syncVelocity();
    Q_EMIT stepPlayed(m_engine.currentChord(), m_engine.stepInChord());

    // From here on the engine and the device belong to the playback thread until it is joined.
    m_stopRequested = false;
    m_threadEnded = false;
    m_partsTaken = 0;
    m_partsFreed = 0;
    m_threaded = true;
    const std::int64_t secondDueNs =
        firstDueNs + static_cast<std::int64_t>(m_interval.load()) * kNsPerMs;
    m_thread = std::thread([this, secondDueNs] { run(secondDueNs); });
    m_noticeTimer.start();
    return StartResult::Started;
}

void PartPlayer::stop()
{
    if (m_playing)
        finish(QString());
}

void PartPlayer::send(const midi::StepMessage& message)
{
    if (!m_deviceFailure.isEmpty())
        return; // the device is gone; the playback ends after this step
    const std::uint32_t packed =
        midi::ShortMessage::pack(static_cast<std::uint8_t>(message.status & 0xF0),
                                 message.channel(), message.note, message.velocityByte());
    if (m_threaded)
        notify({Notice::Kind::Message, packed, 0, 0});
    else
        Q_EMIT messageSent(packed);
    deliver(packed);
}

void PartPlayer::deliver(std::uint32_t packed)
{
    try {
        m_device->send(packed, m_dueNs);
    } catch (const midi::CMIDIOutException& error) {
        m_deviceFailure = QString::fromLocal8Bit(error.what());
    }
}

void PartPlayer::sendPacked(std::uint32_t packed)
{
    if (m_threaded) {
        emitNotices(); // what the thread played so far was handed over first
        Q_EMIT messageSent(packed);
        if (m_threaded && m_device->lookaheadNs() > 0) {
            // A scheduling port takes messages from one thread: the playback thread's.
            command({Command::Kind::Send, packed, {}, nullptr});
            return;
        }
        if (m_threaded) {
            // Any other port goes out at once; the device's port lock orders it with the notes.
            try {
                m_device->send(packed, midi::MidiOutPort::kNow);
            } catch (const midi::CMIDIOutException&) {
                // The playback thread meets the same failure with its next note and reports it.
            }
            return;
        }
    } else {
        if (!m_deviceFailure.isEmpty())
            return;
        Q_EMIT messageSent(packed);
    }
    const std::int64_t due = m_dueNs;
    m_dueNs = midi::MidiOutPort::kNow;
    deliver(packed);
    m_dueNs = due;
}

void PartPlayer::command(const Command& command)
{
    // Full only when the thread has been stalled for a long while; it catches up soon.
    for (int tries = 0; !m_commands.push(command); ++tries) {
        if (tries == 200 || m_threadEnded.load())
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void PartPlayer::run(std::int64_t deadlineNs)
{
    m_realtime = PlaybackClock::requestRealtime();
    const std::int64_t lookahead = m_device->lookaheadNs();
    for (;;) {
        if (!waitUntil(deadlineNs - lookahead))
            break;
        const std::int64_t late = PlaybackClock::now() - (deadlineNs - lookahead);
        if (late > kMaxLagNs)
            deadlineNs += late;
        m_dueNs = deadlineNs;
        bool going = m_engine.step();
        if (!going && m_looping.load() && m_deviceFailure.isEmpty())
            going = restartRound();
        if (!m_deviceFailure.isEmpty())
            break;
        if (!going) {
            // The engine has stopped its notes, due at this deadline: they sound before the end.
            waitUntil(deadlineNs);
            break;
        }
        notify({Notice::Kind::Step, 0, m_engine.currentChord(), m_engine.stepInChord()});
        deadlineNs += static_cast<std::int64_t>(m_interval.load()) * kNsPerMs;
    }
    m_threadEnded.store(true, std::memory_order_release);
}

bool PartPlayer::waitUntil(std::int64_t wakeNs)
{
    for (;;) {
        applyCommands();
        if (m_stopRequested.load() || !m_deviceFailure.isEmpty())
            return false;
        if (PlaybackClock::now() >= wakeNs)
            return true;
        PlaybackClock::sleepUntil(wakeNs, kSliceNs);
    }
}

void PartPlayer::applyCommands()
{
    while (const Command* next = m_commands.front()) {
        const Command c = *next;
        m_commands.pop();
        switch (c.kind) {
        case Command::Kind::Send: {
            const std::int64_t due = m_dueNs;
            m_dueNs = midi::MidiOutPort::kNow;
            deliver(c.value);
            m_dueNs = due;
            break;
        }
        case Command::Kind::Channel:
            m_engine.setChannel(static_cast<std::uint8_t>(c.value));
            break;
        case Command::Kind::Velocity:
            m_engine.setVelocity(static_cast<int>(c.value));
            break;
        case Command::Kind::Options:
            m_engine.setRenderOptions(c.options);
            break;
        case Command::Kind::Part:
            m_engine.swapPart(*c.part);
            m_partsTaken.fetch_add(1, std::memory_order_release);
            break;
        }
    }
}

void PartPlayer::notify(const Notice& notice)
{
    // Full only when the owner's thread has not looked for seconds: it misses a few redraws and
    // messageSent reports, never a note.
    m_notices.push(notice);
}

bool PartPlayer::restartRound()
{
    // The engine has ended the last round's notes; the new one starts on this same step.
    if (m_singleChord)
        return m_engine.replay(m_roundFirst, m_roundFirst);
    return m_engine.replay(m_roundFirst, m_engine.lastChord());
}

void PartPlayer::emitNotices()
{
    // Copied out before signalling: a slot may stop the player, which drains the queue too.
    while (const Notice* next = m_notices.front()) {
        const Notice notice = *next;
        m_notices.pop();
        if (notice.kind == Notice::Kind::Message)
            Q_EMIT messageSent(notice.value);
        else
            Q_EMIT stepPlayed(notice.chord, notice.row);
    }
}

void PartPlayer::freeHandedParts(bool all)
{
    const std::size_t taken = all ? m_partsFreed + m_handedParts.size() : m_partsTaken.load();
    while (m_partsFreed < taken && !m_handedParts.empty()) {
        m_handedParts.pop_front();
        ++m_partsFreed;
    }
}

void PartPlayer::drainNotices()
{
    if (!m_threaded)
        return;
    const bool ended = m_threadEnded.load(std::memory_order_acquire);
    emitNotices();
    freeHandedParts(false);
    if (ended && m_threaded)
        finish(QString());
}

void PartPlayer::joinThread()
{
    if (!m_threaded)
        return;
    m_stopRequested = true;
    m_thread.join();
    m_threaded = false;
    m_noticeTimer.stop();
    freeHandedParts(true);
}

void PartPlayer::syncVelocity()
{
    // A velocity above 127 is used once as it is and then becomes 127, in the settings too.
    if (m_engine.velocity() != m_settings.velocity())
        m_settings.setVelocity(static_cast<std::uint16_t>(m_engine.velocity()));
}

void PartPlayer::finish(const QString& failure)
{
    if (m_finishing)
        return;
    m_finishing = true;
    joinThread();
    emitNotices();
    // A device that failed on the playback thread is reported also when a stop came first.
    const QString reason = failure.isEmpty() ? m_deviceFailure : failure;
    m_playing = false;
    m_singleChord = false;
    Q_EMIT playingChanged(false, false);
    m_dueNs = midi::MidiOutPort::kNow; // the note-offs of a stop go out at once
    if (m_engine.isPlaying())
        m_engine.stop(); // note-offs for the sounding tracks (dropped when the device failed)
    syncVelocity();
    m_device->close();
    m_finishing = false;
    if (!reason.isEmpty())
        Q_EMIT failed(reason);
    Q_EMIT finished();
}

} // namespace player
