#include "music/FileBytes.h"
#include "song/DllMachineReader.h"
#include "song/MachineScanner.h"
#include "song/PeImage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

using song::DllMachineInfo;
using song::DllMachineReader;
using Status = DllMachineReader::Status;

/**
 * A hand-made DLL image: headers, then one section at RVA 0x1000 holding GetInfo's code (0x1000),
 * the export directory (0x1100), the machine record (0x1200), the parameter pointer array
 * (0x1300), two parameter records (0x1400, 0x1440) and the strings (0x1800). The record describes
 * a machine "Mini" with one global word parameter "Vol" and one track note parameter "Note".
 */
class ImageBuilder
{
public:
    static constexpr std::uint32_t kCode = 0x1000, kExports = 0x1100, kRecord = 0x1200,
                                   kArray = 0x1300, kParam0 = 0x1400, kParam1 = 0x1440,
                                   kStrings = 0x1800, kForward = 0x1150;

    explicit ImageBuilder(bool is64) : m_is64(is64), m_section(0x1000, 0)
    {
        m_base = is64 ? 0x180000000ull : 0x10000000ull;
        // Export directory with one name, "GetInfo", pointing at the code.
        put32(kExports + 20, 1);
        put32(kExports + 24, 1);
        put32(kExports + 28, kExports + 0x28);
        put32(kExports + 32, kExports + 0x2C);
        put32(kExports + 36, kExports + 0x30);
        put32(kExports + 0x28, kCode);
        put32(kExports + 0x2C, kExports + 0x40);
        putString(kExports + 0x40, "GetInfo");
        putString(kForward, "OTHER.GetInfo");

        const std::uint32_t ptr = is64 ? 8 : 4;
        put32(kRecord + 12, 1); // min tracks
        put32(kRecord + 16, 8); // max tracks
        put32(kRecord + 20, 1); // global parameters
        put32(kRecord + 24, 1); // track parameters
        putPointer(kRecord + (is64 ? 32 : 28), kArray);
        putPointer(kRecord + (is64 ? 64 : 44), kStrings);
        putString(kStrings, "Mini");
        putPointer(kArray, kParam0);
        putPointer(kArray + ptr, kParam1);
        putParameter(kParam0, 3, kStrings + 0x10, 0xFFFF, 0x100);
        putString(kStrings + 0x10, "Vol");
        putParameter(kParam1, 0, kStrings + 0x20, 0, 0);
        putString(kStrings + 0x20, "Note");
    }

    std::uint64_t va(std::uint32_t rva) const { return m_base + rva; }
    void setCode(std::vector<std::uint8_t> code, std::uint32_t at = kCode)
    {
        std::copy(code.begin(), code.end(), m_section.begin() + (at - 0x1000));
    }
    void put32(std::uint32_t rva, std::uint32_t v)
    {
        for (int i = 0; i < 4; ++i)
            m_section[rva - 0x1000 + i] = static_cast<std::uint8_t>(v >> (8 * i));
    }
    void putPointer(std::uint32_t at, std::uint32_t targetRva)
    {
        const std::uint64_t v = va(targetRva);
        put32(at, static_cast<std::uint32_t>(v));
        if (m_is64)
            put32(at + 4, static_cast<std::uint32_t>(v >> 32));
    }
    void putString(std::uint32_t at, const std::string& s)
    {
        std::copy(s.begin(), s.end(), m_section.begin() + (at - 0x1000));
    }

    std::string bytes() const
    {
        std::string file(0x200, '\0');
        const auto w16 = [&](std::size_t at, std::uint32_t v) {
            file[at] = static_cast<char>(v & 0xFF);
            file[at + 1] = static_cast<char>((v >> 8) & 0xFF);
        };
        const auto w32 = [&](std::size_t at, std::uint32_t v) {
            w16(at, v & 0xFFFF);
            w16(at + 2, v >> 16);
        };
        file[0] = 'M';
        file[1] = 'Z';
        w32(0x3C, 0x40);
        file.replace(0x40, 4, std::string("PE\0\0", 4));
        w16(0x44, m_is64 ? 0x8664 : 0x14C);
        w16(0x46, 1);
        const std::uint32_t optionalSize = m_is64 ? 0xF0 : 0xE0;
        w16(0x54, optionalSize);
        w16(0x56, 0x2102);
        const std::size_t opt = 0x58;
        w16(opt, m_is64 ? 0x20B : 0x10B);
        if (m_is64) {
            w32(opt + 24, static_cast<std::uint32_t>(m_base));
            w32(opt + 28, static_cast<std::uint32_t>(m_base >> 32));
        } else {
            w32(opt + 28, static_cast<std::uint32_t>(m_base));
        }
        w32(opt + 56, 0x2000); // size of image
        w32(opt + 60, 0x200);  // size of headers
        const std::size_t dirs = opt + (m_is64 ? 112 : 96);
        w32(dirs - 4, 16);
        w32(dirs, kExports);
        w32(dirs + 4, 0x60);
        const std::size_t section = opt + optionalSize;
        file.replace(section, 5, ".text");
        w32(section + 8, 0x1000);
        w32(section + 12, 0x1000);
        w32(section + 16, 0x1000);
        w32(section + 20, 0x200);
        file.append(m_section.begin(), m_section.end());
        return file;
    }

private:
    void putParameter(std::uint32_t at, std::uint32_t type, std::uint32_t nameRva,
                      std::uint32_t noValue, std::uint32_t defaultValue)
    {
        put32(at, type);
        putPointer(at + (m_is64 ? 8 : 4), nameRva);
        put32(at + (m_is64 ? 32 : 20), noValue);
        put32(at + (m_is64 ? 40 : 28), defaultValue);
    }

