#include "music/ChordNamer.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace music {

namespace {

/** How a note beyond a chord type is named, as a degree above the root. */
struct AddedDegree
{
    const char* text;
    int degree;
    int semitones;
    bool tension;
};

AddedDegree addedDegree(int pc, const KnownChordType& type)
{
    const bool majorThird = type.tones.contains(4);
    const bool fifth = type.tones.contains(7);
    const bool seventh = type.tones.contains(10) || type.tones.contains(11);
    switch (pc) {
    case 1:
        return {"b9", 9, 13, true};
    case 2:
        return {"9", 9, 14, true};
    case 3:
        return majorThird ? AddedDegree{"#9", 9, 15, true} : AddedDegree{"b3", 3, 3, false};
    case 4:
        return {"3", 3, 4, false};
    case 5:
        return {"11", 11, 17, true};
    case 6:
        return fifth ? AddedDegree{"#11", 11, 18, true} : AddedDegree{"b5", 5, 6, false};
    case 7:
        return {"5", 5, 7, false};
    case 8:
        return fifth ? AddedDegree{"b13", 13, 20, true} : AddedDegree{"#5", 5, 8, false};
    case 9:
        return seventh ? AddedDegree{"13", 13, 21, true} : AddedDegree{"6", 6, 9, false};
    case 10:
        return {"b7", 7, 10, false};
    default:
        return {"7", 7, 11, false};
    }
}

/** "5th", "flat 9th", "sharp 11th", "3rd" for a degree text. */
std::string degreeWords(std::string_view text)
{
    std::string out;
    while (!text.empty() && (text[0] == 'b' || text[0] == '#')) {
        const bool flat = text[0] == 'b';
        if (text.size() > 1 && text[1] == text[0]) {
            out += flat ? "double flat " : "double sharp ";
            text.remove_prefix(2);
        } else {
            out += flat ? "flat " : "sharp ";
            text.remove_prefix(1);
        }
    }
    const int number = std::atoi(std::string(text).c_str());
    const char* suffix = number == 1 ? "st" : number == 2 ? "nd" : number == 3 ? "rd" : "th";
    return out + std::string(text) + suffix;
}

/** "a", "a and b", "a, b and c". */
std::string joinWords(const std::vector<std::string>& words)
{
    std::string out;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0)
            out += i + 1 == words.size() ? " and " : ", ";
        out += words[i];
    }
    return out;
}

std::string joinDegrees(const std::vector<std::string>& degrees)
{
    std::string out;
    for (const std::string& d : degrees)
        out += (out.empty() ? "" : ",") + d;
    return out;
}

constexpr std::array<const char*, 7> kOrdinals = {"root position", "first", "second", "third",
                                                  "fourth",        "fifth", "sixth"};

/** The same pitch class on the neighbouring letter: Db for C#, C# for Db, G for F##. */
SpelledNote enharmonic(SpelledNote note)
{
    const int letter = (note.letter + (note.accidental > 0 ? 1 : 6)) % 7;
    int accidental = (note.pitchClass() - SpelledNote::letterPitchClass(letter) + 12) % 12;
    if (accidental > 6)
        accidental -= 12;
    return {static_cast<std::uint8_t>(letter), static_cast<std::int8_t>(accidental)};
}

int wrap(int value)
{
    return ((value % 12) + 12) % 12;
}

} // namespace

struct ChordNamer::Reading
{
    int root;
    std::size_t type;
    PitchClassSet missing; // relative to the root
    PitchClassSet added;   // relative to the root, a foreign bass not included
    bool foreignBass;
    int score;
};

ChordNamer::ChordNamer(const ChordTypeList& userTypes) : m_vocabulary(userTypes)
{
    prepare();
}

void ChordNamer::prepare()
{
    m_masks.clear();
    for (const KnownChordType& type : m_vocabulary.types()) {
        PitchClassSet tensions;
        for (int pc = 1; pc < 12; ++pc) {
            if (addedDegree(pc, type).tension)
                tensions.insert(pc);
        }
        const std::uint16_t tones = type.tones.mask();
        const int size = type.tones.count();
        m_masks.push_back({static_cast<std::uint16_t>(tones & ~type.omittable.mask()), tones,
                           tensions.mask(), size, size >= 3 ? kMaxAdded : 0,
                           kBase + type.commonness});
    }
}

