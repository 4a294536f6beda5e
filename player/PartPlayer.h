#pragma once

#include "midi/CMIDIOutDevice.h"
#include "midi/MidiSettings.h"
#include "midi/StepEngine.h"
#include "midi/StepSink.h"
#include "part/Part.h"
#include "part/RenderOptions.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>

namespace player {

/**
 * Live playback of a part or a single chord through a MIDI output device ("Play part.",
 * "Play single chord.", "Stop playing."). One step (one pattern row) per timer tick; the step
 * engine makes the notes, this class times them and sends them.
 *
 * Timing: every step has an absolute deadline, the previous deadline plus the current interval
 * 60000 / (BPM x TPB) ms, measured on a monotonic clock; a precise single-shot Qt timer wakes the
 * player shortly before it and the last fraction of a millisecond is waited out exactly. Time
 * spent in a step therefore never adds up to drift, and a tempo change applies from the next
 * step on. The timer runs on the thread that owns the player; nothing here is thread-safe.
 *
 * The device is open exactly while playing. A device that fails while playing (a port or
 * server that went away) ends the playback with the system's message through `failed`.
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
    bool isLooping() const { return m_looping; }
    /** Beats per minute and ticks per beat of the tempo bar; applies from the next step on. */
    void setTempo(int beatsPerMinute, int ticksPerBeat);
    /** The step interval in milliseconds: 60000 / (BPM x TPB), truncated to 16 bits. */
    static std::uint16_t intervalFor(int beatsPerMinute, int ticksPerBeat);
    std::uint16_t interval() const { return m_interval; }

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

    const midi::StepEngine& engine() const { return m_engine; }

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
    StartResult start(const part::Part& part, std::uint16_t selectedChord, bool singleChord);
    void send(const midi::StepMessage& message) override;
    void sendPacked(std::uint32_t packed);
    void onTimer();
    void armTimer();
    void syncVelocity();
    /** Ends the playback: note-offs, device closed, flags cleared; emits `failed` first if set. */
    void finish(const QString& failure);

    /** Starts the round again at its first chord; false when nothing is left to play. */
    bool restartRound();

    std::unique_ptr<midi::CMIDIOutDevice> m_device;
    midi::StepEngine m_engine;
    part::Part m_part;              // as last started or updated, for the next round of a loop
    std::uint16_t m_roundFirst = 0; // where a loop starts over
    bool m_looping = false;
    midi::MidiSettings m_settings;
    SettingsRequest m_settingsRequest;
    part::RenderOptions m_options;
    std::uint16_t m_interval = 125;

    bool m_playing = false;
    bool m_singleChord = false;
    bool m_finishing = false;
    QString m_deviceFailure; // set by send() when the device throws; ends the playback
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_nextDeadlineNs = 0; // of the next step, on m_clock
};

} // namespace player
