#pragma once

#include "music/Result.h"
#include "song/BuzzSong.h"
#include "song/MachineCatalog.h"
#include "song/UnknownMachineHandler.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace song {

/**
 * Reads a Buzz song (.bmx, .bmw). The whole file is read into memory and parsed with every count
 * and size checked against the bytes that remain, so a damaged file fails with the code of the
 * step that failed (FileErrorCode) instead of misbehaving.
 *
 * Machines are resolved through the catalog; an unknown machine goes to the handler (learn it
 * from the song's own parameter descriptions, or scan its DLL). Without a handler an unknown
 * machine fails the read with code 26. A failed read leaves the target song untouched.
 */
class SongReader
{
public:
    SongReader(MachineCatalog& catalog, UnknownMachineHandler* handler)
        : m_catalog(catalog), m_handler(handler)
    {}

    /** Reads the file at `path` into `song` (which also remembers the path). */
    music::Result read(const std::filesystem::path& path, BuzzSong& song);
    /** Reads a song from the bytes of a whole file. */
    music::Result readBytes(std::string_view bytes, BuzzSong& song);
    /** Reads a song from a whole file's bytes; large wave data stays in them, uncopied. */
    music::Result readShared(std::shared_ptr<const std::string> bytes, BuzzSong& song);

    /**
     * A database entry for a machine the database does not know, built from the song's own
     * parameter descriptions: widths from the types, type as the song stores it, tracks 1 to 64
     * (at least the song's track count) when there are track parameters, else 0 to the song's
     * track count. Nothing when a row would exceed the database's 255 bytes.
     */
    static std::optional<MachineDatabaseEntry> entryFromParameterSet(const MachineParameterSet& set,
                                                                     std::uint8_t type,
                                                                     std::uint16_t tracksInSong);

    /** The text shown for a machine the database does not know. */
    static std::string unknownMachineMessage(const std::string& name, const std::string& dllName);

private:
    class Parser;

    MachineCatalog& m_catalog;
    UnknownMachineHandler* m_handler = nullptr;
};

} // namespace song
