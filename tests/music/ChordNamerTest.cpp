#include "music/ChordNamer.h"
#include "music/ChordCollection.h"
#include "music/ChordTypeList.h"
#include "music/ScaleList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

using namespace music;

namespace {

const std::filesystem::path kData = std::filesystem::path(TM_SOURCE_DIR) / "data";

const ChordTypeList& shippedTypes()
{
    static const ChordTypeList types = [] {
        ChordTypeList t;
        EXPECT_TRUE(t.load(kData / "default.ccl").ok());
        return t;
    }();
    return types;
}

const ChordNamer& shippedNamer()
{
    static const ChordNamer namer(shippedTypes());
    return namer;
}

/**
 * "E3 G3 C4" as MIDI note numbers, counting C4 as 60 the way keyboard players do. Notes without
 * an octave ("C E G") give a set of pitch classes with no bass: the result is then -1 plus the
 * pitch classes.
 */
std::vector<int> parseNotes(const std::string& text, bool& withBass)
{
    std::vector<int> out;
    std::istringstream words(text);
    withBass = true;
    for (std::string word; words >> word;) {
        const std::size_t digit = word.find_first_of("-0123456789");
        const auto note = SpelledNote::parse(word.substr(0, digit));
        EXPECT_TRUE(note.has_value()) << word;
        const int pc = note->letterPitchClass(note->letter) + note->accidental;
        if (digit == std::string::npos) {
            withBass = false;
            out.push_back((pc + 12) % 12);
        } else {
            out.push_back(12 * (std::stoi(word.substr(digit)) + 1) + pc);
        }
    }
    return out;
}

std::vector<ChordCandidate> nameText(const ChordNamer& namer, const std::string& notes,
                                     const char* key = "")
{
    NoteSpeller speller;
    if (*key != '\0') {
        ScaleList scales;
        EXPECT_TRUE(scales.load(kData / "default.scl").ok());
        EXPECT_TRUE(NoteSpeller::parseKey(key, &scales, speller).ok()) << key;
    }
    bool withBass = true;
    const std::vector<int> values = parseNotes(notes, withBass);
    if (withBass)
        return namer.nameNotes(values, speller);
    PitchClassSet set;
    for (const int pc : values)
        set.insert(pc);
    return namer.name(set, std::nullopt, speller);
}

std::string listed(const std::vector<ChordCandidate>& candidates)
{
    std::string out;
    for (const ChordCandidate& c : candidates)
        out += c.name + " (" + c.description + ", " + std::to_string(c.score) + ")\n";
    return out;
}

struct Textbook
{
    const char* notes; // with octaves: MIDI notes, the lowest the bass; without: a set
    const char* key;   // "" for none
    const char* top;
    const char* description; // of the top candidate; "" when not checked
    std::vector<const char*> alternatives;
};

} // namespace

