#include "app/MidiInputController.h"

#include "midi/MidiInPortList.h"

#include <chrono>

namespace app {

namespace {

quint32 pack(const midi::MidiInputEvent& event)
{
    return static_cast<quint32>(event.kind) | static_cast<quint32>(event.channel) << 8 |
           static_cast<quint32>(event.note) << 16 | static_cast<quint32>(event.value) << 24;
}

midi::MidiInputEvent unpack(quint32 packed)
{
    midi::MidiInputEvent event;
    event.kind = static_cast<midi::MidiInputEvent::Kind>(packed & 0xFF);
    event.channel = static_cast<std::uint8_t>(packed >> 8 & 0xFF);
    event.note = static_cast<std::uint8_t>(packed >> 16 & 0xFF);
    event.value = static_cast<std::uint8_t>(packed >> 24 & 0xFF);
    return event;
}

} // namespace

MidiInputController::MidiInputController(std::shared_ptr<midi::MidiInPortList> inputs,
                                         QObject* parent)
    : QObject(parent), m_inputs(inputs ? std::move(inputs) : midi::MidiInPortList::systemList())
{
    setObjectName(QStringLiteral("midiInput"));
    // The port's thread emits; these connections carry the messages over to this thread.
    connect(this, &MidiInputController::eventArrived, this, &MidiInputController::apply,
            Qt::QueuedConnection);
    connect(this, &MidiInputController::endArrived, this, &MidiInputController::finish,
            Qt::QueuedConnection);
    m_settle.setSingleShot(true);
    connect(&m_settle, &QTimer::timeout, this, &MidiInputController::pollSettler);
}

MidiInputController::~MidiInputController()
{
    m_port.reset(); // no handler runs after this
}

QString MidiInputController::open(const std::string& name)
{
    close();
    m_name = name;
    if (name.empty())
        return {};
    const quint64 generation = ++m_generation;
    midi::MidiInPort::Handlers handlers;
    handlers.event = [this, generation](const midi::MidiInputEvent& event) {
        Q_EMIT eventArrived(pack(event), generation);
    };
    handlers.ended = [this, generation](const std::string& message) {
        Q_EMIT endArrived(QString::fromStdString(message), generation);
    };
    std::unique_ptr<midi::MidiInPort> port;
    const music::Result opened = m_inputs->open(name, std::move(handlers), port);
    if (!opened || !port)
        return QString::fromStdString(opened.message());
    m_port = std::move(port);
    Q_EMIT deviceChanged(QString::fromStdString(m_name));
    return {};
}

void MidiInputController::close()
{
    ++m_generation; // whatever the old port still queued is dropped
    const bool wasOpen = m_port != nullptr;
    m_port.reset();
    m_settle.stop();
    m_settler.reset();
    const bool hadNotes = !m_held.isEmpty();
    m_held.clear();
    if (hadNotes)
        Q_EMIT heldNotesChanged({});
    if (wasOpen)
        Q_EMIT deviceChanged(QString());
}

void MidiInputController::apply(quint32 packed, quint64 generation)
{
    if (generation != m_generation)
        return;
    const midi::HeldNotes::Change change = m_held.apply(unpack(packed));
    if (change.notesChanged) {
        Q_EMIT heldNotesChanged(m_held.notes());
        m_settler.update(m_held.notes(), change.keyPressed, midi::ChordSettler::Clock::now());
        pollSettler();
    }
    if (change.captured && !m_held.captured().empty())
        Q_EMIT captured(m_held.captured());
}

void MidiInputController::pollSettler()
{
    const auto now = midi::ChordSettler::Clock::now();
    if (const auto chord = m_settler.poll(now))
        Q_EMIT chordPlayed(*chord);
    if (const auto due = m_settler.due()) {
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*due - now);
        m_settle.start(std::max<int>(0, static_cast<int>(wait.count())));
    }
}

void MidiInputController::capture()
{
    const std::vector<int> chord = m_held.chordToCapture();
    if (!chord.empty())
        Q_EMIT captured(chord);
}

void MidiInputController::finish(const QString& message, quint64 generation)
{
    if (generation != m_generation)
        return;
    close();
    Q_EMIT ended(message);
}

} // namespace app
