#pragma once

#include "midi/MidiPortList.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace midi {

/**
 * The MIDI settings and the machine-list filter that survive a restart, kept in the settings
 * file "Tonalmancer.ini" of the data folder: a header line and one value per line in a fixed
 * order (2059 lines), not a sectioned INI file.
 *
 * The playback channel, port, program and program table are only taken from the file when the
 * stored device number still names a device of the same name (ignoring case), so a table made
 * for one synth is not applied to another. The device number itself is kept as read even when
 * it names no device any more.
 *
 * Lines after the 2059 fixed ones are "key=value" lines, so that the fixed layout stays as every
 * reader of the file knows it: "midi-input=NAME" keeps the chosen MIDI input device by its
 * stable name (written only when one is chosen). Lines there that this program does not know are
 * kept and written back unchanged after its own.
 */
class MidiSettings
{
public:
    static constexpr std::string_view kFileName = "Tonalmancer.ini";
    static constexpr std::string_view kHeader = "Tonalmancer Settings";
    static constexpr std::string_view kNoDeviceName = "no";
    static constexpr std::uint16_t kNoDevice = 255;
    static constexpr int kPorts = 128;
    static constexpr int kChannels = 16;
    static constexpr std::size_t kProgramTableSize = kPorts * kChannels;
    static constexpr int kLineCount = 11 + static_cast<int>(kProgramTableSize);
    /** The key of the line after the fixed ones that names the MIDI input device. */
    static constexpr std::string_view kInputDeviceKey = "midi-input";

    using ProgramTable = std::array<std::uint8_t, kProgramTableSize>;

    /** The settings of a fresh start: filter 4 (All), velocity 80, no device, all else 0. */
    MidiSettings() = default;

    /**
     * Reads the settings file; defaults for everything not read (missing file, wrong header,
     * device gone or renamed). Device names come from `ports`. Never fails.
     */
    static MidiSettings read(const std::filesystem::path& file, MidiPortList& ports);
    /** Reads the file's content, as read() does. */
    static MidiSettings parse(std::string_view content, MidiPortList& ports);

    /**
     * The file's content. The device name is fetched anew from `ports` ("no" for device 255);
     * throws CMIDIOutException when the device number names no device.
     */
    std::string serialize(MidiPortList& ports) const;
    /**
     * Saves the file safely (the old one stays until the new one is complete). False when it
     * cannot be written; throws CMIDIOutException as serialize() does, before touching the file.
     */
    bool write(const std::filesystem::path& file, MidiPortList& ports) const;

    /** Machine list filter: 0 Generators, 1 Synths, 2 Samplers, 3 Effects, 4 All. */
    std::uint8_t machineFilter() const { return m_machineFilter; }
    void setMachineFilter(std::uint8_t filter) { m_machineFilter = filter; }
    /** Non-zero: the tempo is written into MIDI files. */
    std::uint16_t writeBpm() const { return m_writeBpm; }
    void setWriteBpm(std::uint16_t flag) { m_writeBpm = flag; }
    /** Channel of the notes in written MIDI files, 0..15. */
    std::uint16_t midiFileChannel() const { return m_midiFileChannel; }
    void setMidiFileChannel(std::uint16_t channel) { m_midiFileChannel = channel; }
    /** Velocity the notes are played and written with. */
    std::uint16_t velocity() const { return m_velocity; }
    void setVelocity(std::uint16_t velocity) { m_velocity = velocity; }
    /** Program for playback. */
    std::uint16_t program() const { return m_program; }
    void setProgram(std::uint16_t program) { m_program = program; }
    /** Output device number, kNoDevice when none is chosen. */
    std::uint16_t deviceNumber() const { return m_deviceNumber; }
    void setDeviceNumber(std::uint16_t number) { m_deviceNumber = number; }
    /** Playback channel, 0..15. */
    std::uint16_t channel() const { return m_channel; }
    void setChannel(std::uint16_t channel) { m_channel = channel; }
    /** Playback port, 0..127. */
    std::uint16_t port() const { return m_port; }
    void setPort(std::uint16_t port) { m_port = port; }

    /** The chosen MIDI input device by its stable name; empty when none is chosen. */
    const std::string& inputDeviceName() const { return m_inputDeviceName; }
    /** Line breaks in the name are dropped, so that the line stays one line. */
    void setInputDeviceName(std::string name);
    /** Lines after the fixed ones that this program does not know, kept as read. */
    const std::vector<std::string>& otherLines() const { return m_otherLines; }

    /** Program numbers by port and channel, entry port * 16 + channel. */
    const ProgramTable& programTable() const { return m_programTable; }
    void setProgramTable(const ProgramTable& table) { m_programTable = table; }
    /** The table entry of a port (0..127) and channel (0..15); out-of-range values wrap. */
    std::uint8_t programAt(int port, int channel) const;
    void setProgramAt(int port, int channel, std::uint8_t program);

    bool operator==(const MidiSettings&) const = default;

private:
    static std::size_t tableIndex(int port, int channel);
    /** The settings of the lines after the fixed ones of `content`. */
    void parseExtraLines(std::string_view content);

    std::uint8_t m_machineFilter = 4;
    std::uint16_t m_writeBpm = 0;
    std::uint16_t m_midiFileChannel = 0;
    std::uint16_t m_velocity = 80;
    std::uint16_t m_program = 0;
    std::uint16_t m_deviceNumber = kNoDevice;
    std::uint16_t m_channel = 0;
    std::uint16_t m_port = 0;
    ProgramTable m_programTable{};
    std::string m_inputDeviceName;
    std::vector<std::string> m_otherLines;
};

} // namespace midi
