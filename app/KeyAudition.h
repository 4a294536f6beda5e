#pragma once

#include "midi/MidiSettings.h"
#include "part/Part.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace midi {
class MidiPortList;
}

namespace player {
class PartPlayer;
}

namespace app {

/**
 * Plays the notes chosen on the keyboard panel, briefly, through the output device of the MIDI
 * settings (the first device of the list, the built-in synth, when none is chosen). It goes
 * through a player of its own, so the device is opened, timed and closed as for playback: the
 * UI never waits for it, a new audition ends the one before, and `stop()` (the panel closing,
 * the transport starting, the settings changing) ends every sounding note.
 */
class KeyAudition : public QObject
{
    Q_OBJECT
public:
    /** Rows an audition lasts, at 120 beats per minute and 4 ticks per beat (125 ms a row). */
    static constexpr int kRows = 6;

    /** `settings` gives the MIDI settings at the moment a note is played. */
    KeyAudition(std::shared_ptr<midi::MidiPortList> ports,
                std::function<midi::MidiSettings()> settings, QObject* parent = nullptr);
    ~KeyAudition() override;

    /** Plays MIDI notes 0..119 (the first seven from the lowest; others are left out). */
    void play(const std::vector<int>& notes);
    void stop();
    bool isPlaying() const;

    /** The one-chord part an audition plays: base octave 0, one track per note. */
    static part::Part auditionPart(const std::vector<int>& notes);

    player::PartPlayer& player() const { return *m_player; }

Q_SIGNALS:
    /** The device could not be opened, or failed while playing; the system's text. */
    void failed(const QString& message);

private:
    std::shared_ptr<midi::MidiPortList> m_ports;
    std::function<midi::MidiSettings()> m_settings;
    player::PartPlayer* m_player = nullptr;
};

} // namespace app
