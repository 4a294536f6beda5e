#include "part/ChordVoicer.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>

namespace part {

namespace {

struct StyleNames
{
    VoicingStyle style;
    std::string_view name;
    std::string_view label;
};

constexpr std::array<StyleNames, 5> kStyles = {{
    {VoicingStyle::Close, "close", "close"},
    {VoicingStyle::Open, "open", "open"},
    {VoicingStyle::Drop2, "drop2", "drop-2"},
    {VoicingStyle::Drop3, "drop3", "drop-3"},
    {VoicingStyle::Spread, "spread", "spread"},
}};

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

int pitchClassOfNote(int value)
{
    return value % music::kPitchClassCount;
}

/** Notes while a voicing is built; may dip below 0 before it is placed in the range. */
struct Shape
{
    std::array<int, PartChord::kMaxNotes> notes{};
    int count = 0;
};

/** Moves the voices that the style drops down an octave; counts from the top voice. */
void applyStyle(Shape& shape, VoicingStyle style)
{
    const int n = shape.count;
    const auto drop = [&](int fromTop) {
        if (fromTop <= n)
            shape.notes[static_cast<std::size_t>(n - fromTop)] -= 12;
    };
    switch (style) {
    case VoicingStyle::Close:
        return;
    case VoicingStyle::Open:
        for (int fromTop = 2; fromTop <= n; fromTop += 2)
            drop(fromTop);
        break;
    case VoicingStyle::Drop2:
        drop(2);
        break;
    case VoicingStyle::Drop3:
        drop(3);
        break;
    case VoicingStyle::Spread:
        if (n >= 2)
            drop(n);
        break;
    }
    std::sort(shape.notes.begin(), shape.notes.begin() + n);
}

int floorDiv(int a, int b)
{
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

} // namespace

std::string_view ChordVoicer::styleName(VoicingStyle style)
{
    for (const StyleNames& s : kStyles) {
        if (s.style == style)
            return s.name;
    }
    return "close";
}

std::string_view ChordVoicer::styleLabel(VoicingStyle style)
{
    for (const StyleNames& s : kStyles) {
        if (s.style == style)
            return s.label;
    }
    return "close";
}

std::optional<VoicingStyle> ChordVoicer::parseStyle(std::string_view text)
{
    for (const StyleNames& s : kStyles) {
        if (equalsIgnoringCase(text, s.name) || equalsIgnoringCase(text, s.label))
            return s.style;
    }
    return std::nullopt;
}

music::PitchClass ChordVoicer::root(const PartChord& chord)
{
    const int count = std::min<int>(chord.noteCount, PartChord::kMaxNotes);
    if (count == 0)
        return 0;
    const auto isTone = [&](int pitchClass) {
        for (int i = 0; i < count; ++i) {
            if (pitchClassOfNote(chord.notes[static_cast<std::size_t>(i)]) == pitchClass)
                return true;
        }
        return false;
    };
    // Only a capital letter starts a note name here, so "add9" is not read as A.
    const std::string_view name = chord.name;
    if (!name.empty() && name[0] >= 'A' && name[0] <= 'G') {
        for (std::size_t length : {std::size_t{2}, std::size_t{1}}) {
            if (name.size() < length)
                continue;
            const auto parsed = music::parseNoteName(name.substr(0, length));
            if (parsed && isTone(*parsed))
                return *parsed;
        }
    }
    return music::pitchClassOf(chord.notes[0]);
}

music::Result ChordVoicer::checkOptions(const VoicingOptions& options)
{
    if (options.high >= music::kEmptyNote)
        return music::Result::failure(std::string(kRangeTooHighMessage));
    if (options.low > options.high)
        return music::Result::failure(std::string(kBadRangeMessage));
    return music::Result::success();
}

std::vector<Voicing> ChordVoicer::candidates(const PartChord& chord, const VoicingOptions& options)
{
    std::vector<Voicing> out;
    const int count = std::min<int>(chord.noteCount, PartChord::kMaxNotes);
    if (count == 0 || !checkOptions(options))
        return out;

    const int rootClass = root(chord);
    std::array<int, music::kPitchClassCount> held{};
    for (int i = 0; i < count; ++i)
        ++held[static_cast<std::size_t>(
            pitchClassOfNote(chord.notes[static_cast<std::size_t>(i)]))];
    // The distinct tones in stacking order: by their distance above the root.
    std::vector<int> tones;
    for (int step = 0; step < music::kPitchClassCount; ++step) {
        const int pitchClass = (rootClass + step) % music::kPitchClassCount;
        if (held[static_cast<std::size_t>(pitchClass)] > 0)
            tones.push_back(pitchClass);
    }
    const int maxHeld = *std::max_element(held.begin(), held.end());

    const int bassClass = options.bassNote % music::kPitchClassCount;
    const bool addBass =
        options.bass == BassRule::Note && held[static_cast<std::size_t>(bassClass)] == 0;
    if (addBass && count == PartChord::kMaxNotes)
        return out;
    int requiredBass = -1;
    if (options.bass == BassRule::Root)
        requiredBass = rootClass;
    else if (options.bass == BassRule::Note && !addBass)
        requiredBass = bassClass;

    const int toneCount = static_cast<int>(tones.size());
    for (int inversion = 0; inversion < toneCount; ++inversion) {
        // Close position: each tone the next note above the one before; doubled tones go round
        // again above the first pass.
        Shape shape;
        for (int pass = 0; pass < maxHeld; ++pass) {
            for (int k = 0; k < toneCount; ++k) {
                const int tone = tones[static_cast<std::size_t>((inversion + k) % toneCount)];
                if (held[static_cast<std::size_t>(tone)] <= pass)
                    continue;
                int note = tone;
                if (shape.count > 0) {
                    const int below = shape.notes[static_cast<std::size_t>(shape.count - 1)];
                    note = below + 1 + ((tone - below - 1) % 12 + 12) % 12;
                }
                shape.notes[static_cast<std::size_t>(shape.count++)] = note;
            }
        }
        applyStyle(shape, options.style);
        if (addBass) {
            const int lowest = shape.notes[0];
            const int gap = ((lowest - bassClass) % 12 + 12) % 12;
            std::copy_backward(shape.notes.begin(), shape.notes.begin() + shape.count,
                               shape.notes.begin() + shape.count + 1);
            shape.notes[0] = lowest - (gap == 0 ? 12 : gap);
            ++shape.count;
        }
        if (requiredBass >= 0 && (shape.notes[0] % 12 + 12) % 12 != requiredBass)
            continue;

        const int lowest = shape.notes[0];
        const int highest = shape.notes[static_cast<std::size_t>(shape.count - 1)];
        // The smallest whole-octave shift that lifts the lowest note into the range.
        const int firstShift = -floorDiv(lowest - options.low, 12) * 12;
        for (int shift = firstShift; highest + shift <= options.high; shift += 12) {
            Voicing v;
            v.count = static_cast<std::uint8_t>(shape.count);
            v.inversion = static_cast<std::uint8_t>(inversion);
            for (int i = 0; i < shape.count; ++i) {
                v.notes[static_cast<std::size_t>(i)] =
                    static_cast<music::NoteValue>(shape.notes[static_cast<std::size_t>(i)] + shift);
            }
            const bool seen = std::any_of(out.begin(), out.end(),
                                          [&](const Voicing& other) { return other.sameNotes(v); });
            if (!seen)
                out.push_back(v);
        }
    }
    return out;
}

music::Result ChordVoicer::voice(const PartChord& chord, const VoicingOptions& options,
                                 Voicing& out, int index)
{
    if (const music::Result checked = checkOptions(options); !checked)
        return checked;
    const std::vector<Voicing> all = candidates(chord, options);
    if (all.empty())
        return music::Result::failure(noVoicingMessage(chord, options, index));

    const int middle = options.low + options.high;
    const auto distance = [&](const Voicing& v) {
        return std::abs(v.lowest() + v.highest() - middle);
    };
    const Voicing* best = &all.front();
    for (const Voicing& v : all) {
        // Candidates come by inversion and then from low to high, so `<` keeps the lower one.
        if (v.inversion < best->inversion ||
            (v.inversion == best->inversion && distance(v) < distance(*best)))
            best = &v;
    }
    out = *best;
    return music::Result::success();
}

Voicing ChordVoicer::sortedNotes(const PartChord& chord)
{
    Voicing v;
    v.count = static_cast<std::uint8_t>(std::min<int>(chord.noteCount, PartChord::kMaxNotes));
    std::copy(chord.notes.begin(), chord.notes.begin() + v.count, v.notes.begin());
    std::sort(v.notes.begin(), v.notes.begin() + v.count);
    return v;
}

PartChord ChordVoicer::withNotes(const PartChord& chord, const Voicing& voicing)
{
    PartChord out = chord;
    out.notes = voicing.notes;
    out.noteCount = voicing.count;
    return out;
}

std::string ChordVoicer::noVoicingMessage(const PartChord& chord, const VoicingOptions& options,
                                          int index)
{
    std::string which = index >= 0 ? "chord " + std::to_string(index) + " (" + chord.name + ")"
                                   : "the chord " + chord.name;
    if (options.bass == BassRule::Note && chord.noteCount >= PartChord::kMaxNotes) {
        const int bass = options.bassNote % music::kPitchClassCount;
        bool held = false;
        for (int i = 0; i < PartChord::kMaxNotes; ++i)
            held = held || pitchClassOfNote(chord.notes[static_cast<std::size_t>(i)]) == bass;
        if (!held) {
            return "There is no room for the bass note " + std::string(music::noteName(bass)) +
                   " in " + which + ": a chord holds at most 7 notes.";
        }
    }
    return "No " + std::string(styleLabel(options.style)) + " voicing of " + which +
           " fits between " + music::noteNameWithOctave(options.low) + " and " +
           music::noteNameWithOctave(options.high) + ".";
}

} // namespace part
