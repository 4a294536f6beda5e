#include "cli/Command.h"
#include "cli/PartOptions.h"
#include "music/FileBytes.h"
#include "music/TextLineReader.h"
#include "part/PartFile.h"
#include "part/PartPresetList.h"
#include "part/PatternPresetList.h"
#include "part/RowRenderer.h"

#include <ostream>

namespace cli {

namespace {

void printSelectionField(std::ostream& out, std::uint16_t index)
{
    if (index == part::kNoIndex)
        out << "none";
    else
        out << index;
}

int runPartInfo(const Arguments& args, Context& context)
{
    part::Part p;
    if (const music::Result result = part::PartFile::load(args.positionals()[0], p); !result)
        return context.fail(result.message());

    std::ostream& out = context.out();
    out << "bpm\t" << p.beatsPerMinute() << '\n';
    out << "tpb\t" << p.ticksPerBeat() << '\n';
    out << "base octave\t" << static_cast<int>(p.baseOctave()) << '\n';
    out << "current pattern\t" << p.currentPattern() << '\n';
    out << "selection\t";
    printSelectionField(out, p.selectionFirst());
    out << '\t';
    printSelectionField(out, p.selectionLast());
    out << '\n';
    out << "flags\t";
    for (std::size_t i = 0; i < p.pitchClassFlags().size(); ++i)
        out << (i ? " " : "") << p.pitchClassFlags()[i];
    out << '\n';

    out << "patterns\t" << p.patterns().count() << '\n';
    for (int i = 0; i < p.patterns().count(); ++i) {
        const part::Pattern& pattern = p.patterns().pattern(i);
        out << "pattern\t" << i << '\t' << pattern.name() << '\t' << pattern.usedCellCount()
            << '\n';
    }

    out << "chords\t" << p.count() << '\n';
    for (int i = 0; i < p.count(); ++i) {
        const part::PartChord& chord = p.chord(i);
        out << i << '\t' << chord.name << '\t' << chord.pattern << '\t'
            << static_cast<int>(chord.length) << '\t';
        for (int n = 0; n < chord.noteCount && n < part::PartChord::kMaxNotes; ++n)
            out << (n ? " " : "") << static_cast<int>(chord.notes[static_cast<std::size_t>(n)]);
        out << '\n';
    }
    return kExitSuccess;
}

int runRender(const Arguments& args, Context& context)
{
    const part::RenderOptions options = parsePartOptions(args);
    part::Part p;
    if (const music::Result result = part::PartFile::load(args.required("part"), p); !result)
        return context.fail(result.message());

    std::ostream& out = context.out();
    for (int c = 0; c < p.count(); ++c) {
        const part::PreparedChord chord = part::prepareChord(p.chord(c), options.indexOption);
        for (int row = 0; row < p.chord(c).length; ++row) {
            const part::RowEvents events = part::renderPartRow(p, chord, c, row, options);
            for (std::size_t t = 0; t < events.size(); ++t) {
                const part::TrackEvent& e = events[t];
                if (e.type == part::TrackEvent::Type::Note)
                    out << c << '\t' << row << '\t' << t << "\ton\t" << e.note << '\n';
                else if (e.type == part::TrackEvent::Type::Off)
                    out << c << '\t' << row << '\t' << t << "\toff\n";
            }
        }
    }
    return kExitSuccess;
}

int runPresets(const Arguments& args, Context& context)
{
    const std::optional<std::string> bytes = music::readFileBytes(args.positionals()[0]);
    if (!bytes)
        return context.fail(part::PartPresetList::kOpenError);

    music::TextLineReader firstLine(*bytes);
    const std::string magic = firstLine.readLine();
    if (music::equalsIgnoringCase(magic, part::PatternPresetList::kMagic)) {
        part::PatternPresetList list;
        if (const music::Result result = list.parse(*bytes); !result)
            return context.fail(result.message());
        for (int i = 0; i < list.count(); ++i)
            context.out() << list.preset(i).name() << '\n';
        return kExitSuccess;
    }
    part::PartPresetList list;
    if (const music::Result result = list.parse(*bytes); !result)
        return context.fail(result.message());
    for (const part::PartPreset& preset : list.presets())
        context.out() << preset.name << '\n';
    return kExitSuccess;
}

} // namespace

void registerPartCommands(std::vector<Command>& commands)
{
    commands.push_back(
        {"part-info",
         "FILE.prt",
         "Shows a part file: lines \"bpm\", \"tpb\", \"base octave\", \"current pattern\", "
         "\"selection\" (first and last, or none), \"flags\" (twelve, C..B), each as "
         "name<TAB>value; \"patterns<TAB>N\" then \"pattern<TAB>index<TAB>name<TAB>used cells\"; "
         "\"chords<TAB>N\" then \"index<TAB>name<TAB>pattern<TAB>length<TAB>notes\".",
         {},
         1,
         1,
         runPartInfo});

    std::vector<OptionSpec> renderOptions = partOptionSpecs();
    renderOptions.push_back({"part", true, false});
    commands.push_back(
        {"render", std::string("--part FILE.prt ") + partOptionsSynopsis(),
         "Renders every row of every chord of a part through its pattern: one line per event, "
         "\"chord<TAB>row<TAB>track<TAB>on<TAB>note\" or \"chord<TAB>row<TAB>track<TAB>off\" "
         "(tracks from 0).",
         renderOptions, 0, 0, runRender});

    commands.push_back({"presets",
                        "FILE.ppr|FILE.spr",
                        "Lists the names of the presets in a part or pattern preset file, one a "
                        "line (the kind is told by the file's first line).",
                        {},
                        1,
                        1,
                        runPresets});
}

} // namespace cli
