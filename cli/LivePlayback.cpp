// Live playback through the system's MIDI output devices (builds with live MIDI only).

#include "cli/Command.h"
#include "cli/LiveMidi.h"
#include "cli/PartOptions.h"

#include "midi/MidiPortList.h"
#include "midi/MidiSettings.h"
#include "midi/ShortMessage.h"
#include "midi/SystemMidiPortList.h"
#include "music/TextLineReader.h"
#include "part/PartFile.h"
#include "player/PartPlayer.h"

#include <QCoreApplication>
#include <QTimer>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <iomanip>
#include <optional>
#include <sstream>

namespace cli {

namespace {

std::atomic<bool> g_interrupted{false};

extern "C" void onInterrupt(int)
{
    g_interrupted = true;
}

/** The device list of the data folder (its soundfont comes first for the built-in synth). */
std::shared_ptr<midi::MidiPortList> useSystemPorts(Context& context)
{
    auto ports = std::make_shared<midi::SystemMidiPortList>(context.dataFolder().root());
    midi::MidiPortList::setSystemList(ports);
    return ports;
}

/**
 * A device given as a number, an exact name, or a part of exactly one name (ignoring case).
 * Sets `error` and returns nothing when no single device is meant.
 */
std::optional<unsigned> findDevice(const std::string& text, const std::vector<std::string>& names,
                                   std::string& error)
{
    if (!text.empty() && text.find_first_not_of("0123456789") == std::string::npos) {
        const std::int64_t number = Arguments::parseInteger(text, 0, 254, "--device");
        return static_cast<unsigned>(number);
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] == text)
            return static_cast<unsigned>(i);
    }
    const std::string wanted = music::toLower(text);
    std::optional<unsigned> found;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (music::toLower(names[i]).find(wanted) == std::string::npos)
            continue;
        if (found) {
            error = "More than one midi device matches \"" + text + "\".";
            return std::nullopt;
        }
        found = static_cast<unsigned>(i);
    }
    if (!found)
        error = "No midi device matches \"" + text + "\".";
    return found;
}

std::string hexBytes(std::uint32_t packed)
{
    std::ostringstream out;
    out << std::hex << std::setfill('0');
    for (int shift = 0; shift <= 16; shift += 8)
        out << (shift != 0 ? " " : "") << std::setw(2) << ((packed >> shift) & 0xFF);
    return out.str();
}

} // namespace

bool haveLiveMidi()
{
    return true;
}

int runDevices(const Arguments&, Context& context)
{
    const std::vector<std::string> names = useSystemPorts(context)->deviceNames();
    if (names.empty()) {
        context.out() << "No midi device available\n";
        return kExitSuccess;
    }
    for (std::size_t i = 0; i < names.size(); ++i)
        context.out() << i << '\t' << names[i] << '\n';
    return kExitSuccess;
}

namespace {

/** An integer option within [min, max] when given; throws UsageError when malformed. */
std::optional<std::uint16_t> optionalInteger(const Arguments& args, const std::string& name,
                                             std::int64_t min, std::int64_t max)
{
    if (!args.has(name))
        return std::nullopt;
    return static_cast<std::uint16_t>(args.integer(name, min, max, min));
}

} // namespace

int runPlay(const Arguments& args, Context& context)
{
    // Every mistake in the call is reported before anything is opened.
    const part::RenderOptions options = parsePartOptions(args);
    const std::string partPath = args.required("part");
    const std::optional<std::uint16_t> channel = optionalInteger(args, "channel", 0, 15);
    const std::optional<std::uint16_t> port = optionalInteger(args, "port", 0, 127);
    const std::optional<std::uint16_t> program = optionalInteger(args, "program", 0, 127);
    const std::optional<std::uint16_t> velocity = optionalInteger(args, "velocity", 0, 255);
    const std::optional<std::uint16_t> bpmOption = optionalInteger(args, "bpm", 1, 65535);
    const std::optional<std::uint16_t> tpbOption = optionalInteger(args, "tpb", 1, 65535);
    const std::optional<std::uint16_t> singleChord =
        optionalInteger(args, "single-chord", 0, 64999);

    part::Part part;
    if (const music::Result result = part::PartFile::load(partPath, part); !result)
        return context.fail(result.message());
    if (singleChord && *singleChord >= part.count()) {
        throw UsageError("--single-chord " + std::to_string(*singleChord) + ": the part has " +
                         std::to_string(part.count()) + " chords, counted from 0");
    }

    const std::shared_ptr<midi::MidiPortList> ports = useSystemPorts(context);
    midi::MidiSettings settings =
        midi::MidiSettings::read(context.dataFolder().file(midi::MidiSettings::kFileName), *ports);
    if (const std::optional<std::string> device = args.value("device")) {
        std::string error;
        const std::optional<unsigned> number = findDevice(*device, ports->deviceNames(), error);
        if (!number)
            return context.fail(error);
        settings.setDeviceNumber(static_cast<std::uint16_t>(*number));
    } else if (settings.deviceNumber() == midi::MidiSettings::kNoDevice) {
        return context.fail("No midi output device is chosen: give --device N or NAME "
                            "(tonalmancer-cli devices lists them).");
    }
    settings.setChannel(channel.value_or(settings.channel()));
    settings.setPort(port.value_or(settings.port()));
    settings.setProgram(program.value_or(settings.program()));
    settings.setVelocity(velocity.value_or(settings.velocity()));
    const int bpm = bpmOption.value_or(part.beatsPerMinute());
    const int tpb = tpbOption.value_or(part.ticksPerBeat());
    const std::uint16_t chord = singleChord.value_or(part::kNoIndex);

    int argc = 1;
    char name[] = "tonalmancer-cli";
    char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    player::PartPlayer player(ports);
    player.setSettings(settings);
    player.setRenderOptions(options);
    player.setTempo(bpm, tpb);

    std::string failure;
    QObject::connect(&player, &player::PartPlayer::failed,
                     [&failure](const QString& message) { failure = message.toStdString(); });
    QObject::connect(&player, &player::PartPlayer::finished, &application, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    if (args.has("print-messages")) {
        QObject::connect(&player, &player::PartPlayer::messageSent,
                         [&context](quint32 packed) { context.out() << hexBytes(packed) << '\n'; });
    }

    g_interrupted = false;
    const auto previousHandler = std::signal(SIGINT, onInterrupt);
    QTimer interruptPoll;
    QObject::connect(&interruptPoll, &QTimer::timeout, [&player] {
        if (g_interrupted)
            player.stop();
    });
    interruptPoll.start(20);

    const player::PartPlayer::StartResult started =
        singleChord ? player.playSingleChord(part, chord) : player.playPart(part, chord);
    if (started == player::PartPlayer::StartResult::Started && player.isPlaying())
        application.exec();
    std::signal(SIGINT, previousHandler);
    context.out().flush();

    switch (started) {
    case player::PartPlayer::StartResult::NothingToPlay:
        return context.fail("The part has no chords to play.");
    case player::PartPlayer::StartResult::NoDeviceChosen:
        return context.fail("No midi output device is chosen.");
    default:
        break;
    }
    if (!failure.empty())
        return context.fail(failure);
    return kExitSuccess;
}

} // namespace cli
