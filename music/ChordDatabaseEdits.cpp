#include "music/ChordDatabaseEdits.h"

#include "music/IntervalTable.h"

#include <algorithm>

namespace music {

using music::ChordCollection;
using music::TreePosition;

namespace {

std::size_t at(int index)
{
    return static_cast<std::size_t>(index);
}

/** The options as a filter of generated chords, which knows each chord's root. */
ChordCollection::ChordFilter filterOf(const ChordDatabaseEdits::GenerateOptions& options)
{
    if (!options.scale)
        return {};
    return [options](music::PitchClass root, const music::Chord& chord) {
        if (options.everyNoteInScale && !(*options.scale)[root])
            return false;
        return !options.onlyScaleNotes || ChordDatabaseEdits::usesOnly(chord, *options.scale);
    };
}

music::ChordSubsection* subsectionAt(ChordCollection& c, const TreePosition& p)
{
    auto& groups = c.baseGroups();
    if (p.baseGroup < 0 || at(p.baseGroup) >= groups.size())
        return nullptr;
    auto& sections = groups[at(p.baseGroup)].sections;
    if (p.section < 0 || at(p.section) >= sections.size())
        return nullptr;
    auto& subs = sections[at(p.section)].subsections;
    if (p.subsection < 0 || at(p.subsection) >= subs.size())
        return nullptr;
    return &subs[at(p.subsection)];
}

music::ChordSection* sectionAt(ChordCollection& c, const TreePosition& p)
{
    auto& groups = c.baseGroups();
    if (p.baseGroup < 0 || at(p.baseGroup) >= groups.size())
        return nullptr;
    auto& sections = groups[at(p.baseGroup)].sections;
    if (p.section < 0 || at(p.section) >= sections.size())
        return nullptr;
    return &sections[at(p.section)];
}

bool chordLess(const music::Chord& a, const music::Chord& b)
{
    const auto notesA = a.notes();
    const auto notesB = b.notes();
    std::vector<int> sortedA(notesA.begin(), notesA.end());
    std::vector<int> sortedB(notesB.begin(), notesB.end());
    std::sort(sortedA.begin(), sortedA.end());
    std::sort(sortedB.begin(), sortedB.end());
    return sortedA < sortedB;
}

} // namespace

void ChordDatabaseEdits::generateList(ChordCollection& collection,
                                      const music::ChordTypeList& types,
                                      const GenerateOptions& options)
{
    collection.generateList(types, filterOf(options));
}

int ChordDatabaseEdits::generateBase(ChordCollection& collection, const music::ChordTypeList& types,
                                     const GenerateOptions& options)
{
    if (collection.baseGroups().size() >= ChordCollection::kMaxChildren)
        return -1;
    ChordCollection generated;
    generated.generateList(types, filterOf(options));
    const auto byNote =
        std::find_if(generated.baseGroups().begin(), generated.baseGroups().end(),
                     [](const auto& g) { return g.name == ChordCollection::kSortedByNote; });
    if (byNote == generated.baseGroups().end())
        return -1;
    music::ChordBaseGroup group = *byNote;
    group.name = options.name;
    if (group.sections.empty())
        return -1;
    if (options.scale) {
        for (auto& section : group.sections) {
            const auto root = music::parseNoteName(section.name);
            if (!root)
                continue;
            section.scaleFlag = true;
            section.notes.clear();
            for (int step = 0; step < music::kPitchClassCount; ++step) {
                const int pitchClass = (*root + step) % music::kPitchClassCount;
                if ((*options.scale)[at(pitchClass)])
                    section.notes.push_back(static_cast<music::NoteValue>(pitchClass));
            }
        }
    }
    collection.baseGroups().push_back(std::move(group));
    return static_cast<int>(collection.baseGroups().size()) - 1;
}

int ChordDatabaseEdits::remove(ChordCollection& collection, std::vector<TreePosition> positions)
{
    // Deepest and last first, so that earlier positions stay right; a child of a removed parent
    // is gone already and found missing.
    std::sort(positions.begin(), positions.end());
    positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
    // An item whose parent goes too is counted with its parent only.
    const auto hasAncestorIn = [&positions](const TreePosition& p) {
        const TreePosition ancestors[] = {
            TreePosition::ofBaseGroup(p.baseGroup), TreePosition::ofSection(p.baseGroup, p.section),
            TreePosition::ofSubsection(p.baseGroup, p.section, p.subsection)};
        for (const TreePosition& a : ancestors) {
            if (a != p && std::binary_search(positions.begin(), positions.end(), a))
                return true;
        }
        return false;
    };
    std::vector<TreePosition> kept;
    for (const TreePosition& p : positions) {
        if (!hasAncestorIn(p))
            kept.push_back(p);
    }
    positions = std::move(kept);
    int removed = 0;
    for (auto it = positions.rbegin(); it != positions.rend(); ++it) {
        const TreePosition& p = *it;
        auto& groups = collection.baseGroups();
        if (p.baseGroup < 0 || at(p.baseGroup) >= groups.size())
            continue;
        if (p.section < 0) {
            groups.erase(groups.begin() + p.baseGroup);
            ++removed;
            continue;
        }
        music::ChordSection* section = sectionAt(collection, p);
        if (section == nullptr)
            continue;
        if (p.subsection < 0) {
            auto& sections = groups[at(p.baseGroup)].sections;
            sections.erase(sections.begin() + p.section);
            ++removed;
            continue;
        }
        music::ChordSubsection* sub = subsectionAt(collection, p);
        if (sub == nullptr)
            continue;
        if (p.chord < 0) {
            section->subsections.erase(section->subsections.begin() + p.subsection);
            ++removed;
            continue;
        }
        if (at(p.chord) < sub->chords.size()) {
            sub->chords.erase(sub->chords.begin() + p.chord);
            ++removed;
        }
    }
    return removed;
}

bool ChordDatabaseEdits::rename(ChordCollection& collection, const TreePosition& p,
                                const std::string& name)
{
    auto& groups = collection.baseGroups();
    if (p.baseGroup < 0 || at(p.baseGroup) >= groups.size())
        return false;
    if (p.section < 0) {
        groups[at(p.baseGroup)].name = name;
        return true;
    }
    if (p.subsection < 0) {
        music::ChordSection* section = sectionAt(collection, p);
        if (section != nullptr)
            section->name = name;
        return section != nullptr;
    }
    music::ChordSubsection* sub = subsectionAt(collection, p);
    if (sub == nullptr)
        return false;
    if (p.chord < 0) {
        sub->name = name;
        return true;
    }
    if (at(p.chord) >= sub->chords.size())
        return false;
    sub->chords[at(p.chord)].name = name;
    return true;
}

std::optional<TreePosition> ChordDatabaseEdits::addSubsection(ChordCollection& collection,
                                                              const TreePosition& section,
                                                              std::string name)
{
    music::ChordSection* target = sectionAt(collection, section);
    if (target == nullptr || target->subsections.size() >= ChordCollection::kMaxChildren)
        return std::nullopt;
    target->subsections.push_back({std::move(name), {}});
    return TreePosition::ofSubsection(section.baseGroup, section.section,
                                      static_cast<int>(target->subsections.size()) - 1);
}

std::vector<TreePosition> ChordDatabaseEdits::insertChords(ChordCollection& collection,
                                                           const TreePosition& target,
                                                           const std::vector<music::Chord>& chords)
{
    music::ChordSubsection* sub = subsectionAt(collection, target);
    if (sub == nullptr || sub->chords.size() + chords.size() > ChordCollection::kMaxChildren)
        return {};
    std::size_t insertAt = sub->chords.size();
    if (target.chord >= 0)
        insertAt = std::min(at(target.chord), sub->chords.size());
    sub->chords.insert(sub->chords.begin() + static_cast<std::ptrdiff_t>(insertAt), chords.begin(),
                       chords.end());
    std::vector<TreePosition> result;
    for (std::size_t i = 0; i < chords.size(); ++i) {
        result.push_back(TreePosition::ofChord(target.baseGroup, target.section, target.subsection,
                                               static_cast<int>(insertAt + i)));
    }
    return result;
}

std::vector<music::Chord> ChordDatabaseEdits::chordsAt(const ChordCollection& collection,
                                                       std::vector<TreePosition> positions)
{
    std::sort(positions.begin(), positions.end());
    positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
    std::vector<music::Chord> chords;
    for (const TreePosition& p : positions) {
        if (const music::Chord* chord = p.isChord() ? collection.chordAt(p) : nullptr)
            chords.push_back(*chord);
    }
    return chords;
}

std::vector<TreePosition> ChordDatabaseEdits::moveChords(ChordCollection& collection,
                                                         std::vector<TreePosition> chords,
                                                         const TreePosition& target, bool copy)
{
    std::erase_if(chords, [&](const TreePosition& p) {
        return !p.isChord() || collection.chordAt(p) == nullptr;
    });
    if (chords.empty() || subsectionAt(collection, target) == nullptr)
        return {};
    const std::vector<music::Chord> moving = chordsAt(collection, chords);
    TreePosition insertAt = target;
    if (!copy) {
        if (target.isChord() && std::find(chords.begin(), chords.end(), target) != chords.end())
            return {};
        // Chords removed before the target in its own collection shift it up.
        if (target.isChord()) {
            for (const TreePosition& p : chords) {
                if (p.baseGroup == target.baseGroup && p.section == target.section &&
                    p.subsection == target.subsection && p.chord < target.chord)
                    --insertAt.chord;
            }
        }
        remove(collection, chords);
    }
    return insertChords(collection, insertAt, moving);
}

bool ChordDatabaseEdits::replaceChord(ChordCollection& collection, const TreePosition& p,
                                      const music::Chord& chord)
{
    music::ChordSubsection* sub = subsectionAt(collection, p);
    if (sub == nullptr || p.chord < 0 || at(p.chord) >= sub->chords.size())
        return false;
    sub->chords[at(p.chord)] = chord;
    return true;
}

bool ChordDatabaseEdits::setSection(ChordCollection& collection, const TreePosition& p,
                                    const std::string& name, bool scaleFlag,
                                    const std::vector<music::NoteValue>& notes)
{
    music::ChordSection* section = sectionAt(collection, p);
    if (section == nullptr)
        return false;
    section->name = name;
    section->scaleFlag = scaleFlag;
    section->notes = scaleFlag ? notes : std::vector<music::NoteValue>{};
    return true;
}

bool ChordDatabaseEdits::sortChords(ChordCollection& collection, const TreePosition& p,
                                    bool upwards)
{
    auto& groups = collection.baseGroups();
    if (p.baseGroup < 0 || at(p.baseGroup) >= groups.size())
        return false;
    const auto sortSub = [upwards](music::ChordSubsection& sub) {
        std::stable_sort(sub.chords.begin(), sub.chords.end(),
                         [upwards](const music::Chord& a, const music::Chord& b) {
                             return upwards ? chordLess(a, b) : chordLess(b, a);
                         });
    };
    if (p.section < 0) {
        for (auto& section : groups[at(p.baseGroup)].sections) {
            for (auto& sub : section.subsections)
                sortSub(sub);
        }
        return true;
    }
    if (p.subsection < 0) {
        music::ChordSection* section = sectionAt(collection, p);
        if (section == nullptr)
            return false;
        for (auto& sub : section->subsections)
            sortSub(sub);
        return true;
    }
    music::ChordSubsection* sub = subsectionAt(collection, p);
    if (sub == nullptr)
        return false;
    sortSub(*sub);
    return true;
}

int ChordDatabaseEdits::forbidNotes(ChordCollection& collection, const TreePosition& p,
                                    const Ticks& allowed)
{
    music::ChordSection* section = sectionAt(collection, p);
    if (section == nullptr)
        return 0;
    int removed = 0;
    for (auto& sub : section->subsections) {
        removed += static_cast<int>(std::erase_if(
            sub.chords, [&](const music::Chord& chord) { return !usesOnly(chord, allowed); }));
    }
    section->scaleFlag = true;
    section->notes.clear();
    for (int pitchClass = 0; pitchClass < music::kPitchClassCount; ++pitchClass) {
        if (allowed[at(pitchClass)])
            section->notes.push_back(static_cast<music::NoteValue>(pitchClass));
    }
    return removed;
}

bool ChordDatabaseEdits::usesOnly(const music::Chord& chord, const Ticks& allowed)
{
    for (const music::NoteValue note : chord.notes()) {
        if (!allowed[music::pitchClassOf(note)])
            return false;
    }
    return true;
}

std::string ChordDatabaseEdits::constructionFromTicks(const Ticks& ticks, music::PitchClass base)
{
    std::string construction;
    for (int step = 0; step < music::kPitchClassCount; ++step) {
        if (ticks[at((base + step) % music::kPitchClassCount)]) {
            construction += music::IntervalTable::symbol(step);
            construction += ';';
        }
    }
    return construction;
}

std::string ChordDatabaseEdits::scalePatternFromTicks(const Ticks& ticks, music::PitchClass base)
{
    std::string pattern;
    for (int step = 0; step < music::kPitchClassCount; ++step)
        pattern += ticks[at((base + step) % music::kPitchClassCount)] ? 'x' : 'o';
    return pattern;
}

} // namespace music
