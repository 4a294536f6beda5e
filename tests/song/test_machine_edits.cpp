// Machine edits on the hand-built reference song (see song_reference.h): master 0, generator
// "Lead" 1 (globals Cutoff byte, Glide word; tracks Note, Velocity; two tracks) with pattern
// "Intro": global rows 10 FFFF | FF 0200, track 0: C-4 60 | 00 FF, track 1: 00 FF | E-4 FF.
// Expected cells are worked out by hand from that layout.

#include "song_reference.h"
#include "song_test_support.h"

#include "song/MachineClip.h"
#include "song/MachineEdits.h"
#include "song/MachineKind.h"
#include "song/MachineReplacement.h"
#include "song/PartWriter.h"
#include "song/SongEdits.h"

#include <gtest/gtest.h>

namespace {

using namespace songtest;
using song::BuzzSong;
using Bytes8 = std::vector<std::uint8_t>;
using Names = std::vector<std::string>;

/** Writes the song in memory and reads it back with the reference machines plus `extra`. */
BuzzSong reread(const BuzzSong& song, const std::vector<song::MachineDatabaseEntry>& extra = {})
{
    std::string bytes;
    EXPECT_TRUE(song::SongWriter::toBytes(song, bytes).ok());
    std::vector<song::MachineDatabaseEntry> entries = {masterEntry(), leadEntry()};
    entries.insert(entries.end(), extra.begin(), extra.end());
    song::MemoryMachineCatalog catalog(entries);
    BuzzSong back;
    const music::Result r = song::SongReader(catalog, nullptr).readBytes(bytes, back);
    EXPECT_TRUE(r.ok()) << r.code() << " " << r.message();
    return back;
}

/** A sampler: track Note and Wave (no-value 0), one to four tracks. */
song::MachineDatabaseEntry samplerEntry()
{
    return entry("TestSampler", 1, {{"Note", 0, true}, {"Wave", 2, true, 0, 1}}, 1, 4);
}

song::MachineDatabaseEntry effectEntry()
{
    return entry("TestFx", 2, {{"Mix", 2, false, 0xFF, 0x40}}, 0, 0);
}

TEST(RenameMachine, EveryReferenceFollowsAndBadNamesAreRefused)
{
    BuzzSong song = readReference();
    ASSERT_TRUE(song::renameMachine(song, 1, "Bass").ok());
    const BuzzSong back = reread(song);
    EXPECT_EQ(column(back.machines(), &song::SongMachine::name), (Names{"Master", "Bass"}));
    EXPECT_EQ(column(back.parameterSets(), &song::MachineParameterSet::machineName),
              (Names{"Master", "Bass"}));
    EXPECT_EQ(back.parameterWindows().at(0).machineName, "Bass");
    EXPECT_EQ(back.midiBindings().at(0).machineName, "Bass");

    const struct
    {
        std::size_t machine;
        std::string name, message;
    } refused[] = {
        {0, "Main", "The master keeps its name."},
        {1, "MASTER", "There is already a machine named \"Master\"."},
        {1, "", "A machine needs a name."},
        {1, "Bass ", "A machine name cannot hold a zero byte or end with a blank."},
        {1, std::string("B\0s", 3), "A machine name cannot hold a zero byte or end with a blank."},
        {5, "X", "The song has no machine 5."},
    };
    for (const auto& c : refused) {
        SCOPED_TRACE(c.name);
        BuzzSong unchanged = readReference();
        EXPECT_EQ(song::renameMachine(unchanged, c.machine, c.name).message(), c.message);
        expectSameModel(unchanged, readReference());
    }
}

TEST(CloneMachine, CopiesPatternsAndConnectionsUnderAFreeName)
{
    BuzzSong song = readReference();
    std::size_t clone = 0;
    ASSERT_TRUE(song::cloneMachine(song, 1, clone).ok());
    ASSERT_EQ(clone, 2u);
    std::size_t second = 0;
    ASSERT_TRUE(song::cloneMachine(song, 1, second).ok());
    const BuzzSong back = reread(song);
    EXPECT_EQ(column(back.machines(), &song::SongMachine::name),
              (Names{"Master", "Lead", "Lead2", "Lead3"}));
    EXPECT_EQ(back.patternBlocks()[2], back.patternBlocks()[1]);
    EXPECT_EQ(back.cellValue(2, 0, 1, 1, 2), 0x45); // E-4, track 1, row 1
    EXPECT_EQ(back.connections(),
              (std::vector<song::SongConnection>{
                  {1, 0, 0x4000, 0x4000}, {2, 0, 0x4000, 0x4000}, {3, 0, 0x4000, 0x4000}}));
    // The master's pattern gets the original's amplitude automation for each copy.
    EXPECT_EQ(back.patternBlocks()[0].patterns[0].inputs,
              (std::vector<Bytes8>{{1, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x20, 0x00, 0x40},
                                   {2, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x20, 0x00, 0x40},
                                   {3, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x20, 0x00, 0x40}}));
    EXPECT_EQ(column(back.parameterSets(), &song::MachineParameterSet::machineName),
              (Names{"Master", "Lead", "Lead2", "Lead3"}));
    EXPECT_EQ(back.sequencesOf(2).size(), 0u) << "a clone plays nothing until sequenced";
    EXPECT_EQ(back.midiBindings().size(), 1u);
    EXPECT_NE(back.machines()[2].x, back.machines()[1].x);

    // An effect between the generator and the master: its clone gets the same input and output.
    BuzzSong chain = readReference();
    std::size_t fx = 0;
    ASSERT_TRUE(song::addMachine(chain, effectEntry(), 2, nullptr, std::nullopt, fx).ok());
    chain.addConnection({1, static_cast<std::uint16_t>(fx), 0x1000, 0x2000});
    ASSERT_TRUE(chain.createPattern(fx, "fx", 1));
    ASSERT_TRUE(song::cloneMachine(chain, fx, clone).ok());
    ASSERT_EQ(chain.inputsOf(clone).size(), 1u);
    EXPECT_EQ(chain.connections()[chain.inputsOf(clone)[0]],
              (song::SongConnection{1, 3, 0x1000, 0x2000}));
    EXPECT_EQ(chain.patternBlocks()[clone].patterns[0].inputs[0][0], 1);
    reread(chain, {effectEntry()});

    EXPECT_EQ(song::cloneMachine(song, 0, clone).message(),
              "The master cannot be cloned: a song has one master.");
}

TEST(AddMachine, FromTheDatabaseWithDefaultsAndAConnectionThePartWriterCanUse)
{
    BuzzSong song = readReference();
    song::MachineDatabaseEntry learned = samplerEntry();
    learned.shortName += song::MachineDatabaseEntry::kLearnedMark;
    const song::SpecDataEntry data{"TestSampler", {7, 8}, {{"Poly", 1}}};
    std::size_t added = 0;
    ASSERT_TRUE(song::addMachine(song, learned, 3, &data, std::nullopt, added).ok());
    std::size_t again = 0;
    ASSERT_TRUE(song::addMachine(song, leadEntry(), 1, nullptr, std::nullopt, again).ok());

    const BuzzSong back = reread(song, {samplerEntry()});
    const song::SongMachine& sampler = back.machines().at(2);
    EXPECT_EQ(std::make_tuple(sampler.name, sampler.dllName, sampler.trackCount, sampler.data),
              std::make_tuple("TestSampler", "TestSampler", 1, Bytes8{7, 8}));
    EXPECT_EQ(sampler.trackState, (Bytes8{0, 1})); // Note 0, Wave at its default 1
    EXPECT_EQ(back.machines().at(3).name, "TestGen");
    EXPECT_EQ(back.machines().at(3).globalState, (Bytes8{0x40, 0x00, 0x01}));
    EXPECT_EQ(back.connections().at(1), (song::SongConnection{2, 0, 0x4000, 0x4000}));
    EXPECT_EQ(back.patternBlocks()[0].patterns[0].inputs.at(1),
              (Bytes8{2, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));

    // The part writer takes the new machine at once.
    part::Part p;
    p.patterns().append(part::Pattern());
    p.patterns().pattern(0).setCell(0, 0, {part::CellKind::ChordNote, 0, 0});
    part::PartChord chord;
    chord.name = "C";
    chord.setNotes({0});
    chord.length = 2;
    p.append(chord);
    EXPECT_TRUE(song::PartWriter::write(song, added, p, {}).ok());
    EXPECT_EQ(reread(song, {samplerEntry()}).cellValue(2, 0, 0, 0, 0), 0x41);

    // Into an effect; never into a generator, and never a second master.
    std::size_t fx = 0;
    ASSERT_TRUE(song::addMachine(song, effectEntry(), 4, nullptr, std::nullopt, fx).ok());
    ASSERT_TRUE(song::addMachine(song, leadEntry(), 1, nullptr, fx, added).ok());
    EXPECT_EQ(song.connections().back().destination, fx);
    EXPECT_EQ(song::addMachine(song, leadEntry(), 1, nullptr, 1, added).message(),
              "\"Lead\" is no effect: a new machine can only feed the master or an effect.");
    EXPECT_FALSE(song::addMachine(song, masterEntry(), 0, nullptr, std::nullopt, added).ok());
    reread(song, {samplerEntry(), effectEntry()});
}

TEST(MachineClip, PastesIntoAnotherSongOrTheSameWithItsPatterns)
{
    const BuzzSong source = readReference();
    song::MachineClip clip;
    ASSERT_TRUE(song::copyMachine(source, 1, clip).ok());
    EXPECT_FALSE(song::copyMachine(source, 0, clip).ok()) << "the master stays";
    ASSERT_TRUE(song::copyMachine(source, 1, clip).ok());

    BuzzSong same = readReference();
    BuzzSong other = readReference();
    ASSERT_TRUE(song::removeMachine(other, 1).ok());
    for (BuzzSong* target : {&same, &other}) {
        std::size_t pasted = 0;
        ASSERT_TRUE(song::pasteMachine(*target, clip, std::nullopt, pasted).ok());
        const BuzzSong back = reread(*target);
        const std::string name = target == &same ? "Lead2" : "Lead";
        EXPECT_EQ(back.machines().at(pasted).name, name);
        EXPECT_EQ(back.cellValue(pasted, 0, 0, 0, 2), 0x41);
        EXPECT_EQ(back.cellValue(pasted, 0, 1, 0, 1), 0x0200);
        EXPECT_EQ(back.connections().back(),
                  (song::SongConnection{static_cast<std::uint16_t>(pasted), 0, 0x4000, 0x4000}));
        EXPECT_NE(back.findParameterSet(name), BuzzSong::kNameNotFound);
    }
    song::MachineClip damaged = clip;
    damaged.patterns.patterns[0].trackRows.pop_back();
    std::size_t pasted = 0;
    EXPECT_FALSE(song::pasteMachine(same, damaged, std::nullopt, pasted).ok());
}

/** A generator whose parameters map partly onto Lead's: Cutoff becomes a word, one track. */
song::MachineDatabaseEntry replacementEntry()
{
    return entry("TestSynth2", 1,
                 {{"Resonance", 2, false, 0xFF, 0x20},
                  {"CUTOFF", 3, false, 0xFFFF, 0x1000},
                  {"Note", 0, true, 0, 0},
                  {"Wave", 2, true, 0, 1}},
                 1, 1);
}

TEST(ReplaceMachine, MapsValuesByNameAndListsWhatIsLost)
{
    BuzzSong song = readReference();
    song::ReplacementPlan plan;
    ASSERT_TRUE(song::planReplacement(song, 1, replacementEntry(), plan).ok());
    expectSameModel(song, readReference()); // the dry run changes nothing
    EXPECT_EQ(plan.describe(),
              (Names{"Glide (global): 1 value", "Velocity (track): 1 value",
                     "1 value in tracks beyond the new machine's 1", "1 MIDI binding"}));
    EXPECT_FALSE(plan.losesNothing());

    ASSERT_TRUE(song::replaceMachine(song, 1, replacementEntry(), 2, nullptr, plan).ok());
    const BuzzSong back = reread(song, {replacementEntry()});
    const song::SongMachine& m = back.machines().at(1);
    EXPECT_EQ(std::make_tuple(m.name, m.dllName, m.trackCount),
              std::make_tuple("Lead", "TestSynth2", 1));
    // Resonance empty, CUTOFF 0x0010 | empty; Cutoff's empty 0xFF stays empty as 0xFFFF.
    const song::SongPattern& intro = back.patternBlocks()[1].patterns.at(0);
    EXPECT_EQ(intro.globalRows, (Bytes8{0xFF, 0x10, 0x00, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(intro.trackRows, (Bytes8{0x41, 0x00, 0x00, 0x00})); // C-4 | nothing; Wave empty
    EXPECT_EQ(m.globalState, (Bytes8{0x20, 0x40, 0x00}));         // Cutoff's state 0x40 carried
    EXPECT_EQ(m.trackState, (Bytes8{0x00, 0x01}));
    EXPECT_EQ(back.findParameterSet("Lead"), BuzzSong::kNameNotFound);
    EXPECT_TRUE(back.midiBindings().empty());
    EXPECT_EQ(back.parameterWindows().size(), 1u);
    EXPECT_EQ(back.sequences(), readReference().sequences());

    song::MachineDatabaseEntry globalNote = replacementEntry();
    globalNote.parameters[2].scope = 'g';
    song::MachineDatabaseEntry noNote = replacementEntry();
    noNote.parameters[2].name = "Pitch";
    const struct
    {
        song::MachineDatabaseEntry entry;
        std::size_t machine;
        std::string message;
    } refused[] = {
        {effectEntry(), 1,
         "A generator can only be replaced by a generator, an effect only by an "
         "effect."},
        {noNote, 1,
         "\"TestSynth2\" has no note parameter: only machines that both play notes can "
         "replace each other."},
        {globalNote, 1,
         "\"Lead\" and \"TestSynth2\" keep their notes differently (one in its "
         "tracks, one in its global parameters)."},
        {replacementEntry(), 0, "The master cannot be replaced, nor replace a machine."},
    };
    for (const auto& c : refused) {
        BuzzSong unchanged = readReference();
        EXPECT_EQ(song::replaceMachine(unchanged, c.machine, c.entry, 2, nullptr, plan).message(),
                  c.message);
        expectSameModel(unchanged, readReference());
    }
}

TEST(MachineKind, FollowsTheDatabaseEntry)
{
    song::MachineDatabaseEntry byteNote = entry("Drums", 1, {{"note", 2, true}}, 1, 4);
    const struct
    {
        song::MachineDatabaseEntry entry;
        std::int32_t flags;
        song::MachineKind kind;
    } cases[] = {
        {masterEntry(), 0, song::MachineKind::Master},
        {leadEntry(), 0, song::MachineKind::Synth},
        {leadEntry(), song::kPlaysWavesFlag, song::MachineKind::Sampler},
        {samplerEntry(), 0, song::MachineKind::Sampler},
        {byteNote, 0, song::MachineKind::Synth},
        {song::MachineDatabase::builtInEntries()[2], 0, song::MachineKind::Generator},
        {effectEntry(), 0, song::MachineKind::Effect},
    };
    for (const auto& c : cases)
        EXPECT_EQ(song::machineKind(c.entry, c.flags), c.kind) << c.entry.dllName;
}

TEST(RemoveEmptySequences, LeavesTheOnesWithEvents)
{
    BuzzSong song = readReference();
    song.addSequence(1);
    EXPECT_EQ(song::removeEmptySequences(song), 2u);
    EXPECT_EQ(column(song.sequences(), &song::SongSequence::machine),
              (std::vector<std::uint16_t>{1}));
    EXPECT_EQ(song::removeEmptySequences(song), 0u);
    reread(song);
}

} // namespace
