#pragma once

#include "music/Result.h"
#include "part/Part.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace part {

/**
 * The part file (".prt", no magic line): the pattern list block, the chord list block, then base
 * octave, current pattern, first and last selected chord, beats per minute, ticks per beat and
 * the twelve pitch-class flags, one number a line.
 */
class PartFile
{
public:
    static constexpr const char* kDefaultFileName = "default.prt";
    static constexpr const char* kFileFilter =
        "Tonalmancer song (*.prt)|*.prt|All Files (*.*)|*.*||";
    static constexpr const char* kOpenError = "unable to open file";

    /** The file's bytes for a part. */
    static std::string serialize(const Part& part);
    /**
     * Reads a part from bytes. Never fails: a short or foreign file gives zeros and empty names.
     * A file without patterns gives one empty "noname" pattern, so a part always has one.
     */
    static Part parse(std::string_view bytes);

    /** Reads `path` into `part`; "unable to open file" and `part` unchanged when unreadable. */
    static music::Result load(const std::filesystem::path& path, Part& part);
    /** Writes safely (the old file survives a failure); "unable to open file" on failure. */
    static music::Result save(const std::filesystem::path& path, const Part& part);
    /** The default part: false, silently and with `part` unchanged, when it cannot be read. */
    static bool loadDefault(const std::filesystem::path& path, Part& part);
};

} // namespace part
