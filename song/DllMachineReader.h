#pragma once

#include "song/DllMachineInfo.h"

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace song {

class PeImage;

/**
 * Reads the machine description out of a Windows machine DLL without running it: finds the
 * `GetInfo` export, decodes the few instructions that return the address of the description
 * record, and reads the record and its parameter descriptions from the mapped image. Works for
 * 32-bit and 64-bit images on every platform. Every read is checked against the image.
 *
 * Understood `GetInfo` bodies: `mov eax, imm32; ret`, the same behind a frame-pointer prologue
 * and epilogue, `lea rax, [rip + disp32]; ret` (also framed), and `jmp` thunks to such code.
 */
class DllMachineReader
{
public:
    enum class Status
    {
        Ok,
        NotAnImage, // not a PE image at all: "Unable to load library"
        NoGetInfo,  // a PE image, but no `GetInfo` whose description could be read
    };

    static Status readFile(const std::filesystem::path& path, DllMachineInfo& info);
    static Status read(std::string_view bytes, DllMachineInfo& info);
    static Status read(const PeImage& image, DllMachineInfo& info);

    /** Larger files are not read (no machine DLL comes near it): "Unable to load library". */
    static constexpr std::uintmax_t kMaxFileSize = 256u * 1024u * 1024u;
    /** Upper bound on global + track parameters; more is taken as a record that cannot be read. */
    static constexpr std::int32_t kMaxParameters = 4096;
};

} // namespace song
