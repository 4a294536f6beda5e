#pragma once

#include "music/Utf8Path.h"
#include "song/MachineParameterSet.h"
#include "song/MachinePatterns.h"
#include "song/MidiBinding.h"
#include "song/ParameterWindow.h"
#include "song/RawSection.h"
#include "song/SectionEntry.h"
#include "song/SongConnection.h"
#include "song/SongMachine.h"
#include "song/SongSequence.h"
#include "song/WaveEntry.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace song {

/**
 * A Buzz song held whole in memory: the sections the program changes are parsed, the others are
 * kept raw so that the writer can put them back unchanged.
 *
 * Machines, pattern blocks and connections refer to machines by index (position in the MACH list);
 * parameter sets, MIDI bindings and parameter windows by machine name. There is one pattern block
 * per machine, in machine order. Methods taking a machine, pattern or track index expect it in
 * range unless they say otherwise.
 */
class BuzzSong
{
public:
    /** What lookups by name return when nothing matches. */
    static constexpr std::size_t kNameNotFound = 12200;
    static constexpr std::size_t kMaxRawSections = 16;
    static constexpr std::size_t kDirectoryEntries = 31;

    // Header as read.
    const std::string& magic() const { return m_magic; }
    void setMagic(std::string magic) { m_magic = std::move(magic); }
    std::uint32_t sectionCount() const { return m_sectionCount; }
    void setSectionCount(std::uint32_t count) { m_sectionCount = count; }
    const std::vector<SectionEntry>& directory() const { return m_directory; }
    std::vector<SectionEntry>& directory() { return m_directory; }

    /** The song's own version text (BVER) as read; the writer stamps its own banner. */
    const std::string& versionText() const { return m_versionText; }
    void setVersionText(std::string text) { m_versionText = std::move(text); }

    const std::vector<SongConnection>& connections() const { return m_connections; }
    std::vector<SongConnection>& connections() { return m_connections; }
    const std::vector<SongMachine>& machines() const { return m_machines; }
    std::vector<SongMachine>& machines() { return m_machines; }
    const std::vector<MachinePatterns>& patternBlocks() const { return m_patternBlocks; }
    std::vector<MachinePatterns>& patternBlocks() { return m_patternBlocks; }
    const std::vector<SongSequence>& sequences() const { return m_sequences; }
    std::vector<SongSequence>& sequences() { return m_sequences; }
    const std::vector<MachineParameterSet>& parameterSets() const { return m_parameterSets; }
    std::vector<MachineParameterSet>& parameterSets() { return m_parameterSets; }
    const std::vector<MidiBinding>& midiBindings() const { return m_midiBindings; }
    std::vector<MidiBinding>& midiBindings() { return m_midiBindings; }
    const std::vector<ParameterWindow>& parameterWindows() const { return m_parameterWindows; }
    std::vector<ParameterWindow>& parameterWindows() { return m_parameterWindows; }
    std::uint8_t parameterWindowFlag() const { return m_parameterWindowFlag; }
    void setParameterWindowFlag(std::uint8_t flag) { m_parameterWindowFlag = flag; }
    const std::vector<RawSection>& rawSections() const { return m_rawSections; }
    std::vector<RawSection>& rawSections() { return m_rawSections; }

    // SEQU header, in ticks.
    std::uint32_t songEnd() const { return m_songEnd; }
    std::uint32_t loopStart() const { return m_loopStart; }
    std::uint32_t loopEnd() const { return m_loopEnd; }
    void setSongLength(std::uint32_t end, std::uint32_t loopStart, std::uint32_t loopEnd);

    /** The waves table (WAVT) as stored; a song without one holds a wave count of 0. */
    const std::vector<std::uint8_t>& waveTable() const { return m_waveTable; }
    void setWaveTable(std::vector<std::uint8_t> bytes) { m_waveTable = std::move(bytes); }
    const std::vector<WaveEntry>& waves() const { return m_waves; }
    void setWaves(std::vector<WaveEntry> waves) { m_waves = std::move(waves); }
    /** The wave data (CWAV or WAVE) as stored; empty when the song had none. */
    std::span<const std::uint8_t> waveData() const;
    void setWaveData(std::vector<std::uint8_t> bytes);
    /**
     * Uses `length` bytes at `offset` of a whole file's bytes as the wave data, without copying
     * them: the song keeps the file's bytes alive instead.
     */
    void shareWaveData(std::shared_ptr<const std::string> file, std::size_t offset,
                       std::size_t length);
    /** Whether the writer emits WAVT and CWAV. */
    bool hasWaveData() const { return m_hasWaveData; }
    void setHasWaveData(bool present) { m_hasWaveData = present; }

    const std::filesystem::path& path() const { return m_path; }
    void setPath(std::filesystem::path path) { m_path = std::move(path); }
    /** The file name alone, as UTF-8. */
    std::string fileName() const { return music::utf8FromPath(m_path.filename()); }