// Chords worked out by hand from harmony textbooks, named against the shipped chord types.
TEST(ChordNamer, NamesTextbookChordsFirstAndListsTheirOtherReadings)
{
    const std::vector<Textbook> cases = {
        // Triads in root position and inversion.
        {"C4 E4 G4", "", "C", "C major", {"Em(#5)/C"}},
        {"E3 G3 C4", "", "C/E", "C major, first inversion", {}},
        {"G3 C4 E4", "", "C/G", "C major, second inversion", {}},
        {"A3 C4 E4", "", "Am", "A minor", {}},
        {"C4 E4 A4", "", "Am/C", "A minor, first inversion", {}},
        {"E3 A3 C4", "", "Am/E", "A minor, second inversion", {}},
        {"B3 D4 F4", "", "Bdim", "B diminished", {}},
        {"D4 F4 B4", "", "Bdim/D", "B diminished, first inversion", {}},
        {"A3 C4 F4", "", "F/A", "F major, first inversion", {}},
        {"C4 F4 G4", "", "Csus4", "C suspended 4th", {"Fsus2/C"}},
        {"C4 D4 G4", "", "Csus2", "C suspended 2nd", {"Gsus4/C"}},
        {"C3 G3 C4", "", "C5", "C power chord", {}},
        // Seventh chords in every inversion.
        {"G3 B3 D4 F4", "", "G7", "G dominant seventh", {"Bdim/G"}},
        {"B3 D4 F4 G4", "", "G7/B", "G dominant seventh, first inversion", {}},
        {"D4 F4 G4 B4", "", "G7/D", "G dominant seventh, second inversion", {}},
        {"F3 G3 B3 D4", "", "G7/F", "G dominant seventh, third inversion", {"G/F"}},
        {"C4 E4 G4 B4", "", "Cmaj7", "C major seventh", {}},
        {"E3 G3 B3 C4", "", "Cmaj7/E", "C major seventh, first inversion", {}},
        {"B2 C4 E4 G4", "", "Cmaj7/B", "C major seventh, third inversion", {}},
        {"D4 F4 A4 C5", "", "Dm7", "D minor seventh", {"F6/D"}},
        {"A3 C4 D4 F4", "", "Dm7/A", "D minor seventh, second inversion", {"F6/A"}},
        {"C4 D4 F4 A4", "", "Dm7/C", "D minor seventh, third inversion", {}},
        {"B3 D4 F4 A4", "", "Bm7b5", "B half-diminished seventh", {"Dm6/B"}},
        {"D4 F4 A4 B4", "", "Dm6", "D minor sixth", {"Bm7b5/D"}},
        {"C4 Eb4 G4 B4", "", "Cm(maj7)", "C minor major seventh", {}},
        {"C4 E4 G#4 Bb4", "", "C7#5", "C augmented seventh", {}},
        {"C4 F4 G4 Bb4", "", "C7sus4", "C dominant seventh suspended 4th", {}},
        // The ambiguous sets: the bass decides, without one the commoner type does.
        {"C4 E4 G4 A4", "", "C6", "C major sixth", {"Am7/C"}},
        {"A3 C4 E4 G4", "", "Am7", "A minor seventh", {"C6/A"}},
        {"C E G A", "", "Am7", "A minor seventh", {"C6"}},
        {"F3 A3 C4 D4", "", "F6", "F major sixth", {"Dm7/F"}},
        {"C4 Eb4 Gb4 A4", "", "Cdim7", "C diminished seventh", {"D#dim7/C", "F#dim7/C", "Adim7/C"}},
        {"A3 C4 Eb4 Gb4", "", "Adim7", "A diminished seventh", {"Cdim7/Bbb"}},
        {"F#3 A3 C4 Eb4", "", "F#dim7", "F# diminished seventh", {"Adim7/Gb"}},
        {"C4 E4 G#4", "", "Caug", "C augmented", {"Abaug/C", "Eaug/B#"}},
        {"E3 G#3 C4", "", "Eaug", "E augmented", {"Caug/E"}},
        {"C4 E4 Gb4 Bb4", "", "C7b5", "C dominant seventh flat 5th", {"F#7b5/C"}},
        // Slash chords: a bass that is a chord tone is an inversion, any other a foreign bass.
        {"C3 D4 F#4 A4", "", "D7/C", "D dominant seventh, third inversion", {"D/C"}},
        {"A2 G3 B3 D4", "", "G/A", "G major over A", {"Gadd9/A"}},
        {"F#3 C4 E4 G4", "", "C/F#", "C major over F#", {}},
        {"E2 D4 F#4 A4", "", "D/E", "D major over E", {"Dadd9/E"}},
        {"Bb2 C4 E4 G4", "", "C7/Bb", "C dominant seventh, third inversion", {"C/Bb"}},
        {"Ab2 C4 E4 G4", "", "C/Ab", "C major over Ab", {"Abmaj7#5"}},
        // Omitted fifths and added ninths.
        {"C4 E4 Bb4", "", "C7(no5)", "C dominant seventh without the 5th", {}},
        {"C4 E4 B4", "", "Cmaj7(no5)", "C major seventh without the 5th", {}},
        {"C4 Eb4 Bb4", "", "Cm7(no5)", "C minor seventh without the 5th", {}},
        {"G2 B3 F4", "", "G7(no5)", "G dominant seventh without the 5th", {}},
        {"C4 E4 G4 D5", "", "Cadd9", "C added ninth", {}},
        {"C4 D4 E4 G4", "", "Cadd9", "C added ninth", {}},
        {"E3 G3 C4 D4", "", "Cadd9/E", "C added ninth, first inversion", {}},
        {"A3 C4 E4 B4", "", "Am(add9)", "A minor added ninth", {}},
        {"C4 E4 G4 F4", "", "Cadd11", "C added eleventh", {}},
        {"C4 E4 G4 Bb4 D5", "", "C9", "C dominant ninth", {"Em7b5/C"}},
        {"C4 E4 G4 B4 D5", "", "Cmaj9", "C major ninth", {}},
        {"C4 Eb4 G4 Bb4 D5", "", "Cm9", "C minor ninth", {}},
        {"C4 E4 G4 A4 D5", "", "C6/9", "C six-nine", {}},
        {"C4 E4 Bb4 D5", "", "C9(no5)", "C dominant ninth without the 5th", {}},
        {"G3 B3 D4 F4 Ab4", "", "G7b9", "G dominant seventh flat 9th", {}},
        {"C4 E4 G4 Bb4 D#5", "", "C7#9", "C dominant seventh sharp 9th", {}},
        {"C4 E4 G4 Bb4 D5 A5", "", "C13", "C dominant thirteenth", {}},
        {"C4 E4 G4 B4 F#5", "", "Cmaj7#11", "C major seventh sharp 11th", {}},
        // Spelling: a key's own names, the fewer accidentals without a key.
        {"Ab3 C4 Eb4", "Eb", "Ab", "Ab major", {}},
        {"Bb3 D4 F4 Ab4", "Eb", "Bb7", "Bb dominant seventh", {}},
        {"G#3 B3 D#4", "E", "G#m", "G# minor", {}},
        {"B3 D#4 F#4 A4", "E", "B7", "B dominant seventh", {}},
        {"F3 G#3 B3", "F#", "E#dim", "E# diminished", {}},
        {"Gb3 Bb3 Db4", "Db", "Gb", "Gb major", {}},
        {"B3 Eb4 Gb4", "Gb", "Cb", "Cb major", {}},
        {"G#3 B3 D4 F4", "A minor", "G#dim7", "G# diminished seventh", {}},
        {"B3 D4 F4 Ab4", "C minor", "Bdim7", "B diminished seventh", {}},
        {"Bb3 D4 F4", "E", "Bb", "Bb major", {}},     // outside the key: fewer accidentals
        {"Eb3 G3 Bb3", "E", "D#", "D# major", {}},    // on the key's seventh degree
        {"G3 B3 D4", "G# minor", "G", "G major", {}}, // not the key's raised seventh, F##
        {"C#4 E4 G#4", "", "C#m", "C# minor", {}},
        {"Db4 F4 Ab4", "", "Db", "Db major", {}},
        {"F#4 A#4 C#5", "", "F#", "F# major", {}},
        {"Ab3 B3 Eb4", "", "G#m", "G# minor", {}},
        {"Bb3 Db4 F4", "", "Bbm", "Bb minor", {}},
        // Single notes, intervals and what no type explains.
        {"C4", "", "C", "the single note C", {}},
        {"C3 C4 C5", "", "C", "the single note C", {}},
        {"C4 E4", "", "C(M3)", "C major 3rd", {"E(m6)/C"}},
        {"C4 C#4 D4", "", "C Db D cluster", "cluster of C, Db and D", {}},
        {"C#4 D4 D#4", "E", "C# D D# cluster", "cluster of C#, D and D#", {}},
    };
    ASSERT_GE(cases.size(), 60u);
    for (const Textbook& t : cases) {
        SCOPED_TRACE(std::string(t.notes) + " " + t.key);
        const std::vector<ChordCandidate> got = nameText(shippedNamer(), t.notes, t.key);
        ASSERT_FALSE(got.empty());
        EXPECT_EQ(got.front().name, t.top) << listed(got);
        if (*t.description != '\0') {
            EXPECT_EQ(got.front().description, t.description);
        }
        for (const char* alternative : t.alternatives) {
            EXPECT_TRUE(std::any_of(got.begin(), got.end(),
                                    [&](const ChordCandidate& c) { return c.name == alternative; }))
                << alternative << " missing from\n"
                << listed(got);
        }
    }
}

