#include "cli/Command.h"
#include "cli/PartOptions.h"
#include "cli/SongLoading.h"

#include "part/PartFile.h"
#include "song/BuzzSong.h"
#include "song/PartWriter.h"

#include <algorithm>
#include <ostream>

namespace cli {

namespace {

song::PartWriteOptions writeOptions(const Arguments& args)
{
    song::PartWriteOptions options;
    options.render = parsePartOptions(args);
    options.append = args.has("append");
    options.makeSequence = args.has("sequence");
    options.nameByNotes = args.has("names-by-notes");
    options.ignoreWave = args.has("ignore-wave");
    options.waveMode = static_cast<std::uint8_t>(args.integer("wave-mode", 0, 255, 0));
    options.baseWave = static_cast<int>(args.integer("base-wave", 0, 65535, 1));
    return options;
}

int runWritePart(const Arguments& args, Context& context)
{
    const std::filesystem::path output = args.requiredPath("output");
    const song::PartWriteOptions options = writeOptions(args);
    const std::string machineName = args.required("machine");

    part::Part part;
    if (const music::Result result = part::PartFile::load(args.requiredPath("part"), part); !result)
        return context.fail(result.message());

    song::BuzzSong song;
    if (!loadSong(args.requiredPath("song"), args, context, song))
        return kExitFailure;
    const std::size_t machine = song.findMachine(machineName);
    if (machine == song::BuzzSong::kNameNotFound)
        return context.fail("no machine named \"" + machineName + "\" in the song");

    const song::PartWriteResult result = song::PartWriter::write(song, machine, part, options);
    if (result.status == song::PartWriteStatus::NothingToDo)
        return context.fail("nothing to write: the part has no chords or no switched-on track "
                            "with notes");
    if (result.status == song::PartWriteStatus::Failed) {
        // Messages that let the operation go on were shown before the one that stopped it.
        for (std::size_t i = 0; i + 1 < result.messages.size(); ++i)
            context.out() << result.messages[i] << '\n';
        return context.fail(result.messages.empty() ? std::string() : result.messages.back());
    }

    if (const int saved = saveSong(song, output, context); saved != kExitSuccess)
        return saved;
    for (const std::string& message : result.messages)
        context.out() << message << '\n';
    return kExitSuccess;
}

} // namespace

void registerWritePartCommands(std::vector<Command>& commands)
{
    std::vector<OptionSpec> options = {{"part", true, false},
                                       {"song", true, false},
                                       {"machine", true, false},
                                       outputOption(),
                                       {"append", false, false},
                                       {"sequence", false, false},
                                       {"names-by-notes", false, false},
                                       {"ignore-wave", false, false},
                                       {"wave-mode", true, false},
                                       {"base-wave", true, false}};
    for (OptionSpec& shared : partOptionSpecs())
        options.push_back(std::move(shared));
    options = withSongReading(std::move(options));
    commands.push_back(
        {"write-part",
         std::string("--part FILE.prt --song IN.bmx --machine NAME -o OUT.bmx [--append] "
                     "[--sequence] [--names-by-notes] [--ignore-wave] [--wave-mode N] "
                     "[--base-wave N] ") +
             partOptionsSynopsis() + " [--learn] [--scan-dll DLL]",
         "Write a part into a machine of a Buzz song as one pattern per chord (and a sequence)",
         options, 0, 0, runWritePart});
}

} // namespace cli
