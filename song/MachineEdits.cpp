#include "song/MachineEdits.h"

#include "music/TextLineReader.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace song {

namespace {

constexpr std::size_t kMaxCount = std::numeric_limits<std::uint16_t>::max();

music::Result noSuchMachine(std::size_t machine)
{
    return music::Result::failure("The song has no machine " + std::to_string(machine) + ".");
}

float positionOf(std::uint32_t bits)
{
    const float value = std::bit_cast<float>(bits);
    return std::isfinite(value) ? value : 0.0f;
}

/** A copy's position: beside the original, inside the tracker's -1..1 field. */
std::uint32_t besides(std::uint32_t bits)
{
    const float value = positionOf(bits);
    return std::bit_cast<std::uint32_t>(value > 0.8f ? value - 0.15f : value + 0.15f);
}

/** The name a database entry gives new machines: its short name without the learned mark. */
std::string baseNameOf(const MachineDatabaseEntry& entry)
{
    std::string name = entry.shortName;
    if (entry.isLearned())
        name.resize(name.size() - MachineDatabaseEntry::kLearnedMark.size());
    while (!name.empty() && name.back() == ' ')
        name.pop_back();
    return name.empty() ? entry.dllName : name;
}

/** Replaces the source index at the start of an input block. */
void setInputSource(std::vector<std::uint8_t>& input, std::size_t source)
{
    if (input.size() >= 2) {
        input[0] = static_cast<std::uint8_t>(source & 0xFF);
        input[1] = static_cast<std::uint8_t>((source >> 8) & 0xFF);
    }
}

} // namespace

std::string freeMachineName(const BuzzSong& song, std::string_view base)
{
    const auto taken = [&](const std::string& name) {
        return std::any_of(
            song.machines().begin(), song.machines().end(),
            [&](const SongMachine& m) { return music::equalsIgnoringCase(m.name, name); });
    };
    std::string name(base);
    for (int counter = 2; taken(name); ++counter)
        name = std::string(base) + std::to_string(counter);
    return name;
}

music::Result checkMachineName(const BuzzSong& song, std::size_t machine, std::string_view name)
{
    if (name.empty())
        return music::Result::failure("A machine needs a name.");
    if (name.find('\0') != std::string_view::npos || name.back() == ' ')
        return music::Result::failure("A machine name cannot hold a zero byte or end with a "
                                      "blank.");
    for (std::size_t i = 0; i < song.machineCount(); ++i) {
        if (i != machine && music::equalsIgnoringCase(song.machines()[i].name, name))
            return music::Result::failure("There is already a machine named \"" +
                                          song.machines()[i].name + "\".");
    }
    return music::Result::success();
}

music::Result renameMachine(BuzzSong& song, std::size_t machine, const std::string& newName)
{
    if (machine >= song.machineCount())
        return noSuchMachine(machine);
    SongMachine& m = song.machines()[machine];
    if (m.isMaster())
        return music::Result::failure("The master keeps its name.");
    if (music::Result valid = checkMachineName(song, machine, newName); !valid)
        return valid;
    const std::string oldName = m.name;
    m.name = newName;
    for (MachineParameterSet& set : song.parameterSets()) {
        if (set.machineName == oldName)
            set.machineName = newName;
    }
    for (ParameterWindow& window : song.parameterWindows()) {
        if (window.machineName == oldName)
            window.machineName = newName;
    }
    for (MidiBinding& binding : song.midiBindings()) {
        if (binding.machineName == oldName)
            binding.machineName = newName;
    }
    return music::Result::success();
}

music::Result checkRoomForMachine(const BuzzSong& song, std::size_t connections)
{
    if (song.machineCount() >= kMaxCount || song.connections().size() + connections > kMaxCount)
        return music::Result::failure("The song cannot take another machine.");
    return music::Result::success();
}

music::Result newMachineDestination(const BuzzSong& song, std::optional<std::size_t> connectTo,
                                    std::size_t& destination)
{
    if (!connectTo) {
        destination = song.findMaster();
        if (destination == BuzzSong::kNameNotFound)
            return music::Result::failure("The song has no master to connect the machine to.");
        return music::Result::success();
    }
    if (*connectTo >= song.machineCount())
        return noSuchMachine(*connectTo);
    const SongMachine& target = song.machines()[*connectTo];
    if (!target.isMaster() && target.type != 2)
        return music::Result::failure("\"" + target.name +
                                      "\" is no effect: a new machine can only feed the master "
                                      "or an effect.");
    destination = *connectTo;
    return music::Result::success();
}

std::pair<std::uint32_t, std::uint32_t> freeMachinePosition(const BuzzSong& song, bool effect)
{
    // Candidates along a row (effects nearer the master, which sits near the centre).
    const float y = effect ? 0.3f : 0.6f;
    for (int step = 0; step < 13; ++step) {
        const float x = -0.9f + 0.15f * static_cast<float>(step);
        const bool free =
            std::none_of(song.machines().begin(), song.machines().end(), [&](const SongMachine& m) {
                return std::abs(positionOf(m.x) - x) < 0.1f && std::abs(positionOf(m.y) - y) < 0.1f;
            });
        if (free)
            return {std::bit_cast<std::uint32_t>(x), std::bit_cast<std::uint32_t>(y)};
    }
    return {std::bit_cast<std::uint32_t>(0.0f), std::bit_cast<std::uint32_t>(y)};
}