TEST(ChordNamer, CandidatesCarryRootBassInversionDegreesAndSpelledNotes)
{
    const std::vector<ChordCandidate> e = nameText(shippedNamer(), "E3 G3 C4");
    const ChordCandidate& c = e.front();
    EXPECT_EQ(c.rootName.text(), "C");
    EXPECT_EQ(c.bassName.text(), "E");
    EXPECT_EQ(c.bass, PitchClass{4});
    EXPECT_EQ(c.inversion, 1);
    EXPECT_EQ(c.typeName, "major");
    EXPECT_EQ(c.intervals, (std::vector<int>{0, 4, 7}));

    const ChordCandidate d = nameText(shippedNamer(), "C3 D4 F#4 A4")[1];
    ASSERT_EQ(d.name, "D/C");
    EXPECT_EQ(d.inversion, ChordCandidate::kForeignBass);

    // Each candidate lists its notes spelled: a foreign bass first, then by degree.
    const std::vector<std::pair<const char*, std::vector<std::string>>> spelled = {
        {"C4 Eb4 Gb4 A4", {"C", "Eb", "Gb", "Bbb"}}, {"E3 G#3 B3", {"E", "G#", "B"}},
        {"C3 D4 F#4 A4", {"D", "F#", "A", "C"}},     {"C4 E4 Bb4", {"C", "E", "Bb"}},
        {"F#3 C4 E4 G4", {"F#", "C", "E", "G"}},
    };
    for (const auto& [notes, expected] : spelled) {
        const ChordCandidate top = nameText(shippedNamer(), notes).front();
        std::vector<std::string> texts;
        for (const SpelledNote& n : top.notes)
            texts.push_back(n.text());
        EXPECT_EQ(texts, expected) << notes << " named " << top.name;
    }

    const ChordCandidate no5 = nameText(shippedNamer(), "C4 E4 Bb4").front();
    EXPECT_EQ(no5.omitted, (std::vector<std::string>{"5"}));
    const ChordCandidate added = nameText(shippedNamer(), "C3 E3 G3 F#4 D5").front();
    EXPECT_EQ(added.name, "C(add9,#11)");
    EXPECT_EQ(added.added, (std::vector<std::string>{"9", "#11"}));
}

