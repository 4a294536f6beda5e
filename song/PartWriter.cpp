#include "song/PartWriter.h"

#include "music/Note.h"
#include "music/RandomSource.h"
#include "part/RowRenderer.h"
#include "song/BuzzNote.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <string>
#include <unordered_set>

namespace song {

namespace {

using part::CellKind;

constexpr int kMaxOctave = 9;
constexpr int kOctaveStep = 16; // a BuzzNote code one octave up

/** A note as the writer builds it: octave may exceed 9 until the end (wrapped sums land there). */
struct WrittenNote
{
    int pitch = 0;
    int octave = 0;
};

/**
 * The base octave moved by a track setting 8..11 (other settings leave it). The sum wraps like
 * the unsigned `Word` it was made with, so an octave below 0 becomes large and is later capped.
 */
template <typename Word> int adjustedOctave(std::uint8_t baseOctave, std::uint8_t setting)
{
    int delta = 0;
    switch (setting) {
    case 8:
        delta = -2;
        break;
    case 9:
        delta = -1;
        break;
    case 10:
        delta = 1;
        break;
    case 11:
        delta = 2;
        break;
    default:
        break;
    }
    return static_cast<Word>(baseOctave + delta);
}

int pitchClassOf(int pitch)
{
    return ((pitch % 12) + 12) % 12;
}

/** The chord note's pitch in semitones above octave 0 of the base, after an allowed shift. */
int shiftedPitch(const part::PreparedChord& chord, int index, std::uint8_t shiftRequest,
                 const part::PitchClassFlags& flags)
{
    const int n = chord.notes[static_cast<std::size_t>(index)];
    const int carry = n / 12;
    const int p = n % 12;
    int q = p;
    if (shiftRequest == part::kShiftDown)
        q = p - 2;
    else if (shiftRequest == part::kShiftUp)
        q = p + 2;
    if (q != p) {
        const int shiftedClass = pitchClassOf(q);
        bool allowed = flags[static_cast<std::size_t>(shiftedClass)] != 0;
        for (int j = 0; allowed && j < chord.count; ++j) {
            if (j == index)
                continue;
            const int d = pitchClassOf(shiftedClass - chord.notes[static_cast<std::size_t>(j)]);
            if (d == 1 || d == 11)
                allowed = false;
        }
        if (!allowed)
            q = p;
    }
    return 12 * carry + q;
}

/** Moves whole octaves out of the pitch so that it lies in 0..11. */
void carryIntoOctave(WrittenNote& note)
{
    while (note.pitch > 11) {
        note.pitch -= 12;
        ++note.octave;
    }
    // A shift below C of the lowest octave borrows one octave instead of wrapping.
    while (note.pitch < 0) {
        note.pitch += 12;
        --note.octave;
    }
}

/** The limit as the song writer applies it: the note may equal the limit but never exceed it. */
void applyLimit(WrittenNote& note, const part::RenderOptions& options)
{
    if (!options.limitActive)
        return;
    const int limit = BuzzNote::encode(options.limitNote, options.limitOctave);
    int code = note.octave * kOctaveStep + note.pitch + 1;
    while (code > limit && code >= kOctaveStep)
        code -= kOctaveStep;
    note.octave = (code - 1) / kOctaveStep;
}

std::uint8_t encodeCapped(WrittenNote note)
{
    note.octave = std::clamp(note.octave, 0, kMaxOctave);
    return BuzzNote::encode(note.pitch, note.octave);
}

/** What one source cell writes into the note parameter (nothing, a note or a note-off). */
struct CellOutput
{
    std::optional<std::uint8_t> note;
    bool isNoteOff = false;
};

class Writer
{
public:
    Writer(BuzzSong& song, std::size_t machine, const part::Part& part,
           const PartWriteOptions& options)
        : m_song(song), m_machine(machine), m_part(part), m_options(options)
    {}

    PartWriteResult run();

private:
    PartWriteResult fail(std::string message)
    {
        m_result.status = PartWriteStatus::Failed;
        m_result.messages.push_back(std::move(message));
        return m_result;
    }