    bool m_is64;
    std::uint64_t m_base;
    std::vector<std::uint8_t> m_section;
};

std::vector<std::uint8_t> le32(std::uint64_t v)
{
    return {static_cast<std::uint8_t>(v), static_cast<std::uint8_t>(v >> 8),
            static_cast<std::uint8_t>(v >> 16), static_cast<std::uint8_t>(v >> 24)};
}

std::vector<std::uint8_t> join(std::initializer_list<std::vector<std::uint8_t>> parts)
{
    std::vector<std::uint8_t> out;
    for (const auto& p : parts)
        out.insert(out.end(), p.begin(), p.end());
    return out;
}

using B = ImageBuilder;

/** `mov eax, <record>; ret` (32-bit) or `lea rax, [rip + <record>]; ret` (64-bit), at `at`. */
std::vector<std::uint8_t> plainGetInfo(const B& b, bool is64, std::uint32_t at = B::kCode)
{
    if (is64)
        return join({{0x48, 0x8D, 0x05}, le32(B::kRecord - (at + 7)), {0xC3}});
    return join({{0xB8}, le32(b.va(B::kRecord)), {0xC3}});
}

struct CodeCase
{
    const char* what;
    bool is64;
    void (*change)(B&); // applied after the plain GetInfo code is in place
    Status expected;
};

// clang-format off
const CodeCase kCodeCases[] = {
    {"mov eax, imm32; ret", false, [](B&) {}, Status::Ok},
    {"lea rax, [rip + disp32]; ret", true, [](B&) {}, Status::Ok},
    {"framed with mov ebp, esp (8B EC)", false, [](B& b) {
         b.setCode(join({{0x55, 0x8B, 0xEC, 0xB8}, le32(b.va(B::kRecord)), {0x5D, 0xC3}})); },
     Status::Ok},
    {"framed, leave instead of pop ebp", false, [](B& b) {
         b.setCode(join({{0x55, 0x89, 0xE5, 0xB8}, le32(b.va(B::kRecord)), {0xC9, 0xC3}})); },
     Status::Ok},
    {"framed lea behind endbr64", true, [](B& b) {
         b.setCode(join({{0xF3, 0x0F, 0x1E, 0xFA, 0x55, 0x48, 0x89, 0xE5, 0x48, 0x8D, 0x05},
                         le32(B::kRecord - (0x1000 + 15)), {0x5D, 0xC3}})); },
     Status::Ok},
    {"jmp rel8 thunk", false, [](B& b) {
         b.setCode({0xEB, 0x0E});
         b.setCode(plainGetInfo(b, false), 0x1010); },
     Status::Ok},
    {"jmp rel32 thunk behind nops, to lea", true, [](B& b) {
         b.setCode({0x90, 0x90, 0xE9, 0x39, 0x00, 0x00, 0x00}); // to 0x1040
         b.setCode(plainGetInfo(b, true, 0x1040), 0x1040); },
     Status::Ok},
    {"code that computes its result", false, [](B& b) { b.setCode({0x33, 0xC0, 0xC3}); },
     Status::NoGetInfo},
    {"mov without ret", false, [](B& b) { b.setCode({0xCC}, 0x1005); }, Status::NoGetInfo},
    {"lea in a 32-bit image", false, [](B& b) { b.setCode(plainGetInfo(b, true)); },
     Status::NoGetInfo},
    {"jump to itself", false, [](B& b) { b.setCode({0xEB, 0xFE}); }, Status::NoGetInfo},
    {"jump out of the image", false, [](B& b) { b.setCode({0xE9, 0x00, 0x00, 0x00, 0x70}); },
     Status::NoGetInfo},
    {"address below the image base", false, [](B& b) { b.put32(0x1001, 0x1200); },
     Status::NoGetInfo},
    {"record beyond the image", false, [](B& b) { b.put32(0x1001, 0x10007000); },
     Status::NoGetInfo},
    {"forwarded export", false, [](B& b) { b.put32(B::kExports + 0x28, B::kForward); },
     Status::NoGetInfo},
    {"export under another case", false, [](B& b) { b.putString(B::kExports + 0x40, "getinfo"); },
     Status::NoGetInfo},
    {"ordinal past the address table", false, [](B& b) { b.put32(B::kExports + 0x30, 5); },
     Status::NoGetInfo},
    {"negative parameter count", false, [](B& b) { b.put32(B::kRecord + 20, 0xFFFFFFFF); },
     Status::NoGetInfo},
    {"huge parameter count", false, [](B& b) { b.put32(B::kRecord + 24, 0x7FFFFFFF); },
     Status::NoGetInfo},
    {"parameter name pointer into nowhere", true, [](B& b) { b.put32(B::kParam1 + 8, 0x1234); },
     Status::NoGetInfo},
    {"unterminated short name", false, [](B& b) {
         b.putPointer(B::kRecord + 44, 0x1FFC);
         b.putString(0x1FFC, "ABCD"); },
     Status::NoGetInfo},
};
// clang-format on

