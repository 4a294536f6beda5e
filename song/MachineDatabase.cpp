#include "song/MachineDatabase.h"

#include "music/FileBytes.h"
#include "music/TextLineReader.h"

#include <string>

namespace song {

namespace {

constexpr std::string_view kFileName = "machines.ini";
constexpr std::string_view kNotFoundMessage =
    "machines.ini not found\n please scan the buzz\\gear-directory";
constexpr std::string_view kDamagedMessage =
    "machines.ini is damaged\n please scan the buzz\\gear-directory";

/** Reads lines and notes when one was wanted after the end of the data. */
class LineSource
{
public:
    explicit LineSource(std::string_view data) : m_reader(data) {}

    std::string line()
    {
        if (m_reader.atEnd())
            m_short = true;
        return m_reader.readLine();
    }
    std::int32_t number() { return music::TextLineReader::toInt(line()); }
    bool isShort() const { return m_short; }

private:
    music::TextLineReader m_reader;
    bool m_short = false;
};

bool readEntry(LineSource& in, MachineDatabaseEntry& entry)
{
    entry.dllName = in.line();
    entry.shortName = in.line();
    entry.type = static_cast<std::uint8_t>(in.number());
    entry.minTracks = static_cast<std::uint16_t>(in.number());
    entry.maxTracks = static_cast<std::uint16_t>(in.number());
    entry.totalParameterCount = static_cast<std::uint16_t>(in.number());
    entry.globalParameterCount = static_cast<std::uint16_t>(in.number());
    entry.trackParameterCount = static_cast<std::uint16_t>(in.number());
    entry.globalRowSize = static_cast<std::uint8_t>(in.number());
    entry.trackRowSize = static_cast<std::uint8_t>(in.number());
    if (in.isShort())
        return false;

    // The parameter lines follow the global and track counts. The built-in mixer entry states a
    // total of 0 above its eight parameters; following the total would misread every later entry.
    const std::size_t count =
        std::size_t{entry.globalParameterCount} + std::size_t{entry.trackParameterCount};
    entry.parameters.clear();
    for (std::size_t i = 0; i < count; ++i) {
        MachineParameter p;
        p.name = in.line();
        p.width = static_cast<std::uint8_t>(in.number());
        const std::string scope = in.line();
        p.scope = scope.empty() ? 'g' : scope[0];
        p.type = in.number();
        p.noValue = in.number();
        p.defaultValue = in.number();
        if (in.isShort())
            return false;
        entry.parameters.push_back(std::move(p));
    }
    return true;
}

/** A text line as the file can hold it: no line breaks inside. */
std::string oneLine(std::string_view text)
{
    std::string line(text);
    for (char& c : line) {
        if (c == '\n' || c == '\r' || c == '\0')
            c = ' ';
    }
    return line;
}

MachineDatabaseEntry builtIn(std::string dllName, std::string shortName, std::uint8_t type,
                             std::uint16_t minTracks, std::uint16_t maxTracks, std::uint16_t total,
                             std::uint16_t global, std::uint16_t track, std::uint8_t globalRow,
                             std::uint8_t trackRow, std::vector<MachineParameter> parameters)
{
    MachineDatabaseEntry e;
    e.dllName = std::move(dllName);
    e.shortName = std::move(shortName);
    e.type = type;
    e.minTracks = minTracks;
    e.maxTracks = maxTracks;
    e.totalParameterCount = total;
    e.globalParameterCount = global;
    e.trackParameterCount = track;
    e.globalRowSize = globalRow;
    e.trackRowSize = trackRow;
    e.parameters = std::move(parameters);
    return e;
}

MachineParameter byteParameter(std::string name, char scope)
{
    MachineParameter p;
    p.name = std::move(name);
    p.width = 1;
    p.scope = scope;
    p.type = static_cast<int>(ParameterType::Byte);
    return p;
}

} // namespace

int MachineDatabaseEntry::findParameter(std::string_view name) const
{
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (music::equalsIgnoringCase(parameters[i].name, name))
            return static_cast<int>(i);
    }
    return -1;
}

