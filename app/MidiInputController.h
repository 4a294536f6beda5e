#pragma once

#include "midi/ChordSettler.h"
#include "midi/HeldNotes.h"
#include "midi/MidiInPort.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>
#include <string>
#include <vector>

namespace midi {
class MidiInPortList;
}

namespace app {

/**
 * The window's MIDI input: one input port of the system, opened by its stable name. The port
 * delivers on a thread of its own; each message crosses to the UI thread through a queued
 * signal and is applied here to the held notes, so that everything this class tells happens on
 * the UI thread.
 *
 * `heldNotesChanged` follows every key at once; `chordPlayed` reports a chord once the keys have
 * settled (ChordSettler: fingers never land at once); `captured` reports what the capture
 * button (capture()) or the sustain pedal took: the keys down, or the last chord held. When the
 * device goes away, the port is closed and `ended` carries the system's message; nothing else
 * changes (the chosen device stays in the settings for the next start).
 */
class MidiInputController : public QObject
{
    Q_OBJECT
public:
    explicit MidiInputController(std::shared_ptr<midi::MidiInPortList> inputs,
                                 QObject* parent = nullptr);
    ~MidiInputController() override;

    /**
     * Opens the device `name` (closing the one before); an empty name closes input. Returns the
     * failure's message, empty on success.
     */
    QString open(const std::string& name);
    void close();
    bool isOpen() const { return m_port != nullptr; }
    /** The device opened last, also after it has gone; empty when none. */
    const std::string& deviceName() const { return m_name; }

    /** The keys down now, ascending MIDI notes. */
    std::vector<int> heldNotes() const { return m_held.notes(); }
    /** Captures the keys down, or the last chord held; emits `captured` unless empty. */
    void capture();

    std::shared_ptr<midi::MidiInPortList> inputs() const { return m_inputs; }

Q_SIGNALS:
    void heldNotesChanged(const std::vector<int>& notes);
    void chordPlayed(const std::vector<int>& notes);
    void captured(const std::vector<int>& notes);
    /** Input has ended; `message` is the system's text. */
    void ended(const QString& message);
    /** Input opened or closed (device name, empty when closed). */
    void deviceChanged(const QString& name);

    // Sent from the port's thread and received queued on the UI thread.
    void eventArrived(quint32 packed, quint64 generation);
    void endArrived(const QString& message, quint64 generation);

private:
    void apply(quint32 packed, quint64 generation);
    void pollSettler();
    void finish(const QString& message, quint64 generation);

    std::shared_ptr<midi::MidiInPortList> m_inputs;
    std::unique_ptr<midi::MidiInPort> m_port;
    std::string m_name;
    /** Counts the ports opened, so that messages of a port closed since are dropped. */
    quint64 m_generation = 0;
    midi::HeldNotes m_held;
    midi::ChordSettler m_settler;
    QTimer m_settle;
};

} // namespace app
