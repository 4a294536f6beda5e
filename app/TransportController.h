#pragma once

#include <QObject>

#include <memory>

class QWidget;

namespace midi {
class MidiInPortList;
class MidiPortList;
class MidiSettings;
} // namespace midi

namespace player {
class PartPlayer;
}

namespace app {

class CMainFrame;
class PartSession;
class PlayingIndicator;

/**
 * The window's transport: "Play part." (F5), "Play single chord.", "Stop playing." (F8) and the
 * MIDI settings dialog, over one player and the part session.
 *
 * "Play part." starts at the part list's current chord (chord 0 when there is none) within the
 * selected range of chords; "Play single chord." plays the current chord once. With no device
 * chosen the MIDI settings dialog opens first. The main frame's two playing flags follow the
 * player; the playing position goes to the session for the part list and the grid, (-1, -1) at
 * the end. Edits that change what plays stop playback (the session's `aboutToEdit`); live edits
 * (cells, track octaves, track switches, tempo) reach the player and are heard at the next row.
 *
 * The MIDI settings are the view's (`settings`, kept up to date with what playback changes in
 * them: the program table, a velocity above 127 lowered to 127).
 */
class TransportController : public QObject
{
    Q_OBJECT
public:
    /** `frame`, `session` and `settings` must outlive the controller. */
    TransportController(CMainFrame& frame, PartSession& session, midi::MidiSettings& settings,
                        std::shared_ptr<midi::MidiPortList> ports, QObject* parent = nullptr);
    ~TransportController() override;

    void playPart();
    void playChord();
    void stop();
    /** Play part when idle, stop when playing (Space in the part list and the pattern grid). */
    void togglePlay();
    bool isPlaying() const;

    /**
     * Shows the MIDI settings dialog (playback stops first); on OK the MIDI values go to the
     * settings and the note rules to the session. Returns whether it was confirmed.
     */
    bool editMidiSettings();

    /** The MIDI settings dialog also chooses the input device among `inputs`. */
    void setInputPorts(std::shared_ptr<midi::MidiInPortList> inputs)
    {
        m_inputs = std::move(inputs);
    }

    /** Space toggles play and stop while the focus is in `region` or one of its children. */
    void addSpaceToggle(QWidget* region);

    player::PartPlayer& player() const { return *m_player; }
    PlayingIndicator* indicator() const { return m_indicator; }

Q_SIGNALS:
    /** The MIDI settings dialog is about to open (sounding notes end before a device change). */
    void midiSettingsOpening();
    /** The MIDI settings dialog was confirmed; the settings hold its values. */
    void midiSettingsEdited();

private:
    void connectPlayer();
    void connectSession();
    void applyIndicatorSettings();
    /** Takes over what playback changed in its copy of the settings. */
    void syncSettingsFromPlayer();

    CMainFrame& m_frame;
    PartSession& m_session;
    midi::MidiSettings& m_settings;
    std::shared_ptr<midi::MidiPortList> m_ports;
    std::shared_ptr<midi::MidiInPortList> m_inputs;
    player::PartPlayer* m_player = nullptr;
    PlayingIndicator* m_indicator = nullptr;
};

} // namespace app
