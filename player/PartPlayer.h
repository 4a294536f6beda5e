#pragma once

#include "midi/CMIDIOutDevice.h"
#include "midi/MidiSettings.h"
#include "midi/SpscRing.h"
#include "midi/StepEngine.h"
#include "midi/StepSink.h"
#include "part/Part.h"
#include "part/RenderOptions.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <thread>

namespace player {

/**
 * Live playback of a part or a single chord through a MIDI output device ("Play part.",
 * "Play single chord.", "Stop playing."). One step (one pattern row) per interval; the step
 * engine makes the notes, this class times them and sends them.
 *
 * Timing: a playback thread of its own, with real-time scheduling where the system allows it,
 * sleeps to absolute deadlines (the previous deadline plus the current interval 60000 / (BPM x
 * TPB) ms on the monotonic clock), so time spent in a step never adds up to drift, and a tempo
 * change applies from the next step on. A device with a lookahead (a native JACK port) gets each
 * step that much early with its due time and places the events exactly; others get them at the
 * deadline. On its hot path the thread neither locks nor allocates: changes made while playing
 * reach it through a lock-free queue, and what it played comes back the same way and is
 * signalled on the thread that owns the player (every few milliseconds, queued).
 *
 * Everything public is called on the owner's thread; every signal is emitted there. The first
 * step, a port or program change made while playing and the note-offs of a stop are sent and
 * signalled before the call returns (a scheduling port gets such a change from the playback
 * thread, within a couple of milliseconds). The device is open exactly while playing. A device that
 * fails while playing (a port or server that went away) ends the playback with the system's message
 * through `failed`.
 */
class PartPlayer : public QObject, private midi::StepSink
{
    Q_OBJECT

public:
    static constexpr const char* kUnableToOpenDevice = "unable to open device";

    enum class StartResult
    {
        Started,
        NothingToPlay,  // no chords, or none with rows to play
        NoDeviceChosen, // device 255, and the settings request chose none: silently nothing
        UnableToOpen,   // "unable to open device" was reported through `failed`
    };

    /**
     * Asked when playback starts with device 255 (no device chosen); the desktop program shows
     * its MIDI settings dialog, which may change the settings. Playback goes on only when the
     * device number is no longer 255 afterwards.
     */
    using SettingsRequest = std::function<void(midi::MidiSettings&)>;

    /** A player over the process-wide device list. */
    explicit PartPlayer(QObject* parent = nullptr);
    /** A player over its own device list (tests). */
    explicit PartPlayer(std::shared_ptr<midi::MidiPortList> ports, QObject* parent = nullptr);
    ~PartPlayer() override;

    /**
     * Device, port, channel, program, velocity and program table. While playing, a velocity
     * change takes effect on the following messages and a channel change on the notes started
     * afterwards; notes already sounding end on the channel they started on. A new port sends
     * the port selection at once, a new channel or program a program change (and goes into the
     * program table); a new device is used from the next start on.
     */
    void setSettings(const midi::MidiSettings& settings);
    /** The settings, with each playback's program stored into the program table. */
    const midi::MidiSettings& settings() const { return m_settings; }
    void setSettingsRequest(SettingsRequest request) { m_settingsRequest = std::move(request); }

    /** Track switches and note limit apply from the next step on, the index option per chord. */
    void setRenderOptions(const part::RenderOptions& options);
    /**
     * A live edit of the part being played (cells, track octaves): heard from the next step on,
     * from the same position. Nothing while idle.
     */
    void updatePart(const part::Part& part);
    /**
     * Whether playback starts over instead of ending: "Play part." at the first chord of the
     * part's range, "Play single chord." at its chord. Takes effect at the end of the current
     * round, also when changed while playing.
     */
    void setLooping(bool looping) { m_looping = looping; }
    bool isLooping() const { return m_looping.load(); }
    /** Beats per minute and ticks per beat of the tempo bar; applies from the next step on. */
    void setTempo(int beatsPerMinute, int ticksPerBeat);
    /** The step interval in milliseconds: 60000 / (BPM x TPB), truncated to 16 bits. */
    static std::uint16_t intervalFor(int beatsPerMinute, int ticksPerBeat);
    std::uint16_t interval() const { return m_interval.load(); }

    /** "Play part.": from `selectedChord` (part::kNoIndex: chord 0) within the part's range. */
    StartResult playPart(const part::Part& part, std::uint16_t selectedChord);
    /** "Play single chord.": plays `selectedChord` (part::kNoIndex: chord 0) once. */
    StartResult playSingleChord(const part::Part& part, std::uint16_t selectedChord);
    /** "Stop playing.": note-offs for the sounding tracks, closes the device; only while playing.
     */
    void stop();

