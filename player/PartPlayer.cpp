#include "player/PartPlayer.h"

#include "midi/CMIDIOutException.h"
#include "midi/ShortMessage.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace player {

namespace {

constexpr qint64 kNsPerMs = 1'000'000;
/** The timer wakes this much before a deadline; the rest is waited out exactly. */
constexpr qint64 kWakeEarlyNs = 1 * kNsPerMs;
/** Behind by more than this (a stalled machine), the schedule restarts instead of catching up. */
constexpr qint64 kMaxLagNs = 250 * kNsPerMs;

} // namespace

PartPlayer::PartPlayer(QObject* parent) : PartPlayer(midi::MidiPortList::systemList(), parent)
{}

PartPlayer::PartPlayer(std::shared_ptr<midi::MidiPortList> ports, QObject* parent)
    : QObject(parent), m_device(std::make_unique<midi::CMIDIOutDevice>(std::move(ports))),
      m_engine(*this)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &PartPlayer::onTimer);
}

PartPlayer::~PartPlayer()
{
    // Quietly: nobody listens any more, but the notes must not hang on the synth.
    const QSignalBlocker blocker(this);
    if (m_playing)
        finish(QString());
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
    m_engine.setChannel(static_cast<std::uint8_t>(channel));
    m_engine.setVelocity(m_settings.velocity());
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
    if (m_playing)
        m_engine.setRenderOptions(options);
}

void PartPlayer::updatePart(const part::Part& part)
{
    if (!m_playing)
        return;
    m_part = part;
    m_engine.updatePart(part);
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
    sendPacked(static_cast<std::uint32_t>(port & 0xFF) << 16 | 0x1FF);
    sendPacked(midi::ShortMessage::pack(0xC0, static_cast<std::uint8_t>(channel),
                                        static_cast<std::uint8_t>(m_settings.program()), 0));

    m_engine.setRenderOptions(m_options);
    m_engine.setChannel(static_cast<std::uint8_t>(channel));
    m_engine.setVelocity(m_settings.velocity());
    m_clock.start();
    m_part = part;
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
    m_nextDeadlineNs = static_cast<qint64>(m_interval) * kNsPerMs;
    armTimer();
    return StartResult::Started;
}

void PartPlayer::stop()
{
    if (m_playing)
        finish(QString());
}

void PartPlayer::send(const midi::StepMessage& message)
{
    sendPacked(midi::ShortMessage::pack(static_cast<std::uint8_t>(message.status & 0xF0),
                                        message.channel(), message.note, message.velocityByte()));
}

void PartPlayer::sendPacked(std::uint32_t packed)
{
    if (!m_deviceFailure.isEmpty())
        return; // the device is gone; the playback ends after this step
    Q_EMIT messageSent(packed);
    try {
        m_device->send(packed);
    } catch (const midi::CMIDIOutException& error) {
        m_deviceFailure = QString::fromLocal8Bit(error.what());
    }
}

void PartPlayer::armTimer()
{
    const qint64 now = m_clock.nsecsElapsed();
    const qint64 wait = std::max<qint64>(0, m_nextDeadlineNs - now - kWakeEarlyNs);
    m_timer.start(std::chrono::milliseconds(wait / kNsPerMs));
}

void PartPlayer::onTimer()
{
    if (!m_playing)
        return;
    const qint64 now = m_clock.nsecsElapsed();
    if (now < m_nextDeadlineNs)
        std::this_thread::sleep_for(std::chrono::nanoseconds(m_nextDeadlineNs - now));
    else if (now - m_nextDeadlineNs > kMaxLagNs)
        m_nextDeadlineNs = now;

    bool going = m_engine.step();
    if (!going && m_looping && m_deviceFailure.isEmpty())
        going = restartRound();
    syncVelocity();
    if (!m_deviceFailure.isEmpty()) {
        finish(m_deviceFailure);
        return;
    }
    if (!going) {
        finish(QString()); // the part or the chord has ended; the engine stopped its notes
        return;
    }
    Q_EMIT stepPlayed(m_engine.currentChord(), m_engine.stepInChord());
    m_nextDeadlineNs += static_cast<qint64>(m_interval) * kNsPerMs;
    armTimer();
}

bool PartPlayer::restartRound()
{
    // The engine has ended the last round's notes; the new one starts on this same step.
    if (m_singleChord)
        return m_engine.startSingleChord(m_part, m_roundFirst);
    return m_engine.startRange(m_part, m_roundFirst, m_engine.lastChord());
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
    m_timer.stop();
    m_playing = false;
    m_singleChord = false;
    Q_EMIT playingChanged(false, false);
    if (m_engine.isPlaying())
        m_engine.stop(); // note-offs for the sounding tracks (dropped when the device failed)
    m_device->close();
    m_finishing = false;
    if (!failure.isEmpty())
        Q_EMIT failed(failure);
    Q_EMIT finished();
}

} // namespace player
