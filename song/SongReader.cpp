#include "song/SongReader.h"

#include "music/FileBytes.h"
#include "music/TextLineReader.h"
#include "song/ByteCursor.h"
#include "song/FileErrorCode.h"
#include "song/MachineSectionReader.h"
#include "song/SongSectionReaders.h"

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

music::Result fail(int code, std::string message = {})
{
    return sectionFailure(code, std::move(message));
}

} // namespace

/** One read: the cursor, the song being built and what the section readers found. */
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
    music::Result readMachines();
    std::string rescanHint() const;
    music::Result checkSectionEnd(const SectionEntry& entry, int code, const std::string& what);
    void noteEnd(const SectionEntry& entry)
    {
        m_parsed.push_back({entry.name, std::uint64_t{entry.offset} + entry.size, m_c.position()});
    }
    music::Result readRaw(const SectionEntry& entry, std::vector<std::uint8_t>& out);

    SongReader& m_reader;
    std::string_view m_data;
    ByteCursor m_c;
    BuzzSong m_song;
    std::size_t m_searched = 0; // directory entries the sections are looked up in
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

music::Result SongReader::Parser::readMachines()
{
    MachineSectionReader machines(m_c, m_data, m_song, m_reader.m_catalog, m_reader.m_handler,
                                  m_reader.m_warnings, section("PARA"), section("PATT"));
    if (music::Result r = machines.readMachines(); !r)
        return r;
    m_unconfirmed = machines.unconfirmed();
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

music::Result SongReader::Parser::readRaw(const SectionEntry& entry, std::vector<std::uint8_t>& out)
{
    if (!m_c.seek(entry.offset) || !m_c.bytes(entry.size, out))
        return fail(Code::kDirectoryEntry);
    return music::Result::success();
}

music::Result SongReader::Parser::run(BuzzSong& song)
{
    if (music::Result r = readSongHeader(m_c, m_song); !r)
        return r;
    m_searched = std::min<std::size_t>(m_song.sectionCount(), BuzzSong::kDirectoryEntries);

    if (const SectionEntry* conn = section("CONN")) {
        m_c.seekClamped(conn->offset);
        if (music::Result r = readConnections(m_c, m_song); !r)
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
        if (music::Result r = readSequences(m_c, m_song); !r)
            return r;
        noteEnd(*sequ);
    }
    if (const SectionEntry* midi = section("MIDI")) {
        m_c.seekClamped(midi->offset);
        if (music::Result r = readMidiBindings(m_c, m_song); !r)
            return r;
        noteEnd(*midi);
    }
    if (const SectionEntry* pdlg = section("PDLG")) {
        m_c.seekClamped(pdlg->offset);
        if (music::Result r = readParameterWindows(m_c, m_song); !r)
            return r;
        noteEnd(*pdlg);
    }
    if (const SectionEntry* patt = section("PATT")) {
        m_c.seekClamped(patt->offset);
        if (music::Result r = readPatterns(m_c, m_song); !r)
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
        if (music::Result r = readParameterSets(m_c, m_song.parameterSets()); !r)
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
