#pragma once

#include "music/Result.h"
#include "song/BuzzSong.h"

#include <filesystem>
#include <string>

namespace song {

/**
 * Writes a BuzzSong as a Buzz song file: a fresh 380-byte header and directory, then BVER (the
 * program's fixed banner), PARA, CONN, WAVT and CWAV (when the song has wave data), PATT, SEQU,
 * MIDI, PDLG, MACH and the kept raw sections, with no gaps.
 *
 * The file is written beside the target and renamed over it only after every byte was written,
 * so a failed save leaves the old file as it was. Failures carry their FileErrorCode.
 */
class SongWriter
{
public:
    /** The version text every written song carries (two blanks before "5"). */
    static constexpr const char* kBanner = "Buzz 1.2 BETA Oct  5 2000 01:19:28";
    /** Up to this many patterns a sequence value takes one byte, beyond it two. */
    static constexpr std::size_t kMaxPatternsForByteValues = 112;

    /**
     * The bytes each value of `sequence` takes in the file, which its header's width byte also
     * states: 2 when its machine has more than 112 patterns or a value does not fit one byte,
     * else 1. The rule reads the song as it is written, so header and values agree however the
     * pattern count moved since the song was read.
     */
    static std::uint8_t valueWidth(const BuzzSong& song, const SongSequence& sequence);
    /** The bytes each position takes: the width as read, or 2 when a position needs it. */
    static std::uint8_t positionWidth(const SongSequence& sequence);

    static music::Result write(const BuzzSong& song, const std::filesystem::path& path);
    /** The bytes `write` would save, in memory (for checks and tests). */
    static music::Result toBytes(const BuzzSong& song, std::string& bytes);
};

} // namespace song
