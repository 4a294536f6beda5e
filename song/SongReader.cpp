#include "song/SongReader.h"

#include "music/FileBytes.h"
#include "music/TextLineReader.h"
#include "song/FileErrorCode.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>

namespace song {

namespace {

using Code = FileErrorCode;

constexpr std::array<std::string_view, 11> kHandledSections = {
    "CONN", "MACH", "SEQU", "MIDI", "PDLG", "PATT", "BVER", "PARA", "WAVT", "CWAV", "WAVE"};

// Wave data at least this large stays in the file's bytes instead of being copied out of them.
constexpr std::size_t kShareWaveDataFrom = 1u << 20;

// Each offer of a DLL scan that leaves the machine unknown is repeated up to this many times.
constexpr int kMaxScanAttempts = 8;

/** Little-endian reads over the bytes of a whole file; every read checks what remains. */
class Cursor
{
public:
    explicit Cursor(std::string_view data) : m_data(data) {}

    std::size_t position() const { return m_pos; }
    std::size_t remaining() const { return m_data.size() - m_pos; }
    /** Like a C seek: positions beyond the end are allowed, reads from there are short. */
    void seekClamped(std::uint64_t pos)
    {
        m_pos = static_cast<std::size_t>(std::min<std::uint64_t>(pos, m_data.size()));
    }
    bool seek(std::uint64_t pos)
    {
        if (pos > m_data.size())
            return false;
        m_pos = static_cast<std::size_t>(pos);
        return true;
    }

    bool u8(std::uint8_t& out)
    {
        if (remaining() < 1)
            return false;
        out = byteAt(m_pos++);
        return true;
    }
    bool u16(std::uint16_t& out)
    {
        if (remaining() < 2)
            return false;
        out = static_cast<std::uint16_t>(byteAt(m_pos) | byteAt(m_pos + 1) << 8);
        m_pos += 2;
        return true;
    }
    bool u32(std::uint32_t& out)
    {
        if (remaining() < 4)
            return false;
        out = 0;
        for (int i = 3; i >= 0; --i)
            out = out << 8 | byteAt(m_pos + static_cast<std::size_t>(i));
        m_pos += 4;
        return true;
    }
    bool i32(std::int32_t& out)
    {
        std::uint32_t value = 0;
        if (!u32(value))
            return false;
        out = static_cast<std::int32_t>(value);
        return true;
    }
    /** A value of `width` bytes (1 or 2). */
    bool sized(std::uint8_t width, std::uint16_t& out)
    {
        if (width == 1) {
            std::uint8_t value = 0;
            const bool ok = u8(value);
            out = value;
            return ok;
        }
        return u16(out);
    }
    bool bytes(std::uint64_t count, std::vector<std::uint8_t>& out)
    {
        if (count > remaining())
            return false;
        const auto* begin = reinterpret_cast<const std::uint8_t*>(m_data.data()) + m_pos;
        out.assign(begin, begin + count);
        m_pos += static_cast<std::size_t>(count);
        return true;
    }
    template <std::size_t N> bool array(std::array<std::uint8_t, N>& out)
    {
        if (remaining() < N)
            return false;
        for (std::size_t i = 0; i < N; ++i)
            out[i] = byteAt(m_pos + i);
        m_pos += N;
        return true;
    }
    bool text(std::size_t length, std::string& out)
    {
        if (remaining() < length)
            return false;
        out.assign(m_data.substr(m_pos, length));
        m_pos += length;
        return true;
    }
    /** A zero-terminated string; the terminator is consumed and trailing blanks are dropped. */
    bool string(std::string& out)
    {
        const std::size_t end = m_data.find('\0', m_pos);
        if (end == std::string_view::npos)
            return false;
        std::string_view s = m_data.substr(m_pos, end - m_pos);
        while (!s.empty() && s.back() == ' ')
            s.remove_suffix(1);
        out.assign(s);
        m_pos = end + 1;
        return true;
    }

private:
    std::uint8_t byteAt(std::size_t i) const { return static_cast<std::uint8_t>(m_data[i]); }