TEST(ChordNamer, EveryPitchClassSetGetsNamesThatHoldExactlyItsNotes)
{
    // Every set once without a bass and once over one of its notes, each note in turn; spelled
    // without a key, in G# minor (with its F##) and in Db major, in turn.
    const ChordNamer& namer = shippedNamer();
    const std::array<NoteSpeller, 3> spellers = {NoteSpeller(), NoteSpeller::forKey({4, 1}, true),
                                                 NoteSpeller::forKey({1, -1}, false)};
    for (std::uint16_t mask = 1; mask < 4096; ++mask) {
        const PitchClassSet set(mask);
        const std::vector<PitchClass> members = set.pitchClasses();
        const NoteSpeller& speller = spellers[mask % spellers.size()];
        for (const std::optional<PitchClass> bass :
             {std::optional<PitchClass>(), std::optional(members[mask % members.size()])}) {
            const std::vector<ChordCandidate> got = namer.name(set, bass, speller);
            ASSERT_FALSE(got.empty()) << mask;
            for (std::size_t i = 0; i < got.size(); ++i) {
                const ChordCandidate& c = got[i];
                ASSERT_FALSE(c.name.empty());
                PitchClassSet spelled;
                for (const SpelledNote& n : c.notes)
                    spelled.insert(n.pitchClass());
                ASSERT_EQ(spelled, set) << c.name << " for mask " << mask;
                if (bass) {
                    ASSERT_EQ(c.bassName.pitchClass(), *bass) << c.name;
                }
                ASSERT_EQ(c.rootName.pitchClass(), c.root) << c.name;
                if (i > 0) {
                    ASSERT_GE(got[i - 1].score, c.score) << c.name;
                }
                ASSERT_EQ(c.isCluster(), got.size() == 1 && got[0].score == 0);
            }
        }
    }
}

