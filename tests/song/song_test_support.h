#pragma once

// Helpers for the song tests: a byte builder that lays out song files by hand from the format
// (independently of the program's writer), a small machine catalog, and model comparison.

#include "song/BuzzSong.h"
#include "song/MachineDatabase.h"
#include "song/UnknownMachineHandler.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace songtest {

/** Little-endian bytes, appended by hand. */
class Bytes
{
public:
    Bytes& u8(int v)
    {
        m_data.push_back(static_cast<char>(v & 0xFF));
        return *this;
    }
    Bytes& u16(int v) { return u8(v).u8(v >> 8); }
    Bytes& u32(std::int64_t v)
    {
        for (int i = 0; i < 4; ++i)
            u8(static_cast<int>((v >> (8 * i)) & 0xFF));
        return *this;
    }
    Bytes& str(const std::string& s)
    {
        m_data += s;
        m_data.push_back('\0');
        return *this;
    }
    Bytes& raw(const std::string& s)
    {
        m_data += s;
        return *this;
    }
    Bytes& fill(std::size_t count, int v)
    {
        m_data.append(count, static_cast<char>(v));
        return *this;
    }
    const std::string& data() const { return m_data; }
    std::size_t size() const { return m_data.size(); }

private:
    std::string m_data;
};

struct Section
{
    std::string name;
    std::string bytes;
};

/**
 * A song file: magic, section count, 31 directory entries (the first for `sections`, the rest
 * zero), then the sections back to back. `count` overrides the stored section count.
 */
inline std::string songFile(const std::vector<Section>& sections,
                            std::optional<std::uint32_t> count = std::nullopt,
                            const std::string& magic = "Buzz")
{
    Bytes header;
    header.raw(magic).u32(count.value_or(static_cast<std::uint32_t>(sections.size())));
    std::size_t offset = 380;
    for (std::size_t i = 0; i < 31; ++i) {
        if (i < sections.size()) {
            header.raw(sections[i].name)
                .u32(static_cast<std::int64_t>(offset))
                .u32(static_cast<std::int64_t>(sections[i].bytes.size()));
            offset += sections[i].bytes.size();
        } else {
            header.fill(12, 0);
        }
    }
    std::string file = header.data();
    for (const Section& s : sections)
        file += s.bytes;
    return file;
}

/** A machine database entry by hand: parameters as (name, type, track?, noValue, default). */
struct Param
{
    std::string name;
    int type;
    bool track;
    std::int32_t noValue = 0;
    std::int32_t defaultValue = 0;
};
inline song::MachineDatabaseEntry entry(const std::string& dll, std::uint8_t type,
                                        const std::vector<Param>& params,
                                        std::uint16_t minTracks = 0, std::uint16_t maxTracks = 0)
{
    song::MachineDatabaseEntry e;
    e.dllName = dll;
    e.shortName = dll;
    e.type = type;
    e.minTracks = minTracks;
    e.maxTracks = maxTracks;
    for (const Param& p : params) {
        song::MachineParameter mp;
        mp.name = p.name;
        mp.type = p.type;
        mp.width = p.type == 3 ? 2 : 1;
        mp.scope = p.track ? 't' : 'g';
        mp.noValue = p.noValue;
        mp.defaultValue = p.defaultValue;
        (p.track ? e.trackRowSize : e.globalRowSize) += mp.width;
        ++(p.track ? e.trackParameterCount : e.globalParameterCount);
        e.parameters.push_back(mp);
    }
    e.totalParameterCount = static_cast<std::uint16_t>(params.size());
    return e;
}

/** The master as the built-in database entry describes it: Volume, Bpm (words), Tpb (byte). */
inline song::MachineDatabaseEntry masterEntry()
{
    return entry("Master", 0,
                 {{"Volume", 3, false}, {"Bpm", 3, false, 120, 120}, {"Tpb", 2, false, 4, 4}}, 0,
                 256);
}

/** A handler with fixed answers that records what it was asked. */
class ScriptedHandler : public song::UnknownMachineHandler
{
public:
    bool learn = false;
    std::vector<std::filesystem::path> dlls; // handed out one per scan offer
    std::vector<std::string> learnQuestions;
    std::vector<std::string> scanMessages;
    int scanFailures = 0;

    bool learnFromSong(const std::string& machineName, const std::string&) override
    {
        learnQuestions.push_back(machineName);
        return learn;
    }
    std::optional<std::filesystem::path> chooseDllToScan(const std::string& message) override
    {
        scanMessages.push_back(message);
        if (scanMessages.size() > dlls.size())
            return std::nullopt;
        return dlls[scanMessages.size() - 1];
    }
    void scanFailed(const music::Result&) override { ++scanFailures; }
};

/** A fresh folder below the system's temporary folder, removed at the end of the scope. */
class TempFolder
{
public:
    explicit TempFolder(const std::string& tag)
    {
        m_path = std::filesystem::temp_directory_path() /
                 ("tm-song-" + tag + "-" + std::to_string(std::random_device{}()));
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

/** Expects two songs to hold the same model (everything the writer writes, except the banner). */
inline void expectSameModel(const song::BuzzSong& a, const song::BuzzSong& b)
{
    EXPECT_EQ(a.connections(), b.connections());
    ASSERT_EQ(a.machineCount(), b.machineCount());
    for (std::size_t i = 0; i < a.machineCount(); ++i) {
        const song::SongMachine& x = a.machines()[i];
        const song::SongMachine& y = b.machines()[i];
        SCOPED_TRACE("machine " + x.name);
        EXPECT_EQ(x.name, y.name);
        EXPECT_EQ(x.type, y.type);
        EXPECT_EQ(x.dllName, y.dllName);
        EXPECT_EQ(x.x, y.x);
        EXPECT_EQ(x.y, y.y);
        EXPECT_EQ(x.data, y.data);
        EXPECT_EQ(x.attributes, y.attributes);
        EXPECT_EQ(x.globalState, y.globalState);
        EXPECT_EQ(x.trackCount, y.trackCount);
        EXPECT_EQ(x.trackState, y.trackState);
        EXPECT_EQ(x.globalRowSize, y.globalRowSize);
        EXPECT_EQ(x.trackRowSize, y.trackRowSize);
    }
    EXPECT_EQ(a.patternBlocks(), b.patternBlocks());
    EXPECT_EQ(a.songEnd(), b.songEnd());
    EXPECT_EQ(a.loopStart(), b.loopStart());
    EXPECT_EQ(a.loopEnd(), b.loopEnd());
    EXPECT_EQ(a.sequences(), b.sequences());
    EXPECT_EQ(a.midiBindings(), b.midiBindings());
    EXPECT_EQ(a.parameterWindowFlag(), b.parameterWindowFlag());
    EXPECT_EQ(a.parameterWindows(), b.parameterWindows());
    EXPECT_EQ(a.parameterSets(), b.parameterSets());
    EXPECT_EQ(a.waveTable(), b.waveTable());
    EXPECT_EQ(a.waves(), b.waves());
    EXPECT_TRUE(std::ranges::equal(a.waveData(), b.waveData())) << "wave data differs";
    ASSERT_EQ(a.rawSections().size(), b.rawSections().size());
    for (std::size_t i = 0; i < a.rawSections().size(); ++i) {
        EXPECT_EQ(a.rawSections()[i].name, b.rawSections()[i].name);
        EXPECT_EQ(a.rawSections()[i].bytes, b.rawSections()[i].bytes);
    }
}

} // namespace songtest
