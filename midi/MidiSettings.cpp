#include "midi/MidiSettings.h"

#include "midi/CMIDIOutDevice.h"
#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"

#include <optional>
#include <type_traits>
#include <vector>

namespace midi {

MidiSettings MidiSettings::read(const std::filesystem::path& file, MidiPortList& ports)
{
    const std::optional<std::string> content = music::readFileBytes(file);
    if (!content)
        return MidiSettings();
    return parse(*content, ports);
}

MidiSettings MidiSettings::parse(std::string_view content, MidiPortList& ports)
{
    MidiSettings settings;
    music::TextLineReader reader(content);
    if (!music::equalsIgnoringCase(reader.readLine(), kHeader))
        return settings;
    settings.parseExtraLines(content);

    const auto read16 = [&reader] { return static_cast<std::uint16_t>(reader.readInt()); };
    settings.m_machineFilter = static_cast<std::uint8_t>(reader.readInt());
    settings.m_writeBpm = read16();
    settings.m_midiFileChannel = read16();
    settings.m_velocity = read16();
    settings.m_program = read16();
    settings.m_deviceNumber = read16();
    if (settings.m_deviceNumber == kNoDevice)
        return settings;

    const std::vector<std::string> names = ports.deviceNames();
    if (names.empty() || settings.m_deviceNumber >= names.size())
        return settings;
    if (!music::equalsIgnoringCase(reader.readLine(), names[settings.m_deviceNumber]))
        return settings;

    settings.m_channel = read16();
    settings.m_port = read16();
    settings.m_program = read16();
    for (std::uint8_t& entry : settings.m_programTable)
        entry = static_cast<std::uint8_t>(reader.readInt());
    return settings;
}

std::string MidiSettings::serialize(MidiPortList& ports) const
{
    const std::string deviceName = m_deviceNumber == kNoDevice
                                       ? std::string(kNoDeviceName)
                                       : CMIDIOutDevice::capabilities(m_deviceNumber, &ports).name;
    std::string out;
    out.reserve(kProgramTableSize * 4 + 128);
    const auto line = [&out](const auto& value) {
        if constexpr (std::is_arithmetic_v<std::decay_t<decltype(value)>>)
            out += std::to_string(static_cast<unsigned>(value));
        else
            out += value;
        out += '\n';
    };
    line(kHeader);
    line(m_machineFilter);
    line(m_writeBpm);
    line(m_midiFileChannel);
    line(m_velocity);
    line(m_program);
    line(m_deviceNumber);
    line(deviceName);
    line(m_channel);
    line(m_port);
    line(m_program);
    for (const std::uint8_t entry : m_programTable)
        line(entry);
    if (!m_inputDeviceName.empty())
        line(std::string(kInputDeviceKey) + "=" + m_inputDeviceName);
    for (const std::string& other : m_otherLines)
        line(other);
    return out;
}

void MidiSettings::parseExtraLines(std::string_view content)
{
    music::TextLineReader reader(content);
    for (int i = 0; i < kLineCount; ++i)
        reader.readLine();
    while (!reader.atEnd()) {
        std::string text = reader.readLine();
        if (text.empty())
            continue;
        const std::size_t equals = text.find('=');
        if (equals != std::string::npos &&
            music::equalsIgnoringCase(std::string_view(text).substr(0, equals), kInputDeviceKey))
            m_inputDeviceName = text.substr(equals + 1);
        else
            m_otherLines.push_back(std::move(text));
    }
}

void MidiSettings::setInputDeviceName(std::string name)
{
    std::erase_if(name, [](char c) { return c == '\n' || c == '\r'; });
    m_inputDeviceName = std::move(name);
}

bool MidiSettings::write(const std::filesystem::path& file, MidiPortList& ports) const
{
    return music::writeFileSafely(file, serialize(ports));
}

std::size_t MidiSettings::tableIndex(int port, int channel)
{
    return static_cast<std::size_t>((port & (kPorts - 1)) * kChannels +
                                    (channel & (kChannels - 1)));
}

std::uint8_t MidiSettings::programAt(int port, int channel) const
{
    return m_programTable[tableIndex(port, channel)];
}

void MidiSettings::setProgramAt(int port, int channel, std::uint8_t program)
{
    m_programTable[tableIndex(port, channel)] = program;
}

} // namespace midi
