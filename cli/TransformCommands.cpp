#include "cli/Command.h"

#include "music/Note.h"
#include "part/ChordOrder.h"
#include "part/ChordTransforms.h"
#include "part/PartFile.h"
#include "part/PatternGenerator.h"
#include "part/PatternRecipe.h"

#include <ostream>
#include <utility>

namespace cli {

namespace {

/** "A-B" or "A" as an inclusive range within [min, max]; throws UsageError naming `what`. */
std::pair<int, int> parseRange(const std::string& text, int min, int max, const std::string& what)
{
    const std::size_t dash = text.find('-', 1);
    const std::string first = text.substr(0, dash);
    const std::string last = dash == std::string::npos ? first : text.substr(dash + 1);
    const auto a = static_cast<int>(Arguments::parseInteger(first, min, max, what));
    const auto b = static_cast<int>(Arguments::parseInteger(last, min, max, what));
    if (a > b)
        throw UsageError(what + ": the first comes after the last");
    return {a, b};
}

/** A stored note value: a number 0..119 or a note name with its octave above the base octave,
 * "C0" .. "B9". */
int parseNoteValue(const std::string& text, const std::string& what)
{
    if (!text.empty() && text[0] >= '0' && text[0] <= '9')
        return static_cast<int>(
            Arguments::parseInteger(text, part::kLowestNote, part::kHighestNote, what));
    const std::size_t digits = text.find_first_of("0123456789");
    const std::optional<music::PitchClass> pitch = music::parseNoteName(text.substr(0, digits));
    if (!pitch || digits == std::string::npos)
        throw UsageError(what + ": \"" + text + "\" is no note such as C2 or 24");
    const auto octave =
        static_cast<int>(Arguments::parseInteger(text.substr(digits), 0, 9, what + " octave"));
    return music::noteValue(octave, *pitch);
}

part::MirrorAxis parseAxis(const std::string& text)
{
    const std::size_t comma = text.find(',');
    const std::string first = text.substr(0, comma);
    const std::optional<music::PitchClass> note = music::parseNoteName(first);
    if (!note)
        throw UsageError("--mirror: \"" + first + "\" is no note name");
    if (comma == std::string::npos)
        return {*note, false};
    const std::optional<music::PitchClass> above = music::parseNoteName(text.substr(comma + 1));
    if (!above || *above != (*note + 1) % 12)
        throw UsageError("--mirror: the second note must lie a half-step above the first, as in "
                         "D#,E");
    return {*note, true};
}

int runTransform(const Arguments& args, Context& context)
{
    const char* operations[] = {"transpose", "normalize", "invert",       "mirror",
                                "limit",     "sort",      "remove-double"};
    int given = 0;
    for (const char* op : operations)
        given += args.has(op) ? 1 : 0;
    if (given != 1)
        throw UsageError("give exactly one of --transpose, --normalize, --invert, --mirror, "
                         "--limit, --sort and --remove-double");
    if (args.has("down") && !args.has("sort"))
        throw UsageError("--down goes with --sort");
    const std::filesystem::path output = args.requiredPath("output");
    std::optional<std::pair<int, int>> range;
    if (const std::optional<std::string> chords = args.value("chords"))
        range = parseRange(*chords, 0, part::Part::kMaxChords - 1, "--chords");

    // Every value is checked before the part is read, so usage errors come first.
    const int shift = static_cast<int>(args.integer("transpose", -119, 119, 0));
    const std::optional<part::MirrorAxis> axis =
        args.has("mirror") ? std::optional(parseAxis(*args.value("mirror"))) : std::nullopt;
    std::pair<int, int> limits{};
    if (const std::optional<std::string> limit = args.value("limit")) {
        const std::size_t comma = limit->find(',');
        if (comma == std::string::npos)
            throw UsageError("--limit needs LOW,HIGH, for example C1,B2 or 12,35");
        limits = {parseNoteValue(limit->substr(0, comma), "--limit"),
                  parseNoteValue(limit->substr(comma + 1), "--limit")};
    }
    part::ChordSortKey key = part::ChordSortKey::Name;
    if (const std::optional<std::string> sort = args.value("sort")) {
        if (*sort == "notes")
            key = part::ChordSortKey::Notes;
        else if (*sort != "name")
            throw UsageError("--sort takes name or notes");
    }

    part::Part p;
    if (const music::Result loaded = part::PartFile::load(args.requiredPath("part"), p); !loaded)
        return context.fail(loaded.message());
    part::ChordSelection selection = part::allChords(p);
    if (range) {
        if (range->second >= p.count())
            return context.fail("no chord " + std::to_string(range->second) + ": the part has " +
                                std::to_string(p.count()) + " chords, counted from 0");
        selection = part::chordRange(range->first, range->second);
    }

    part::ChordEdit edit{p, music::Result::success(), {}, {}};
    if (args.has("transpose"))
        edit = part::transposeChords(p, selection, shift);
    else if (args.has("normalize"))
        edit.part = part::normalizeChords(p, selection);
    else if (args.has("invert"))
        edit = part::invertChords(p, selection);
    else if (axis)
        edit = part::mirrorChords(p, selection, *axis);
    else if (args.has("limit"))
        edit = part::limitChordNotes(p, selection, limits.first, limits.second);
    else if (args.has("sort"))
        edit.part = part::sortChords(p, selection, key, args.has("down"));
    else
        edit.part = part::removeDoubleChords(p, selection);
    if (!edit)
        return context.fail(edit.result.message());

    if (const music::Result saved = part::PartFile::save(output, edit.part); !saved)
        return context.fail(saved.message());
    for (int index : edit.markedNames)
        context.out() << "chord " << index << ": no root to respell, named \""
                      << edit.part.chord(index).name << "\"\n";
    if (edit.part.count() != p.count())
        context.out() << "removed " << p.count() - edit.part.count() << " chords\n";
    return kExitSuccess;
}

int runFillPattern(const Arguments& args, Context& context)
{
    const std::filesystem::path output = args.requiredPath("output");
    const auto patternIndex =
        static_cast<int>(Arguments::parseInteger(args.required("pattern"), 0, 65534, "--pattern"));
    part::PatternRecipe recipe;
    if (const music::Result parsed = part::parseRecipe(args.required("recipe"), recipe); !parsed)
        throw UsageError("--recipe: " + parsed.message());
    if (args.has("seed"))
        recipe.seed = static_cast<std::uint32_t>(args.integer("seed", 0, 4294967295LL, 1));
    part::PatternBlock block;
    if (const std::optional<std::string> tracks = args.value("track-range"))
        std::tie(block.firstTrack, block.lastTrack) =
            parseRange(*tracks, 0, part::kTrackCount - 1, "--track-range");
    if (const std::optional<std::string> rows = args.value("row-range"))
        std::tie(block.firstRow, block.lastRow) =
            parseRange(*rows, 0, part::kRowCount - 1, "--row-range");
    const auto option = static_cast<part::IndexOption>(args.integer("index-option", 0, 2, 0));

    part::Part p;
    if (const music::Result loaded = part::PartFile::load(args.requiredPath("part"), p); !loaded)
        return context.fail(loaded.message());
    if (patternIndex >= p.patterns().count())
        return context.fail("no pattern " + std::to_string(patternIndex) + ": the part has " +
                            std::to_string(p.patterns().count()) + " patterns, counted from 0");
    part::Pattern& pattern = p.patterns().pattern(patternIndex);
    pattern =
        part::generatePattern(pattern, recipe, block, part::noteBudgetOf(p, patternIndex, option));
    if (const music::Result saved = part::PartFile::save(output, p); !saved)
        return context.fail(saved.message());
    return kExitSuccess;
}

} // namespace

void registerTransformCommands(std::vector<Command>& commands)
{
    commands.push_back(Command{
        "transform",
        "--part IN.prt [--chords FIRST-LAST] (--transpose N | --normalize | --invert | "
        "--mirror NOTE[,NOTE] | --limit LOW,HIGH | --sort name|notes [--down] | "
        "--remove-double) -o OUT.prt",
        "Transpose, normalize, invert, mirror, limit, sort or thin out the chords of a part",
        {{"part", true, false},
         outputOption(),
         {"chords", true, false},
         {"transpose", true, false},
         {"normalize", false, false},
         {"invert", false, false},
         {"mirror", true, false},
         {"limit", true, false},
         {"sort", true, false},
         {"down", false, false},
         {"remove-double", false, false}},
        0,
        0,
        runTransform,
        "Chords are counted from 0: --chords 2-5 is the third to the sixth chord (default: all).\n"
        "--transpose N moves by N half-notes (negative: down); names follow (\"Am7\" +2 is\n"
        "\"Bm7\"), a name without a root is marked \"[+2]\". --normalize: close position, the\n"
        "lowest note in the base octave. --invert: the lowest note up an octave. --mirror E\n"
        "turns the intervals around E; --mirror D#,E around the point between D# and E.\n"
        "--limit C1,B2 (or 12,35) moves notes outside by octaves into the range, which is in\n"
        "octaves above the part's base octave and must span one. --sort is stable; --down\n"
        "reverses it. --remove-double keeps the first of neighbouring chords with the same\n"
        "notes. A note that would leave C0..B9 refuses the edit and nothing is written.",
    });

    commands.push_back(Command{
        "fill-pattern",
        "--part IN.prt --pattern N --recipe TEXT [--seed N] [--track-range A-B] "
        "[--row-range R-S] [--index-option N] -o OUT.prt",
        "Fill a pattern of a part (or a block of it) from a pattern-generator recipe",
        {{"part", true, false},
         outputOption(),
         {"pattern", true, false},
         {"recipe", true, false},
         {"seed", true, false},
         {"track-range", true, false},
         {"row-range", true, false},
         {"index-option", true, false}},
        0,
        0,
        runFillPattern,
        "Patterns, tracks (0..7) and rows (0..63) are counted from 0; the block defaults to the\n"
        "whole pattern and is cleared before it is filled. A recipe is KIND key=value ...:\n"
        "  arpeggio [order=up|down|up-down|down-up|converge|random] [octaves=1..3]\n"
        "  block | strum [every=K] [order=down] | euclid [pulses=K steps=N] [rotate=R,R,...]\n"
        "  [play=arpeggio] | random [density=%] [chance=%]\n"
        "and for all: notes=N step=ROWS length=ROWS spread=-1,0,1 seed=N silent=allow.\n"
        "Recipes use only chord notes that every chord of the pattern plays under the index\n"
        "option (0: five, else the fewest notes a chord has) unless silent=allow.\n"
        "--seed replaces the recipe's seed.",
    });
}

} // namespace cli
