#pragma once

#include "midi/MidiExportOptions.h"
#include "song/PartWriter.h"

#include <QObject>
#include <QString>

#include <functional>

namespace app {

class CMainFrame;
class CTonalmancerDoc;
class CTonalmancerView;
class PartSession;
class TransportController;

/**
 * "Create Midi File" and "Create Buzz Patterns" (both of its commands): the part leaves the
 * window as a standard MIDI file, or as patterns (and a sequence) of the machine selected in the
 * machine view of the open song. The options dialogs show the stored options each time and store
 * them back when confirmed; the note rules they show are the session's. Whether chord names go
 * into MIDI files as markers is kept for the next run (off at first, so that files stay as they
 * were).
 */
class PartExportCommands : public QObject
{
    Q_OBJECT
public:
    static constexpr const char* kMidiFilter = "Midi (*.mid);;All Files (*)";
    static constexpr const char* kDone = "Done";

    /** Asks for the MIDI file to write; an empty text cancels. Replaceable for tests. */
    using FileChooser = std::function<QString(const QString& suggestedPath)>;

    PartExportCommands(CTonalmancerView& view, CMainFrame& frame, CTonalmancerDoc& document,
                       PartSession& session, TransportController& transport,
                       QObject* parent = nullptr);

    /** "Create Midi File": file, options, then the file and "Done". Nothing without chords. */
    void createMidiFile();
    /** Writes the file with the stored options; false (and shown) on failure. */
    bool writeMidiFile(const QString& path);
    /** "Create Buzz Patterns": into the machine selected in the machine view. */
    void createBuzzPatterns();

    /** The options a MIDI file is written with now: settings, note rules, tempo bar, range. */
    midi::MidiExportOptions midiExportOptions() const;
    /** The pattern-writing options of the last confirmed dialog (this run and the last). */
    const song::PartWriteOptions& partWriteOptions() const { return m_writeOptions; }

    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }
    /** "Write chord names as markers", as last confirmed. */
    bool writesChordNames() const { return m_writeChordNames; }

private:
    QString chooseMidiFile(const QString& suggestedPath) const;
    void loadWriteOptions();
    void storeWriteOptions() const;

    CTonalmancerView& m_view;
    CMainFrame& m_frame;
    CTonalmancerDoc& m_document;
    PartSession& m_session;
    TransportController& m_transport;
    FileChooser m_chooseFile;
    song::PartWriteOptions m_writeOptions;
    bool m_writeChordNames = false;
};

} // namespace app
