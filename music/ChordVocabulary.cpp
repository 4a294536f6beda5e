#include "music/ChordVocabulary.h"

#include "music/ChordTypeList.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace music {

namespace {

struct BuiltIn
{
    std::string_view symbol;
    std::string_view name;
    std::string_view degrees; // the tones as degrees with accidentals: "1 b3 5 b7"
    int commonness;           // 10 (rare) .. 50 (the major and minor triads)
};

/**
 * The common chord types and their conventional symbols. The commonness reflects how often a
 * type appears in lead sheets and harmony textbooks; it decides between readings that are
 * otherwise alike (C6 against Am7/C). Single notes and two-note intervals are here too, so that
 * every set of one or two notes has a name; the intervals carry the names of the shipped list.
 */
constexpr BuiltIn kBuiltIns[] = {
    {"", "single note", "1", 20},
    {"5", "power chord", "1 5", 30},
    {"(m2)", "minor 2nd", "1 b2", 10},
    {"(M2)", "major 2nd", "1 2", 10},
    {"(m3)", "minor 3rd", "1 b3", 10},
    {"(M3)", "major 3rd", "1 3", 10},
    {"(P4)", "perfect 4th", "1 4", 10},
    {"(tritone)", "tritone", "1 b5", 10},
    {"(m6)", "minor 6th", "1 b6", 10},
    {"(M6)", "major 6th", "1 6", 10},
    {"(m7)", "minor 7th", "1 b7", 10},
    {"(M7)", "major 7th", "1 7", 10},

    {"", "major", "1 3 5", 50},
    {"m", "minor", "1 b3 5", 50},
    {"dim", "diminished", "1 b3 b5", 30},
    {"aug", "augmented", "1 3 #5", 25},
    {"sus4", "suspended 4th", "1 4 5", 30},
    {"sus2", "suspended 2nd", "1 2 5", 26},

    {"7", "dominant seventh", "1 3 5 b7", 45},
    {"m7", "minor seventh", "1 b3 5 b7", 42},
    {"maj7", "major seventh", "1 3 5 7", 40},
    {"6", "major sixth", "1 3 5 6", 35},
    {"m7b5", "half-diminished seventh", "1 b3 b5 b7", 32},
    {"dim7", "diminished seventh", "1 b3 b5 bb7", 32},
    {"add9", "added ninth", "1 3 5 9", 30},
    {"m6", "minor sixth", "1 b3 5 6", 28},
    {"7sus4", "dominant seventh suspended 4th", "1 4 5 b7", 26},
    {"m(add9)", "minor added ninth", "1 b3 5 9", 22},
    {"m(maj7)", "minor major seventh", "1 b3 5 7", 18},
    {"7#5", "augmented seventh", "1 3 #5 b7", 16},
    {"7b5", "dominant seventh flat 5th", "1 3 b5 b7", 14},
    {"maj7#5", "augmented major seventh", "1 3 #5 7", 10},
    {"add11", "added eleventh", "1 3 5 11", 10},

    {"9", "dominant ninth", "1 3 5 b7 9", 30},
    {"m9", "minor ninth", "1 b3 5 b7 9", 26},
    {"maj9", "major ninth", "1 3 5 7 9", 26},
    {"7b9", "dominant seventh flat 9th", "1 3 5 b7 b9", 22},
    {"6/9", "six-nine", "1 3 5 6 9", 20},
    {"7#9", "dominant seventh sharp 9th", "1 3 5 b7 #9", 20},
    {"9sus4", "dominant ninth suspended 4th", "1 4 5 b7 9", 16},
    {"maj7#11", "major seventh sharp 11th", "1 3 5 7 #11", 14},
    {"7#11", "dominant seventh sharp 11th", "1 3 5 b7 #11", 12},
    {"m6/9", "minor six-nine", "1 b3 5 6 9", 10},

    {"13", "dominant thirteenth", "1 3 5 b7 9 13", 20},
    {"m11", "minor eleventh", "1 b3 5 b7 9 11", 18},
    {"11", "dominant eleventh", "1 5 b7 9 11", 14},
    {"maj13", "major thirteenth", "1 3 5 7 9 13", 14},
    {"m13", "minor thirteenth", "1 b3 5 b7 9 13", 14},
};

/** The degree that each row of the interval table (0..21 semitones) names. */
constexpr std::array<int, 22> kDegreeOfSemitones = {1, 2, 2, 3, 3, 4,  5,  5,  6,  6,  7,
                                                    7, 8, 9, 9, 9, 10, 11, 11, 12, 13, 13};

struct Tone
{
    int degree;
    int semitones;
};

KnownChordType makeType(std::string symbol, std::string name, const std::vector<Tone>& tones,
                        int commonness, bool builtIn)
{
    KnownChordType type;
    type.symbol = std::move(symbol);
    type.name = std::move(name);
    type.commonness = commonness;
    type.builtIn = builtIn;
    type.position.fill(-1);
    std::vector<Tone> kept;
    for (const Tone& tone : tones) {
        const int pc = tone.semitones % 12;
        if (type.tones.contains(pc))
            continue; // an octave or a doubled tone adds nothing
        type.tones.insert(pc);
        type.degree[static_cast<std::size_t>(pc)] = static_cast<std::int8_t>(tone.degree);
        type.semitones[static_cast<std::size_t>(pc)] = static_cast<std::int8_t>(tone.semitones);
        kept.push_back(tone);
    }
    std::stable_sort(kept.begin(), kept.end(), [](const Tone& a, const Tone& b) {
        return a.degree != b.degree ? a.degree < b.degree : a.semitones < b.semitones;
    });
    for (std::size_t i = 0; i < kept.size(); ++i) {
        type.position[static_cast<std::size_t>(kept[i].semitones % 12)] =
            static_cast<std::int8_t>(i);
        type.intervals.push_back(kept[i].semitones);
    }

    const auto has = [&type](int pc, int degree) {
        return type.tones.contains(pc) && type.degree[static_cast<std::size_t>(pc)] == degree;
    };
    if (type.tones.count() >= 4 && has(7, 5))
        type.omittable.insert(7);
    const bool extended = std::any_of(type.degree.begin(), type.degree.end(),
                                      [](std::int8_t d) { return d == 11 || d == 13; });
    if (extended && has(2, 9))
        type.omittable.insert(2);
    return type;
}

/** "1 b3 5 bb7" as tones; the table is written by hand, so a bad token is a programming error. */
std::vector<Tone> parseDegrees(std::string_view text)
{
    std::vector<Tone> tones;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        std::string_view token = text.substr(at, end - at);
        at = end + 1;
        int accidental = 0;
        while (!token.empty() && (token[0] == 'b' || token[0] == '#')) {
            accidental += token[0] == '#' ? 1 : -1;
            token.remove_prefix(1);
        }
        const int degree = std::atoi(std::string(token).c_str());
        tones.push_back({degree, KnownChordType::naturalSemitones(degree) + accidental});
    }
    return tones;
}

} // namespace

