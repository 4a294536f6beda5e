#include "music/ChordCollection.h"

#include "music/FileBytes.h"
#include "music/IntervalTable.h"
#include "music/SafeFileWriter.h"
#include "music/ScaleList.h"
#include "music/TextLineReader.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace music {

namespace {

void appendLine(std::string& out, std::string_view text)
{
    out += text;
    out += '\n';
}

void appendNumber(std::string& out, std::size_t value)
{
    char buffer[24];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    out.append(buffer, end);
    out += '\n';
}

std::uint16_t read16(TextLineReader& reader)
{
    return static_cast<std::uint16_t>(reader.readInt() & 0xFFFF);
}

std::uint8_t read8(TextLineReader& reader)
{
    return static_cast<std::uint8_t>(reader.readInt() & 0xFF);
}

} // namespace

std::size_t ChordCollection::chordCount() const
{
    std::size_t count = 0;
    for (const ChordBaseGroup& group : m_groups) {
        for (const ChordSection& section : group.sections) {
            for (const ChordSubsection& subsection : section.subsections)
                count += subsection.chords.size();
        }
    }
    return count;
}

const ChordSection* ChordCollection::sectionAt(const TreePosition& p) const
{
    if (p.baseGroup < 0 || p.section < 0 ||
        static_cast<std::size_t>(p.baseGroup) >= m_groups.size())
        return nullptr;
    const auto& sections = m_groups[static_cast<std::size_t>(p.baseGroup)].sections;
    if (static_cast<std::size_t>(p.section) >= sections.size())
        return nullptr;
    return &sections[static_cast<std::size_t>(p.section)];
}

const Chord* ChordCollection::chordAt(const TreePosition& p) const
{
    const ChordSection* section = sectionAt(p);
    if (section == nullptr || p.subsection < 0 || p.chord < 0 ||
        static_cast<std::size_t>(p.subsection) >= section->subsections.size())
        return nullptr;
    const auto& chords = section->subsections[static_cast<std::size_t>(p.subsection)].chords;
    if (static_cast<std::size_t>(p.chord) >= chords.size())
        return nullptr;
    return &chords[static_cast<std::size_t>(p.chord)];
}

Chord ChordCollection::makeChord(const ChordType& type, const IntervalList& intervals,
                                 PitchClass base)
{
    Chord chord;
    chord.name = std::string(noteName(base)) + type.name() + droppedMark(intervals);
    const auto& semitones = intervals.semitones();
    for (std::size_t i = 0; i < semitones.size() && i < Chord::kSlotCount; ++i)
        chord.slots[i] = static_cast<NoteValue>(base + semitones[i]);
    return chord;
}

std::vector<std::uint8_t> ChordCollection::droppedIntervals(const IntervalList& intervals)
{
    const auto& semitones = intervals.semitones();
    if (intervals.isError() || semitones.size() <= static_cast<std::size_t>(Chord::kSlotCount))
        return {};
    return {semitones.begin() + Chord::kSlotCount, semitones.end()};
}

std::string ChordCollection::droppedMark(const IntervalList& intervals)
{
    std::string symbols;
    for (const std::uint8_t semitones : droppedIntervals(intervals)) {
        symbols += symbols.empty() ? "" : ", ";
        symbols += IntervalTable::symbol(semitones);
    }
    return symbols.empty() ? symbols : " (no " + symbols + ")";
}

std::string ChordCollection::droppedWarning(const IntervalList& intervals)
{
    const std::string mark = droppedMark(intervals);
    if (mark.empty())
        return mark;
    // " (no 11, 13)" -> "11, 13" and "(no 11, 13)"
    const std::string symbols = mark.substr(5, mark.size() - 6);
    return "A chord holds five notes: the chords of this type leave out " + symbols +
           " and are named with \"" + mark.substr(1) + "\".";
}