TEST(DllMachineReader, DecodesTheGetInfoShapesCompilersEmitAndRejectTheRest)
{
    for (const CodeCase& c : kCodeCases) {
        SCOPED_TRACE(c.what);
        ImageBuilder builder(c.is64);
        builder.setCode(plainGetInfo(builder, c.is64));
        c.change(builder);
        const std::string bytes = builder.bytes();
        DllMachineInfo info;
        ASSERT_EQ(DllMachineReader::read(bytes, info), c.expected);
        if (c.expected != Status::Ok)
            continue;
        EXPECT_EQ(info.shortName, "Mini");
        EXPECT_EQ(info.is64Bit, c.is64);
        EXPECT_EQ(info.minTracks, 1);
        EXPECT_EQ(info.maxTracks, 8);
        ASSERT_EQ(info.parameters.size(), 2u);
        EXPECT_EQ(info.parameters[0].name, "Vol");
        EXPECT_EQ(info.parameters[0].type, 3);
        EXPECT_EQ(info.parameters[0].noValue, 0xFFFF);
        EXPECT_EQ(info.parameters[0].defaultValue, 0x100);
        EXPECT_EQ(info.parameters[1].name, "Note");
        EXPECT_EQ(info.parameters[1].type, 0);
    }
}

TEST(DllMachineReader, TellsFilesThatAreNoImageFromImagesWithoutGetInfo)
{
    const std::string good = ImageBuilder(false).bytes();
    std::string badSignature = good;
    badSignature[0x41] = 'X';
    std::string badMagic = good;
    badMagic[0x58] = 0x07;
    std::string farHeader = good;
    farHeader[0x3F] = 0x7F;

    const struct
    {
        const char* what;
        std::string bytes;
        Status expected;
    } cases[] = {
        {"empty file", "", Status::NotAnImage},
        {"text file", "machines.ini not found\n", Status::NotAnImage},
        {"only the DOS stub", good.substr(0, 0x40), Status::NotAnImage},
        {"no PE signature", badSignature, Status::NotAnImage},
        {"unknown optional header", badMagic, Status::NotAnImage},
        {"header offset past the end", farHeader, Status::NotAnImage},
        {"image without code at GetInfo", good, Status::NoGetInfo},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        DllMachineInfo info;
        EXPECT_EQ(DllMachineReader::read(c.bytes, info), c.expected);
    }
}

TEST(PeImage, ReadsZerosPastRawDataButFailsOutsideSections)
{
    ImageBuilder builder(false);
    std::string bytes = builder.bytes();
    // Shrink the raw data to 0x800 bytes: the rest of the 0x1000 virtual bytes read as zero.
    bytes[0x58 + 0xE0 + 17] = 0x08;
    song::PeImage image;
    ASSERT_TRUE(image.parse(bytes));
    EXPECT_EQ(image.readU32(0x1800 + 0x400), 0u);
    EXPECT_FALSE(image.readU32(0x1FFE).has_value()); // crosses the end of the section
    EXPECT_FALSE(image.readU8(0x2000).has_value());
    EXPECT_EQ(image.readU8(0), 'M');
    EXPECT_EQ(image.findExport("GetInfo"), ImageBuilder::kCode);
}

