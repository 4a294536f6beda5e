#include "song/DllMachineReader.h"

#include "music/FileBytes.h"
#include "song/PeImage.h"

#include <array>

namespace song {

namespace {

constexpr int kMaxJumps = 8;
constexpr std::size_t kMaxNameLength = 1024;

// Field offsets of the machine description record and of one parameter description, from the
// C layouts of the Buzz machine interface: 4-byte ints and pointers in 32-bit images, 8-byte
// naturally aligned pointers in 64-bit ones.
struct RecordLayout
{
    std::uint64_t type, version, flags, minTracks, maxTracks, globalCount, trackCount;
    std::uint64_t parameters, name, shortName, author;
    std::uint64_t paramType, paramName, paramDescription, paramMin, paramMax, paramNoValue,
        paramFlags, paramDefault;
};

constexpr RecordLayout kLayout32{0,  4, 8, 12, 16, 20, 24, 28, 40, 44,
                                 48, 0, 4, 8,  12, 16, 20, 24, 28};
constexpr RecordLayout kLayout64{0,  4, 8, 12, 16, 20, 24, 32, 56, 64,
                                 72, 0, 8, 16, 24, 28, 32, 36, 40};

/** Skips `nop`s and the `endbr32`/`endbr64` markers some compilers put at a function's start. */
std::uint64_t skipPadding(const PeImage& image, std::uint64_t at)
{
    for (int i = 0; i < 16; ++i) {
        const auto b = image.readU8(at);
        if (b && *b == 0x90) {
            ++at;
            continue;
        }
        std::array<std::uint8_t, 4> endbr{};
        if (image.read(at, endbr.data(), endbr.size()) && endbr[0] == 0xF3 && endbr[1] == 0x0F &&
            endbr[2] == 0x1E && (endbr[3] == 0xFA || endbr[3] == 0xFB)) {
            at += 4;
            continue;
        }
        break;
    }
    return at;
}

bool matches(const PeImage& image, std::uint64_t at, std::initializer_list<std::uint8_t> bytes)
{
    for (const std::uint8_t expected : bytes) {
        const auto b = image.readU8(at++);
        if (!b || *b != expected)
            return false;
    }
    return true;
}

std::optional<std::uint32_t> imm32(const PeImage& image, std::uint64_t at)
{
    return image.readU32(at);
}

/**
 * The RVA of the record `GetInfo` returns, from its code at `rva`: an optional frame-pointer
 * prologue, a `mov eax, imm32` or `lea rax, [rip + disp32]`, then `ret` (after the matching
 * epilogue); `jmp rel32`/`jmp rel8` thunks are followed.
 */
std::optional<std::uint64_t> decodeGetInfo(const PeImage& image, std::uint64_t rva)
{
    for (int jump = 0; jump <= kMaxJumps; ++jump) {
        std::uint64_t at = skipPadding(image, rva);
        const auto first = image.readU8(at);
        if (!first)
            return std::nullopt;
        if (*first == 0xE9) { // jmp rel32
            const auto rel = image.readU32(at + 1);
            if (!rel)
                return std::nullopt;
            rva =
                at + 5 + static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(*rel)});
            continue;
        }
        if (*first == 0xEB) { // jmp rel8
            const auto rel = image.readU8(at + 1);
            if (!rel)
                return std::nullopt;
            rva = at + 2 + static_cast<std::uint64_t>(std::int64_t{static_cast<std::int8_t>(*rel)});
            continue;
        }

        bool framed = false;
        if (matches(image, at, {0x55, 0x8B, 0xEC}) || matches(image, at, {0x55, 0x89, 0xE5})) {
            framed = true;
            at += 3;
        } else if (matches(image, at, {0x55, 0x48, 0x89, 0xE5}) ||
                   matches(image, at, {0x55, 0x48, 0x8B, 0xEC})) {
            framed = true;
            at += 4;
        }

        std::optional<std::uint64_t> target;
        if (matches(image, at, {0xB8})) { // mov eax, imm32: an absolute address
            const auto value = imm32(image, at + 1);
            if (!value)
                return std::nullopt;
            target = image.rvaFromVa(*value);
            at += 5;
        } else if (image.is64Bit() && matches(image, at, {0x48, 0x8D, 0x05})) {
            // lea rax, [rip + disp32]: relative to the next instruction
            const auto disp = imm32(image, at + 3);
            if (!disp)
                return std::nullopt;
            at += 7;
            target =
                at + static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(*disp)});
        } else {
            return std::nullopt;
        }
        if (!target)
            return std::nullopt;

        if (framed) {
            // pop rbp / pop ebp, or leave
            if (!matches(image, at, {0x5D}) && !matches(image, at, {0xC9}))
                return std::nullopt;
            ++at;
        }
        if (!matches(image, at, {0xC3}))
            return std::nullopt;
        return target;
    }
    return std::nullopt;
}