music::Result MachineDatabase::load(const std::filesystem::path& directory)
{
    clear();
    const auto bytes = music::readFileBytes(directory / kFileName);
    if (!bytes)
        return music::Result::failure(std::string(kNotFoundMessage), kErrorNotFound);

    LineSource in(*bytes);
    const auto count = static_cast<std::uint16_t>(in.number());
    if (in.isShort())
        return music::Result::failure(std::string(kDamagedMessage), kErrorNotFound);

    std::vector<MachineDatabaseEntry> entries;
    entries.reserve(count);
    for (std::uint16_t i = 0; i < count; ++i) {
        MachineDatabaseEntry entry;
        if (!readEntry(in, entry))
            return music::Result::failure(std::string(kDamagedMessage), kErrorNotFound);
        entries.push_back(std::move(entry));
    }
    m_entries = std::move(entries);
    m_countAsRead = count;
    return music::Result::success();
}

void MachineDatabase::clear()
{
    m_entries.clear();
    m_countAsRead = 0;
}

std::size_t MachineDatabase::findByDllName(std::string_view dllName) const
{
    std::size_t found = kNotFound;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        if (music::equalsIgnoringCase(m_entries[i].dllName, dllName))
            found = i;
    }
    return found;
}

std::vector<MachineDatabaseEntry> MachineDatabase::builtInEntries()
{
    const auto word = [](std::string name, std::int32_t noValue, std::int32_t defaultValue) {
        MachineParameter p;
        p.name = std::move(name);
        p.width = 2;
        p.scope = 'g';
        p.type = static_cast<int>(ParameterType::Word);
        p.noValue = noValue;
        p.defaultValue = defaultValue;
        return p;
    };
    MachineParameter tpb = byteParameter("Tpb", 'g');
    tpb.noValue = 4;
    tpb.defaultValue = 4;

    std::vector<MachineParameter> freeverb;
    for (const char* name : {"Reverberation Time", "High frequency damping", "Pre delay", "Low Cut",
                             "High Cut", "Reverb Output Level", "Dry Output Level"})
        freeverb.push_back(byteParameter(name, 'g'));

    std::vector<MachineParameter> mixer;
    for (const char* name :
         {"Level", "Pan", "EQ Low", "EQ Mid", "EQ High", "Mode", "Aux 1 Send", "Aux 2 Send"})
        mixer.push_back(byteParameter(name, 't'));

    std::vector<MachineDatabaseEntry> entries;
    entries.push_back(builtIn("Master", "Master", 0, 0, 256, 3, 3, 0, 5, 0,
                              {word("Volume", 0, 0), word("Bpm", 120, 120), tpb}));
    entries.push_back(
        builtIn("Jeskola Freeverb", "Freeverb", 2, 0, 8, 7, 7, 0, 7, 0, std::move(freeverb)));
    entries.push_back(builtIn("Jeskola Aux Return", "AuxReturn", 1, 1, 1, 1, 1, 0, 1, 0,
                              {byteParameter("dummy", 'g')}));
    entries.push_back(builtIn("Jeskola Mixer Aux", "Mixer Aux", 1, 1, 1, 1, 1, 0, 1, 0,
                              {byteParameter("dummy", 'g')}));
    // The mixer's total count is 0 as the program has always written it.
    entries.push_back(
        builtIn("Jeskola Mixer", "Mixer", 2, 16, 16, 0, 0, 8, 0, 8, std::move(mixer)));
    return entries;
}

std::string MachineDatabase::formatEntry(const MachineDatabaseEntry& entry)
{
    std::string out;
    const auto text = [&out](std::string_view value) {
        out += oneLine(value);
        out += '\n';
    };
    const auto number = [&out](long long value) {
        out += std::to_string(value);
        out += '\n';
    };
    text(entry.dllName);
    text(entry.shortName);
    number(entry.type);
    number(entry.minTracks);
    number(entry.maxTracks);
    number(entry.totalParameterCount);
    number(entry.globalParameterCount);
    number(entry.trackParameterCount);
    number(entry.globalRowSize);
    number(entry.trackRowSize);
    for (const MachineParameter& p : entry.parameters) {
        text(p.name);
        number(p.width);
        text(std::string_view(&p.scope, 1));
        number(p.type);
        number(p.noValue);
        number(p.defaultValue);
    }
    return out;
}

} // namespace song