// The DLLs built by the cross compilers at test time.

std::filesystem::path testGear()
{
#ifdef TM_TEST_GEAR_DIR
    return TM_TEST_GEAR_DIR;
#else
    return {};
#endif
}

#define REQUIRE_TEST_DLLS()                                                                        \
    if (testGear().empty())                                                                        \
    GTEST_SKIP() << "test machine DLLs not built (mingw-w64 cross compilers missing)"

const char* const kBuilds[] = {"32O0", "32O2", "64O0", "64O2"};

struct ExpectedParameter
{
    const char* name;
    int type, min, max, noValue, flags, def;
};

TEST(DllMachineReader, ReadsTheTestMachinesFromEveryBuild)
{
    REQUIRE_TEST_DLLS();
    const struct
    {
        const char* file;
        const char* shortName;
        int minTracks, maxTracks, globalCount;
        std::vector<ExpectedParameter> parameters;
        int globalRow, trackRow; // an unknown type (7) is one byte wide but adds nothing
    } machines[] = {
        // clang-format off
        {"generators/TestGen", "TestGen", 1, 16, 3,
         {{"Volume", 3, 0, 0xFFFE, 0xFFFF, 6, 0x4000}, {"Attack", 2, 1, 0xFE, 0xFF, 2, 10},
          {"Wave", 2, 0, 4, 0xFF, 2, 0}, {"Note", 0, 1, 0x9C, 0, 0, 0}},
         4, 1},
        {"effects/TestFx", "TestFx", 0, 0, 3,
         {{"Dry/Wet", 2, 0, 100, 0xFF, 2, 50}, {"Time", 3, 1, 0x8000, 0, 2, 300},
          {"Odd", 7, 0, 1, 0xFF, 2, 1}},
         3, 0},
        // clang-format on
    };
    for (const auto& m : machines) {
        for (const char* build : kBuilds) {
            const std::string file = std::string(m.file) + build + ".dll";
            SCOPED_TRACE(file);
            DllMachineInfo info;
            ASSERT_EQ(DllMachineReader::readFile(testGear() / file, info), Status::Ok);
            EXPECT_EQ(info.is64Bit, build[0] == '6');
            EXPECT_EQ(info.shortName, m.shortName);
            EXPECT_EQ(info.author, "Tonalmancer tests");
            EXPECT_EQ(info.version, 15);
            EXPECT_EQ(info.minTracks, m.minTracks);
            EXPECT_EQ(info.maxTracks, m.maxTracks);
            EXPECT_EQ(info.globalParameterCount, m.globalCount);
            ASSERT_EQ(info.parameters.size(), m.parameters.size());
            for (std::size_t i = 0; i < m.parameters.size(); ++i) {
                const song::DllParameterInfo& p = info.parameters[i];
                const ExpectedParameter& e = m.parameters[i];
                EXPECT_EQ(p.name, e.name);
                EXPECT_EQ(p.type, e.type);
                EXPECT_EQ(p.minValue, e.min);
                EXPECT_EQ(p.maxValue, e.max);
                EXPECT_EQ(p.noValue, e.noValue);
                EXPECT_EQ(p.flags, e.flags);
                EXPECT_EQ(p.defaultValue, e.def);
            }
            const song::MachineDatabaseEntry entry =
                song::MachineScanner::entryFromInfo(info, "X", 1);
            EXPECT_EQ(entry.globalRowSize, m.globalRow);
            EXPECT_EQ(entry.trackRowSize, m.trackRow);
        }
    }
}

TEST(DllMachineReader, SurvivesCutAndDamagedCopiesOfRealDlls)
{
    REQUIRE_TEST_DLLS();
    for (const char* name : {"generators/TestGen32O2.dll", "generators/TestGen64O0.dll"}) {
        SCOPED_TRACE(name);
        const auto original = music::readFileBytes(testGear() / name);
        ASSERT_TRUE(original.has_value());
        // Cut at every length up to the section table, then in steps: never Ok with garbage.
        for (std::size_t length = 0; length < original->size(); length += length < 1024 ? 1 : 509) {
            DllMachineInfo info;
            const Status status = DllMachineReader::read(original->substr(0, length), info);
            if (status == Status::Ok) {
                EXPECT_EQ(info.shortName, "TestGen");
            }
        }
        std::mt19937 random(7);
        for (int round = 0; round < 300; ++round) {
            std::string damaged = *original;
            for (int flips = 0; flips < 8; ++flips)
                damaged[random() % damaged.size()] = static_cast<char>(random());
            DllMachineInfo info;
            (void)DllMachineReader::read(damaged, info);
        }
    }
}

} // namespace
