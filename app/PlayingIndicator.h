#pragma once

#include "midi/MidiSettings.h"

#include <QToolBar>

class QCheckBox;
class QSpinBox;

namespace app {

/**
 * The playing indicator: a small bar at the top of the main window, shown exactly while
 * something plays, with the channel (shown 1..16), port, velocity and program of the playback
 * and the loop option. A change made here applies to the following messages (`settingsEdited`).
 * While idle it stays hidden whatever a restored window layout says. The bar itself exists from
 * the start (the window layout places it); its fields are built when it first shows.
 */
class PlayingIndicator : public QToolBar
{
    Q_OBJECT
public:
    static constexpr const char* kChannelTip = "The midi channel for playback.";
    static constexpr const char* kPortTip = "The midi port for playback.";
    static constexpr const char* kVelocityTip = "Velocity, the notes are played with.";
    static constexpr const char* kProgramTip = "The program for midi playback.";

    explicit PlayingIndicator(QWidget* parent = nullptr);

    /** Shows the bar while `playing`, filled from `settings`. */
    void setPlaying(bool playing, const midi::MidiSettings& settings);
    bool isPlaying() const { return m_playing; }
    /** Shows `settings` without reporting an edit. */
    void showSettings(const midi::MidiSettings& settings);
    /** `settings` with channel, port, velocity and program as the bar shows them. */
    midi::MidiSettings applyTo(midi::MidiSettings settings) const;

    bool isLooping() const;
    void setLooping(bool looping);

    void setVisible(bool visible) override;

    QSpinBox* channelBox() { return fields().m_channel; }
    QSpinBox* portBox() { return fields().m_port; }
    QSpinBox* velocityBox() { return fields().m_velocity; }
    QSpinBox* programBox() { return fields().m_program; }
    QCheckBox* loopBox() { return fields().m_loop; }

Q_SIGNALS:
    /** The user changed channel, port, velocity or program. */
    void settingsEdited();
    void loopingChanged(bool looping);

private:
    /** This bar with its fields built. */
    PlayingIndicator& fields();
    QSpinBox* addField(const QString& label, const char* objectName, const char* tip, int minimum,
                       int maximum);

    bool m_playing = false;
    bool m_showing = false; // filling the fields is no edit
    bool m_looping = false; // until the loop box is built
    QSpinBox* m_channel = nullptr;
    QSpinBox* m_port = nullptr;
    QSpinBox* m_velocity = nullptr;
    QSpinBox* m_program = nullptr;
    QCheckBox* m_loop = nullptr;
};

} // namespace app
