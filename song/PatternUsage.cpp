#include "song/PatternUsage.h"

#include "song/BuzzNote.h"

namespace song {

std::vector<PatternUsage> patternUsage(const BuzzSong& song, std::size_t machine)
{
    std::vector<PatternUsage> usage;
    if (machine >= song.machineCount() || machine >= song.patternBlocks().size())
        return usage;
    const MachineDatabaseEntry& description = song.machines()[machine].description;
    const MachinePatterns& block = song.patternBlocks()[machine];
    const int wave = description.findParameter("wave");
    for (std::size_t pattern = 0; pattern < block.patterns.size(); ++pattern) {
        const SongPattern& p = block.patterns[pattern];
        PatternUsage& u = usage.emplace_back();
        u.name = p.name;
        for (std::size_t parameter = 0; parameter < description.parameters.size(); ++parameter) {
            const MachineParameter& mp = description.parameters[parameter];
            const bool isNote = mp.type == static_cast<int>(ParameterType::Note);
            if (!isNote && static_cast<int>(parameter) != wave)
                continue;
            const std::size_t tracks = mp.isGlobal() ? 1 : block.trackCount;
            const int noValue =
                mp.noValue & (BuzzSong::parameterWidth(mp.type) == 2 ? 0xFFFF : 0xFF);
            for (std::size_t track = 0; track < tracks; ++track) {
                for (std::size_t row = 0; row < p.rows; ++row) {
                    const auto value = song.cellValue(machine, pattern, row, track, parameter);
                    if (!value)
                        continue;
                    if (isNote && *value == BuzzNote::kNoteOff)
                        ++u.noteOffs;
                    else if (isNote && *value != BuzzNote::kNoNote)
                        ++u.notes[static_cast<std::uint8_t>(*value)];
                    else if (!isNote && *value != noValue)
                        ++u.waves[*value];
                }
            }
        }
    }
    return usage;
}

} // namespace song
