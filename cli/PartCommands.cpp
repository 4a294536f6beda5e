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
    if (const music::Result result = part::PartFile::load(args.positionalPath(0), p); !result)
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
    if (const music::Result result = part::PartFile::load(args.requiredPath("part"), p); !result)
        return context.fail(result.message());

    std::ostream& out = context.out();
    for (int c = 0; c < p.count(); ++c) {
        const part::PreparedChord chord = part::prepareChord(p.chord(c), options.indexOption);
        for (int row = 0; row < p.chord(c).rows(); ++row) {
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
    const std::optional<std::string> bytes = music::readFileBytes(args.positionalPath(0));
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
         "Show a part: tempo, base octave, flags, patterns and chords",
         {},
         1,
         1,
         runPartInfo,
         "Lines \"bpm\", \"tpb\", \"base octave\", \"current pattern\", \"selection\" (first\n"
         "and last, or none) and \"flags\" (twelve, C..B), each as name<TAB>value; then\n"
         "patterns<TAB>N and one pattern<TAB>index<TAB>name<TAB>used cells line each; then\n"
         "chords<TAB>N and one index<TAB>name<TAB>pattern<TAB>length<TAB>notes line each."});

    std::vector<OptionSpec> renderOptions = partOptionSpecs();
    renderOptions.push_back({"part", true, false});
    commands.push_back({"render", std::string("--part FILE.prt ") + partOptionsSynopsis(),
                        "Print the note events every row of every chord of a part yields",
                        renderOptions, 0, 0, runRender,
                        "One line per event: chord<TAB>row<TAB>track<TAB>on<TAB>note or\n"
                        "chord<TAB>row<TAB>track<TAB>off (tracks counted from 0)."});

    commands.push_back({"presets",
                        "FILE.ppr|FILE.spr",
                        "List the presets of a part or pattern preset file",
                        {},
                        1,
                        1,
                        runPresets,
                        "One name a line; the kind of file is told by its first line."});
}

} // namespace cli