    std::string_view m_data;
    std::size_t m_pos = 0;
};

music::Result fail(int code, std::string message = {})
{
    return music::Result::failure(std::move(message), code);
}

/** Reads the parameter sets of a PARA section; fails with 141, 135 or 131. */
music::Result parseParameterSets(Cursor& c, std::vector<MachineParameterSet>& sets)
{
    std::uint32_t count = 0;
    if (!c.u32(count))
        return fail(Code::kParameterSetCount);
    for (std::uint32_t i = 0; i < count; ++i) {
        MachineParameterSet set;
        if (!c.string(set.machineName) || !c.string(set.dllName) || !c.u32(set.globalCount) ||
            !c.u32(set.trackCount))
            return fail(Code::kParameterSet);
        // Each description takes at least 22 bytes: check before reserving.
        const std::uint64_t total = std::uint64_t{set.globalCount} + set.trackCount;
        if (total * 22 > c.remaining())
            return fail(Code::kParameterDescription);
        set.parameters.reserve(static_cast<std::size_t>(total));
        for (std::uint64_t p = 0; p < total; ++p) {
            ParameterDescription d;
            if (!c.u8(d.type) || !c.string(d.name) || !c.i32(d.minimum) || !c.i32(d.maximum) ||
                !c.i32(d.noValue) || !c.i32(d.flags) || !c.i32(d.defaultValue))
                return fail(Code::kParameterDescription);
            set.parameters.push_back(std::move(d));
        }
        sets.push_back(std::move(set));
    }
    return music::Result::success();
}

/** Index and name of each wave of a waves table; stops quietly where the table is not understood.
 */
std::vector<WaveEntry> parseWaves(const std::vector<std::uint8_t>& table)
{
    std::vector<WaveEntry> waves;
    Cursor c(std::string_view(reinterpret_cast<const char*>(table.data()), table.size()));
    std::uint16_t count = 0;
    if (!c.u16(count))
        return waves;
    for (std::uint16_t i = 0; i < count; ++i) {
        WaveEntry wave;
        std::string fileName;
        std::uint32_t volume = 0;
        std::uint8_t flags = 0;
        if (!c.u16(wave.index) || !c.string(fileName) || !c.string(wave.name) || !c.u32(volume) ||
            !c.u8(flags))
            return waves;
        waves.push_back(wave);
        if (flags & 0x80) {
            std::uint16_t envelopes = 0;
            if (!c.u16(envelopes))
                return waves;
            for (std::uint16_t e = 0; e < envelopes; ++e) {
                std::uint16_t points = 0;
                if (!c.seek(c.position() + 10) || !c.u16(points) ||
                    !c.seek(c.position() + std::size_t{points & 0x7FFFu} * 5))
                    return waves;
            }
        }
        std::uint8_t levels = 0;
        if (!c.u8(levels) || !c.seek(c.position() + std::size_t{levels} * 17))
            return waves;
    }
    return waves;
}

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

/** One read: the cursor, the song being built and the lazily parsed PARA of the song. */
class SongReader::Parser
{
public:
    Parser(SongReader& reader, std::string_view data, std::shared_ptr<const std::string> file)
        : m_reader(reader), m_data(data), m_c(data), m_file(std::move(file))
    {}