void ChordNamer::collect(PitchClassSet notes, std::optional<PitchClass> bass,
                         std::vector<Reading>& out) const
{
    const std::vector<KnownChordType>& types = m_vocabulary.types();
    for (int root = 0; root < 12; ++root) {
        if (!notes.contains(root))
            continue;
        const std::uint16_t played = notes.relativeTo(root).mask();
        const int b = bass ? wrap(*bass - root) : 0;
        const std::uint16_t bassBit = static_cast<std::uint16_t>(b != 0 ? 1U << b : 0U);
        for (std::size_t t = 0; t < m_masks.size(); ++t) {
            const TypeMasks& m = m_masks[t];
            if ((m.required & ~played) != 0)
                continue;
            const bool foreign = (m.tones & bassBit) == 0 && bassBit != 0;
            if (foreign && m.size < 3)
                continue;
            PitchClassSet added(
                static_cast<std::uint16_t>(played & ~m.tones & ~(foreign ? bassBit : 0)));
            const PitchClassSet missing(static_cast<std::uint16_t>(m.tones & ~played));
            const int addedCount = added.count();
            if (addedCount > m.maxAdded || missing.count() > kMaxOmitted)
                continue;

            int score = m.baseScore - kOmission * missing.count();
            if (b == 0)
                score += kRootInBass;
            else if (foreign)
                score += kForeignBass;
            else
                score += std::max(kMinChordToneBass,
                                  kChordToneBass -
                                      kInversionStep *
                                          (types[t].position[static_cast<std::size_t>(b)] - 1));
            const int tensions = PitchClassSet(added.mask() & m.tensions).count();
            score -= kAddedTension * tensions + kAddedOther * (addedCount - tensions);
            out.push_back({root, t, missing, added, foreign, score});
        }
    }
    const int from = bass.value_or(0);
    std::sort(out.begin(), out.end(), [from](const Reading& x, const Reading& y) {
        if (x.score != y.score)
            return x.score > y.score;
        if (x.added.count() != y.added.count())
            return x.added.count() < y.added.count();
        if (x.missing.count() != y.missing.count())
            return x.missing.count() < y.missing.count();
        if (x.type != y.type)
            return x.type < y.type;
        return wrap(x.root - from) < wrap(y.root - from);
    });
}

std::vector<ChordCandidate> ChordNamer::name(PitchClassSet notes, std::optional<PitchClass> bass,
                                             const NoteSpeller& speller) const
{
    if (bass)
        notes.insert(*bass);
    if (notes.isEmpty())
        return {};
    std::vector<Reading> readings;
    readings.reserve(64);
    collect(notes, bass, readings);

    // A root on which some type fits exactly needs no reading that adds notes to another type.
    PitchClassSet exactRoots;
    for (const Reading& reading : readings) {
        if (reading.missing.isEmpty() && reading.added.isEmpty())
            exactRoots.insert(reading.root);
    }

    std::vector<ChordCandidate> out;
    out.reserve(std::min<std::size_t>(readings.size(), 16));
    PitchClassSet rootsSeen;
    for (const Reading& reading : readings) {
        const bool complete = reading.missing.isEmpty() && reading.added.isEmpty();
        if (!reading.added.isEmpty() && exactRoots.contains(reading.root))
            continue;
        if (!complete && rootsSeen.contains(reading.root))
            continue;
        rootsSeen.insert(reading.root);
        ChordCandidate candidate = describe(reading, bass, speller);
        const auto same = std::find_if(out.begin(), out.end(), [&candidate](const auto& c) {
            return c.name == candidate.name;
        });
        if (same == out.end()) {
            out.push_back(std::move(candidate));
            continue;
        }
        for (const std::size_t user : candidate.userTypes) {
            if (std::find(same->userTypes.begin(), same->userTypes.end(), user) ==
                same->userTypes.end())
                same->userTypes.push_back(user);
        }
        std::sort(same->userTypes.begin(), same->userTypes.end());
    }
    if (out.empty())
        out.push_back(cluster(notes, bass, speller));
    return out;
}

std::vector<ChordCandidate> ChordNamer::nameNotes(const std::vector<int>& midiNotes,
                                                  const NoteSpeller& speller) const
{
    PitchClassSet notes;
    std::optional<int> lowest;
    for (const int note : midiNotes) {
        if (note < 0 || note > 127)
            continue;
        notes.insert(note);
        if (!lowest || note < *lowest)
            lowest = note;
    }
    if (!lowest)
        return {};
    return name(notes, pitchClassOf(*lowest), speller);
}