TEST(ChordNamer, NamesEveryGeneratedDatabaseChordWithItsOwnType)
{
    const ChordTypeList& types = shippedTypes();
    ChordCollection collection;
    collection.generateList(types);
    const ChordBaseGroup& byChord = collection.baseGroups().front();
    ASSERT_EQ(byChord.name, ChordCollection::kSortedByChord);
    std::size_t checked = 0;
    for (const ChordSection& section : byChord.sections) {
        for (const ChordSubsection& subsection : section.subsections) {
            std::size_t typeIndex = 0;
            while (types.at(typeIndex).name() != subsection.name)
                ++typeIndex;
            for (const Chord& chord : subsection.chords) {
                std::vector<int> notes;
                for (const NoteValue n : chord.notes())
                    notes.push_back(n + 48);
                const std::vector<ChordCandidate> got = shippedNamer().nameNotes(notes);
                const PitchClass base = pitchClassOf(chord.notes().front());
                const bool found = std::any_of(got.begin(), got.end(), [&](const auto& c) {
                    return c.root == base && std::find(c.userTypes.begin(), c.userTypes.end(),
                                                       typeIndex) != c.userTypes.end();
                });
                EXPECT_TRUE(found) << chord.name << " not named as " << subsection.name << ":\n"
                                   << listed(got);
                ++checked;
            }
        }
    }
    EXPECT_EQ(checked, 12 * types.count());
}

TEST(ChordNamer, RecognisesTheUsersOwnTypesAndSkipsBrokenOnes)
{
    ChordTypeList mine;
    mine.add("quartal", "1;4;b7;");
    mine.add("major", "1;3;5;");
    mine.add("broken", "1;B3;");
    mine.add("empty", "");
    const ChordNamer namer(mine);

    const auto named = [](const std::vector<ChordCandidate>& got, const std::string& name) {
        const auto it = std::find_if(got.begin(), got.end(),
                                     [&name](const ChordCandidate& c) { return c.name == name; });
        return it == got.end() ? nullptr : &*it;
    };
    const std::vector<ChordCandidate> quartal = nameText(namer, "C4 F4 Bb4");
    ASSERT_NE(named(quartal, "Cquartal"), nullptr) << listed(quartal);
    EXPECT_EQ(named(quartal, "Cquartal")->userTypes, (std::vector<std::size_t>{0}));
    EXPECT_EQ(named(quartal, "Cquartal")->description, "C quartal");
    EXPECT_EQ(named(nameText(ChordNamer(), "C4 F4 Bb4"), "Cquartal"), nullptr);

    // A user type with the tones of a built-in one keeps the conventional symbol.
    const ChordCandidate major = nameText(namer, "C4 E4 G4").front();
    EXPECT_EQ(major.name, "C");
    EXPECT_EQ(major.userTypes, (std::vector<std::size_t>{1}));
    EXPECT_EQ(namer.vocabulary().userTypeNames().size(), 4u);
}

TEST(ChordNamer, IgnoresNotesOutsideTheMidiRange)
{
    const ChordNamer& namer = shippedNamer();
    EXPECT_TRUE(namer.nameNotes({}).empty());
    EXPECT_TRUE(namer.nameNotes({-1, 128, 300}).empty());
    EXPECT_EQ(namer.nameNotes({-5, 64, 67, 72, 200}).front().name, "C/E");
    EXPECT_EQ(namer.nameNotes({127, 0}).front().name, "C5");
    EXPECT_TRUE(namer.name(PitchClassSet(), std::nullopt).empty());
    // A bass outside the set joins it.
    EXPECT_EQ(namer.name(PitchClassSet{0, 4, 7}, PitchClass{2}).front().name, "C/D");
}
