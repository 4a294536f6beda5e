#pragma once

#include "music/ChordCandidate.h"
#include "music/NoteSpeller.h"
#include "music/SearchCriteria.h"

#include <QString>
#include <QWidget>

#include <memory>
#include <vector>

class QComboBox;
class QLabel;
class QListView;
class QPushButton;
class QScrollArea;

namespace midi {
class MidiPortList;
class MidiSettings;
} // namespace midi

namespace app {

class ChordCandidateModel;
class ChordDatabasePanel;
class KeyAudition;
class MidiInputController;
class PartListPanel;
class PartSession;
class PianoKeyboard;

/**
 * The keyboard panel (a dock of the main window): a piano keyboard with the notes of whatever
 * was chosen last, the selected database chord, the part's current chord, the chord being
 * played, the keys clicked, or a chord played on the MIDI keyboard, and the names the chord
 * namer gives them, spelled for the chosen key (or the scale selected in the database).
 *
 * Notes are MIDI note numbers as they sound: a chord's stored note plus twelve times the part's
 * base octave (track octave settings aside). A click on a key adds or removes it and plays the
 * notes (KeyAudition). "Add chord" puts the notes into the part as a new chord named by the
 * chosen name, in the current pattern with "Def Length" (one "Add chord" step); "Find Chord" and
 * "Find Scale" search the database for their pitch classes at once.
 *
 * MIDI input (MidiInputController): keys down light in a second colour, a settled chord becomes
 * the panel's notes and is named, and "Capture" or the sustain pedal sends the chord where the
 * capture choice says: into the part (as "Add chord") or to the chord search.
 */
class KeyboardPanel : public QWidget
{
    Q_OBJECT
public:
    /** Where a captured chord goes. */
    enum class CaptureTarget
    {
        Part,
        ChordSearch,
    };

    /** Every reference outlives the panel; `settings` are the view's, read at each audition. */
    KeyboardPanel(PartSession& session, ChordDatabasePanel& chordDatabase, PartListPanel& partList,
                  std::shared_ptr<midi::MidiPortList> ports, const midi::MidiSettings& settings,
                  QWidget* parent = nullptr);
    ~KeyboardPanel() override;

    /** Shows and names `notes` (MIDI notes); `caption` says where they come from. */
    void showNotes(const std::vector<int>& notes, const QString& caption);
    const std::vector<int>& notes() const { return m_notes; }
    /** Where the notes come from ("Part chord 2: Am"), as given to showNotes. */
    const QString& caption() const { return m_captionText; }

    /** Adds or removes a note, names the result and plays it (a click on a key). */
    void toggleNote(int note);
    void clear();
    /** The name "Add chord" gives: the selected candidate, else the best one. */
    QString chosenName() const;
    /** "Add chord"; false (and said why) when it could not. */
    bool addToPart();
    void findChord();
    void findScale();
    /** Sends `notes` where the capture choice says. */
    void capture(const std::vector<int>& notes);

    /** Listens to `input`: lights, names and captures its chords. */
    void setMidiInput(MidiInputController* input);
    /** Ends the audition's notes. */
    void stopSound();

    /** The speller of the key choice; the usual names without one. */
    music::NoteSpeller speller() const;
    CaptureTarget captureTarget() const;

    PianoKeyboard* keyboard() const { return m_keyboard; }
    QScrollArea* scrollArea() const { return m_scroll; }
    ChordCandidateModel* candidates() const { return m_candidates; }
    QListView* candidateList() const { return m_candidateList; }
    QComboBox* keyBox() const { return m_key; }
    QComboBox* captureBox() const { return m_captureTarget; }
    QPushButton* addButton() const { return m_add; }
    QPushButton* findChordButton() const { return m_findChord; }
    QPushButton* findScaleButton() const { return m_findScale; }
    QPushButton* clearButton() const { return m_clear; }
    QPushButton* captureButton() const { return m_capture; }
    QLabel* captionLabel() const { return m_caption; }
    QLabel* statusLabel() const { return m_status; }
    QLabel* inputLabel() const { return m_inputStatus; }
    KeyAudition* audition() const { return m_audition; }

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* createButtons();
    /** The pitch classes of the chosen notes, as the searches take them. */
    music::SearchCriteria::Ticks pitchClassTicks() const;
    void fillKeys();
    void connectSources();
    void connectInput();
    /** Names the notes again (the key changed, the notes changed). */
    void rename();
    void scrollToNotes();
    void showStatus(const QString& text);
    void showDatabaseChord();
    void showPartChord(int index, const QString& caption);
    /** Sounding MIDI notes of stored chord-note values. */
    std::vector<int> sounding(const std::vector<int>& values) const;

    PartSession& m_session;
    ChordDatabasePanel& m_chordDatabase;
    PartListPanel& m_partList;
    const midi::MidiSettings& m_settings;
    std::vector<int> m_notes;
    QString m_captionText; // without the note names shown after it
    int m_playingChord = -1;
    bool m_searching = false; // a search of ours moves the database selection: keep our notes
    bool m_showingPartChord = false;
    MidiInputController* m_input = nullptr;

    PianoKeyboard* m_keyboard = nullptr;
    QScrollArea* m_scroll = nullptr;
    ChordCandidateModel* m_candidates = nullptr;
    QListView* m_candidateList = nullptr;
    QComboBox* m_key = nullptr;
    QComboBox* m_captureTarget = nullptr;
    QPushButton* m_add = nullptr;
    QPushButton* m_findChord = nullptr;
    QPushButton* m_findScale = nullptr;
    QPushButton* m_clear = nullptr;
    QPushButton* m_capture = nullptr;
    QLabel* m_caption = nullptr;
    QLabel* m_status = nullptr;
    QLabel* m_inputStatus = nullptr;
    QLabel* m_keyName = nullptr;
    KeyAudition* m_audition = nullptr;
};

} // namespace app
