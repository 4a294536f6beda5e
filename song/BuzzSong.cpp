#include "song/BuzzSong.h"

#include "music/TextLineReader.h"

#include <algorithm>
#include <limits>

namespace song {

namespace {

void putValue(std::uint8_t* at, std::uint8_t width, int value)
{
    at[0] = static_cast<std::uint8_t>(value & 0xFF);
    if (width == 2)
        at[1] = static_cast<std::uint8_t>((value >> 8) & 0xFF);
}

/** One row of `size` bytes of an entry's global (or one track's) parameters. */
std::vector<std::uint8_t> parameterRowOf(const MachineDatabaseEntry& entry, std::size_t size,
                                         bool global, bool defaults)
{
    std::vector<std::uint8_t> row(size, 0);
    std::size_t offset = 0;
    for (const MachineParameter& p : entry.parameters) {
        if (p.isGlobal() != global)
            continue;
        const std::uint8_t width = BuzzSong::parameterWidth(p.type);
        if (offset + width > row.size())
            break;
        if (width != 0)
            putValue(row.data() + offset, width, defaults ? p.defaultValue : p.noValue);
        offset += width;
    }
    return row;
}

/** One row of a machine's global (or one track's) parameters, each holding noValue or default. */
std::vector<std::uint8_t> rowTemplate(const SongMachine& machine, bool global, bool defaults)
{
    return parameterRowOf(machine.description,
                          global ? machine.globalRowSize : machine.trackRowSize, global, defaults);
}

/** An input block: the source index, then amplitude and panning 0xFFFF ("no change") per row. */
std::vector<std::uint8_t> emptyInput(std::uint16_t source, std::size_t rows)
{
    std::vector<std::uint8_t> input(rows * 4 + 2, 0xFF);
    putValue(input.data(), 2, source);
    return input;
}

std::vector<std::uint8_t> repeatRow(const std::vector<std::uint8_t>& row, std::size_t rows)
{
    std::vector<std::uint8_t> block;
    block.reserve(row.size() * rows);
    for (std::size_t r = 0; r < rows; ++r)
        block.insert(block.end(), row.begin(), row.end());
    return block;
}

} // namespace

void BuzzSong::setSongLength(std::uint32_t end, std::uint32_t loopStart, std::uint32_t loopEnd)
{
    m_songEnd = end;
    m_loopStart = loopStart;
    m_loopEnd = loopEnd;
}

std::span<const std::uint8_t> BuzzSong::waveData() const
{
    if (m_waveFile)
        return {reinterpret_cast<const std::uint8_t*>(m_waveFile->data()) + m_waveOffset,
                m_waveSize};
    return m_waveData;
}

void BuzzSong::setWaveData(std::vector<std::uint8_t> bytes)
{
    m_waveFile.reset();
    m_waveData = std::move(bytes);
}

void BuzzSong::shareWaveData(std::shared_ptr<const std::string> file, std::size_t offset,
                             std::size_t length)
{
    m_waveData.clear();
    m_waveData.shrink_to_fit();
    if (!file || offset > file->size() || length > file->size() - offset) {
        m_waveFile.reset();
        return;
    }
    m_waveFile = std::move(file);
    m_waveOffset = offset;
    m_waveSize = length;
}

std::size_t BuzzSong::findMachine(std::string_view name) const
{
    for (std::size_t i = 0; i < m_machines.size(); ++i) {
        if (m_machines[i].name == name)
            return i;
    }
    return kNameNotFound;
}

std::vector<std::size_t> BuzzSong::inputsOf(std::size_t machine) const
{
    std::vector<std::size_t> inputs;
    for (std::size_t i = 0; i < m_connections.size(); ++i) {
        if (m_connections[i].destination == machine)
            inputs.push_back(i);
    }
    return inputs;
}

std::vector<std::size_t> BuzzSong::sequencesOf(std::size_t machine) const
{
    std::vector<std::size_t> result;
    for (std::size_t i = 0; i < m_sequences.size(); ++i) {
        if (m_sequences[i].machine == machine)
            result.push_back(i);
    }
    return result;
}

std::size_t BuzzSong::findParameterSet(std::string_view machineName) const
{
    for (std::size_t i = 0; i < m_parameterSets.size(); ++i) {
        if (m_parameterSets[i].machineName == machineName)
            return i;
    }
    return kNameNotFound;
}

std::size_t BuzzSong::patternCount(std::size_t machine) const
{
    return machine < m_patternBlocks.size() ? m_patternBlocks[machine].patterns.size() : 0;
}

std::size_t BuzzSong::findPattern(std::size_t machine, std::string_view name) const
{
    if (machine >= m_patternBlocks.size())
        return kNameNotFound;
    const auto& patterns = m_patternBlocks[machine].patterns;
    for (std::size_t i = 0; i < patterns.size(); ++i) {
        if (patterns[i].name == name)
            return i;
    }
    return kNameNotFound;
}

std::uint8_t BuzzSong::parameterWidth(int type)
{
    if (type == 3)
        return 2;
    return type >= 0 && type <= 2 ? 1 : 0;
}

std::optional<std::size_t> BuzzSong::findParameter(const MachineDatabaseEntry& entry,
                                                   std::string_view name)
{
    for (std::size_t i = 0; i < entry.parameters.size(); ++i) {
        if (music::equalsIgnoringCase(entry.parameters[i].name, name))
            return i;
    }
    return std::nullopt;
}

std::optional<BuzzSong::CellLocation> BuzzSong::cellLocation(std::size_t machine,
                                                             std::size_t pattern, std::size_t row,
                                                             std::size_t track,
                                                             std::size_t parameter) const
{
    if (machine >= m_machines.size() || machine >= m_patternBlocks.size())
        return std::nullopt;
    const SongMachine& m = m_machines[machine];
    const MachinePatterns& block = m_patternBlocks[machine];
    if (pattern >= block.patterns.size() || parameter >= m.description.parameters.size())
        return std::nullopt;
    const SongPattern& p = block.patterns[pattern];
    if (row >= p.rows)
        return std::nullopt;

    const bool global = m.description.parameters[parameter].isGlobal();
    std::size_t inRow = 0;
    for (std::size_t i = 0; i < parameter; ++i) {
        const MachineParameter& other = m.description.parameters[i];
        if (other.isGlobal() == global)
            inRow += parameterWidth(other.type);
    }
    CellLocation location;
    location.global = global;
    location.width = parameterWidth(m.description.parameters[parameter].type);
    const std::size_t rowSize = global ? m.globalRowSize : m.trackRowSize;
    location.offset = row * rowSize + inRow;
    if (!global) {
        if (track >= block.trackCount)
            return std::nullopt;
        location.offset += track * std::size_t{p.rows} * rowSize;
    }
    const std::vector<std::uint8_t>& bytes = global ? p.globalRows : p.trackRows;
    if (location.width == 0 || inRow + location.width > rowSize ||
        location.offset + location.width > bytes.size())
        return std::nullopt;
    return location;
}

std::optional<int> BuzzSong::cellValue(std::size_t machine, std::size_t pattern, std::size_t row,
                                       std::size_t track, std::size_t parameter) const
{
    const auto location = cellLocation(machine, pattern, row, track, parameter);
    if (!location)
        return std::nullopt;
    const SongPattern& p = m_patternBlocks[machine].patterns[pattern];
    const std::vector<std::uint8_t>& bytes = location->global ? p.globalRows : p.trackRows;
    int value = bytes[location->offset];
    if (location->width == 2)
        value |= bytes[location->offset + 1] << 8;
    return value;
}

bool BuzzSong::setCellValue(std::size_t machine, std::size_t pattern, std::size_t row,
                            std::size_t track, std::size_t parameter, int value)
{
    const auto location = cellLocation(machine, pattern, row, track, parameter);
    if (!location)
        return false;
    SongPattern& p = m_patternBlocks[machine].patterns[pattern];
    std::vector<std::uint8_t>& bytes = location->global ? p.globalRows : p.trackRows;
    putValue(bytes.data() + location->offset, location->width, value);
    return true;
}

std::optional<std::size_t> BuzzSong::createPattern(std::size_t machine, std::string name,
                                                   std::uint16_t rows)
{
    if (machine >= m_machines.size() || machine >= m_patternBlocks.size())
        return std::nullopt;
    MachinePatterns& block = m_patternBlocks[machine];
    if (block.patterns.size() >= std::numeric_limits<std::uint16_t>::max())
        return std::nullopt;
    const SongMachine& m = m_machines[machine];

    SongPattern pattern;
    pattern.name = std::move(name);
    pattern.rows = rows;
    for (const std::size_t c : inputsOf(machine))
        pattern.inputs.push_back(emptyInput(m_connections[c].source, rows));
    pattern.globalRows = repeatRow(rowTemplate(m, true, false), rows);
    pattern.trackRows =
        repeatRow(rowTemplate(m, false, false), std::size_t{rows} * block.trackCount);
    block.patterns.push_back(std::move(pattern));
    return block.patterns.size() - 1;
}

bool BuzzSong::setTrackCount(std::size_t machine, std::uint16_t count)
{
    if (machine >= m_machines.size() || machine >= m_patternBlocks.size())
        return false;
    SongMachine& m = m_machines[machine];
    if (m.description.trackParameterCount > 0 && count > m.description.maxTracks)
        return false;

    const std::vector<std::uint8_t> defaults = rowTemplate(m, false, true);
    m.trackState.resize(std::size_t{m.trackRowSize} * std::min(m.trackCount, count));
    for (std::size_t t = m.trackCount; t < count; ++t)
        m.trackState.insert(m.trackState.end(), defaults.begin(), defaults.end());
    m.trackCount = count;

    const std::vector<std::uint8_t> empty = rowTemplate(m, false, false);
    MachinePatterns& block = m_patternBlocks[machine];
    for (SongPattern& p : block.patterns) {
        const std::size_t trackBytes = std::size_t{p.rows} * m.trackRowSize;
        p.trackRows.resize(trackBytes * std::min(block.trackCount, count));
        for (std::size_t t = block.trackCount; t < count; ++t) {
            const std::vector<std::uint8_t> rows = repeatRow(empty, p.rows);
            p.trackRows.insert(p.trackRows.end(), rows.begin(), rows.end());
        }
    }
    block.trackCount = count;
    return true;
}

void BuzzSong::clearPatterns(std::size_t machine)
{
    if (machine < m_patternBlocks.size())
        m_patternBlocks[machine].patterns.clear();
}

void BuzzSong::removeSequencesOf(std::size_t machine)
{
    std::erase_if(m_sequences, [&](const SongSequence& s) { return s.machine == machine; });
}

std::size_t BuzzSong::addSequence(std::size_t machine)
{
    SongSequence sequence;
    sequence.machine = static_cast<std::uint16_t>(machine);
    m_sequences.push_back(sequence);
    return m_sequences.size() - 1;
}

std::size_t BuzzSong::addConnection(const SongConnection& connection)
{
    m_connections.push_back(connection);
    if (connection.destination < m_patternBlocks.size()) {
        for (SongPattern& p : m_patternBlocks[connection.destination].patterns)
            p.inputs.push_back(emptyInput(connection.source, p.rows));
    }
    return m_connections.size() - 1;
}

std::vector<std::uint8_t> BuzzSong::parameterRow(const MachineDatabaseEntry& entry, bool global,
                                                 bool defaults)
{
    return parameterRowOf(entry, global ? entry.globalRowSize : entry.trackRowSize, global,
                          defaults);
}

std::size_t BuzzSong::findMaster() const
{
    for (std::size_t i = 0; i < m_machines.size(); ++i) {
        if (m_machines[i].isMaster())
            return i;
    }
    return kNameNotFound;
}

} // namespace song