    // Queries.
    std::size_t machineCount() const { return m_machines.size(); }
    /** Index of the machine with this name (exact), or kNameNotFound. */
    std::size_t findMachine(std::string_view name) const;
    /** Indices into connections() of the connections into `machine`, in list order. */
    std::vector<std::size_t> inputsOf(std::size_t machine) const;
    /** Indices into sequences() of the sequences of `machine`. */
    std::vector<std::size_t> sequencesOf(std::size_t machine) const;
    /** Index of the parameter set with this machine name (exact), or kNameNotFound. */
    std::size_t findParameterSet(std::string_view machineName) const;
    /** The number of patterns of a machine; 0 for an index out of range. */
    std::size_t patternCount(std::size_t machine) const;
    /** Index of the machine's pattern with this name (exact), or kNameNotFound. */
    std::size_t findPattern(std::size_t machine, std::string_view name) const;

    // Cells. `parameter` indexes the machine's description (global parameters first).
    /** Where a cell lives: in the global rows or in a track block, at a byte offset. */
    struct CellLocation
    {
        bool global = true;
        std::size_t offset = 0; // bytes into the global rows or the track's rows
        std::uint8_t width = 1; // 1 or 2 bytes
    };
    /** The location of a cell, or nothing when any index is out of range. */
    std::optional<CellLocation> cellLocation(std::size_t machine, std::size_t pattern,
                                             std::size_t row, std::size_t track,
                                             std::size_t parameter) const;
    /** The value of a cell (16-bit words little-endian), or nothing when out of range. */
    std::optional<int> cellValue(std::size_t machine, std::size_t pattern, std::size_t row,
                                 std::size_t track, std::size_t parameter) const;
    /** Writes the low bits of `value` into a cell; false when out of range. */
    bool setCellValue(std::size_t machine, std::size_t pattern, std::size_t row, std::size_t track,
                      std::size_t parameter, int value);

    // Edits used to write parts into a song.
    /**
     * Appends an empty pattern: every parameter holds its no-value, and every input block its
     * source index with amplitude and panning 0xFFFF, the tracker's "no change". Returns the
     * new pattern's index, or nothing when the machine has 65535 patterns already.
     */
    std::optional<std::size_t> createPattern(std::size_t machine, std::string name,
                                             std::uint16_t rows);
    /**
     * Sets the track count of a machine and of its patterns. New pattern tracks hold the
     * no-values, new track state the parameter defaults. False when the machine has track
     * parameters and `count` exceeds its maximum track count.
     */
    bool setTrackCount(std::size_t machine, std::uint16_t count);
    /** Removes every pattern of a machine; its sequences are left alone. */
    void clearPatterns(std::size_t machine);
    /** Removes every sequence of a machine. */
    void removeSequencesOf(std::size_t machine);
    /** Appends an empty sequence for a machine; returns its index into sequences(). */
    std::size_t addSequence(std::size_t machine);
    /**
     * Appends a connection and gives every pattern of its destination the input block that goes
     * with it (source index, amplitude and panning "no change" on every row), so that the
     * patterns keep one block per input in connection order. Returns its index in connections().
     */
    std::size_t addConnection(const SongConnection& connection);
    /** Index of the master (the machine of type 0), or kNameNotFound. */
    std::size_t findMaster() const;

    /** Bytes a parameter of this type takes in a row: word 2, note/switch/byte 1, others 0. */
    static std::uint8_t parameterWidth(int type);
    /**
     * One row of an entry's global parameters (or of one track), every parameter at its default
     * value (`defaults`) or at its no-value, 16-bit words little-endian.
     */
    static std::vector<std::uint8_t> parameterRow(const MachineDatabaseEntry& entry, bool global,
                                                  bool defaults);
    /** Index of the parameter with this name (case-insensitive) in an entry, or nothing. */
    static std::optional<std::size_t> findParameter(const MachineDatabaseEntry& entry,
                                                    std::string_view name);

private:
    std::string m_magic = "Buzz";
    std::uint32_t m_sectionCount = 0;
    std::vector<SectionEntry> m_directory;
    std::string m_versionText;
    std::vector<SongConnection> m_connections;
    std::vector<SongMachine> m_machines;
    std::uint32_t m_songEnd = 0;
    std::uint32_t m_loopStart = 0;
    std::uint32_t m_loopEnd = 0;
    std::vector<SongSequence> m_sequences;
    std::vector<MidiBinding> m_midiBindings;
    std::uint8_t m_parameterWindowFlag = 0;
    std::vector<ParameterWindow> m_parameterWindows;
    std::vector<MachinePatterns> m_patternBlocks;
    std::vector<MachineParameterSet> m_parameterSets;
    std::vector<std::uint8_t> m_waveTable{0, 0};
    std::vector<WaveEntry> m_waves;
    std::vector<std::uint8_t> m_waveData;          // owned wave data, or
    std::shared_ptr<const std::string> m_waveFile; // the file the wave data lies in
    std::size_t m_waveOffset = 0;                  // where in m_waveFile
    std::size_t m_waveSize = 0;
    bool m_hasWaveData = true;
    std::vector<RawSection> m_rawSections;
    std::filesystem::path m_path;
};

} // namespace song