    /** The main window's two playing flags: part sets (1, 0), single chord sets (1, 1). */
    bool isPlaying() const { return m_playing; }
    bool isPlayingSingleChord() const { return m_playing && m_singleChord; }

    /** The step engine; while playing it belongs to the playback thread (read it idle only). */
    const midi::StepEngine& engine() const { return m_engine; }
    /** Whether the last playback thread got real-time scheduling. */
    bool isRealtime() const { return m_realtime.load(); }

Q_SIGNALS:
    /** The two playing flags changed (the window checks its commands by them). */
    void playingChanged(bool playing, bool singleChord);
    /** A step was played: the chord (index into the part) and its row. */
    void stepPlayed(int chord, int row);
    /** Every short message handed to the device, packed, in order (port selection included). */
    void messageSent(quint32 packedMessage);
    /** "unable to open device", or the device's error text when it failed while playing. */
    void failed(const QString& message);
    /** Playback has ended: stopped, at the end of the part or chord, or after a failure. */
    void finished();

private:
    /** A change made on the owner's thread while playing, for the playback thread. */
    struct Command
    {
        enum class Kind : std::uint8_t
        {
            Send,     // value: a packed message, sent at once
            Channel,  // value: 0..15
            Velocity, // value: the velocity setting
            Options,  // options
            Part,     // part: a copy to swap in, owned by m_handedParts
        };
        Kind kind = Kind::Send;
        std::uint32_t value = 0;
        part::RenderOptions options;
        part::Part* part = nullptr;
    };
    /** What the playback thread did, for the owner's thread to signal. */
    struct Notice
    {
        enum class Kind : std::uint8_t
        {
            Message, // value: a packed message handed to the device
            Step,    // chord, row
        };
        Kind kind = Kind::Message;
        quint32 value = 0;
        int chord = 0;
        int row = 0;
    };

    StartResult start(const part::Part& part, std::uint16_t selectedChord, bool singleChord);
    void send(const midi::StepMessage& message) override;
    /** Hands a message to the device (either thread); a failure ends the playback. */
    void deliver(std::uint32_t packed);
    /** On the owner's thread: signals `messageSent`, then sends at once or through the thread. */
    void sendPacked(std::uint32_t packed);
    void command(const Command& command);

    // The playback thread.
    void run(std::int64_t firstDeadlineNs);
    /** Sleeps until `wakeNs`, applying commands meanwhile; false when told to stop. */
    bool waitUntil(std::int64_t wakeNs);
    void applyCommands();
    void notify(const Notice& notice);
    /** Starts the round again at its first chord; false when nothing is left to play. */
    bool restartRound();

    /** On the owner's thread: signals what the playback thread did; finishes when it ended. */
    void drainNotices();
    /** Signals the notices queued so far (messages and steps), in order. */
    void emitNotices();
    /** Frees the parts the thread has swapped out; `all` once it has ended. */
    void freeHandedParts(bool all);
    void joinThread();
    void syncVelocity();
    /** Ends the playback: note-offs, device closed, flags cleared; emits `failed` first if set. */
    void finish(const QString& failure);

    std::unique_ptr<midi::CMIDIOutDevice> m_device;
    midi::StepEngine m_engine;
    std::uint16_t m_roundFirst = 0; // where a loop starts over
    std::atomic<bool> m_looping{false};
    midi::MidiSettings m_settings;
    SettingsRequest m_settingsRequest;
    part::RenderOptions m_options;
    std::atomic<std::uint16_t> m_interval{125};

    bool m_playing = false;
    bool m_singleChord = false;
    bool m_finishing = false;
    QString m_deviceFailure; // set by deliver() when the device throws; ends the playback

    std::thread m_thread;
    bool m_threaded = false; // the playback thread owns engine and device
    std::atomic<bool> m_stopRequested{false};
    std::atomic<bool> m_threadEnded{false}; // set last by the thread; m_deviceFailure is then final
    std::atomic<bool> m_realtime{false};
    std::int64_t m_dueNs = 0; // when the messages being made are due
    midi::SpscRing<Command, 256> m_commands;
    midi::SpscRing<Notice, 4096> m_notices;
    std::deque<std::unique_ptr<part::Part>> m_handedParts; // sent with Command::Part, oldest first
    std::atomic<std::size_t> m_partsTaken{0};              // of those, swapped in by the thread
    std::size_t m_partsFreed = 0;                          // of those, freed again
    QTimer m_noticeTimer;
};

} // namespace player