ChordCandidate ChordNamer::describe(const Reading& reading, std::optional<PitchClass> bass,
                                    const NoteSpeller& speller) const
{
    const KnownChordType& type = m_vocabulary.types()[reading.type];
    ChordCandidate c;
    c.root = static_cast<PitchClass>(reading.root);
    c.typeIndex = reading.type;
    c.typeSymbol = type.symbol;
    c.typeName = type.name;
    c.intervals = type.intervals;
    c.userTypes = type.userTypes;
    c.score = reading.score;

    // Every note above the root as (degree, semitones): the tones played in degree order, then
    // the added notes in degree order (9 before 11).
    struct Step
    {
        int degree;
        int semitones;
    };
    std::array<Step, 12> steps{};
    std::array<PitchClass, 12> addedPcs{};
    std::size_t toneCount = 0;
    std::size_t addedCount = 0;
    {
        std::array<int, 12> byPosition{};
        byPosition.fill(-1);
        for (int pc = 0; pc < 12; ++pc) {
            if (type.tones.contains(pc) && !reading.missing.contains(pc))
                byPosition[static_cast<std::size_t>(type.position[static_cast<std::size_t>(pc)])] =
                    pc;
        }
        for (const int pc : byPosition) {
            if (pc >= 0) {
                const std::size_t at = static_cast<std::size_t>(pc);
                steps[toneCount++] = {type.degree[at], type.semitones[at]};
            }
        }
        for (int pc = 1; pc < 12; ++pc) {
            if (reading.added.contains(pc))
                addedPcs[addedCount++] = static_cast<PitchClass>(pc);
        }
        std::sort(addedPcs.begin(), addedPcs.begin() + static_cast<std::ptrdiff_t>(addedCount),
                  [&type](PitchClass x, PitchClass y) {
                      return addedDegree(x, type).semitones < addedDegree(y, type).semitones;
                  });
        for (std::size_t i = 0; i < addedCount; ++i) {
            const AddedDegree a = addedDegree(addedPcs[i], type);
            steps[toneCount + i] = {a.degree, a.semitones};
        }
    }
    const std::size_t stepCount = toneCount + addedCount;

    const auto spellFrom = [&speller, &c](SpelledNote root, int semitones, int degree) {
        return SpelledNote::above(root, semitones, degree)
            .value_or(speller.spell(c.root + semitones));
    };
    const auto accidentalsFrom = [&](SpelledNote root) {
        int sum = 0;
        for (std::size_t i = 0; i < stepCount; ++i)
            sum += std::abs(spellFrom(root, steps[i].semitones, steps[i].degree).accidental);
        return sum;
    };

    c.rootName = speller.spell(c.root);
    const bool rootInKey = !speller.keyName().empty() && speller.keyNotes().contains(c.root);
    if (!rootInKey && c.rootName.accidental != 0 &&
        accidentalsFrom(enharmonic(c.rootName)) < accidentalsFrom(c.rootName))
        c.rootName = enharmonic(c.rootName);
    c.notes.reserve(stepCount + 1);
    for (std::size_t i = 0; i < stepCount; ++i)
        c.notes.push_back(spellFrom(c.rootName, steps[i].semitones, steps[i].degree));

    for (const PitchClass pc : reading.missing.pitchClasses())
        c.omitted.push_back(type.degreeText(pc));
    for (std::size_t i = 0; i < addedCount; ++i)
        c.added.emplace_back(addedDegree(addedPcs[i], type).text);

    const std::string rootText = c.rootName.text();
    c.name.reserve(24);
    c.name.append(rootText).append(type.symbol);
    if (!c.omitted.empty())
        c.name += "(no" + joinDegrees(c.omitted) + ")";
    if (!c.added.empty()) {
        const bool bare = type.symbol.empty() && c.omitted.empty() && c.added.size() == 1;
        c.name += bare ? "add" + c.added.front() : "(add" + joinDegrees(c.added) + ")";
    }

    const bool singleNote = type.tones.count() == 1;
    c.description.reserve(64);
    if (singleNote)
        c.description.append("the single note ").append(rootText);
    else
        c.description.append(rootText).append(" ").append(type.name);
    if (!c.omitted.empty()) {
        std::vector<std::string> words;
        for (const std::string& d : c.omitted)
            words.push_back(degreeWords(d));
        c.description += " without the " + joinWords(words);
    }
    if (!c.added.empty()) {
        std::vector<std::string> words;
        for (const std::string& d : c.added)
            words.push_back(degreeWords(d));
        c.description +=
            (c.added.size() == 1 ? " with an added " : " with added ") + joinWords(words);
    }

    if (bass) {
        c.bass = *bass;
        const int b = wrap(*bass - reading.root);
        if (b == 0) {
            c.bassName = c.rootName;
        } else if (reading.foreignBass) {
            c.inversion = ChordCandidate::kForeignBass;
            c.bassName = speller.spell(*bass);
            c.notes.insert(c.notes.begin(), c.bassName);
            c.description += " over " + c.bassName.text();
        } else {
            const std::size_t at = static_cast<std::size_t>(b);
            c.inversion = type.position[at];
            c.bassName = spellFrom(c.rootName, type.semitones[at], type.degree[at]);
            c.description += std::string(", ") +
                             kOrdinals[static_cast<std::size_t>(std::min(c.inversion, 6))] +
                             " inversion";
        }
        if (b != 0)
            c.name += "/" + c.bassName.text();
    }
    return c;
}

ChordCandidate ChordNamer::cluster(PitchClassSet notes, std::optional<PitchClass> bass,
                                   const NoteSpeller& speller) const
{
    ChordCandidate c;
    const int from = bass ? *bass : notes.pitchClasses().front();
    c.root = static_cast<PitchClass>(from);
    c.rootName = speller.spell(from);
    c.bass = bass;
    if (bass)
        c.bassName = c.rootName;
    std::vector<std::string> names;
    for (int k = 0; k < 12; ++k) {
        if (!notes.contains(from + k))
            continue;
        c.notes.push_back(speller.spell(from + k));
        names.push_back(c.notes.back().text());
    }
    for (const std::string& n : names)
        c.name += n + " ";
    c.name += "cluster";
    c.description = "cluster of " + joinWords(names);
    return c;
}

} // namespace music
