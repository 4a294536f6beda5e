#pragma once

#include "music/Result.h"
#include "song/BuzzSong.h"
#include "song/MachineCatalog.h"
#include "song/UnknownMachineHandler.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace song {

/**
 * Reads a Buzz song (.bmx, .bmw). The whole file is read into memory and parsed with every count
 * and size checked against the bytes that remain, so a damaged file fails with the code of the
 * step that failed (FileErrorCode) instead of misbehaving.
 *
 * Machines are resolved through the catalog; an unknown machine goes to the handler: learn it
 * from the song's own parameter descriptions (PARA) when the song has them, and when it doesn't
 * or the user declines, scan its DLL. Without a handler an unknown machine fails the read with
 * code 26. A failed read leaves the target song untouched.
 *
 * Where the song's parameter descriptions lay out a machine's rows differently from the
 * database, the song's are used and a warning says so. The machine and pattern sections must end
 * exactly where the directory says; when they don't, the database misdescribes a machine the
 * song doesn't describe itself, and the read fails (code 25 or 270) naming the machines to scan.
 */
class SongReader
{
public:
    SongReader(MachineCatalog& catalog, UnknownMachineHandler* handler)
        : m_catalog(catalog), m_handler(handler)
    {}

    /** What the last read had to say besides its result (shown, but nothing failed). */
    const std::vector<std::string>& warnings() const { return m_warnings; }

    /** A section the last successful read parsed: where it should end and where it did. */
    struct ParsedSection
    {
        std::string name;
        std::uint64_t directoryEnd = 0; // offset + size from the directory
        std::uint64_t parsedEnd = 0;    // where parsing its contents stopped
    };
    /** The parsed sections (CONN, MACH, SEQU, MIDI, PDLG, PATT, BVER, PARA) in reading order. */
    const std::vector<ParsedSection>& parsedSections() const { return m_parsedSections; }

    /** Reads the file at `path` into `song` (which also remembers the path). */
    music::Result read(const std::filesystem::path& path, BuzzSong& song);
    /** Reads a song from the bytes of a whole file. */
    music::Result readBytes(std::string_view bytes, BuzzSong& song);
    /** Reads a song from a whole file's bytes; large wave data stays in them, uncopied. */
    music::Result readShared(std::shared_ptr<const std::string> bytes, BuzzSong& song);

    /**
     * A database entry for a machine the database does not know, built from the song's own
     * parameter descriptions: widths from the types, type as the song stores it. The track range
     * is what the song shows, `tracksInSong` being the most tracks the machine or its patterns
     * use: 1 to that (at least 1) with track parameters, else 0 to it. The short name carries
     * MachineDatabaseEntry::kLearnedMark, so that a scan of the DLL replaces the guess. Nothing
     * when a row would exceed the database's 255 bytes.
     */
    static std::optional<MachineDatabaseEntry> entryFromParameterSet(const MachineParameterSet& set,
                                                                     std::uint8_t type,
                                                                     std::uint16_t tracksInSong);

    /** The warning for a machine whose song describes its parameters differently. */
    static std::string parameterMismatchWarning(const std::string& name,
                                                const std::string& dllName);

    /** The text shown for a machine the database does not know. */
    static std::string unknownMachineMessage(const std::string& name, const std::string& dllName);

private:
    class Parser;

    MachineCatalog& m_catalog;
    UnknownMachineHandler* m_handler = nullptr;
    std::vector<std::string> m_warnings;
    std::vector<ParsedSection> m_parsedSections;
};

} // namespace song
