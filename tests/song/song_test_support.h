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
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace songtest {

/** One member (or function) of every element, e.g. the names of a machine's patterns. */
template <typename Range, typename Member> auto column(const Range& range, Member member)
{
    std::vector<std::remove_cvref_t<decltype(std::invoke(member, *std::begin(range)))>> values;
    for (const auto& element : range)
        values.push_back(std::invoke(member, element));
    return values;
}

/** Little-endian bytes, appended by hand. */
class Bytes
{
public:
    Bytes& u8(int v) { return raw(std::string(1, static_cast<char>(v & 0xFF))); }
    Bytes& u16(int v) { return u8(v).u8(v >> 8); }
    Bytes& u32(std::int64_t v)
    {
        return u16(static_cast<int>(v & 0xFFFF)).u16(static_cast<int>(v >> 16));
    }
    Bytes& str(const std::string& s) { return raw(s).u8(0); }
    Bytes& fill(std::size_t count, int v) { return raw(std::string(count, static_cast<char>(v))); }
    Bytes& raw(const std::string& s)
    {
        m_data += s;
        return *this;
    }
    const std::string& data() const { return m_data; }

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
    Bytes file;
    file.raw(magic).u32(count.value_or(static_cast<std::uint32_t>(sections.size())));
    std::int64_t offset = 380;
    for (std::size_t i = 0; i < 31; ++i) {
        if (i >= sections.size()) {
            file.fill(12, 0);
            continue;
        }
        const auto size = static_cast<std::int64_t>(sections[i].bytes.size());
        file.raw(sections[i].name).u32(offset).u32(size);
        offset += size;
    }
    for (const Section& s : sections)
        file.raw(s.bytes);
    return file.data();
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
    e.dllName = e.shortName = dll;
    e.type = type;
    e.minTracks = minTracks;
    e.maxTracks = maxTracks;
    for (const Param& p : params) {
        const std::uint8_t width = p.type == 3 ? 2 : 1;
        e.parameters.push_back(
            {p.name, width, p.track ? 't' : 'g', p.type, p.noValue, p.defaultValue});
        (p.track ? e.trackRowSize : e.globalRowSize) += width;
        ++(p.track ? e.trackParameterCount : e.globalParameterCount);
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
    void scanFailed(const music::Result&) override {}
};

/** A fresh folder below the system's temporary folder, removed at the end of the scope. */
class TempFolder
{
public:
    explicit TempFolder(const std::string& tag)
        : m_path(std::filesystem::temp_directory_path() /
                 ("tm-song-" + tag + "-" + std::to_string(std::random_device{}())))
    {
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

/** The folder of the machine DLLs cross-compiled for the tests; empty when they were not built. */
inline std::filesystem::path testGear(bool extra = false)
{
#ifdef TM_TEST_GEAR_DIR
    return extra ? TM_TEST_GEAR_EXTRA_DIR : TM_TEST_GEAR_DIR;
#else
    (void)extra;
    return {};
#endif
}

#define REQUIRE_TEST_DLLS()                                                                        \
    if (songtest::testGear().empty())                                                              \
    GTEST_SKIP() << "test machine DLLs not built (mingw-w64 cross compilers missing)"

/** Expects two songs to hold the same model (everything the writer writes, except the banner). */
inline void expectSameModel(const song::BuzzSong& a, const song::BuzzSong& b)
{
    const auto machines = [](const song::BuzzSong& s) {
        return column(s.machines(), [](const song::SongMachine& m) {
            return std::make_tuple(m.name, m.type, m.dllName, m.x, m.y, m.data, m.attributes,
                                   m.globalState, m.trackCount, m.trackState, m.globalRowSize,
                                   m.trackRowSize);
        });
    };
    const auto rest = [](const song::BuzzSong& s) {
        return std::make_tuple(s.songEnd(), s.loopStart(), s.loopEnd(), s.midiBindings(),
                               s.parameterWindowFlag(), s.parameterWindows(), s.waveTable(),
                               s.waves());
    };
    EXPECT_TRUE(machines(a) == machines(b)) << "machines differ";
    EXPECT_EQ(a.connections(), b.connections());
    EXPECT_EQ(a.patternBlocks(), b.patternBlocks());
    EXPECT_EQ(a.sequences(), b.sequences());
    EXPECT_EQ(a.parameterSets(), b.parameterSets());
    EXPECT_TRUE(rest(a) == rest(b)) << "positions, MIDI, windows or waves differ";
    EXPECT_TRUE(std::ranges::equal(a.waveData(), b.waveData())) << "wave data differs";
    EXPECT_EQ(column(a.rawSections(), &song::RawSection::name),
              column(b.rawSections(), &song::RawSection::name));
    EXPECT_EQ(column(a.rawSections(), &song::RawSection::bytes),
              column(b.rawSections(), &song::RawSection::bytes));
}

} // namespace songtest
