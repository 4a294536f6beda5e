#include "song/MachineSectionReader.h"

#include "music/TextLineReader.h"
#include "song/FileErrorCode.h"
#include "song/SongReader.h"
#include "song/SongSectionReaders.h"

#include <algorithm>
#include <filesystem>

namespace song {

namespace {

using Code = FileErrorCode;

// Each offer of a DLL scan that leaves the machine unknown is repeated up to this many times.
constexpr int kMaxScanAttempts = 8;

/** Whether a song's parameter set lays out its rows as the database entry does. */
bool sameLayout(const MachineParameterSet& set, const MachineDatabaseEntry& entry)
{
    if (set.parameters.size() != entry.parameters.size())
        return false;
    for (std::size_t i = 0; i < set.parameters.size(); ++i) {
        const bool global = i < set.globalCount;
        if (set.parameters[i].type != entry.parameters[i].type ||
            global != entry.parameters[i].isGlobal())
            return false;
    }
    return true;
}

std::string describe(const SongMachine& machine)
{
    return machine.name + " (" + (machine.isMaster() ? std::string("Master") : machine.dllName) +
           ")";
}

} // namespace

const MachineParameterSet* MachineSectionReader::songParameterSet(const std::string& machineName)
{
    if (!m_songSets) {
        m_songSets.emplace();
        if (const SectionEntry* para = m_para) {
            ByteCursor c(m_data);
            if (!c.seek(para->offset) || !readParameterSets(c, *m_songSets))
                m_songSets->clear();
        }
    }
    for (const MachineParameterSet& set : *m_songSets) {
        if (set.machineName == machineName)
            return &set;
    }
    return nullptr;
}

std::uint16_t MachineSectionReader::peekTrackCount(const MachineParameterSet& set)
{
    std::size_t globalRow = 0;
    for (std::size_t i = 0; i < set.parameters.size() && i < set.globalCount; ++i)
        globalRow += BuzzSong::parameterWidth(set.parameters[i].type);
    ByteCursor c(m_data);
    std::uint16_t tracks = 0;
    if (!c.seek(m_c.position() + globalRow) || !c.u16(tracks))
        return 0;
    return tracks;
}

std::uint16_t MachineSectionReader::peekPatternTrackCount()
{
    // The block of the machine being read follows those of the machines read before it, whose
    // row sizes are known by now.
    const SectionEntry* patt = m_patt;
    ByteCursor c(m_data);
    if (patt == nullptr || !c.seek(patt->offset))
        return 0;
    const std::size_t target = m_song.machineCount();
    for (std::size_t m = 0;; ++m) {
        std::uint16_t patterns = 0;
        std::uint16_t tracks = 0;
        if (!c.u16(patterns) || !c.u16(tracks))
            return 0;
        if (m == target)
            return tracks;
        const SongMachine& machine = m_song.machines()[m];
        const std::uint64_t inputs = m_song.inputsOf(m).size();
        for (std::uint16_t p = 0; p < patterns; ++p) {
            std::string name;
            std::uint16_t rows = 0;
            if (!c.string(name) || !c.u16(rows))
                return 0;
            const std::uint64_t bytes = inputs * (std::uint64_t{rows} * 4 + 2) +
                                        std::uint64_t{rows} * machine.globalRowSize +
                                        std::uint64_t{rows} * machine.trackRowSize * tracks;
            if (bytes > c.remaining() || !c.seek(c.position() + bytes))
                return 0;
        }
    }
}

music::Result MachineSectionReader::learn(SongMachine& machine, const MachineParameterSet& set)
{
    // The track range is the song's evidence: the tracks the machine and its patterns use.
    const std::uint16_t tracks = std::max(peekTrackCount(set), peekPatternTrackCount());
    std::optional<MachineDatabaseEntry> entry =
        SongReader::entryFromParameterSet(set, machine.type, tracks);
    if (!entry)
        return sectionFailure(Code::kUnknownMachine,
                              SongReader::unknownMachineMessage(machine.name, machine.dllName));
    entry->dllName = machine.isMaster() ? std::string("Master") : machine.dllName;
    entry->shortName = entry->dllName + std::string(MachineDatabaseEntry::kLearnedMark);
    if (const music::Result learned = m_catalog.learn(*entry); !learned)
        return sectionFailure(Code::kUnknownMachine, learned.message());
    return music::Result::success();
}

void MachineSectionReader::useSongDescription(SongMachine& machine, const MachineParameterSet& set)
{
    std::optional<MachineDatabaseEntry> own =
        SongReader::entryFromParameterSet(set, machine.description.type, 0);
    if (!own)
        return;
    // Only the layout comes from the song; names, kind and track range stay the database's.
    own->dllName = machine.description.dllName;
    own->shortName = machine.description.shortName;
    own->minTracks = machine.description.minTracks;
    own->maxTracks = machine.description.maxTracks;
    machine.description = std::move(*own);
    m_warnings.push_back(SongReader::parameterMismatchWarning(machine.name, machine.dllName));
}

music::Result MachineSectionReader::resolve(SongMachine& machine)
{
    MachineCatalog& catalog = m_catalog;
    UnknownMachineHandler* handler = m_handler;
    const std::string key = machine.isMaster() ? std::string("Master") : machine.dllName;
    const std::string message = SongReader::unknownMachineMessage(machine.name, machine.dllName);
    const MachineParameterSet* set = songParameterSet(machine.name);

    // A machine the song describes is offered for learning first; declined, it is offered for a
    // DLL scan like any other unknown machine.
    std::size_t index = catalog.findByDllName(key);
    bool learnOffered = set == nullptr;
    int scans = 0;
    while (index == MachineDatabase::kNotFound) {
        if (handler == nullptr)
            return sectionFailure(Code::kUnknownMachine, message);
        if (!learnOffered) {
            learnOffered = true;
            if (handler->learnFromSong(machine.name, machine.dllName)) {
                if (music::Result learned = learn(machine, *set); !learned)
                    return learned;
                index = catalog.findByDllName(key);
                continue;
            }
        }
        if (scans >= kMaxScanAttempts)
            return sectionFailure(Code::kUnknownMachine, message);
        const std::optional<std::filesystem::path> dll = handler->chooseDllToScan(message);
        if (!dll)
            return sectionFailure(Code::kUnknownMachine, message);
        ++scans;
        bool changed = false;
        const music::Result scanned = catalog.scanDll(*dll, changed);
        if (!scanned) {
            handler->scanFailed(scanned);
            return sectionFailure(Code::kUnknownMachine, message);
        }
        index = catalog.findByDllName(key);
    }

    machine.databaseIndex = index;
    machine.description = catalog.entry(index);
    if (set == nullptr)
        m_unconfirmed.push_back(describe(machine));
    else if (!sameLayout(*set, machine.description))
        useSongDescription(machine, *set);
    machine.globalRowSize = machine.description.globalRowSize;
    machine.trackRowSize = machine.description.trackRowSize;
    return music::Result::success();
}

music::Result MachineSectionReader::readMachine(SongMachine& m)
{
    std::uint32_t dataSize = 0;
    std::uint16_t attributeCount = 0;
    if (!m_c.string(m.name) || !m_c.u8(m.type))
        return sectionFailure(Code::kMachineRecord);
    if (m.type != 0) {
        if (!m_c.string(m.dllName))
            return sectionFailure(Code::kMachineRecord);
        if (music::equalsIgnoringCase(m.dllName, "0Jeskola Tracker"))
            m.dllName = "Jeskola Tracker";
    }
    if (!m_c.u32(m.x) || !m_c.u32(m.y) || !m_c.u32(dataSize) || !m_c.bytes(dataSize, m.data) ||
        !m_c.u16(attributeCount))
        return sectionFailure(Code::kMachineRecord);
    for (std::uint16_t i = 0; i < attributeCount; ++i) {
        MachineAttribute attribute;
        if (!m_c.string(attribute.name))
            return sectionFailure(Code::kMachineRecord);
        if (!m_c.i32(attribute.value))
            return sectionFailure(Code::kAttribute);
        m.attributes.push_back(std::move(attribute));
    }

    if (const music::Result resolved = resolve(m); !resolved)
        return resolved;

    MachineCatalog& catalog = m_catalog;
    if (!m.isMaster() && !catalog.hasMachineData(m.dllName)) {
        MachineCatalog::Attributes attributes;
        for (const MachineAttribute& a : m.attributes)
            attributes.emplace_back(a.name, a.value);
        catalog.addMachineData(m.dllName, m.data, std::move(attributes));
    }

    if (!m_c.bytes(m.globalRowSize, m.globalState) || !m_c.u16(m.trackCount) ||
        !m_c.bytes(std::uint64_t{m.trackRowSize} * m.trackCount, m.trackState))
        return sectionFailure(Code::kMachineRecord);
    return music::Result::success();
}

music::Result MachineSectionReader::readMachines()
{
    std::uint16_t count = 0;
    if (!m_c.u16(count))
        return sectionFailure(Code::kMachineRecord);
    m_catalog.loadMachineData();
    for (std::uint16_t i = 0; i < count; ++i) {
        SongMachine machine;
        if (const music::Result r = readMachine(machine); !r) {
            m_song.machines().clear();
            return r;
        }
        m_song.machines().push_back(std::move(machine));
    }
    m_catalog.saveMachineData();
    return music::Result::success();
}
} // namespace song
