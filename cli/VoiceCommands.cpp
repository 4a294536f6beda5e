#include "cli/Command.h"
#include "music/Note.h"
#include "part/ChordVoicer.h"
#include "part/PartFile.h"
#include "part/VoiceLeading.h"

#include <ostream>
#include <string>

namespace cli {

namespace {

/** A note of the range: a name with its octave ("E2", "F#5") or a note value 0..119. */
music::NoteValue parseRangeNote(const std::string& text)
{
    if (const auto named = music::parseNoteNameWithOctave(text))
        return *named;
    if (!text.empty() && text.find_first_not_of("0123456789") == std::string::npos)
        return static_cast<music::NoteValue>(Arguments::parseInteger(text, 0, 119, "--range"));
    throw UsageError("--range: \"" + text + "\" is no note such as E2 or F#5");
}

/** "FIRST-LAST", "FIRST,LAST" or a single index; 0-based chord indices. */
std::pair<int, int> parseChords(const std::string& text)
{
    const std::size_t separator = text.find_first_of("-,");
    const auto index = [](const std::string& part) {
        return static_cast<int>(Arguments::parseInteger(part, 0, 65534, "--chords"));
    };
    if (separator == std::string::npos) {
        const int only = index(text);
        return {only, only};
    }
    const int first = index(text.substr(0, separator));
    const int last = index(text.substr(separator + 1));
    if (first > last)
        throw UsageError("--chords: the first chord comes after the last");
    return {first, last};
}

part::VoicingOptions parseOptions(const Arguments& args)
{
    part::VoicingOptions options;
    if (const auto style = args.value("style")) {
        const auto parsed = part::ChordVoicer::parseStyle(*style);
        if (!parsed) {
            throw UsageError("--style: unknown style \"" + *style +
                             "\" (close, open, drop2, drop3, spread)");
        }
        options.style = *parsed;
    }
    if (const auto range = args.value("range")) {
        const std::size_t comma = range->find(',');
        if (comma == std::string::npos)
            throw UsageError("--range needs two notes separated by a comma, such as E2,G5");
        options.low = parseRangeNote(range->substr(0, comma));
        options.high = parseRangeNote(range->substr(comma + 1));
        if (options.low > options.high)
            throw UsageError("--range: the lowest note lies above the highest");
    }
    if (const auto bass = args.value("bass")) {
        if (*bass == "root") {
            options.bass = part::BassRule::Root;
        } else if (const auto note = music::parseNoteName(*bass)) {
            options.bass = part::BassRule::Note;
            options.bassNote = *note;
        } else {
            throw UsageError("--bass: \"" + *bass + "\" is neither root nor a note name");
        }
    }
    return options;
}

void printCosts(std::ostream& out, const part::VoicedRun& run)
{
    out << "movement before\t" << run.before.movement << '\n';
    out << "movement after\t" << run.after.movement << '\n';
    out << "parallels before\t" << run.before.parallels << '\n';
    out << "parallels after\t" << run.after.parallels << '\n';
    out << "crossings before\t" << run.before.crossings << '\n';
    out << "crossings after\t" << run.after.crossings << '\n';
}

int runVoice(const Arguments& args, Context& context)
{
    const std::filesystem::path partPath = args.requiredPath("part");
    const std::filesystem::path output = args.requiredPath("output");
    const part::VoicingOptions options = parseOptions(args);
    std::pair<int, int> chords = {part::kNoIndex, part::kNoIndex};
    if (const auto text = args.value("chords"))
        chords = parseChords(*text);

    part::Part p;
    if (const music::Result loaded = part::PartFile::load(partPath, p); !loaded)
        return context.fail(loaded.message());
    if (!args.value("chords") && p.hasSelection())
        chords = {p.selectionFirst(), p.selectionLast()};

    part::VoicedRun run;
    const music::Result voiced = part::VoiceLeading::voicePart(
        p, chords.first, chords.second, options, args.has("lead"), args.has("keep-first"), run);
    if (!voiced)
        return context.fail(voiced.message());
    part::VoiceLeading::apply(run, p);
    if (const music::Result saved = part::PartFile::save(output, p); !saved)
        return context.fail(saved.message());

    context.out() << "chords\t" << run.first << '\t'
                  << run.first + static_cast<int>(run.chords.size()) - 1 << '\n';
    printCosts(context.out(), run);
    return kExitSuccess;
}

} // namespace

void registerVoiceCommands(std::vector<Command>& commands)
{
    commands.push_back(Command{
        "voice",
        "--part IN.prt -o OUT.prt [--chords FIRST-LAST] [--style close|open|drop2|drop3|spread] "
        "[--range LOW,HIGH] [--bass root|NOTE] [--lead] [--keep-first]",
        "Voice a part's chords in a style within a range, optionally leading the voices",
        {{"part", true, false},
         outputOption(),
         {"chords", true, false},
         {"style", true, false},
         {"range", true, false},
         {"bass", true, false},
         {"lead", false, false},
         {"keep-first", false, false}},
        0,
        0,
        runVoice,
        "Each chord gets the notes of the style (default close) with every note within the\n"
        "range, stored from low to high: pattern cells then address the bass as index 0 and\n"
        "the top voice as the last index. Without --lead each chord is voiced on its own in\n"
        "root position (or as --bass asks), nearest the middle of the range. --lead chooses\n"
        "the inversions and octaves that move the voices least over the whole run (voices\n"
        "matched low to high; parallel fifths and octaves cost 4, crossings 2, a half-note 1);\n"
        "--keep-first leaves the first chord as it is. --bass root keeps the root lowest;\n"
        "--bass NOTE (such as E or F#) puts that note lowest, added when the chord lacks it.\n"
        "\n"
        "--chords FIRST-LAST (or FIRST,LAST, or one index) counts chords from 0, as part-info\n"
        "and midi --range do; default: the part's selection, or every chord.\n"
        "--range LOW,HIGH names chord notes as the part stores them, octave = note value / 12:\n"
        "C0 is 0, E2 is 28, G5 is 67 (plain numbers 0..119 work too); default C0,B2. They\n"
        "sound the part's base octave higher, plus the track's octave setting.\n"
        "\n"
        "Prints chords<TAB>FIRST<TAB>LAST and, before and after: movement (half-notes),\n"
        "parallels (fifths and octaves) and crossings, one name<TAB>value line each.",
    });
}

} // namespace cli
