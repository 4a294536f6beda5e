#include "part/RowRenderer.h"

#include "music/RandomSource.h"

#include <algorithm>

namespace part {

namespace {

constexpr int kExtendedChordNotes = 5;

int limitOf(const RenderOptions& options)
{
    return options.limitNote + 12 * options.limitOctave + 1;
}

int fixedNote(std::uint8_t value, std::uint8_t octaveByte, std::uint8_t trackOctave,
              const RenderContext& context)
{
    const int octave =
        octaveByte != 0 ? octaveByte : TrackOctave::forFixedNote(trackOctave, context.baseOctave);
    int note = value + 12 * octave;
    if (context.options.limitActive) {
        const int limit = limitOf(context.options);
        if (note > limit)
            note -= 12 * ((note - limit + 11) / 12);
        // A limit in octave 0 can lie below every note of a pitch class: keep its lowest note.
        while (note < 0)
            note += 12;
    }
    return note;
}

int chordNote(const PreparedChord& chord, std::uint8_t index, std::uint8_t shift,
              std::uint8_t trackOctave, const RenderContext& context)
{
    const std::uint8_t n = chord.notes[index];
    const int carry = n / 12;
    const int pitch = n % 12;
    int q = pitch;
    if (shift == kShiftDown)
        q = pitch - 2;
    else if (shift == kShiftUp)
        q = pitch + 2;

    // The shift is dropped when it lands on a forbidden pitch class or a half-note away from
    // another chord note. The flag is looked at only while comparing with other notes, so a
    // one-note chord keeps its shift whatever the flags say.
    for (int j = 0; j < chord.count && q != pitch; ++j) {
        if (j == index)
            continue;
        const int r = chord.notes[static_cast<std::size_t>(j)] % 12;
        const int d = ((q - r) % 12 + 12) % 12;
        const int qClass = (q % 12 + 12) % 12;
        if (context.flags[static_cast<std::size_t>(qClass)] == 0 || d == 1 || d == 11)
            q = pitch;
    }

    const auto octave = static_cast<std::uint8_t>(carry + context.baseOctave);
    const int resolved = TrackOctave::forChordNote(trackOctave, octave);
    int note = static_cast<std::uint8_t>(12 * resolved + q); // 8-bit, as the rule says
    if (context.options.limitActive) {
        const int limit = limitOf(context.options);
        while (note > limit && note >= 12)
            note -= 12;
    }
    return note;
}

} // namespace

PreparedChord prepareChord(const PartChord& chord, IndexOption option)
{
    PreparedChord prepared;
    prepared.notes = chord.notes;
    prepared.count = std::min<std::uint8_t>(chord.noteCount, PartChord::kMaxNotes);
    if (option == IndexOption::ExtendChord && prepared.count > 0) {
        // In place and in order, so a one- or two-note chord keeps climbing octave by octave.
        for (int k = prepared.count; k < kExtendedChordNotes; ++k)
            prepared.notes[static_cast<std::size_t>(k)] = static_cast<std::uint8_t>(
                prepared.notes[static_cast<std::size_t>(k - prepared.count)] + 12);
        prepared.count = kExtendedChordNotes;
    }
    return prepared;
}

RowEvents renderRow(const PreparedChord& chord, const RowRecord& row,
                    const TrackOctaves& trackOctaves, const RenderContext& context)
{
    RowEvents events{};
    for (std::size_t t = 0; t < kTrackCount; ++t) {
        if (!context.options.tracks[t])
            continue;
        const std::uint8_t value = row.values[t];
        TrackEvent& event = events[t];
        switch (row.kinds[t]) {
        case CellKind::Off:
            event.type = TrackEvent::Type::Off;
            break;
        case CellKind::FixedNote:
            event.type = TrackEvent::Type::Note;
            event.note = fixedNote(value, row.octaves[t], trackOctaves[t], context);
            break;
        case CellKind::ChordNote:
            if (value >= chord.count) {
                if (context.options.indexOption == IndexOption::OffEvent)
                    event.type = TrackEvent::Type::Off;
                break;
            }
            event.type = TrackEvent::Type::Note;
            event.note = chordNote(chord, value, row.octaves[t], trackOctaves[t], context);
            break;
        case CellKind::ChanceChordNote:
            if (music::RandomSource::random(50) >= 25 || value >= chord.count)
                break;
            event.type = TrackEvent::Type::Note;
            event.note = chordNote(chord, value, row.octaves[t], trackOctaves[t], context);
            break;
        default:
            break;
        }
    }
    return events;
}

RenderContext renderContextOf(const Part& part, const RenderOptions& options)
{
    return RenderContext{options, part.baseOctave(), part.pitchClassFlags()};
}

RowEvents renderPartRow(const Part& part, const PreparedChord& chord, int chordIndex, int rowIndex,
                        const RenderOptions& options)
{
    const int patternIndex = part.chord(chordIndex).pattern;
    const Pattern* pattern = part.patterns().find(patternIndex);
    if (pattern == nullptr)
        return RowEvents{};
    return renderRow(chord, pattern->row(rowIndex), pattern->trackOctaves(),
                     renderContextOf(part, options));
}

} // namespace part