music::Result cloneMachine(BuzzSong& song, std::size_t machine, std::size_t& clone)
{
    if (machine >= song.machineCount() || machine >= song.patternBlocks().size())
        return noSuchMachine(machine);
    const SongMachine& original = song.machines()[machine];
    if (original.isMaster())
        return music::Result::failure("The master cannot be cloned: a song has one master.");
    const std::vector<std::size_t> inputs = song.inputsOf(machine);
    std::vector<std::size_t> outputs;
    for (std::size_t c = 0; c < song.connections().size(); ++c) {
        if (song.connections()[c].source == machine)
            outputs.push_back(c);
    }
    if (music::Result room = checkRoomForMachine(song, inputs.size() + outputs.size()); !room)
        return room;

    SongMachine copy = original;
    copy.name = freeMachineName(song, original.name);
    copy.x = besides(original.x);
    copy.y = besides(original.y);
    const std::size_t index = song.machineCount();
    if (const std::size_t set = song.findParameterSet(original.name);
        set != BuzzSong::kNameNotFound) {
        MachineParameterSet copiedSet = song.parameterSets()[set];
        copiedSet.machineName = copy.name;
        song.parameterSets().push_back(std::move(copiedSet));
    }
    // The copy's patterns keep the original's input blocks: its inputs are added below in the
    // same order, from the same sources.
    MachinePatterns patterns = song.patternBlocks()[machine];
    song.machines().push_back(std::move(copy));
    song.patternBlocks().push_back(std::move(patterns));
    for (const std::size_t c : inputs) {
        SongConnection connection = song.connections()[c];
        connection.destination = static_cast<std::uint16_t>(index);
        song.connections().push_back(connection);
    }
    // Each machine the original feeds gets a second input, automated like the first.
    for (const std::size_t c : outputs) {
        const SongConnection feed = song.connections()[c];
        const std::vector<std::size_t> into = song.inputsOf(feed.destination);
        const std::size_t position =
            static_cast<std::size_t>(std::find(into.begin(), into.end(), c) - into.begin());
        SongConnection connection = feed;
        connection.source = static_cast<std::uint16_t>(index);
        song.connections().push_back(connection);
        for (SongPattern& p : song.patternBlocks()[feed.destination].patterns) {
            std::vector<std::uint8_t> input =
                position < p.inputs.size()
                    ? p.inputs[position]
                    : std::vector<std::uint8_t>(std::size_t{p.rows} * 4 + 2, 0xFF);
            setInputSource(input, index);
            p.inputs.push_back(std::move(input));
        }
    }
    clone = index;
    return music::Result::success();
}

music::Result addMachine(BuzzSong& song, const MachineDatabaseEntry& entry,
                         std::size_t databaseIndex, const SpecDataEntry* machineData,
                         std::optional<std::size_t> connectTo, std::size_t& added)
{
    if (entry.type == 0)
        return music::Result::failure("A song has one master; it cannot take another.");
    std::size_t destination = 0;
    if (music::Result target = newMachineDestination(song, connectTo, destination); !target)
        return target;
    if (music::Result room = checkRoomForMachine(song, 1); !room)
        return room;

    SongMachine m;
    m.name = freeMachineName(song, baseNameOf(entry));
    m.type = entry.type;
    m.dllName = entry.dllName;
    std::tie(m.x, m.y) = freeMachinePosition(song, entry.type == 2);
    if (machineData != nullptr) {
        m.data = machineData->machineData;
        for (const auto& [name, value] : machineData->attributes)
            m.attributes.push_back({name, value});
    }
    m.databaseIndex = databaseIndex;
    m.description = entry;
    m.globalRowSize = entry.globalRowSize;
    m.trackRowSize = entry.trackRowSize;
    m.globalState = BuzzSong::parameterRow(entry, true, true);
    m.trackCount = entry.minTracks;
    const std::vector<std::uint8_t> track = BuzzSong::parameterRow(entry, false, true);
    for (std::uint16_t t = 0; t < m.trackCount; ++t)
        m.trackState.insert(m.trackState.end(), track.begin(), track.end());

    const std::size_t index = song.machineCount();
    song.patternBlocks().push_back({m.trackCount, {}});
    song.machines().push_back(std::move(m));
    song.addConnection({static_cast<std::uint16_t>(index), static_cast<std::uint16_t>(destination),
                        kUnityAmplitude, kCentrePanning});
    added = index;
    return music::Result::success();
}

std::size_t removeEmptySequences(BuzzSong& song)
{
    return static_cast<std::size_t>(
        std::erase_if(song.sequences(), [](const SongSequence& s) { return s.events.empty(); }));
}

} // namespace song