    CellOutput noteFor(const part::PatternCell& cell, const part::PreparedChord& chord,
                       std::uint8_t trackSetting) const;
    void writeChordRows(const part::PartChord& chord, const part::PreparedChord& prepared,
                        std::size_t pattern);
    void addSequenceEvent(std::size_t sequence, std::uint16_t position, std::uint16_t value);
    bool sortAndRenumber();

    BuzzSong& m_song;
    std::size_t m_machine;
    const part::Part& m_part;
    const PartWriteOptions& m_options;
    PartWriteResult m_result;

    std::vector<int> m_tracks; // source track of each machine track written
    std::size_t m_noteParameter = 0;
    std::optional<std::size_t> m_waveParameter;
    std::uint8_t m_positionWidth = 1;
    std::uint8_t m_valueWidth = 1;
};

CellOutput Writer::noteFor(const part::PatternCell& cell, const part::PreparedChord& chord,
                           std::uint8_t trackSetting) const
{
    CellOutput out;
    const std::uint8_t base = m_part.baseOctave();
    WrittenNote note;
    switch (cell.kind) {
    case CellKind::ChanceChordNote:
        if (music::RandomSource::random(50) >= 25)
            return out;
        [[fallthrough]];
    case CellKind::ChordNote:
        if (cell.value >= chord.count) {
            if (m_options.render.indexOption == part::IndexOption::Ignore) {
                out.note = BuzzNote::kNoteOff;
                out.isNoteOff = true;
            }
            return out;
        }
        note.pitch = shiftedPitch(chord, cell.value, cell.octave, m_part.pitchClassFlags());
        note.octave = adjustedOctave<std::uint8_t>(base, trackSetting);
        carryIntoOctave(note);
        if (trackSetting >= 1 && trackSetting <= 7)
            note.octave = trackSetting + 1;
        break;
    case CellKind::Off:
        out.note = BuzzNote::kNoteOff;
        out.isNoteOff = true;
        return out;
    case CellKind::FixedNote:
        note.pitch = cell.value;
        note.octave =
            cell.octave != 0 ? cell.octave : adjustedOctave<std::uint16_t>(base, trackSetting);
        carryIntoOctave(note);
        break;
    default:
        return out;
    }
    applyLimit(note, m_options.render);
    out.note = encodeCapped(note);
    return out;
}

void Writer::writeChordRows(const part::PartChord& chord, const part::PreparedChord& prepared,
                            std::size_t pattern)
{
    const part::Pattern* source = m_part.patterns().find(chord.pattern);
    if (source == nullptr)
        return;
    const int rows = chord.rows();
    for (int r = 0; r < rows; ++r) {
        for (std::size_t i = 0; i < m_tracks.size(); ++i) {
            const int t = m_tracks[i];
            const part::PatternCell& cell = source->cell(t, r);
            const CellOutput out = noteFor(cell, prepared, source->trackOctave(t));
            if (!out.note)
                continue;
            const auto row = static_cast<std::size_t>(r);
            m_song.setCellValue(m_machine, pattern, row, i, m_noteParameter, *out.note);
            if (!m_waveParameter || out.isNoteOff)
                continue;
            int wave = m_options.baseWave;
            if (m_options.waveMode == 0 && cell.kind != CellKind::FixedNote)
                wave += cell.value;
            else if (m_options.waveMode == 1)
                wave += static_cast<int>(i);
            m_song.setCellValue(m_machine, pattern, row, i, *m_waveParameter, wave);
        }
    }
}

void Writer::addSequenceEvent(std::size_t sequence, std::uint16_t position, std::uint16_t value)
{
    SongSequence& s = m_song.sequences()[sequence];
    // Never narrow the widths of a sequence that already holds events.
    s.positionWidth =
        std::max(s.events.empty() ? std::uint8_t{1} : s.positionWidth, m_positionWidth);
    s.eventWidth = std::max(s.events.empty() ? std::uint8_t{1} : s.eventWidth, m_valueWidth);
    // Events stay ordered by position; one event per position, the new one wins.
    auto at =
        std::lower_bound(s.events.begin(), s.events.end(), position,
                         [](const SequenceEvent& e, std::uint16_t p) { return e.position < p; });
    if (at != s.events.end() && at->position == position)
        at->value = value;
    else
        s.events.insert(at, SequenceEvent{position, value});
}

bool Writer::sortAndRenumber()
{
    std::vector<SongPattern>& patterns = m_song.patternBlocks()[m_machine].patterns;
    const std::size_t count = patterns.size();

    // Check every event first, so that a damaged sequence leaves patterns and events matching.
    for (std::size_t s : m_song.sequencesOf(m_machine)) {
        for (const SequenceEvent& e : m_song.sequences()[s].events) {
            const int value = e.value == PartWriter::kReadAsZero ? 0 : e.value;
            if (value >= SongSequence::kFirstPatternValue &&
                static_cast<std::size_t>(value - SongSequence::kFirstPatternValue) >= count) {
                m_result.status = PartWriteStatus::Failed;
                m_result.messages.push_back(PartWriter::sequenceErrorMessage(e.position, e.value));
                return false;
            }
        }
    }

    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return patterns[a].name < patterns[b].name; // char_traits<char>: unsigned byte order
    });
    std::vector<std::size_t> newPlace(count);
    std::vector<SongPattern> sorted;
    sorted.reserve(count);
    for (std::size_t m = 0; m < count; ++m) {
        newPlace[order[m]] = m;
        sorted.push_back(std::move(patterns[order[m]]));
    }
    patterns = std::move(sorted);

