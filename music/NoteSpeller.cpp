#include "music/NoteSpeller.h"

#include "music/ScaleList.h"
#include "music/TextLineReader.h"

#include <cstdlib>

namespace music {

namespace {

constexpr SpelledNote note(int letter, int accidental)
{
    return SpelledNote{static_cast<std::uint8_t>(letter), static_cast<std::int8_t>(accidental)};
}

/** The usual name of each pitch class when no key says otherwise. */
constexpr std::array<SpelledNote, 12> kUsual = {note(0, 0),  note(1, -1), note(1, 0),  note(2, -1),
                                                note(2, 0),  note(3, 0),  note(3, 1),  note(4, 0),
                                                note(5, -1), note(5, 0),  note(6, -1), note(6, 0)};

const PitchClassSet kMajor{0, 2, 4, 5, 7, 9, 11};
const PitchClassSet kNaturalMinor{0, 2, 3, 5, 7, 8, 10};

bool isNatural(int pc)
{
    return kUsual[static_cast<std::size_t>(pc)].accidental == 0;
}

SpelledNote flatName(int pc)
{
    // A black key lies a semitone below a natural letter, and above one.
    return isNatural(pc) ? kUsual[static_cast<std::size_t>(pc)]
                         : note(kUsual[static_cast<std::size_t>(pc + 1)].letter, -1);
}

SpelledNote sharpName(int pc)
{
    return isNatural(pc) ? kUsual[static_cast<std::size_t>(pc)]
                         : note(kUsual[static_cast<std::size_t>(pc - 1)].letter, 1);
}

/** The tonic spelling of `root` that needs the fewest accidentals for the scale; the usual one
 *  on a tie. Nothing when no spelling fits seven letters. */
std::optional<SpelledNote> bestTonic(PitchClass root, PitchClassSet relativeNotes,
                                     int (*count)(SpelledNote, PitchClassSet))
{
    std::optional<SpelledNote> best;
    int bestCount = 0;
    for (const SpelledNote tonic : {kUsual[root], sharpName(root), flatName(root)}) {
        const int c = count(tonic, relativeNotes);
        if (c >= 0 && (!best || c < bestCount)) {
            best = tonic;
            bestCount = c;
        }
    }
    return best;
}

std::string_view trim(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    const std::size_t last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

} // namespace

NoteSpeller::NoteSpeller() : m_names(kUsual)
{}

int NoteSpeller::accidentalCount(SpelledNote tonic, PitchClassSet relativeNotes)
{
    if (relativeNotes.count() != 7)
        return -1;
    int total = 0;
    int degree = 1;
    for (const PitchClass interval : relativeNotes.pitchClasses()) {
        const std::optional<SpelledNote> spelled = SpelledNote::above(tonic, interval, degree++);
        if (!spelled)
            return -1;
        total += std::abs(spelled->accidental);
    }
    return total;
}

NoteSpeller NoteSpeller::fromTonic(SpelledNote tonic, PitchClassSet relativeNotes, bool minor,
                                   std::string name)
{
    NoteSpeller speller;
    speller.m_keyName = std::move(name);
    speller.m_keyNotes = relativeNotes.transposed(tonic.pitchClass());
    if (accidentalCount(tonic, relativeNotes) < 0)
        return speller; // no seven-letter spelling: the usual names

    int direction = 0;
    int degree = 1;
    for (const PitchClass interval : relativeNotes.pitchClasses()) {
        const SpelledNote spelled = *SpelledNote::above(tonic, interval, degree++);
        speller.m_names[spelled.pitchClass()] = spelled;
        direction += spelled.accidental;
    }
    for (int pc = 0; pc < 12; ++pc) {
        if (speller.m_keyNotes.contains(pc))
            continue;
        const std::size_t at = static_cast<std::size_t>(pc);
        speller.m_names[at] = direction < 0   ? flatName(pc)
                              : direction > 0 ? sharpName(pc)
                                              : kUsual[at];
    }
    if (minor) {
        // The raised sixth and seventh of melodic and harmonic minor, on their own letters.
        for (const auto& [semitones, deg] : {std::pair{9, 6}, std::pair{11, 7}}) {
            if (const auto raised = SpelledNote::above(tonic, semitones, deg);
                raised && !relativeNotes.contains(semitones))
                speller.m_names[raised->pitchClass()] = *raised;
        }
    }
    return speller;
}

NoteSpeller NoteSpeller::forKey(SpelledNote tonic, bool minor)
{
    return fromTonic(tonic, minor ? kNaturalMinor : kMajor, minor,
                     tonic.text() + (minor ? " minor" : " major"));
}

NoteSpeller NoteSpeller::forScale(const ScaleType& scale, PitchClass root)
{
    PitchClassSet relative;
    for (const PitchClass pc : scale.pitchClassesFrom(0))
        relative.insert(pc);
    if (const auto tonic = bestTonic(root, relative, &NoteSpeller::accidentalCount))
        return fromTonic(*tonic, relative, false, tonic->text() + " " + scale.name());

    // Not seven letters: the major or minor key of the tonic, with the scale's own notes.
    const bool minor = !relative.contains(4) && relative.contains(3);
    const PitchClassSet key = minor ? kNaturalMinor : kMajor;
    const SpelledNote tonic =
        bestTonic(root, key, &NoteSpeller::accidentalCount).value_or(kUsual[root]);
    NoteSpeller speller = fromTonic(tonic, key, minor, tonic.text() + " " + scale.name());
    speller.m_keyNotes = relative.transposed(root);
    return speller;
}

Result NoteSpeller::parseKey(std::string_view text, const ScaleList* scales, NoteSpeller& out)
{
    const std::string_view key = trim(text);
    const auto failure = [&text] {
        return Result::failure("Unknown key \"" + std::string(text) +
                               "\": give a note such as C, Eb or F#, then optionally minor or "
                               "the name of a scale.");
    };
    std::optional<SpelledNote> tonic;
    std::size_t used = 0;
    for (std::size_t length = std::min<std::size_t>(3, key.size()); length > 0 && !tonic;
         --length) {
        tonic = SpelledNote::parse(key.substr(0, length));
        used = length;
    }
    if (!tonic)
        return failure();

    const std::string rest = toLower(trim(key.substr(used)));
    if (rest.empty() || rest == "maj" || rest == "major") {
        out = forKey(*tonic, false);
        return Result::success();
    }
    if (rest == "m" || rest == "min" || rest == "minor") {
        out = forKey(*tonic, true);
        return Result::success();
    }
    const ScaleType* scale = scales != nullptr ? scales->find(rest) : nullptr;
    if (scale == nullptr)
        return failure();
    PitchClassSet relative;
    for (const PitchClass pc : scale->pitchClassesFrom(0))
        relative.insert(pc);
    if (accidentalCount(*tonic, relative) >= 0) {
        out = fromTonic(*tonic, relative, false, tonic->text() + " " + scale->name());
    } else {
        out = forScale(*scale, tonic->pitchClass());
    }
    return Result::success();
}

SpelledNote NoteSpeller::spell(int value) const
{
    return m_names[static_cast<std::size_t>(((value % 12) + 12) % 12)];
}

} // namespace music