std::optional<std::int32_t> readInt(const PeImage& image, std::uint64_t rva)
{
    const auto v = image.readU32(rva);
    if (!v)
        return std::nullopt;
    return static_cast<std::int32_t>(*v);
}

/** The string an absolute pointer in the image points to; nothing for null or outside. */
std::optional<std::string> readStringAt(const PeImage& image, std::uint64_t pointerRva)
{
    const auto va = image.readPointer(pointerRva);
    if (!va || *va == 0)
        return std::nullopt;
    const auto rva = image.rvaFromVa(*va);
    if (!rva)
        return std::nullopt;
    return image.readCString(*rva, kMaxNameLength);
}

bool readParameter(const PeImage& image, const RecordLayout& layout, std::uint64_t rva,
                   DllParameterInfo& p)
{
    const auto type = readInt(image, rva + layout.paramType);
    const auto name = readStringAt(image, rva + layout.paramName);
    const auto minValue = readInt(image, rva + layout.paramMin);
    const auto maxValue = readInt(image, rva + layout.paramMax);
    const auto noValue = readInt(image, rva + layout.paramNoValue);
    const auto flags = readInt(image, rva + layout.paramFlags);
    const auto defaultValue = readInt(image, rva + layout.paramDefault);
    if (!type || !name || !minValue || !maxValue || !noValue || !flags || !defaultValue)
        return false;
    p.type = *type;
    p.name = *name;
    p.description = readStringAt(image, rva + layout.paramDescription).value_or("");
    p.minValue = *minValue;
    p.maxValue = *maxValue;
    p.noValue = *noValue;
    p.flags = *flags;
    p.defaultValue = *defaultValue;
    return true;
}

} // namespace

DllMachineReader::Status DllMachineReader::readFile(const std::filesystem::path& path,
                                                    DllMachineInfo& info)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error || size > kMaxFileSize)
        return Status::NotAnImage;
    const auto bytes = music::readFileBytes(path);
    if (!bytes)
        return Status::NotAnImage;
    return read(*bytes, info);
}

DllMachineReader::Status DllMachineReader::read(std::string_view bytes, DllMachineInfo& info)
{
    PeImage image;
    if (!image.parse(bytes))
        return Status::NotAnImage;
    return read(image, info);
}

DllMachineReader::Status DllMachineReader::read(const PeImage& image, DllMachineInfo& info)
{
    info = DllMachineInfo();
    const auto getInfo = image.findExport("GetInfo");
    if (!getInfo)
        return Status::NoGetInfo;
    const auto record = decodeGetInfo(image, *getInfo);
    if (!record)
        return Status::NoGetInfo;

    const RecordLayout& layout = image.is64Bit() ? kLayout64 : kLayout32;
    const std::uint64_t r = *record;
    const auto type = readInt(image, r + layout.type);
    const auto version = readInt(image, r + layout.version);
    const auto flags = readInt(image, r + layout.flags);
    const auto minTracks = readInt(image, r + layout.minTracks);
    const auto maxTracks = readInt(image, r + layout.maxTracks);
    const auto globalCount = readInt(image, r + layout.globalCount);
    const auto trackCount = readInt(image, r + layout.trackCount);
    const auto shortName = readStringAt(image, r + layout.shortName);
    if (!type || !version || !flags || !minTracks || !maxTracks || !globalCount || !trackCount ||
        !shortName)
        return Status::NoGetInfo;
    if (*globalCount < 0 || *trackCount < 0 || *globalCount > kMaxParameters ||
        *trackCount > kMaxParameters - *globalCount)
        return Status::NoGetInfo;

    DllMachineInfo result;
    result.is64Bit = image.is64Bit();
    result.type = *type;
    result.version = *version;
    result.flags = *flags;
    result.minTracks = *minTracks;
    result.maxTracks = *maxTracks;
    result.globalParameterCount = *globalCount;
    result.trackParameterCount = *trackCount;
    result.shortName = *shortName;
    result.name = readStringAt(image, r + layout.name).value_or("");
    result.author = readStringAt(image, r + layout.author).value_or("");

    const std::size_t count = static_cast<std::size_t>(*globalCount + *trackCount);
    if (count > 0) {
        const auto array = image.readPointer(r + layout.parameters);
        if (!array)
            return Status::NoGetInfo;
        const auto arrayRva = image.rvaFromVa(*array);
        if (!arrayRva)
            return Status::NoGetInfo;
        const std::uint64_t pointerSize = image.is64Bit() ? 8 : 4;
        for (std::size_t i = 0; i < count; ++i) {
            const auto parameter = image.readPointer(*arrayRva + i * pointerSize);
            if (!parameter)
                return Status::NoGetInfo;
            const auto parameterRva = image.rvaFromVa(*parameter);
            DllParameterInfo p;
            if (!parameterRva || !readParameter(image, layout, *parameterRva, p))
                return Status::NoGetInfo;
            result.parameters.push_back(std::move(p));
        }
    }
    info = std::move(result);
    return Status::Ok;
}

} // namespace song