    for (std::size_t s : m_song.sequencesOf(m_machine)) {
        for (SequenceEvent& e : m_song.sequences()[s].events) {
            if (e.value == PartWriter::kReadAsZero)
                e.value = 0;
            if (e.value >= SongSequence::kFirstPatternValue)
                e.value = static_cast<std::uint16_t>(
                    newPlace[e.value - SongSequence::kFirstPatternValue] +
                    SongSequence::kFirstPatternValue);
        }
    }
    return true;
}

PartWriteResult Writer::run()
{
    if (m_part.count() == 0 || m_machine >= m_song.machineCount() ||
        m_machine >= m_song.patternBlocks().size())
        return m_result;
    m_tracks = PartWriter::usedTracks(m_part, m_options.render);
    if (m_tracks.empty())
        return m_result;

    const SongMachine& machine = m_song.machines()[m_machine];
    const MachineDatabaseEntry& description = machine.description;
    const int note = description.findParameter("note");
    if (note < 0)
        return fail(PartWriter::kNoNoteParameter);
    m_noteParameter = static_cast<std::size_t>(note);
    const bool noteIsGlobal = description.parameters[m_noteParameter].isGlobal();
    if (!m_options.ignoreWave) {
        if (const int wave = description.findParameter("wave"); wave >= 0)
            m_waveParameter = static_cast<std::size_t>(wave);
    }

    std::size_t tracks = std::max<std::size_t>(m_tracks.size(), description.minTracks);
    if (!noteIsGlobal && tracks > description.maxTracks) {
        m_result.messages.push_back(PartWriter::tracksLimitMessage(description.maxTracks));
        tracks = description.maxTracks;
    }
    if (m_tracks.size() > tracks)
        m_tracks.resize(tracks);
    const auto trackCount = static_cast<std::uint16_t>(std::min<std::size_t>(tracks, 65535));

    std::optional<std::size_t> sequence;
    if (!m_options.append) {
        m_song.clearPatterns(m_machine);
        m_song.removeSequencesOf(m_machine);
        sequence = m_song.addSequence(m_machine);
        if (!m_song.setTrackCount(m_machine, noteIsGlobal ? std::uint16_t{0} : trackCount))
            return fail(PartWriter::kSetTracksFailed);
    } else {
        if (m_song.machines()[m_machine].trackCount < trackCount &&
            !m_song.setTrackCount(m_machine, trackCount))
            return fail(PartWriter::kSetTracksFailed);
        if (m_options.makeSequence) {
            const std::vector<std::size_t> existing = m_song.sequencesOf(m_machine);
            sequence = existing.empty() ? m_song.addSequence(m_machine) : existing.back();
        }
    }

    int totalRows = 0;
    for (const part::PartChord& chord : m_part.chords())
        totalRows += chord.rows();
    m_positionWidth = totalRows > PartWriter::kMaxByteRows ? 2 : 1;
    m_valueWidth = m_part.count() > PartWriter::kMaxChordsForByteValues ? 2 : 1;

    // The machine's pattern names, so that finding a free name stays cheap for long parts.
    std::unordered_set<std::string> names;
    for (const SongPattern& p : m_song.patternBlocks()[m_machine].patterns)
        names.insert(p.name);

    int position = 0;
    for (int c = 0; c < m_part.count(); ++c) {
        const part::PartChord& chord = m_part.chord(c);
        const part::PreparedChord prepared =
            part::prepareChord(chord, m_options.render.indexOption);

        const std::string base = m_options.nameByNotes ? PartWriter::notesName(chord) : chord.name;
        std::string name = base;
        for (int counter = 2; names.count(name) != 0; ++counter)
            name = base + "-" + std::to_string(counter);
        names.insert(name);

        const std::optional<std::size_t> pattern = m_song.createPattern(
            m_machine, std::move(name), static_cast<std::uint16_t>(chord.rows()));
        if (!pattern)
            return fail(PartWriter::kCreatePatternFailed);

        if (m_options.makeSequence && sequence) {
            // The value counts from the chord, not from the patterns already there.
            addSequenceEvent(*sequence, static_cast<std::uint16_t>(position),
                             static_cast<std::uint16_t>(SongSequence::kFirstPatternValue + c));
        }
        position += chord.rows();
        writeChordRows(chord, prepared, *pattern);
    }

    if ((m_options.append || m_options.makeSequence) && !sortAndRenumber())
        return m_result;

    // A sequence that runs past the song's end would be cut off by the tracker: the song grows
    // to hold it, and a loop that ended with the song ends with it again.
    const auto sequenceEnd = static_cast<std::uint32_t>(position);
    if (m_options.makeSequence && sequence && sequenceEnd > m_song.songEnd()) {
        const std::uint32_t loopEnd =
            m_song.loopEnd() == m_song.songEnd() ? sequenceEnd : m_song.loopEnd();
        m_song.setSongLength(sequenceEnd, m_song.loopStart(), loopEnd);
    }

    m_result.status = PartWriteStatus::Done;
    m_result.messages.push_back(PartWriter::kDone);
    return m_result;
}

} // namespace

