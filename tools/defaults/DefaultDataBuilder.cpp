#include "DefaultDataBuilder.h"

#include "part/PartFile.h"

#include <initializer_list>
#include <vector>

namespace defaults {

namespace {

using part::CellKind;
using part::PartChord;
using part::Pattern;
using part::PatternCell;

// Track octave settings (see part::TrackOctave).
constexpr std::uint8_t kBase = 0;
constexpr std::uint8_t kBaseMinus2 = 8;
constexpr std::uint8_t kBaseMinus1 = 9;
constexpr std::uint8_t kBasePlus1 = 10;

void note(Pattern& p, int track, int row, int index, std::uint8_t shift = 0)
{
    p.setCell(track, row,
              PatternCell{CellKind::ChordNote, static_cast<std::uint8_t>(index), shift});
}

void chance(Pattern& p, int track, int row, int index)
{
    p.setCell(track, row,
              PatternCell{CellKind::ChanceChordNote, static_cast<std::uint8_t>(index), 0});
}

void fixed(Pattern& p, int track, int row, int pitchClass)
{
    p.setCell(track, row,
              PatternCell{CellKind::FixedNote, static_cast<std::uint8_t>(pitchClass), 0});
}

void off(Pattern& p, int track, int row)
{
    p.setCell(track, row, PatternCell{CellKind::Off, 0, 0});
}

void offAll(Pattern& p, int row, int tracks)
{
    for (int t = 0; t < tracks; ++t)
        off(p, t, row);
}

/** A line of chord-note indices on one track, one every `step` rows over 64 rows. */
void line(Pattern& p, int track, int step, std::initializer_list<int> indices)
{
    const std::vector<int> seq(indices);
    for (int row = 0, i = 0; row < part::kRowCount; row += step, ++i)
        note(p, track, row, seq[static_cast<std::size_t>(i) % seq.size()]);
}

Pattern blockChord()
{
    Pattern p("Block chord");
    for (int bar = 0; bar < 64; bar += 16) {
        for (int t = 0; t < 4; ++t)
            note(p, t, bar, t);
        offAll(p, bar + 14, 4);
    }
    return p;
}

Pattern arpeggio(const char* name, std::initializer_list<int> indices)
{
    Pattern p(name);
    line(p, 0, 2, indices);
    for (int bar = 0; bar < 64; bar += 16)
        note(p, 1, bar, 0);
    p.setTrackOctave(1, kBaseMinus1);
    return p;
}

Pattern brokenChord()
{
    Pattern p("Broken chord");
    for (int row = 0; row < 64; row += 8) {
        note(p, 0, row, 0);
        note(p, 1, row + 4, 1);
        note(p, 2, row + 4, 2);
        off(p, 1, row + 7);
        off(p, 2, row + 7);
    }
    p.setTrackOctave(0, kBaseMinus1);
    return p;
}

Pattern alberti()
{
    Pattern p("Alberti bass");
    line(p, 0, 2, {0, 2, 1, 2});
    return p;
}

Pattern strum()
{
    Pattern p("Strum");
    for (int bar = 0; bar < 64; bar += 16) {
        for (int t = 0; t < 5; ++t)
            note(p, t, bar + t, t);
        offAll(p, bar + 15, 5);
    }
    return p;
}

Pattern offBeatStabs()
{
    Pattern p("Off-beat stabs");
    for (int row = 2; row < 64; row += 4) {
        for (int t = 0; t < 3; ++t) {
            note(p, t, row, t);
            off(p, t, row + 1);
        }
    }
    for (int bar = 0; bar < 64; bar += 16)
        note(p, 3, bar, 0);
    p.setTrackOctave(3, kBaseMinus1);
    return p;
}

Pattern pedalBass()
{
    Pattern p("Pedal C bass");
    for (int row = 0; row < 64; row += 4) {
        fixed(p, 0, row, 0);
        off(p, 0, row + 3);
    }
    p.setTrackOctave(0, kBaseMinus2);
    for (int bar = 0; bar < 64; bar += 16)
        for (int t = 1; t < 4; ++t)
            note(p, t, bar, t - 1);
    return p;
}

Pattern sparkle()
{
    Pattern p("Sparkle");
    for (int row = 0; row < 64; ++row)
        chance(p, 0, row, (row * 3) % 5);
    p.setTrackOctave(0, kBasePlus1);
    for (int bar = 0; bar < 64; bar += 16)
        for (int t = 1; t < 4; ++t)
            note(p, t, bar, t - 1);
    return p;
}

Pattern octaveDoubling()
{
    Pattern p("Octave doubling");
    for (int bar = 0; bar < 64; bar += 8) {
        note(p, 0, bar, 0);
        note(p, 1, bar, 0);
        note(p, 2, bar, 1);
        note(p, 3, bar, 2);
        offAll(p, bar + 6, 4);
    }
    p.setTrackOctaves({kBaseMinus1, kBasePlus1, kBase, kBase, 0, 0, 0, 0});
    return p;
}

Pattern rootFifthBass()
{
    Pattern p("Root and fifth bass");
    for (int bar = 0; bar < 64; bar += 8) {
        note(p, 0, bar, bar % 16 == 0 ? 0 : 2);
        off(p, 0, bar + 6);
    }
    p.setTrackOctave(0, kBaseMinus2);
    for (int bar = 0; bar < 64; bar += 16)
        for (int t = 1; t < 4; ++t)
            note(p, t, bar, t - 1);
    return p;
}

Pattern neighbourNotes()
{
    Pattern p("Neighbour notes");
    // The melody leans on the chord tones from a whole step above and below where that fits.
    const int indices[] = {2, 2, 1, 1, 0, 0, 1, 2};
    const std::uint8_t shifts[] = {part::kShiftUp, 0, part::kShiftDown, 0, part::kShiftUp, 0, 0, 0};
    for (int row = 0, i = 0; row < 64; row += 2, ++i)
        note(p, 0, row, indices[i % 8], shifts[i % 8]);
    for (int bar = 0; bar < 64; bar += 16) {
        note(p, 1, bar, 0);
        note(p, 2, bar, 1);
    }
    p.setTrackOctaves({kBasePlus1, kBaseMinus1, kBaseMinus1, 0, 0, 0, 0, 0});
    return p;
}

Pattern waltz()
{
    Pattern p("Waltz");
    for (int bar = 0; bar < 60; bar += 12) {
        note(p, 0, bar, 0);
        for (int beat = 4; beat < 12; beat += 4) {
            note(p, 1, bar + beat, 1);
            note(p, 2, bar + beat, 2);
            off(p, 1, bar + beat + 2);
            off(p, 2, bar + beat + 2);
        }
    }
    p.setTrackOctave(0, kBaseMinus1);
    return p;
}

PartChord chord(const char* name, int root, std::initializer_list<int> intervals,
                std::uint16_t pattern, std::uint8_t length = 16)
{
    PartChord c;
    c.name = name;
    for (int interval : intervals)
        c.notes[c.noteCount++] = static_cast<music::NoteValue>(root + interval);
    c.pattern = pattern;
    c.length = length;
    return c;
}

const std::initializer_list<int> kMajor = {0, 4, 7};
const std::initializer_list<int> kMinor = {0, 3, 7};
const std::initializer_list<int> kSeventh = {0, 4, 7, 10};
const std::initializer_list<int> kMinorSeventh = {0, 3, 7, 10};
const std::initializer_list<int> kMajorSeventh = {0, 4, 7, 11};

part::Part partOf(std::initializer_list<Pattern> patterns, std::initializer_list<PartChord> chords)
{
    part::Part p;
    for (const Pattern& pattern : patterns)
        p.patterns().append(pattern);
    for (const PartChord& c : chords)
        p.append(c);
    return p;
}

} // namespace

part::Part defaultPart()
{
    // I-vi-IV-V in C, then ii-V-I, over three patterns.
    return partOf({blockChord(), arpeggio("Arpeggio up", {0, 1, 2, 3}), alberti()},
                  {chord("C", 0, kMajor, 0), chord("Am", 9, kMinor, 0), chord("F", 5, kMajor, 1),
                   chord("G", 7, kMajor, 1), chord("Dm7", 2, kMinorSeventh, 2),
                   chord("G7", 7, kSeventh, 2), chord("Cmaj7", 0, kMajorSeventh, 0, 32)});
}

part::PatternList defaultPatternPresets()
{
    part::PatternList list;
    for (const Pattern& p : {blockChord(), arpeggio("Arpeggio up", {0, 1, 2, 3}),
                             arpeggio("Arpeggio down", {4, 3, 2, 1}),
                             arpeggio("Arpeggio up-down", {0, 1, 2, 3, 4, 3, 2, 1}), brokenChord(),
                             alberti(), strum(), offBeatStabs(), pedalBass(), sparkle(),
                             octaveDoubling(), rootFifthBass(), neighbourNotes(), waltz()})
        list.append(p);
    return list;
}

part::PartPresetList defaultPartPresets()
{
    part::PartPresetList presets;
    const auto add = [&](const char* name, part::Part p) {
        presets.append(part::PartPresetList::presetOf(p, name));
    };
    add("I-V-vi-IV pop in C",
        partOf({blockChord(), arpeggio("Arpeggio up-down", {0, 1, 2, 3, 4, 3, 2, 1})},
               {chord("C", 0, kMajor, 0), chord("G", 7, kMajor, 1), chord("Am", 9, kMinor, 1),
                chord("F", 5, kMajor, 0)}));
    add("I-vi-IV-V doo-wop in C",
        partOf({offBeatStabs(), waltz()}, {chord("C", 0, kMajor, 0), chord("Am", 9, kMinor, 0),
                                           chord("F", 5, kMajor, 0), chord("G", 7, kMajor, 0)}));
    add("ii-V-I in C", partOf({strum(), rootFifthBass()},
                              {chord("Dm7", 2, kMinorSeventh, 1), chord("G7", 7, kSeventh, 1),
                               chord("Cmaj7", 0, kMajorSeventh, 0, 32)}));
    {
        const int roots[] = {9, 9, 9, 9, 2, 2, 9, 9, 4, 2, 9, 4};
        const char* names[] = {"A7", "A7", "A7", "A7", "D7", "D7",
                               "A7", "A7", "E7", "D7", "A7", "E7"};
        part::Part p = partOf({rootFifthBass(), brokenChord()}, {});
        for (int i = 0; i < 12; ++i)
            p.append(chord(names[i], roots[i], kSeventh, i % 2 == 0 ? 0 : 1));
        p.setTempo(110, 4);
        add("12-bar blues in A", p);
    }
    {
        part::Part p = partOf({alberti(), arpeggio("Arpeggio down", {4, 3, 2, 1})},
                              {chord("Am", 9, kMinor, 0), chord("G", 7, kMajor, 1),
                               chord("F", 5, kMajor, 0), chord("E", 4, kMajor, 1)});
        p.setBaseOctave(3);
        add("Andalusian cadence in A minor", p);
    }
    add("Canon in D",
        partOf({brokenChord(), octaveDoubling()},
               {chord("D", 2, kMajor, 0), chord("A", 9, kMajor, 0), chord("Bm", 11, kMinor, 1),
                chord("F#m", 6, kMinor, 1), chord("G", 7, kMajor, 0), chord("D", 2, kMajor, 0),
                chord("G", 7, kMajor, 1), chord("A", 9, kMajor, 1)}));
    add("i-VI-III-VII in A minor", partOf({sparkle(), neighbourNotes()},
                                          {chord("Am", 9, kMinor, 0), chord("F", 5, kMajor, 1),
                                           chord("C", 0, kMajor, 0), chord("G", 7, kMajor, 1)}));
    return presets;
}

std::string defaultPartBytes()
{
    return part::PartFile::serialize(defaultPart());
}

std::string defaultPatternPresetBytes()
{
    part::PatternPresetList list;
    const part::PatternList presets = defaultPatternPresets();
    for (const Pattern& p : presets.patterns())
        list.append(p);
    return list.serialize();
}

std::string defaultPartPresetBytes()
{
    return defaultPartPresets().serialize();
}

} // namespace defaults
