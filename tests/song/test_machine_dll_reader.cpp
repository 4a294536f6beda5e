#include "song_test_support.h"

#include "song/DllMachineReader.h"
#include "song/MachineScanner.h"
#include "song/PeImage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using song::DllMachineInfo;
using song::DllMachineReader;
using songtest::testGear;
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

    explicit ImageBuilder(bool is64)
        : m_is64(is64), m_base(is64 ? 0x180000000ull : 0x10000000ull), m_section(0x1000, 0)
    {
        const std::uint32_t ptr = is64 ? 8 : 4;
        using Words = std::initializer_list<std::pair<std::uint32_t, std::uint32_t>>;
        // clang-format off
        // Export directory with one name, "GetInfo", pointing at the code; then the record with
        // tracks 1 to 8, one global and one track parameter, and the two parameter records.
        for (const auto& [at, v] : Words{
                 {kExports + 20, 1}, {kExports + 24, 1}, {kExports + 28, kExports + 0x28},
                 {kExports + 32, kExports + 0x2C}, {kExports + 36, kExports + 0x30},
                 {kExports + 0x28, kCode}, {kExports + 0x2C, kExports + 0x40},
                 {kRecord + 12, 1}, {kRecord + 16, 8}, {kRecord + 20, 1}, {kRecord + 24, 1},
                 {kParam0, 3}, {kParam0 + (is64 ? 32 : 20), 0xFFFF},
                 {kParam0 + (is64 ? 40 : 28), 0x100},
                 {kParam1, 0}})
            put32(at, v);
        for (const auto& [at, target] : Words{
                 {kRecord + (is64 ? 32 : 28), kArray}, {kRecord + (is64 ? 64 : 44), kStrings},
                 {kArray, kParam0}, {kArray + ptr, kParam1},
                 {kParam0 + ptr, kStrings + 0x10}, {kParam1 + ptr, kStrings + 0x20}})
            putPointer(at, target);
        for (const auto& [at, text] : std::initializer_list<std::pair<std::uint32_t, const char*>>{
                 {kExports + 0x40, "GetInfo"}, {kForward, "OTHER.GetInfo"}, {kStrings, "Mini"},
                 {kStrings + 0x10, "Vol"}, {kStrings + 0x20, "Note"}})
            putString(at, text);
        // clang-format on
    }

    std::uint64_t va(std::uint32_t rva) const { return m_base + rva; }
    void setCode(std::vector<std::uint8_t> code, std::uint32_t at = kCode)
    {
        std::ranges::copy(code, m_section.begin() + (at - 0x1000));
    }
    void put32(std::uint32_t rva, std::uint64_t v, int count = 4)
    {
        for (int i = 0; i < count; ++i)
            m_section[rva - 0x1000 + static_cast<std::uint32_t>(i)] =
                static_cast<std::uint8_t>(v >> (8 * i));
    }
    void putPointer(std::uint32_t at, std::uint32_t targetRva)
    {
        put32(at, va(targetRva), m_is64 ? 8 : 4);
    }
    void putString(std::uint32_t at, const std::string& s)
    {
        std::ranges::copy(s, m_section.begin() + (at - 0x1000));
    }

    /** DOS stub, PE headers with one section table entry, then the section from 0x200. */
    std::string bytes() const
    {
        std::string file(0x200, '\0');
        const auto w = [&](std::size_t at, std::uint64_t v, int count = 4) {
            for (int i = 0; i < count; ++i)
                file[at + static_cast<std::size_t>(i)] = static_cast<char>(v >> (8 * i));
        };
        const std::size_t opt = 0x58, optionalSize = m_is64 ? 0xF0 : 0xE0;
        const std::size_t dirs = opt + (m_is64 ? 112 : 96), section = opt + optionalSize;
        file.replace(0, 2, "MZ");
        w(0x3C, 0x40);
        file.replace(0x40, 4, std::string("PE\0\0", 4));
        w(0x44, m_is64 ? 0x8664 : 0x14C, 2);
        w(0x46, 1, 2); // one section
        w(0x54, optionalSize, 2);
        w(0x56, 0x2102, 2);
        w(opt, m_is64 ? 0x20B : 0x10B, 2);
        w(opt + (m_is64 ? 24 : 28), m_base, m_is64 ? 8 : 4);
        w(opt + 56, 0x2000); // size of image
        w(opt + 60, 0x200);  // size of headers
        w(dirs - 4, 16);     // data directories
        w(dirs, kExports);
        w(dirs + 4, 0x60);
        file.replace(section, 5, ".text");
        for (std::uint32_t i = 0; i < 4; ++i) // virtual size, address, raw size, raw offset
            w(section + 8 + 4 * i, i < 3 ? 0x1000 : 0x200);
        file.append(m_section.begin(), m_section.end());
        return file;
    }