std::string PartWriter::tracksLimitMessage(int maxTracks)
{
    return "Machine only supports " + std::to_string(maxTracks) + " tracks.";
}

std::string PartWriter::sequenceErrorMessage(int position, int value)
{
    return "Error reading SequencerData\n" + std::to_string(position) + "\n" +
           std::to_string(value);
}

std::string PartWriter::notesName(const part::PartChord& chord)
{
    std::string text;
    for (int i = 0; i < chord.noteCount && i < part::PartChord::kMaxNotes; ++i) {
        const std::string note =
            music::noteNameWithOctave(chord.notes[static_cast<std::size_t>(i)]);
        if (note.empty())
            continue;
        if (!text.empty())
            text += ' ';
        text += note;
    }
    return text.empty() ? chord.name : text;
}

std::vector<int> PartWriter::usedTracks(const part::Part& part, const part::RenderOptions& options)
{
    std::vector<int> used;
    for (int t = 0; t < part::kTrackCount; ++t) {
        if (!options.tracks[static_cast<std::size_t>(t)])
            continue;
        const bool hasNote =
            std::any_of(part.chords().begin(), part.chords().end(), [&](const part::PartChord& c) {
                const part::Pattern* pattern = part.patterns().find(c.pattern);
                if (pattern == nullptr)
                    return false;
                const int rows = c.rows();
                for (int r = 0; r < rows; ++r) {
                    const CellKind kind = pattern->cell(t, r).kind;
                    if (kind == CellKind::ChordNote || kind == CellKind::FixedNote ||
                        kind == CellKind::ChanceChordNote)
                        return true;
                }
                return false;
            });
        if (hasNote)
            used.push_back(t);
    }
    return used;
}

PartWriteResult PartWriter::write(BuzzSong& song, std::size_t machine, const part::Part& part,
                                  const PartWriteOptions& options)
{
    return Writer(song, machine, part, options).run();
}

} // namespace song
