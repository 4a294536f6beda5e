// Feeds arbitrary bytes to the PE image parser and the GetInfo reader, as if they were a machine
// DLL found in the gear directory. An input whose first byte has bit 1 set instead patches a
// valid machine DLL built here (PE32, or PE32+ with bit 0 set: GetInfo's code, the record, two
// parameters and their names), from the section offset 16 x its second byte on, so that the
// instruction decoder and the record reader get deep input even without seed files.
#include "song/DllMachineReader.h"
#include "song/MachineScanner.h"
#include "song/PeImage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t kHeaders = 0x200;
constexpr std::size_t kSection = 0x1000; // at RVA 0x1000
constexpr std::uint32_t kExports = 0x1F00;

void put16(std::string& s, std::size_t at, std::uint32_t v)
{
    s[at] = static_cast<char>(v & 0xFF);
    s[at + 1] = static_cast<char>((v >> 8) & 0xFF);
}

void put32(std::string& s, std::size_t at, std::uint32_t v)
{
    put16(s, at, v & 0xFFFF);
    put16(s, at + 2, v >> 16);
}

void putPointer(std::string& s, std::size_t at, bool is64, std::uint64_t base, std::uint32_t rva)
{
    const std::uint64_t va = base + rva;
    put32(s, at, static_cast<std::uint32_t>(va));
    if (is64)
        put32(s, at + 4, static_cast<std::uint32_t>(va >> 32));
}

/**
 * A one-section DLL (section at RVA 0x1000) describing a machine "Fuzz" with a global word and a
 * track note parameter, then `patch` written over its section from `patchAt` on.
 */
std::string skeleton(bool is64, std::size_t patchAt, std::string_view patch)
{
    const std::uint64_t base = is64 ? 0x180000000ull : 0x10000000ull;
    std::string file(kHeaders + kSection, '\0');
    file[0] = 'M';
    file[1] = 'Z';
    put32(file, 0x3C, 0x40);
    file.replace(0x40, 4, std::string_view("PE\0\0", 4));
    put16(file, 0x44, is64 ? 0x8664 : 0x14C);
    put16(file, 0x46, 1);
    const std::uint32_t optionalSize = is64 ? 0xF0 : 0xE0;
    put16(file, 0x54, optionalSize);
    const std::size_t opt = 0x58;
    put16(file, opt, is64 ? 0x20B : 0x10B);
    if (is64) {
        put32(file, opt + 24, static_cast<std::uint32_t>(base));
        put32(file, opt + 28, static_cast<std::uint32_t>(base >> 32));
    } else {
        put32(file, opt + 28, static_cast<std::uint32_t>(base));
    }
    put32(file, opt + 60, kHeaders);
    const std::size_t dirs = opt + (is64 ? 112 : 96);
    put32(file, dirs - 4, 16);
    put32(file, dirs, kExports);
    put32(file, dirs + 4, 0x60);
    const std::size_t section = opt + optionalSize;
    put32(file, section + 8, kSection);
    put32(file, section + 12, 0x1000);
    put32(file, section + 16, kSection);
    put32(file, section + 20, kHeaders);

    // File offset of an RVA inside the section.
    const auto at = [](std::uint32_t rva) { return kHeaders + (rva - 0x1000); };
    if (is64) { // lea rax, [rip + disp32]; ret
        file.replace(at(0x1000), 3, "\x48\x8D\x05");
        put32(file, at(0x1003), 0x1200 - 0x1007);
        file[at(0x1007)] = static_cast<char>(0xC3);
    } else { // mov eax, imm32; ret
        file[at(0x1000)] = static_cast<char>(0xB8);
        put32(file, at(0x1001), static_cast<std::uint32_t>(base + 0x1200));
        file[at(0x1005)] = static_cast<char>(0xC3);
    }
    const std::uint32_t ptr = is64 ? 8 : 4;
    put32(file, at(0x1200 + 12), 1);
    put32(file, at(0x1200 + 16), 8);
    put32(file, at(0x1200 + 20), 1);
    put32(file, at(0x1200 + 24), 1);
    putPointer(file, at(0x1200 + (is64 ? 32 : 28)), is64, base, 0x1300);
    putPointer(file, at(0x1200 + (is64 ? 64 : 44)), is64, base, 0x1800);
    putPointer(file, at(0x1300), is64, base, 0x1400);
    putPointer(file, at(0x1300 + ptr), is64, base, 0x1440);
    put32(file, at(0x1400), 3);
    putPointer(file, at(0x1400 + ptr), is64, base, 0x1810);
    put32(file, at(0x1440), 0);
    putPointer(file, at(0x1440 + ptr), is64, base, 0x1820);
    file.replace(at(0x1800), 4, "Fuzz");
    file.replace(at(0x1810), 3, "Vol");
    file.replace(at(0x1820), 4, "Note");

    const std::size_t e = at(kExports);
    put32(file, e + 20, 1);
    put32(file, e + 24, 1);
    put32(file, e + 28, kExports + 0x28);
    put32(file, e + 32, kExports + 0x2C);
    put32(file, e + 36, kExports + 0x30);
    put32(file, e + 0x28, 0x1000);
    put32(file, e + 0x2C, kExports + 0x40);
    file.replace(e + 0x40, 7, "GetInfo");

    const std::size_t room = kSection - std::min(patchAt, kSection);
    file.replace(kHeaders + std::min(patchAt, kSection), std::min(room, patch.size()),
                 patch.substr(0, std::min(room, patch.size())));
    return file;
}

void exercise(std::string_view bytes)
{
    song::DllMachineInfo info;
    if (song::DllMachineReader::read(bytes, info) == song::DllMachineReader::Status::Ok) {
        // What the scans write must be computable from whatever was read.
        const song::MachineDatabaseEntry entry =
            song::MachineScanner::entryFromInfo(info, "Fuzz", 1);
        (void)song::MachineDatabase::formatEntry(entry);
    }
    song::PeImage image;
    if (image.parse(bytes)) {
        (void)image.findExport("GetInfo");
        (void)image.readCString(0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (size > 1 && (data[0] & 2) != 0)
        exercise(skeleton((data[0] & 1) != 0, std::size_t{data[1]} * 16, bytes.substr(2)));
    else
        exercise(bytes);
    return 0;
}
