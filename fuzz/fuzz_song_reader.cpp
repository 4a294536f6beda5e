// libFuzzer target: the song reader on arbitrary bytes, with a machine database held in memory,
// then the song edits on whatever reads successfully; every song read, and every edited song, must
// write and read back unchanged. Nothing touches the disk.

#include "song/MemoryMachineCatalog.h"
#include "song/SongEdits.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

song::MachineDatabaseEntry entry(const char* dll, std::uint8_t type,
                                 std::vector<song::MachineParameter> parameters,
                                 std::uint16_t maxTracks)
{
    song::MachineDatabaseEntry e;
    e.dllName = dll;
    e.shortName = dll;
    e.type = type;
    e.maxTracks = maxTracks;
    e.minTracks = maxTracks > 0 ? 1 : 0;
    for (const song::MachineParameter& p : parameters) {
        const std::uint8_t width = song::BuzzSong::parameterWidth(p.type);
        (p.isGlobal() ? e.globalRowSize : e.trackRowSize) += width;
        ++(p.isGlobal() ? e.globalParameterCount : e.trackParameterCount);
    }
    e.totalParameterCount = static_cast<std::uint16_t>(parameters.size());
    e.parameters = std::move(parameters);
    return e;
}

std::vector<song::MachineDatabaseEntry> entries()
{
    return {
        entry("Master", 0,
              {{"Volume", 2, 'g', 3, 0, 0}, {"Bpm", 2, 'g', 3, 120, 120}, {"Tpb", 1, 'g', 2, 4, 4}},
              256),
        entry("Jeskola Tracker", 1,
              {{"Note", 1, 't', 0, 0, 0},
               {"Wave", 1, 't', 2, 0, 0},
               {"Volume", 1, 't', 2, 0xFF, 0x80}},
              16),
        entry("TestGen", 1,
              {{"Cutoff", 1, 'g', 2, 0xFF, 0x40},
               {"Glide", 2, 'g', 3, 0xFFFF, 0x100},
               {"Note", 1, 't', 0, 0, 0},
               {"Velocity", 1, 't', 2, 0xFF, 0x80}},
              16),
        entry("Jeskola Mixer", 2, {{"Level", 1, 't', 2, 0, 0}, {"Pan", 1, 't', 2, 0, 0}}, 16),
    };
}

/** Learns every machine the song describes; never scans. */
class LearningHandler : public song::UnknownMachineHandler
{
public:
    bool learnFromSong(const std::string&, const std::string&) override { return true; }
    std::optional<std::filesystem::path> chooseDllToScan(const std::string&) override
    {
        return std::nullopt;
    }
};

/**
 * Whether a write of the song reads back as it was written. What the file format cannot carry is
 * excluded: a MIDI or parameter-window entry without a name (its zero byte ends the list).
 */
bool writesFaithfully(const song::BuzzSong& song)
{
    for (const song::MidiBinding& b : song.midiBindings()) {
        if (b.machineName.empty())
            return false;
    }
    for (const song::ParameterWindow& w : song.parameterWindows()) {
        if (w.machineName.empty())
            return false;
    }
    return true;
}

/** Writes the song, reads it back and writes it again: both writes must be the same bytes. */
void checkRoundTrip(const song::BuzzSong& song, song::MachineCatalog& catalog)
{
    if (!writesFaithfully(song))
        return;
    std::string first;
    if (!song::SongWriter::toBytes(song, first))
        return;
    song::BuzzSong reread;
    const music::Result read = song::SongReader(catalog, nullptr).readBytes(first, reread);
    if (!read) {
        std::fprintf(stderr, "a written song does not read back: code %d\n", read.code());
        std::abort();
    }
    std::string second;
    if (!song::SongWriter::toBytes(reread, second) || second != first) {
        std::fprintf(stderr, "writing a song read back from our own file changed it\n");
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::vector<song::MachineDatabaseEntry> known = entries();
    song::MemoryMachineCatalog catalog(known);
    LearningHandler handler;
    song::BuzzSong song;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (!song::SongReader(catalog, &handler).readBytes(bytes, song))
        return 0;
    checkRoundTrip(song, catalog);

    // Edits must keep working on whatever the reader accepted, and keep the song readable.
    for (std::size_t m = 0; m < song.machineCount(); ++m) {
        song::removeUnusedPatterns(song, m);
        song::trimPatterns(song, m);
        if (song.patternCount(m) > 0)
            song.setCellValue(m, 0, 0, 0, 0, 0x41);
    }
    if (song.machineCount() > 1)
        song::removeMachine(song, 1);
    if (song.machineCount() > 0) {
        song.createPattern(0, "fuzz", 4);
        song.setTrackCount(0, 2);
    }
    checkRoundTrip(song, catalog);
    return 0;
}