void ChordCollection::generateList(const ChordTypeList& types, const ChordFilter& keep)
{
    m_groups.clear();

    ChordBaseGroup byChord{std::string(kSortedByChord), {}};
    for (const std::string_view name : kChordSections)
        byChord.sections.push_back({std::string(name), false, {}, {}});
    byChord.sections.push_back({std::string(kCutSection), false, {}, {}});

    ChordBaseGroup byNote{std::string(kSortedByNote), {}};
    for (int base = 0; base < kPitchClassCount; ++base) {
        ChordSection section{std::string(noteName(base)), false, {}, {}};
        for (const std::string_view word : kClassWords)
            section.subsections.push_back({std::string(word), {}});
        byNote.sections.push_back(std::move(section));
    }

    for (const ChordType& type : types.types()) {
        const IntervalList intervals = type.intervals();
        if (!intervals.isUsable())
            continue;
        std::array<std::optional<Chord>, kPitchClassCount> chords;
        for (int base = 0; base < kPitchClassCount; ++base) {
            const auto root = static_cast<PitchClass>(base);
            Chord chord = makeChord(type, intervals, root);
            if (!keep || keep(root, chord))
                chords[static_cast<std::size_t>(base)] = std::move(chord);
        }
        const int count = intervals.count();
        if (count >= 2) {
            // Types of 2..5 intervals by their count; longer ones in the section after "Ninths".
            const auto section =
                static_cast<std::size_t>(std::min(count, Chord::kSlotCount + 1) - 2);
            ChordSubsection subsection{type.name(), {}};
            for (const std::optional<Chord>& chord : chords) {
                if (chord)
                    subsection.chords.push_back(*chord);
            }
            if (!subsection.chords.empty())
                byChord.sections[section].subsections.push_back(std::move(subsection));
        }
        const auto classIndex = static_cast<std::size_t>(std::min(count, Chord::kSlotCount));
        for (std::size_t base = 0; base < chords.size(); ++base) {
            if (chords[base])
                byNote.sections[base].subsections[classIndex].chords.push_back(*chords[base]);
        }
    }

    std::erase_if(byChord.sections,
                  [](const ChordSection& section) { return section.subsections.empty(); });
    for (ChordSection& section : byNote.sections) {
        std::erase_if(section.subsections,
                      [](const ChordSubsection& subsection) { return subsection.chords.empty(); });
    }
    std::erase_if(byNote.sections,
                  [](const ChordSection& section) { return section.subsections.empty(); });

    m_groups.push_back(std::move(byChord));
    m_groups.push_back(std::move(byNote));
}

int ChordCollection::addBaseGroup(std::string name)
{
    if (m_groups.size() >= kMaxChildren)
        return -1;
    m_groups.push_back({std::move(name), {}});
    return static_cast<int>(m_groups.size() - 1);
}

Result ChordCollection::addScaleGroup(std::size_t baseGroup, std::string name,
                                      const std::array<bool, kPitchClassCount>& ticks,
                                      PitchClass base, bool scaleFlag)
{
    if (baseGroup >= m_groups.size())
        return Result::failure("No base group is selected");
    auto& sections = m_groups[baseGroup].sections;
    if (sections.size() >= kMaxChildren)
        return Result::failure("The base group holds 65535 sections already");
    ChordSection section{std::move(name), scaleFlag, {}, {}};
    for (int step = 0; step < kPitchClassCount; ++step) {
        const PitchClass pc = pitchClassOf(base + step);
        if (ticks[pc])
            section.notes.push_back(pc);
    }
    sections.push_back(std::move(section));
    return Result::success();
}

int ChordCollection::addScaleGroups(const ScaleList& scales,
                                    const std::vector<std::string>& scaleNames)
{
    const int groupIndex = addBaseGroup(std::string(kScalesGroup));
    if (groupIndex < 0)
        return 0;
    int added = 0;
    for (const std::string& scaleName : scaleNames) {
        const ScaleType* scale = scales.find(scaleName);
        if (scale == nullptr)
            continue;
        for (int root = 0; root < kPitchClassCount; ++root) {
            const auto pc = static_cast<PitchClass>(root);
            const Result result = addScaleGroup(static_cast<std::size_t>(groupIndex),
                                                std::string(noteName(pc)) + " " + scale->name(),
                                                scale->ticksFrom(pc), pc, true);
            added += result ? 1 : 0;
        }
    }
    return added;
}

