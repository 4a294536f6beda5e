#pragma once

#include "midi/MidiSettings.h"
#include "part/RenderOptions.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QSpinBox;

namespace app {

class NoteRuleBox;

/**
 * The options of "Create Midi File": the notes' channel (shown 1..16), their velocity (16, 32,
 * ..., 128), whether the tempo is written, whether the chords' names go into the file as markers
 * (the caller keeps that choice), and the note rules (index overflow, upper limit).
 */
class CMidiFileDialog : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kChannelTip = "The notes midi channel.";
    static constexpr const char* kVelocityTip = "The notes velocity.";
    static constexpr const char* kWriteBpmTip =
        "If active, the bpm-value will be written to the file.";
    static constexpr const char* kMarkersTip =
        "Names every chord with a marker where it starts, and the first track with the part's "
        "name, so that a sequencer shows them.";

    CMidiFileDialog(const midi::MidiSettings& settings, const part::RenderOptions& options,
                    QWidget* parent = nullptr);

    /** The settings given, with the MIDI file's channel, the velocity and write-bpm as chosen. */
    midi::MidiSettings settings() const;
    /** The render options given, with the index option and upper limit as chosen. */
    part::RenderOptions renderOptions() const;
    /** "Write chord names as markers"; off unless set. */
    bool writeChordNames() const;
    void setWriteChordNames(bool on);

    /** The list's velocity at `index`: (index + 1) * 16. */
    static int velocityAt(int index) { return (index + 1) * 16; }
    /** The list index that shows `velocity`: velocity / 16 - 1, kept within the list. */
    static int indexOfVelocity(int velocity);

    QSpinBox* channelBox() const { return m_channel; }
    QComboBox* velocityBox() const { return m_velocity; }
    QCheckBox* writeBpmBox() const { return m_writeBpm; }
    QCheckBox* markersBox() const { return m_markers; }
    NoteRuleBox* noteRules() const { return m_rules; }

private:
    midi::MidiSettings m_settings;
    part::RenderOptions m_options;
    QSpinBox* m_channel = nullptr;
    QComboBox* m_velocity = nullptr;
    QCheckBox* m_writeBpm = nullptr;
    QCheckBox* m_markers = nullptr;
    NoteRuleBox* m_rules = nullptr;
};

} // namespace app
