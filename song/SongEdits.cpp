#include "song/SongEdits.h"

#include "music/TextLineReader.h"

#include <algorithm>
#include <optional>
#include <string>

namespace song {

namespace {

constexpr std::uint16_t kFirstPattern = SongSequence::kFirstPatternValue;

std::uint16_t inputSource(const std::vector<std::uint8_t>& input)
{
    return input.size() < 2 ? 0 : static_cast<std::uint16_t>(input[0] | input[1] << 8);
}

bool patternHasNoteAt(const BuzzSong& song, std::size_t machine, std::size_t pattern,
                      std::size_t row, std::size_t track, std::size_t note)
{
    const auto value = song.cellValue(machine, pattern, row, track, note);
    return value && *value != 0;
}

/** Whether any row of the pattern has a note in this track (or in the global rows). */
bool trackHasNote(const BuzzSong& song, std::size_t machine, std::size_t pattern, std::size_t track,
                  std::size_t note)
{
    const SongPattern& p = song.patternBlocks()[machine].patterns[pattern];
    for (std::size_t row = 0; row < p.rows; ++row) {
        if (patternHasNoteAt(song, machine, pattern, row, track, note))
            return true;
    }
    return false;
}

} // namespace

music::Result removeMachine(BuzzSong& song, std::size_t machine)
{
    if (machine >= song.machineCount())
        return music::Result::failure("The song has no machine " + std::to_string(machine) + ".");
    if (song.machines()[machine].isMaster())
        return music::Result::failure(kMasterCannotBeRemoved);
    const std::string name = song.machines()[machine].name;

    const std::string indexCode(1, static_cast<char>(machine & 0xFF));
    std::erase_if(song.midiBindings(), [&](const MidiBinding& b) {
        return music::equalsIgnoringCase(b.machineName, indexCode);
    });

    auto& sets = song.parameterSets();
    if (auto it = std::find_if(sets.begin(), sets.end(),
                               [&](const MachineParameterSet& s) { return s.machineName == name; });
        it != sets.end())
        sets.erase(it);
    auto& windows = song.parameterWindows();
    if (auto it = std::find_if(windows.begin(), windows.end(),
                               [&](const ParameterWindow& w) { return w.machineName == name; });
        it != windows.end())
        windows.erase(it);

    // Input blocks stand in the order of the connections into their machine: drop the ones fed
    // by the removed machine by position (their source field is only checked when the counts
    // disagree), then renumber the source fields.
    auto& blocks = song.patternBlocks();
    for (std::size_t m = 0; m < blocks.size(); ++m) {
        if (m == machine)
            continue;
        std::vector<bool> fromRemoved;
        for (const std::size_t c : song.inputsOf(m))
            fromRemoved.push_back(song.connections()[c].source == machine);
        for (SongPattern& p : blocks[m].patterns) {
            if (p.inputs.size() == fromRemoved.size()) {
                std::vector<std::vector<std::uint8_t>> kept;
                for (std::size_t k = 0; k < p.inputs.size(); ++k) {
                    if (!fromRemoved[k])
                        kept.push_back(std::move(p.inputs[k]));
                }
                p.inputs = std::move(kept);
            } else {
                std::erase_if(p.inputs,
                              [&](const auto& input) { return inputSource(input) == machine; });
            }
            for (auto& input : p.inputs) {
                const std::uint16_t source = inputSource(input);
                if (source > machine && input.size() >= 2) {
                    input[0] = static_cast<std::uint8_t>((source - 1) & 0xFF);
                    input[1] = static_cast<std::uint8_t>((source - 1) >> 8);
                }
            }
        }
    }
    if (machine < blocks.size())
        blocks.erase(blocks.begin() + static_cast<std::ptrdiff_t>(machine));

    std::erase_if(song.connections(), [&](const SongConnection& c) {
        return c.source == machine || c.destination == machine;
    });
    for (SongConnection& c : song.connections()) {
        if (c.source > machine)
            --c.source;
        if (c.destination > machine)
            --c.destination;
    }

    song.machines().erase(song.machines().begin() + static_cast<std::ptrdiff_t>(machine));

    song.removeSequencesOf(machine);
    for (SongSequence& s : song.sequences()) {
        if (s.machine > machine)
            --s.machine;
    }
    return music::Result::success();
}

void removePattern(BuzzSong& song, std::size_t machine, std::size_t pattern)
{
    if (machine >= song.machineCount() || pattern >= song.patternCount(machine))
        return;
    const std::size_t removed = pattern + kFirstPattern;
    for (SongSequence& s : song.sequences()) {
        if (s.machine != machine)
            continue;
        std::erase_if(s.events, [&](const SequenceEvent& e) { return e.value == removed; });
        for (SequenceEvent& e : s.events) {
            if (e.value > removed)
                --e.value;
        }
    }
    auto& patterns = song.patternBlocks()[machine].patterns;
    patterns.erase(patterns.begin() + static_cast<std::ptrdiff_t>(pattern));
}

void removePatterns(BuzzSong& song, std::size_t machine, const std::vector<std::size_t>& selected)
{
    // Each removal moves the later patterns down by one.
    std::size_t removedSoFar = 0;
    for (const std::size_t position : selected) {
        if (position < removedSoFar)
            continue;
        removePattern(song, machine, position - removedSoFar);
        ++removedSoFar;
    }
}

void removeAllPatterns(BuzzSong& song, std::size_t machine)
{
    if (machine >= song.machineCount())
        return;
    song.clearPatterns(machine);
    song.removeSequencesOf(machine);
}

void removeUnusedPatterns(BuzzSong& song, std::size_t machine)
{
    if (machine >= song.machineCount())
        return;
    // Removing one unused pattern never changes whether another one is used, so all of them go
    // at once: each event value moves down by the number of removed patterns below it.
    const std::size_t count = song.patternCount(machine);
    std::vector<bool> used(count, false);
    for (const SongSequence& s : song.sequences()) {
        if (s.machine != machine)
            continue;
        for (const SequenceEvent& e : s.events) {
            const std::size_t j = e.value - std::size_t{kFirstPattern};
            if (e.value >= kFirstPattern && j < count)
                used[j] = true;
        }
    }
    std::vector<std::size_t> removedBelow(count + 1, 0);
    for (std::size_t j = 0; j < count; ++j)
        removedBelow[j + 1] = removedBelow[j] + (used[j] ? 0 : 1);
    if (removedBelow[count] == 0)
        return;
    for (SongSequence& s : song.sequences()) {
        if (s.machine != machine)
            continue;
        for (SequenceEvent& e : s.events) {
            if (e.value > kFirstPattern) {
                const std::size_t j =
                    std::min<std::size_t>(e.value - std::size_t{kFirstPattern}, count);
                e.value = static_cast<std::uint16_t>(e.value - removedBelow[j]);
            }
        }
    }
    auto& patterns = song.patternBlocks()[machine].patterns;
    std::size_t next = 0;
    for (std::size_t j = 0; j < count; ++j) {
        if (!used[j])
            continue;
        if (next != j)
            patterns[next] = std::move(patterns[j]);
        ++next;
    }
    patterns.resize(next);
}

void trimPatterns(BuzzSong& song, std::size_t machine)
{
    if (machine >= song.machineCount() || machine >= song.patternBlocks().size())
        return;
    SongMachine& m = song.machines()[machine];
    MachinePatterns& block = song.patternBlocks()[machine];
    const std::optional<std::size_t> note = BuzzSong::findParameter(m.description, "note");
    if (!note)
        return;
    const bool global = m.description.parameters[*note].isGlobal();
    const std::size_t tracks = global ? 1 : block.trackCount;

    // 1. Cut each pattern after its last row with a note.
    for (std::size_t pi = 0; pi < block.patterns.size(); ++pi) {
        SongPattern& p = block.patterns[pi];
        std::optional<std::size_t> lastRow;
        for (std::size_t row = p.rows; row-- > 0 && !lastRow;) {
            for (std::size_t t = 0; t < tracks; ++t) {
                if (patternHasNoteAt(song, machine, pi, row, t, *note)) {
                    lastRow = row;
                    break;
                }
            }
        }
        if (!lastRow || *lastRow + 1 == p.rows)
            continue;
        const std::size_t oldRows = p.rows;
        const std::size_t newRows = *lastRow + 1;
        for (auto& input : p.inputs)
            input.resize(newRows * 4 + 2);
        p.globalRows.resize(newRows * m.globalRowSize);
        std::vector<std::uint8_t> trackRows;
        trackRows.reserve(newRows * m.trackRowSize * block.trackCount);
        for (std::size_t t = 0; t < block.trackCount; ++t) {
            const auto begin =
                p.trackRows.begin() + static_cast<std::ptrdiff_t>(t * oldRows * m.trackRowSize);
            trackRows.insert(trackRows.end(), begin,
                             begin + static_cast<std::ptrdiff_t>(newRows * m.trackRowSize));
        }
        p.trackRows = std::move(trackRows);
        p.rows = static_cast<std::uint16_t>(newRows);
    }

    // 2. Drop the tracks without notes. Removing a silent track leaves the others as they are,
    // so every silent track goes in one pass, the highest first.
    if (global || m.trackCount == 0)
        return;
    const std::size_t trackCount = std::min<std::size_t>(m.trackCount, block.trackCount);
    for (std::size_t t = trackCount; t-- > 0;) {
        bool hasNote = false;
        for (std::size_t pi = 0; pi < block.patterns.size() && !hasNote; ++pi)
            hasNote = trackHasNote(song, machine, pi, t, *note);
        if (hasNote)
            continue;
        for (SongPattern& p : block.patterns) {
            const std::size_t trackBytes = std::size_t{p.rows} * m.trackRowSize;
            const auto begin = p.trackRows.begin() + static_cast<std::ptrdiff_t>(t * trackBytes);
            p.trackRows.erase(begin, begin + static_cast<std::ptrdiff_t>(trackBytes));
        }
        if (m.trackState.size() >= (t + 1) * m.trackRowSize) {
            const auto state =
                m.trackState.begin() + static_cast<std::ptrdiff_t>(t * m.trackRowSize);
            m.trackState.erase(state, state + m.trackRowSize);
        }
        --m.trackCount;
        --block.trackCount;
    }
}

} // namespace song