ChordVocabulary::ChordVocabulary()
{
    for (const BuiltIn& b : kBuiltIns) {
        m_types.push_back(makeType(std::string(b.symbol), std::string(b.name),
                                   parseDegrees(b.degrees), b.commonness, true));
    }
}

ChordVocabulary::ChordVocabulary(const ChordTypeList& userTypes) : ChordVocabulary()
{
    for (std::size_t index = 0; index < userTypes.types().size(); ++index) {
        const ChordType& user = userTypes.types()[index];
        m_userTypeNames.push_back(user.name());
        const IntervalList intervals = user.intervals();
        if (!intervals.isUsable())
            continue;
        std::vector<Tone> tones;
        for (const std::uint8_t s : intervals.semitones())
            tones.push_back({kDegreeOfSemitones[s], s});
        // Every chord is built on its root, whatever the construction string starts with.
        tones.insert(tones.begin(), Tone{1, 0});
        KnownChordType type = makeType(user.name(), user.name(), tones, kUserTypeCommonness, false);
        const auto same = std::find_if(m_types.begin(), m_types.end(),
                                       [&type](const auto& t) { return t.tones == type.tones; });
        if (same != m_types.end()) {
            same->userTypes.push_back(index);
            continue;
        }
        type.userTypes.push_back(index);
        m_types.push_back(std::move(type));
    }
}

} // namespace music