private:
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
    Status expected;
    void (*change)(B&); // applied after the plain GetInfo code is in place
};

constexpr Status kOk = Status::Ok, kNone = Status::NoGetInfo;

// clang-format off
const CodeCase kCodeCases[] = {
    {"mov eax, imm32; ret", false, kOk, [](B&) {}},
    {"lea rax, [rip + disp32]; ret", true, kOk, [](B&) {}},
    {"framed with mov ebp, esp (8B EC)", false, kOk, [](B& b) {
         b.setCode(join({{0x55, 0x8B, 0xEC, 0xB8}, le32(b.va(B::kRecord)), {0x5D, 0xC3}})); }},
    {"framed, leave instead of pop ebp", false, kOk, [](B& b) {
         b.setCode(join({{0x55, 0x89, 0xE5, 0xB8}, le32(b.va(B::kRecord)), {0xC9, 0xC3}})); }},
    {"framed lea behind endbr64", true, kOk, [](B& b) {
         b.setCode(join({{0xF3, 0x0F, 0x1E, 0xFA, 0x55, 0x48, 0x89, 0xE5, 0x48, 0x8D, 0x05},
                         le32(B::kRecord - (0x1000 + 15)), {0x5D, 0xC3}})); }},
    {"jmp rel8 thunk", false, kOk, [](B& b) {
         b.setCode({0xEB, 0x0E});
         b.setCode(plainGetInfo(b, false), 0x1010); }},
    {"jmp rel32 thunk behind nops, to lea", true, kOk, [](B& b) {
         b.setCode({0x90, 0x90, 0xE9, 0x39, 0x00, 0x00, 0x00}); // to 0x1040
         b.setCode(plainGetInfo(b, true, 0x1040), 0x1040); }},
    {"code that computes its result", false, kNone, [](B& b) { b.setCode({0x33, 0xC0, 0xC3}); }},
    {"mov without ret", false, kNone, [](B& b) { b.setCode({0xCC}, 0x1005); }},
    {"lea in a 32-bit image", false, kNone, [](B& b) { b.setCode(plainGetInfo(b, true)); }},
    {"jump to itself", false, kNone, [](B& b) { b.setCode({0xEB, 0xFE}); }},
    {"jump out of the image", false, kNone, [](B& b) { b.setCode({0xE9, 0, 0, 0, 0x70}); }},
    {"address below the image base", false, kNone, [](B& b) { b.put32(0x1001, 0x1200); }},
    {"record beyond the image", false, kNone, [](B& b) { b.put32(0x1001, 0x10007000); }},
    {"forwarded export", false, kNone, [](B& b) { b.put32(B::kExports + 0x28, B::kForward); }},
    {"export under another case", false, kNone, [](B& b) {
         b.putString(B::kExports + 0x40, "getinfo"); }},
    {"ordinal past the address table", false, kNone, [](B& b) { b.put32(B::kExports + 0x30, 5); }},
    {"negative parameter count", false, kNone, [](B& b) { b.put32(B::kRecord + 20, ~0u); }},
    {"huge parameter count", false, kNone, [](B& b) { b.put32(B::kRecord + 24, 0x7FFFFFFF); }},
    {"parameter name pointer into nowhere", true, kNone, [](B& b) {
         b.put32(B::kParam1 + 8, 0x1234); }},
    {"unterminated short name", false, kNone, [](B& b) {
         b.putPointer(B::kRecord + 44, 0x1FFC);
         b.putString(0x1FFC, "ABCD"); }},
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
        EXPECT_EQ(std::tie(info.shortName, info.is64Bit, info.minTracks, info.maxTracks),
                  std::make_tuple("Mini", c.is64, 1, 8));
        ASSERT_EQ(info.parameters.size(), 2u);
        EXPECT_EQ(std::tie(info.parameters[0].name, info.parameters[0].type,
                           info.parameters[0].noValue, info.parameters[0].defaultValue),
                  std::make_tuple("Vol", 3, 0xFFFF, 0x100));
        EXPECT_EQ(std::tie(info.parameters[1].name, info.parameters[1].type),
                  std::make_tuple("Note", 0));
    }
}