    music::Result run(BuzzSong& song);

private:
    const SectionEntry* section(std::string_view name) const;
    bool seekTo(const SectionEntry& entry) { return m_c.seek(entry.offset); }
    music::Result readHeader();
    music::Result readConnections();
    music::Result readMachines();
    music::Result readMachine(SongMachine& machine);
    music::Result resolve(SongMachine& machine);
    music::Result learn(SongMachine& machine, const MachineParameterSet& set);
    void useSongDescription(SongMachine& machine, const MachineParameterSet& set);
    music::Result checkSectionEnd(const SectionEntry& entry, int code, const std::string& what);
    std::string rescanHint() const;
    void noteEnd(const SectionEntry& entry)
    {
        m_parsed.push_back({entry.name, std::uint64_t{entry.offset} + entry.size, m_c.position()});
    }
    music::Result readSequences();
    music::Result readMidi();
    music::Result readParameterWindows();
    music::Result readPatterns();
    music::Result readRaw(const SectionEntry& entry, std::vector<std::uint8_t>& out);
    const MachineParameterSet* songParameterSet(const std::string& machineName);
    std::uint16_t peekTrackCount(const MachineParameterSet& set);
    std::uint16_t peekPatternTrackCount();

    SongReader& m_reader;
    std::string_view m_data;
    Cursor m_c;
    BuzzSong m_song;
    std::size_t m_searched = 0; // directory entries the sections are looked up in
    std::optional<std::vector<MachineParameterSet>> m_songSets;
    std::vector<ParsedSection> m_parsed;
    std::vector<std::string> m_unconfirmed;    // machines read by a layout the song doesn't confirm
    std::shared_ptr<const std::string> m_file; // m_data's owner when the wave data may stay in it
};

const SectionEntry* SongReader::Parser::section(std::string_view name) const
{
    for (std::size_t i = 0; i < m_searched; ++i) {
        if (music::equalsIgnoringCase(m_song.directory()[i].name, name))
            return &m_song.directory()[i];
    }
    return nullptr;
}

music::Result SongReader::Parser::readHeader()
{
    std::string magic;
    std::uint32_t count = 0;
    if (!m_c.text(4, magic))
        return fail(Code::kHeader);
    if (!music::equalsIgnoringCase(magic, "BUZZ"))
        return fail(Code::kNotBuzzFile, "Error:\nno Buzzfile");
    if (!m_c.u32(count))
        return fail(Code::kHeader);
    m_song.setMagic(magic);
    m_song.setSectionCount(count);
    for (std::size_t i = 0; i < BuzzSong::kDirectoryEntries; ++i) {
        SectionEntry entry;
        if (!m_c.text(4, entry.name) || !m_c.u32(entry.offset) || !m_c.u32(entry.size))
            return fail(Code::kDirectoryEntry);
        m_song.directory().push_back(std::move(entry));
    }
    m_searched = std::min<std::size_t>(count, BuzzSong::kDirectoryEntries);
    return music::Result::success();
}

music::Result SongReader::Parser::readConnections()
{
    std::uint16_t count = 0;
    if (!m_c.u16(count))
        return fail(Code::kConnectionCount);
    if (std::size_t{count} * 8 > m_c.remaining())
        return fail(Code::kConnection);
    auto& connections = m_song.connections();
    connections.resize(count);
    for (SongConnection& connection : connections) {
        m_c.u16(connection.source);
        m_c.u16(connection.destination);
        m_c.u16(connection.amplitude);
        m_c.u16(connection.panning);
    }
    return music::Result::success();
}

const MachineParameterSet* SongReader::Parser::songParameterSet(const std::string& machineName)
{
    if (!m_songSets) {
        m_songSets.emplace();
        if (const SectionEntry* para = section("PARA")) {
            Cursor c(m_data);
            if (!c.seek(para->offset) || !parseParameterSets(c, *m_songSets))
                m_songSets->clear();
        }
    }
    for (const MachineParameterSet& set : *m_songSets) {
        if (set.machineName == machineName)
            return &set;
    }
    return nullptr;
}

std::uint16_t SongReader::Parser::peekTrackCount(const MachineParameterSet& set)
{
    std::size_t globalRow = 0;
    for (std::size_t i = 0; i < set.parameters.size() && i < set.globalCount; ++i)
        globalRow += BuzzSong::parameterWidth(set.parameters[i].type);
    Cursor c(m_data);
    std::uint16_t tracks = 0;
    if (!c.seek(m_c.position() + globalRow) || !c.u16(tracks))
        return 0;
    return tracks;
}

std::uint16_t SongReader::Parser::peekPatternTrackCount()
{
    // The block of the machine being read follows those of the machines read before it, whose
    // row sizes are known by now.
    const SectionEntry* patt = section("PATT");
    Cursor c(m_data);
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

music::Result SongReader::Parser::learn(SongMachine& machine, const MachineParameterSet& set)
{
    // The track range is the song's evidence: the tracks the machine and its patterns use.
    const std::uint16_t tracks = std::max(peekTrackCount(set), peekPatternTrackCount());
    std::optional<MachineDatabaseEntry> entry = entryFromParameterSet(set, machine.type, tracks);
    if (!entry)
        return fail(Code::kUnknownMachine, unknownMachineMessage(machine.name, machine.dllName));
    entry->dllName = machine.isMaster() ? std::string("Master") : machine.dllName;
    entry->shortName = entry->dllName + std::string(MachineDatabaseEntry::kLearnedMark);
    if (const music::Result learned = m_reader.m_catalog.learn(*entry); !learned)
        return fail(Code::kUnknownMachine, learned.message());
    return music::Result::success();
}

void SongReader::Parser::useSongDescription(SongMachine& machine, const MachineParameterSet& set)
{
    std::optional<MachineDatabaseEntry> own =
        entryFromParameterSet(set, machine.description.type, 0);
    if (!own)
        return;
    // Only the layout comes from the song; names, kind and track range stay the database's.
    own->dllName = machine.description.dllName;
    own->shortName = machine.description.shortName;
    own->minTracks = machine.description.minTracks;
    own->maxTracks = machine.description.maxTracks;
    machine.description = std::move(*own);
    m_reader.m_warnings.push_back(parameterMismatchWarning(machine.name, machine.dllName));
}

music::Result SongReader::Parser::resolve(SongMachine& machine)
{
    MachineCatalog& catalog = m_reader.m_catalog;
    UnknownMachineHandler* handler = m_reader.m_handler;
    const std::string key = machine.isMaster() ? std::string("Master") : machine.dllName;
    const std::string message = unknownMachineMessage(machine.name, machine.dllName);
    const MachineParameterSet* set = songParameterSet(machine.name);

    // A machine the song describes is offered for learning first; declined, it is offered for a
    // DLL scan like any other unknown machine.
    std::size_t index = catalog.findByDllName(key);
    bool learnOffered = set == nullptr;
    int scans = 0;
    while (index == MachineDatabase::kNotFound) {
        if (handler == nullptr)
            return fail(Code::kUnknownMachine, message);
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
            return fail(Code::kUnknownMachine, message);
        const std::optional<std::filesystem::path> dll = handler->chooseDllToScan(message);
        if (!dll)
            return fail(Code::kUnknownMachine, message);
        ++scans;
        bool changed = false;
        const music::Result scanned = catalog.scanDll(*dll, changed);
        if (!scanned) {
            handler->scanFailed(scanned);
            return fail(Code::kUnknownMachine, message);
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

std::string SongReader::Parser::rescanHint() const
{
    if (m_unconfirmed.empty())
        return "The song may be damaged.";
    std::string hint = "Scan the DLLs of these machines again:";
    for (const std::string& machine : m_unconfirmed)
        hint += "\n" + machine;
    return hint;
}

music::Result SongReader::Parser::checkSectionEnd(const SectionEntry& entry, int code,
                                                  const std::string& what)
{
    const std::uint64_t start = entry.offset;
    if (m_c.position() == start + entry.size)
        return music::Result::success();
    return fail(code, "The " + what + " of the song do not match machines.ini: the " + entry.name +
                          " section holds " + std::to_string(entry.size) +
                          " bytes, but they take " + std::to_string(m_c.position() - start) +
                          ".\n" + rescanHint());
}

music::Result SongReader::Parser::readMachine(SongMachine& m)
{
    std::uint32_t dataSize = 0;
    std::uint16_t attributeCount = 0;
    if (!m_c.string(m.name) || !m_c.u8(m.type))
        return fail(Code::kMachineRecord);
    if (m.type != 0) {
        if (!m_c.string(m.dllName))
            return fail(Code::kMachineRecord);
        if (music::equalsIgnoringCase(m.dllName, "0Jeskola Tracker"))
            m.dllName = "Jeskola Tracker";
    }
    if (!m_c.u32(m.x) || !m_c.u32(m.y) || !m_c.u32(dataSize) || !m_c.bytes(dataSize, m.data) ||
        !m_c.u16(attributeCount))
        return fail(Code::kMachineRecord);
    for (std::uint16_t i = 0; i < attributeCount; ++i) {
        MachineAttribute attribute;
        if (!m_c.string(attribute.name))
            return fail(Code::kMachineRecord);
        if (!m_c.i32(attribute.value))
            return fail(Code::kAttribute);
        m.attributes.push_back(std::move(attribute));
    }

    if (const music::Result resolved = resolve(m); !resolved)
        return resolved;

    MachineCatalog& catalog = m_reader.m_catalog;
    if (!m.isMaster() && !catalog.hasMachineData(m.dllName)) {
        MachineCatalog::Attributes attributes;
        for (const MachineAttribute& a : m.attributes)
            attributes.emplace_back(a.name, a.value);
        catalog.addMachineData(m.dllName, m.data, std::move(attributes));
    }

    if (!m_c.bytes(m.globalRowSize, m.globalState) || !m_c.u16(m.trackCount) ||
        !m_c.bytes(std::uint64_t{m.trackRowSize} * m.trackCount, m.trackState))
        return fail(Code::kMachineRecord);
    return music::Result::success();
}

music::Result SongReader::Parser::readMachines()
{
    std::uint16_t count = 0;
    if (!m_c.u16(count))
        return fail(Code::kMachineRecord);
    m_reader.m_catalog.loadMachineData();
    for (std::uint16_t i = 0; i < count; ++i) {
        SongMachine machine;
        if (const music::Result r = readMachine(machine); !r) {
            m_song.machines().clear();
            return r;
        }
        m_song.machines().push_back(std::move(machine));
    }
    m_reader.m_catalog.saveMachineData();
    return music::Result::success();
}

music::Result SongReader::Parser::readSequences()
{
    std::uint32_t end = 0;
    std::uint32_t loopStart = 0;
    std::uint32_t loopEnd = 0;
    std::uint16_t count = 0;
    if (!m_c.u32(end) || !m_c.u32(loopStart) || !m_c.u32(loopEnd) || !m_c.u16(count))
        return fail(Code::kSongLength);
    m_song.setSongLength(end, loopStart, loopEnd);
    auto& sequences = m_song.sequences();
    for (std::uint16_t i = 0; i < count; ++i) {
        SongSequence sequence;
        std::uint32_t events = 0;
        if (!m_c.u16(sequence.machine) || !m_c.u32(events)) {
            sequences.clear();
            return fail(Code::kSequenceHeader);
        }
        if (events != 0) {
            if (!m_c.u8(sequence.positionWidth) || !m_c.u8(sequence.eventWidth)) {
                sequences.clear();
                return fail(Code::kSequenceHeader);
            }
            if (sequence.eventWidth > 2 || sequence.positionWidth > 2 ||
                sequence.positionWidth == 0) {
                sequences.clear();
                return fail(Code::kEventWidth);
            }
            if (sequence.eventWidth == 0) {
                sequences.clear();
                return fail(Code::kEventWidthZero);
            }
            const std::uint64_t width = sequence.positionWidth + sequence.eventWidth;
            if (std::uint64_t{events} * width > m_c.remaining()) {
                sequences.clear();
                return fail(Code::kSequenceEvent);
            }
            sequence.events.resize(events);
            for (SequenceEvent& event : sequence.events) {
                m_c.sized(sequence.positionWidth, event.position);
                m_c.sized(sequence.eventWidth, event.value);
            }
        }
        sequences.push_back(std::move(sequence));
    }
    return music::Result::success();
}

// MIDI and PDLG entries: a probe byte of 0 ends the list. Otherwise the position is noted after
// the probe and the reader steps back one byte from it, so the entry is read from the probe byte
// on. Stepping back from the position before the probe instead would take the byte in front of
// the entry into its name and lose track of every later entry (songs with two open parameter
// windows would no longer load).
music::Result SongReader::Parser::readMidi()
{
    for (;;) {
        std::uint8_t probe = 0;
        if (!m_c.u8(probe))
            return fail(Code::kMidiProbe);
        if (probe == 0)
            return music::Result::success();
        const std::size_t noted = m_c.position();
        MidiBinding binding;
        if (!m_c.seek(noted - 1) || !m_c.string(binding.machineName) || !m_c.array(binding.bytes))
            return fail(Code::kMidiEntry);
        m_song.midiBindings().push_back(std::move(binding));
    }
}

music::Result SongReader::Parser::readParameterWindows()
{
    std::uint8_t flag = 0;
    if (!m_c.u8(flag))
        return fail(Code::kPdlg);
    m_song.setParameterWindowFlag(flag);
    for (;;) {
        std::uint8_t probe = 0;
        if (!m_c.u8(probe))
            return fail(Code::kPdlg);
        if (probe == 0)
            return music::Result::success();
        const std::size_t noted = m_c.position();
        ParameterWindow window;
        if (!m_c.seek(noted - 1) || !m_c.string(window.machineName) || !m_c.array(window.data))
            return fail(Code::kPdlg);
        m_song.parameterWindows().push_back(std::move(window));
    }
}

music::Result SongReader::Parser::readPatterns()
{
    auto& blocks = m_song.patternBlocks();
    for (std::size_t m = 0; m < m_song.machineCount(); ++m) {
        const SongMachine& machine = m_song.machines()[m];
        const std::size_t inputCount = m_song.inputsOf(m).size();
        MachinePatterns block;
        std::uint16_t patternCount = 0;
        if (!m_c.u16(patternCount) || !m_c.u16(block.trackCount))
            return fail(Code::kPatternBlockHeader);
        for (std::uint16_t p = 0; p < patternCount; ++p) {
            SongPattern pattern;
            if (!m_c.string(pattern.name) || !m_c.u16(pattern.rows))
                return fail(Code::kPatternHeader);
            const std::uint64_t rows = pattern.rows;
            const std::uint64_t inputBytes = rows * 4 + 2;
            if (inputBytes * inputCount > m_c.remaining())
                return fail(Code::kPatternRows);
            pattern.inputs.resize(inputCount);
            for (auto& input : pattern.inputs)
                m_c.bytes(inputBytes, input);
            if (!m_c.bytes(rows * machine.globalRowSize, pattern.globalRows) ||
                !m_c.bytes(rows * machine.trackRowSize * block.trackCount, pattern.trackRows))
                return fail(Code::kPatternRows);
            block.patterns.push_back(std::move(pattern));
        }
        blocks.push_back(std::move(block));
    }
    return music::Result::success();
}

music::Result SongReader::Parser::readRaw(const SectionEntry& entry, std::vector<std::uint8_t>& out)
{
    if (!m_c.seek(entry.offset) || !m_c.bytes(entry.size, out))
        return fail(Code::kDirectoryEntry);
    return music::Result::success();
}

music::Result SongReader::Parser::run(BuzzSong& song)
{
    if (music::Result r = readHeader(); !r)
        return r;

    if (const SectionEntry* conn = section("CONN")) {
        m_c.seekClamped(conn->offset);
        if (music::Result r = readConnections(); !r)
            return r;
        noteEnd(*conn);
    }
    if (music::Result r = m_reader.m_catalog.loadDatabase(); !r)
        return r;
    if (const SectionEntry* mach = section("MACH")) {
        if (!seekTo(*mach))
            return fail(Code::kMachineSeek);
        if (music::Result r = readMachines(); !r)
            return r;
        if (music::Result r = checkSectionEnd(*mach, Code::kMachineRecord, "machines"); !r)
            return r;
        noteEnd(*mach);
    }
    if (const SectionEntry* sequ = section("SEQU")) {
        m_c.seekClamped(sequ->offset);
        if (music::Result r = readSequences(); !r)
            return r;
        noteEnd(*sequ);
    }
    if (const SectionEntry* midi = section("MIDI")) {
        m_c.seekClamped(midi->offset);
        if (music::Result r = readMidi(); !r)
            return r;
        noteEnd(*midi);
    }
    if (const SectionEntry* pdlg = section("PDLG")) {
        m_c.seekClamped(pdlg->offset);
        if (music::Result r = readParameterWindows(); !r)
            return r;
        noteEnd(*pdlg);
    }
    if (const SectionEntry* patt = section("PATT")) {
        m_c.seekClamped(patt->offset);
        if (music::Result r = readPatterns(); !r)
            return r;
        if (music::Result r = checkSectionEnd(*patt, Code::kPatternRows, "patterns"); !r)
            return r;
        noteEnd(*patt);
    } else {
        // A song without patterns still gets one empty block per machine.
        for (const SongMachine& machine : m_song.machines())
            m_song.patternBlocks().push_back(MachinePatterns{machine.trackCount, {}});
    }
    if (const SectionEntry* bver = section("BVER")) {
        m_c.seekClamped(bver->offset);
        std::string version;
        if (m_c.string(version))
            m_song.setVersionText(std::move(version));
        noteEnd(*bver);
    }
    if (const SectionEntry* para = section("PARA")) {
        m_c.seekClamped(para->offset);
        if (music::Result r = parseParameterSets(m_c, m_song.parameterSets()); !r)
            return r;
        noteEnd(*para);
    }
    if (const SectionEntry* wavt = section("WAVT")) {
        std::vector<std::uint8_t> table;
        if (music::Result r = readRaw(*wavt, table); !r)
            return r;
        m_song.setWaves(parseWaves(table));
        m_song.setWaveTable(std::move(table));
    }
    m_song.setHasWaveData(true);
    for (const std::string_view name : {"CWAV", "WAVE"}) {
        if (const SectionEntry* wave = section(name)) {
            if (m_file && wave->size >= kShareWaveDataFrom) {
                if (!m_c.seek(wave->offset) || wave->size > m_c.remaining())
                    return fail(Code::kDirectoryEntry);
                m_song.shareWaveData(m_file, wave->offset, wave->size);
                continue;
            }
            std::vector<std::uint8_t> data;
            if (music::Result r = readRaw(*wave, data); !r)
                return r;
            m_song.setWaveData(std::move(data));
        }
    }
    for (std::size_t i = 0; i < m_searched; ++i) {
        const SectionEntry& entry = m_song.directory()[i];
        const bool handled = std::any_of(
            kHandledSections.begin(), kHandledSections.end(),
            [&](std::string_view name) { return music::equalsIgnoringCase(entry.name, name); });
        // An unused directory entry (no name) is no section, even below a too-large count.
        const bool unused = entry.name == std::string(4, '\0');
        if (handled || unused || m_song.rawSections().size() >= BuzzSong::kMaxRawSections)
            continue;
        RawSection raw;
        raw.name = entry.name;
        if (music::Result r = readRaw(entry, raw.bytes); !r)
            return r;
        m_song.rawSections().push_back(std::move(raw));
    }
    song = std::move(m_song);
    m_reader.m_parsedSections = std::move(m_parsed);
    return music::Result::success();
}

music::Result SongReader::readBytes(std::string_view bytes, BuzzSong& song)
{
    m_warnings.clear();
    m_parsedSections.clear();
    try {
        Parser parser(*this, bytes, nullptr);
        return parser.run(song);
    } catch (const std::bad_alloc&) {
        return fail(Code::kPatternAllocation);
    }
}

music::Result SongReader::readShared(std::shared_ptr<const std::string> bytes, BuzzSong& song)
{
    m_warnings.clear();
    m_parsedSections.clear();
    if (!bytes)
        return fail(Code::kHeader);
    try {
        Parser parser(*this, *bytes, bytes);
        return parser.run(song);
    } catch (const std::bad_alloc&) {
        return fail(Code::kPatternAllocation);
    }
}

music::Result SongReader::read(const std::filesystem::path& path, BuzzSong& song)
{
    std::optional<std::string> bytes = music::readFileBytes(path);
    if (!bytes)
        return fail(Code::kHeader);
    BuzzSong read;
    music::Result result = readShared(std::make_shared<const std::string>(std::move(*bytes)), read);
    if (!result)
        return result;
    read.setPath(path);
    song = std::move(read);
    return result;
}

std::optional<MachineDatabaseEntry>
SongReader::entryFromParameterSet(const MachineParameterSet& set, std::uint8_t type,
                                  std::uint16_t tracksInSong)
{
    MachineDatabaseEntry entry;
    entry.dllName = set.dllName;
    entry.shortName = set.dllName + std::string(MachineDatabaseEntry::kLearnedMark);
    entry.type = type;
    std::size_t globalRow = 0;
    std::size_t trackRow = 0;
    std::size_t globals = 0;
    std::size_t tracks = 0;
    for (std::size_t i = 0; i < set.parameters.size(); ++i) {
        const ParameterDescription& d = set.parameters[i];
        MachineParameter p;
        p.name = d.name;
        p.type = d.type;
        p.width = d.type == 3 ? 2 : 1;
        p.scope = i < set.globalCount ? 'g' : 't';
        p.noValue = d.noValue;
        p.defaultValue = d.defaultValue;
        (p.isGlobal() ? globalRow : trackRow) += BuzzSong::parameterWidth(d.type);
        ++(p.isGlobal() ? globals : tracks);
        entry.parameters.push_back(std::move(p));
    }
    constexpr std::size_t kMaxRow = std::numeric_limits<std::uint8_t>::max();
    constexpr std::size_t kMaxCount = std::numeric_limits<std::uint16_t>::max();
    if (globalRow > kMaxRow || trackRow > kMaxRow || entry.parameters.size() > kMaxCount)
        return std::nullopt;
    entry.globalRowSize = static_cast<std::uint8_t>(globalRow);
    entry.trackRowSize = static_cast<std::uint8_t>(trackRow);
    entry.globalParameterCount = static_cast<std::uint16_t>(globals);
    entry.trackParameterCount = static_cast<std::uint16_t>(tracks);
    entry.totalParameterCount = static_cast<std::uint16_t>(entry.parameters.size());
    entry.minTracks = tracks > 0 ? 1 : 0;
    entry.maxTracks = tracks > 0 ? std::max<std::uint16_t>(1, tracksInSong) : tracksInSong;
    return entry;
}

std::string SongReader::parameterMismatchWarning(const std::string& name,
                                                 const std::string& dllName)
{
    return "machines.ini describes the parameters of machine " + name + " (" + dllName +
           ") differently from the song; the song's own descriptions are used.\nScan the "
           "machine's DLL again to bring machines.ini up to date.";
}

std::string SongReader::unknownMachineMessage(const std::string& name, const std::string& dllName)
{
    return "machine unknown\n" + name + "\n" + dllName + "\nplease scan your gear-directory";
}

} // namespace song
