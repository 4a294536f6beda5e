// Naming the chords played on a MIDI input device, and the list of input devices (builds with
// live MIDI only).

#include "cli/LiveMidi.h"
#include "midi/ChordSettler.h"
#include "midi/HeldNotes.h"
#include "midi/MidiInPortList.h"
#include "music/TextLineReader.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <optional>
#include <ostream>

namespace cli {

namespace {

std::atomic<bool> g_interrupted{false};

extern "C" void onListenInterrupt(int)
{
    g_interrupted = true;
}

/** A device given as its exact name, or a part of exactly one name (ignoring case). */
std::optional<std::string> findInput(const std::string& text, const std::vector<std::string>& names,
                                     std::string& error)
{
    if (std::find(names.begin(), names.end(), text) != names.end())
        return text;
    const std::string wanted = music::toLower(text);
    std::optional<std::string> found;
    for (const std::string& name : names) {
        if (music::toLower(name).find(wanted) == std::string::npos)
            continue;
        if (found) {
            error = "More than one MIDI input device matches \"" + text + "\".";
            return std::nullopt;
        }
        found = name;
    }
    if (!found)
        error =
            "No MIDI input device matches \"" + text + "\" (tonalmancer-cli inputs lists them).";
    return found;
}

/** What the input port's thread hands to the main thread. */
struct Inbox
{
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<midi::MidiInputEvent> events;
    std::optional<std::string> ended;
};

} // namespace

int listenForChords(const std::string& portText, Context& context,
                    const std::function<void(const std::vector<int>& notes)>& onChord)
{
    const std::shared_ptr<midi::MidiInPortList> inputs = midi::MidiInPortList::systemList();
    std::string error;
    const std::optional<std::string> name = findInput(portText, inputs->inputNames(), error);
    if (!name)
        return context.fail(error);

    Inbox inbox;
    midi::MidiInPort::Handlers handlers;
    handlers.event = [&inbox](const midi::MidiInputEvent& event) {
        {
            const std::lock_guard<std::mutex> lock(inbox.mutex);
            inbox.events.push_back(event);
        }
        inbox.wake.notify_one();
    };
    handlers.ended = [&inbox](const std::string& message) {
        {
            const std::lock_guard<std::mutex> lock(inbox.mutex);
            inbox.ended = message;
        }
        inbox.wake.notify_one();
    };
    std::unique_ptr<midi::MidiInPort> port;
    if (const music::Result opened = inputs->open(*name, std::move(handlers), port); !opened)
        return context.fail(opened.message());
    context.err() << "Naming the chords played on " << *name << "; Ctrl+C stops.\n";
    context.err().flush();

    g_interrupted = false;
    const auto previousHandler = std::signal(SIGINT, onListenInterrupt);
    midi::HeldNotes held;
    midi::ChordSettler settler;
    std::optional<std::string> ended;
    while (!g_interrupted && !ended) {
        std::deque<midi::MidiInputEvent> events;
        {
            // Wake for input, for a chord due to settle, and often enough to notice Ctrl+C.
            std::unique_lock<std::mutex> lock(inbox.mutex);
            auto until = midi::ChordSettler::Clock::now() + std::chrono::milliseconds(50);
            if (const auto due = settler.due())
                until = std::min(until, *due);
            inbox.wake.wait_until(lock, until,
                                  [&inbox] { return !inbox.events.empty() || inbox.ended; });
            events.swap(inbox.events);
            ended = inbox.ended;
        }
        const auto now = midi::ChordSettler::Clock::now();
        for (const midi::MidiInputEvent& event : events) {
            const midi::HeldNotes::Change change = held.apply(event);
            if (change.notesChanged)
                settler.update(held.notes(), change.keyPressed, now);
        }
        const std::optional<std::vector<int>> chord = settler.poll(now);
        if (!chord)
            continue;
        onChord(*chord);
    }
    std::signal(SIGINT, previousHandler);
    port.reset();
    if (ended)
        return context.fail(*ended);
    return kExitSuccess;
}

int runInputs(const Arguments&, Context& context)
{
    const std::vector<std::string> names = midi::MidiInPortList::systemList()->inputNames();
    if (names.empty())
        context.out() << "No MIDI input device available\n";
    for (const std::string& name : names)
        context.out() << name << '\n';
    return kExitSuccess;
}

} // namespace cli