Result ChordCollection::read(std::string_view bytes)
{
    m_groups.clear();
    TextLineReader reader(bytes);
    if (!equalsIgnoringCase(reader.readLine(), kMagic))
        return Result::failure(std::string(kNotValid));

    // Every record of a written file takes at least one line, so a record that would start past
    // the end of the data is not in the file: the loops stop there instead of making thousands of
    // empty records from a damaged count.
    const std::uint16_t groupCount = read16(reader);
    for (int g = 0; g < groupCount && !reader.atEnd(); ++g) {
        ChordBaseGroup& group = m_groups.emplace_back();
        group.name = reader.readLine();
        const std::uint16_t sectionCount = read16(reader);
        for (int s = 0; s < sectionCount && !reader.atEnd(); ++s) {
            ChordSection& section = group.sections.emplace_back();
            section.name = reader.readLine();
            const std::uint16_t subsectionCount = read16(reader);
            section.scaleFlag = read8(reader) == 1;
            if (section.scaleFlag) {
                const std::uint8_t noteCount = read8(reader);
                for (int n = 0; n < noteCount && !reader.atEnd(); ++n)
                    section.notes.push_back(read8(reader));
            }
            for (int u = 0; u < subsectionCount && !reader.atEnd(); ++u) {
                ChordSubsection& subsection = section.subsections.emplace_back();
                subsection.name = reader.readLine();
                const std::uint16_t chordCount = read16(reader);
                // A chord takes at least two lines of two bytes.
                subsection.chords.reserve(
                    std::min<std::size_t>(chordCount, (bytes.size() - reader.position()) / 4));
                for (int c = 0; c < chordCount && !reader.atEnd(); ++c) {
                    Chord& chord = subsection.chords.emplace_back();
                    chord.name = reader.readLine();
                    // More than five values are read to stay in step but only five are kept.
                    const std::uint8_t noteCount = read8(reader);
                    for (int n = 0; n < noteCount && !reader.atEnd(); ++n) {
                        const std::uint8_t value = read8(reader);
                        if (n < Chord::kSlotCount)
                            chord.slots[static_cast<std::size_t>(n)] = value;
                    }
                }
            }
        }
    }
    return Result::success();
}

Result ChordCollection::load(const std::filesystem::path& path)
{
    m_groups.clear();
    const auto bytes = readFileBytes(path);
    if (!bytes)
        return Result::failure(std::string(kErrorOpening));
    return read(*bytes);
}

std::string ChordCollection::toBytes() const
{
    std::string out;
    out.reserve(64 + chordCount() * 24);
    appendLine(out, kMagic);
    appendNumber(out, m_groups.size());
    for (const ChordBaseGroup& group : m_groups) {
        appendLine(out, group.name);
        appendNumber(out, group.sections.size());
        for (const ChordSection& section : group.sections) {
            appendLine(out, section.name);
            appendNumber(out, section.subsections.size());
            appendNumber(out, section.scaleFlag ? 1 : 0);
            if (section.scaleFlag) {
                appendNumber(out, section.notes.size());
                for (const NoteValue note : section.notes)
                    appendNumber(out, note);
            }
            for (const ChordSubsection& subsection : section.subsections) {
                appendLine(out, subsection.name);
                appendNumber(out, subsection.chords.size());
                for (const Chord& chord : subsection.chords) {
                    appendLine(out, chord.name);
                    // Only the first n slots are written, n being the number of used slots, so a
                    // chord must keep its notes at the front.
                    const auto n = static_cast<std::size_t>(chord.noteCount());
                    appendNumber(out, n);
                    for (std::size_t i = 0; i < n; ++i)
                        appendNumber(out, chord.slots[i]);
                }
            }
        }
    }
    return out;
}

Result ChordCollection::save(const std::filesystem::path& path) const
{
    if (!writeFileSafely(path, toBytes()))
        return Result::failure(std::string(kErrorOpening));
    return Result::success();
}

} // namespace music
