#include "cli/Command.h"
#include "cli/PartOptions.h"
#include "midi/MidiFileExporter.h"
#include "part/PartFile.h"

#include <string>
#include <utility>

namespace cli {

namespace {

/** "A,B" as two numbers within [min, max]; throws UsageError naming `what`. */
std::pair<std::int64_t, std::int64_t> parsePair(const std::string& text, std::int64_t min,
                                                std::int64_t max, const std::string& what)
{
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos)
        throw UsageError(what + " needs two numbers separated by a comma");
    return {Arguments::parseInteger(text.substr(0, comma), min, max, what),
            Arguments::parseInteger(text.substr(comma + 1), min, max, what)};
}

int runMidi(const Arguments& args, Context& context)
{
    const std::filesystem::path partPath = args.requiredPath("part");
    const std::filesystem::path output = args.requiredPath("output");
    // Parsed (and the random source seeded) before anything is read, so usage errors come first.
    const part::RenderOptions render = parsePartOptions(args);

    midi::MidiExportOptions options;
    options.render = render;
    options.channel = static_cast<std::uint8_t>(args.integer("channel", 0, 15, 0));
    options.velocity = static_cast<int>(args.integer("velocity", 1, 128, 80));
    options.writeBpm = args.has("write-bpm");
    options.writeChordNames = args.has("markers");
    if (const auto range = args.value("range")) {
        const auto [first, last] = parsePair(*range, 0, 65535, "--range");
        if (first > last)
            throw UsageError("--range: the first chord comes after the last");
        options.rangeFirst = static_cast<std::uint16_t>(first);
        options.rangeLast = static_cast<std::uint16_t>(last);
    }

    part::Part part;
    if (const music::Result loaded = part::PartFile::load(partPath, part); !loaded)
        return context.fail(loaded.message());
    options.beatsPerMinute =
        static_cast<std::uint16_t>(args.integer("bpm", 0, 65535, part.beatsPerMinute()));
    options.ticksPerBeat =
        static_cast<std::uint16_t>(args.integer("tpb", 0, 65535, part.ticksPerBeat()));

    midi::MidiFileExporter exporter(options);
    if (const music::Result written = exporter.write(part, output); !written)
        return context.fail(written.message());
    return kExitSuccess;
}

} // namespace

void registerMidiCommands(std::vector<Command>& commands)
{
    std::vector<OptionSpec> options = {
        {"part", true, false},       outputOption(),           {"bpm", true, false},
        {"tpb", true, false},        {"channel", true, false}, {"velocity", true, false},
        {"write-bpm", false, false}, {"range", true, false},
    };
    options.push_back({"markers", false, false});
    for (OptionSpec& shared : partOptionSpecs())
        options.push_back(std::move(shared));

    commands.push_back(Command{
        "midi",
        std::string("--part FILE.prt -o OUT.mid [--bpm N] [--tpb N] [--channel 0..15] "
                    "[--velocity 1..128] [--write-bpm] [--range FIRST,LAST] [--markers] ") +
            partOptionsSynopsis(),
        "Write a part as a Standard MIDI file",
        std::move(options),
        0,
        0,
        runMidi,
        "Format 1 with a tempo track and a note track. Tempo defaults to the part's own,\n"
        "velocity to 80; channel and chord indices count from 0; --range limits the chords\n"
        "written (default: all); --write-bpm stores the tempo. --markers names the first track\n"
        "after the part (or the file) and puts a marker with each chord's name where the chord\n"
        "starts. Prints nothing on success.\n"
        "Each note's velocity is the setting with a small random jitter, stored within 1..127\n"
        "(127 at most, so --velocity 128 gives 127), as a MIDI data byte must be.",
    });
}

} // namespace cli