TEST(DllMachineReader, TellsFilesThatAreNoImageFromImagesWithoutGetInfo)
{
    const std::string good = ImageBuilder(false).bytes();
    const auto damaged = [&](std::size_t at, char value) {
        std::string bytes = good;
        bytes[at] = value;
        return bytes;
    };

    const struct
    {
        const char* what;
        std::string bytes;
        Status expected;
    } cases[] = {
        {"empty file", "", Status::NotAnImage},
        {"text file", "machines.ini not found\n", Status::NotAnImage},
        {"only the DOS stub", good.substr(0, 0x40), Status::NotAnImage},
        {"no PE signature", damaged(0x41, 'X'), Status::NotAnImage},
        {"unknown optional header", damaged(0x58, 0x07), Status::NotAnImage},
        {"header offset past the end", damaged(0x3F, 0x7F), Status::NotAnImage},
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
    std::string bytes = ImageBuilder(false).bytes();
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

/** The fields of a DLL parameter that the tests compare. */
auto fields(const song::DllParameterInfo& p)
{
    return std::make_tuple(p.name, p.type, p.minValue, p.maxValue, p.noValue, p.flags,
                           p.defaultValue);
}

TEST(DllMachineReader, ReadsTheTestMachinesFromEveryBuild)
{
    REQUIRE_TEST_DLLS();
    const struct
    {
        const char* file;
        const char* shortName;
        int minTracks, maxTracks, globalCount;
        std::vector<song::DllParameterInfo> parameters; // type, name, description, min, max, ...
        int globalRow, trackRow; // an unknown type (7) is one byte wide but adds nothing
    } machines[] = {
        // clang-format off
        {"generators/TestGen", "TestGen", 1, 16, 3,
         {{3, "Volume", "", 0, 0xFFFE, 0xFFFF, 6, 0x4000}, {2, "Attack", "", 1, 0xFE, 0xFF, 2, 10},
          {2, "Wave", "", 0, 4, 0xFF, 2, 0}, {0, "Note", "", 1, 0x9C, 0, 0, 0}},
         4, 1},
        {"effects/TestFx", "TestFx", 0, 0, 3,
         {{2, "Dry/Wet", "", 0, 100, 0xFF, 2, 50}, {3, "Time", "", 1, 0x8000, 0, 2, 300},
          {7, "Odd", "", 0, 1, 0xFF, 2, 1}},
         3, 0},
        // clang-format on
    };
    for (const auto& m : machines) {
        for (const char* build : {"32O0", "32O2", "64O0", "64O2"}) {
            const std::string file = std::string(m.file) + build + ".dll";
            SCOPED_TRACE(file);
            DllMachineInfo info;
            ASSERT_EQ(DllMachineReader::readFile(testGear() / file, info), Status::Ok);
            EXPECT_EQ(std::tie(info.is64Bit, info.shortName, info.author, info.version,
                               info.minTracks, info.maxTracks, info.globalParameterCount),
                      std::make_tuple(build[0] == '6', m.shortName, "Tonalmancer tests", 15,
                                      m.minTracks, m.maxTracks, m.globalCount));
            ASSERT_EQ(info.parameters.size(), m.parameters.size());
            for (std::size_t i = 0; i < m.parameters.size(); ++i)
                EXPECT_EQ(fields(info.parameters[i]), fields(m.parameters[i])) << i;
            const song::MachineDatabaseEntry entry =
                song::MachineScanner::entryFromInfo(info, "X", 1);
            EXPECT_EQ(entry.globalRowSize, m.globalRow);
            EXPECT_EQ(entry.trackRowSize, m.trackRow);
        }
    }
}

} // namespace
