#include "song/NoteTransforms.h"

#include "song/BuzzNote.h"

#include <functional>
#include <optional>

namespace song {

namespace {

constexpr int kOctaveStep = 16; // note bytes per octave

/** The note a tracker byte plays, counted in half-notes from C-0; nothing for no note. */
std::optional<int> semitonesOf(int value)
{
    if (value <= BuzzNote::kNoNote || value >= BuzzNote::kNoteOff)
        return std::nullopt;
    const int pitchClass = (value - 1) % kOctaveStep;
    const int octave = (value - 1) / kOctaveStep;
    if (pitchClass > 11 || octave > 9)
        return std::nullopt;
    return octave * 12 + pitchClass;
}

/** Applies `map` (half-notes to half-notes) to every note cell of the machines' patterns. */
NoteTransformReport transform(BuzzSong& song, const std::vector<std::size_t>& machines,
                              const std::function<int(int)>& map)
{
    NoteTransformReport report;
    for (const std::size_t m : machines) {
        if (m >= song.machineCount() || m >= song.patternBlocks().size())
            continue;
        const MachineDatabaseEntry& description = song.machines()[m].description;
        const MachinePatterns& block = song.patternBlocks()[m];
        for (std::size_t parameter = 0; parameter < description.parameters.size(); ++parameter) {
            const MachineParameter& p = description.parameters[parameter];
            if (p.type != static_cast<int>(ParameterType::Note))
                continue;
            const std::size_t tracks = p.isGlobal() ? 1 : block.trackCount;
            for (std::size_t pattern = 0; pattern < block.patterns.size(); ++pattern) {
                const std::size_t rows = block.patterns[pattern].rows;
                for (std::size_t track = 0; track < tracks; ++track) {
                    for (std::size_t row = 0; row < rows; ++row) {
                        const auto value = song.cellValue(m, pattern, row, track, parameter);
                        const auto note = value ? semitonesOf(*value) : std::nullopt;
                        if (!note)
                            continue;
                        const int moved = map(*note);
                        if (moved < 0 || moved > kHighestTrackerNote) {
                            report.outOfRange.push_back({m, pattern, row, track, parameter,
                                                         static_cast<std::uint8_t>(*value)});
                            continue;
                        }
                        if (moved == *note)
                            continue;
                        song.setCellValue(m, pattern, row, track, parameter,
                                          BuzzNote::encode(moved % 12, moved / 12));
                        ++report.changed;
                    }
                }
            }
        }
    }
    return report;
}

} // namespace

std::string trackerNoteName(std::uint8_t note)
{
    if (note == BuzzNote::kNoteOff)
        return "off";
    const auto semitones = semitonesOf(note);
    if (!semitones)
        return std::to_string(note);
    const std::string name(music::noteName(*semitones % 12));
    return name + (name.size() == 1 ? "-" : "") + std::to_string(*semitones / 12);
}

std::vector<std::string> NoteTransformReport::describe(const BuzzSong& song) const
{
    std::vector<std::string> lines;
    for (const NoteOutOfRange& cell : outOfRange) {
        const SongMachine& machine = song.machines().at(cell.machine);
        const SongPattern& pattern =
            song.patternBlocks().at(cell.machine).patterns.at(cell.pattern);
        const bool global = machine.description.parameters.at(cell.parameter).isGlobal();
        lines.push_back("\"" + machine.name + "\" pattern \"" + pattern.name + "\" row " +
                        std::to_string(cell.row) +
                        (global ? std::string() : " track " + std::to_string(cell.track)) + ": " +
                        trackerNoteName(cell.note));
    }
    return lines;
}

NoteTransformReport transposeNotes(BuzzSong& song, const std::vector<std::size_t>& machines,
                                   int semitones)
{
    return transform(song, machines, [semitones](int note) { return note + semitones; });
}

NoteTransformReport invertNotes(BuzzSong& song, const std::vector<std::size_t>& machines,
                                music::NoteValue centre)
{
    return transform(song, machines, [centre](int note) { return 2 * int{centre} - note; });
}

} // namespace song
