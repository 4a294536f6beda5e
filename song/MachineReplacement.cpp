#include "song/MachineReplacement.h"

#include "music/TextLineReader.h"

#include <algorithm>

namespace song {

namespace {

/** Where each parameter of an entry sits in its row (global or one track's), and its width. */
struct Layout
{
    std::vector<std::size_t> offset;
    std::vector<std::uint8_t> width; // 0: the parameter takes no bytes, or lies past the row

    explicit Layout(const MachineDatabaseEntry& entry)
    {
        std::size_t global = 0;
        std::size_t track = 0;
        for (const MachineParameter& p : entry.parameters) {
            std::size_t& at = p.isGlobal() ? global : track;
            const std::size_t rowSize = p.isGlobal() ? entry.globalRowSize : entry.trackRowSize;
            const std::uint8_t w = BuzzSong::parameterWidth(p.type);
            offset.push_back(at);
            width.push_back(at + w <= rowSize ? w : 0);
            at += w;
        }
    }
};

int readValue(const std::uint8_t* at, std::uint8_t width)
{
    return width == 2 ? at[0] | at[1] << 8 : at[0];
}

void writeValue(std::uint8_t* at, std::uint8_t width, int value)
{
    at[0] = static_cast<std::uint8_t>(value & 0xFF);
    if (width == 2)
        at[1] = static_cast<std::uint8_t>((value >> 8) & 0xFF);
}

bool fitsWidth(int value, std::uint8_t width)
{
    return value >= 0 && value <= (width == 2 ? 0xFFFF : 0xFF);
}

/** The no-value as the row stores it (cut to the parameter's width). */
int storedNoValue(const MachineParameter& p, std::uint8_t width)
{
    return p.noValue & (width == 2 ? 0xFFFF : 0xFF);
}

/** The rows of one block of a pattern: the global rows, or the rows of track `track`. */
struct Block
{
    const std::uint8_t* rows = nullptr;
    std::size_t rowSize = 0;
};

Block blockOf(const SongPattern& p, const SongMachine& m, bool global, std::size_t track)
{
    if (global)
        return {p.globalRows.data(), m.globalRowSize};
    return {p.trackRows.data() + track * p.rows * std::size_t{m.trackRowSize}, m.trackRowSize};
}

music::Result check(const BuzzSong& song, std::size_t machine, const MachineDatabaseEntry& entry)
{
    if (machine >= song.machineCount() || machine >= song.patternBlocks().size())
        return music::Result::failure("The song has no machine " + std::to_string(machine) + ".");
    const SongMachine& m = song.machines()[machine];
    const MachinePatterns& block = song.patternBlocks()[machine];
    const bool damaged =
        std::any_of(block.patterns.begin(), block.patterns.end(), [&](const SongPattern& p) {
            return p.globalRows.size() != std::size_t{p.rows} * m.globalRowSize ||
                   p.trackRows.size() != std::size_t{p.rows} * m.trackRowSize * block.trackCount;
        });
    if (damaged || m.globalState.size() != m.globalRowSize)
        return music::Result::failure("The patterns of \"" + m.name +
                                      "\" do not fit its description; it cannot be replaced.");
    if (m.isMaster() || entry.type == 0)
        return music::Result::failure("The master cannot be replaced, nor replace a machine.");
    if ((m.type == 2) != (entry.type == 2))
        return music::Result::failure("A generator can only be replaced by a generator, an "
                                      "effect only by an effect.");
    const int oldNote = m.description.findParameter("note");
    const int newNote = entry.findParameter("note");
    if (oldNote < 0 || newNote < 0)
        return music::Result::failure(
            "\"" + (oldNote < 0 ? m.name : entry.dllName) +
            "\" has no note parameter: only machines that both play notes can replace each "
            "other.");
    const bool oldGlobal = m.description.parameters[static_cast<std::size_t>(oldNote)].isGlobal();
    const bool newGlobal = entry.parameters[static_cast<std::size_t>(newNote)].isGlobal();
    if (oldGlobal != newGlobal)
        return music::Result::failure("\"" + m.name + "\" and \"" + entry.dllName +
                                      "\" keep their notes differently (one in its tracks, one "
                                      "in its global parameters).");
    return music::Result::success();
}

} // namespace

bool ReplacementPlan::losesNothing() const
{
    return lostTrackCells == 0 && unfitCells == 0 && midiBindings == 0 &&
           std::all_of(lostParameters.begin(), lostParameters.end(),
                       [](const LostParameter& p) { return p.cells == 0; });
}

std::vector<std::string> ReplacementPlan::describe() const
{
    const auto values = [](std::size_t n) {
        return std::to_string(n) + (n == 1 ? " value" : " values");
    };
    std::vector<std::string> lines;
    std::size_t settingsOnly = 0;
    for (const LostParameter& p : lostParameters) {
        if (p.cells == 0)
            ++settingsOnly;
        else
            lines.push_back(p.name + (p.global ? " (global): " : " (track): ") + values(p.cells));
    }
    if (settingsOnly != 0)
        lines.push_back("the settings of " + std::to_string(settingsOnly) +
                        (settingsOnly == 1 ? " parameter" : " parameters") +
                        " without values in the patterns");
    if (lostTrackCells != 0)
        lines.push_back(values(lostTrackCells) + " in tracks beyond the new machine's " +
                        std::to_string(trackCount));
    if (unfitCells != 0)
        lines.push_back(values(unfitCells) + " too large for the new parameters");
    if (midiBindings != 0)
        lines.push_back(std::to_string(midiBindings) +
                        (midiBindings == 1 ? " MIDI binding" : " MIDI bindings"));
    return lines;
}

music::Result planReplacement(const BuzzSong& song, std::size_t machine,
                              const MachineDatabaseEntry& entry, ReplacementPlan& plan)
{
    if (music::Result ok = check(song, machine, entry); !ok)
        return ok;
    const SongMachine& m = song.machines()[machine];
    const MachinePatterns& block = song.patternBlocks()[machine];
    const std::vector<MachineParameter>& oldParameters = m.description.parameters;
    ReplacementPlan result;

    std::vector<bool> mapped(oldParameters.size(), false);
    for (const MachineParameter& p : entry.parameters) {
        std::optional<std::size_t> source;
        for (std::size_t j = 0; j < oldParameters.size() && !source; ++j) {
            if (!mapped[j] && oldParameters[j].isGlobal() == p.isGlobal() &&
                music::equalsIgnoringCase(oldParameters[j].name, p.name)) {
                mapped[j] = true;
                source = j;
            }
        }
        result.sourceOf.push_back(source);
    }
    const std::uint16_t low = entry.minTracks;
    const std::uint16_t high = std::max(entry.minTracks, entry.maxTracks);
    result.trackCount = std::clamp(block.trackCount, low, high);

    // Count the values each old parameter holds, by where they would go.
    const Layout oldLayout(m.description);
    const Layout newLayout(entry);
    std::vector<std::size_t> cells(oldParameters.size(), 0);
    for (const SongPattern& p : block.patterns) {
        for (std::size_t j = 0; j < oldParameters.size(); ++j) {
            const std::uint8_t width = oldLayout.width[j];
            if (width == 0)
                continue;
            const auto target = std::find(result.sourceOf.begin(), result.sourceOf.end(),
                                          std::optional<std::size_t>(j));
            const std::uint8_t newWidth =
                target == result.sourceOf.end()
                    ? 0
                    : newLayout.width[static_cast<std::size_t>(target - result.sourceOf.begin())];
            const bool global = oldParameters[j].isGlobal();
            const std::size_t tracks = global ? 1 : block.trackCount;
            for (std::size_t t = 0; t < tracks; ++t) {
                const Block b = blockOf(p, m, global, t);
                for (std::size_t r = 0; r < p.rows; ++r) {
                    const int value =
                        readValue(b.rows + r * b.rowSize + oldLayout.offset[j], width);
                    if (value == storedNoValue(oldParameters[j], width))
                        continue;
                    if (target == result.sourceOf.end())
                        ++cells[j];
                    else if (!global && t >= result.trackCount)
                        ++result.lostTrackCells;
                    else if (!fitsWidth(value, newWidth))
                        ++result.unfitCells;
                }
            }
        }
    }
    for (std::size_t j = 0; j < oldParameters.size(); ++j) {
        if (std::find(result.sourceOf.begin(), result.sourceOf.end(),
                      std::optional<std::size_t>(j)) == result.sourceOf.end())
            result.lostParameters.push_back(
                {oldParameters[j].name, oldParameters[j].isGlobal(), cells[j]});
    }
    result.midiBindings = static_cast<std::size_t>(
        std::count_if(song.midiBindings().begin(), song.midiBindings().end(),
                      [&](const MidiBinding& b) { return b.machineName == m.name; }));
    plan = std::move(result);
    return music::Result::success();
}

music::Result replaceMachine(BuzzSong& song, std::size_t machine, const MachineDatabaseEntry& entry,
                             std::size_t databaseIndex, const SpecDataEntry* machineData,
                             ReplacementPlan& plan)
{
    if (music::Result planned = planReplacement(song, machine, entry, plan); !planned)
        return planned;
    SongMachine& m = song.machines()[machine];
    MachinePatterns& block = song.patternBlocks()[machine];
    const Layout oldLayout(m.description);
    const Layout newLayout(entry);
    const std::uint16_t tracks = plan.trackCount;

    // Copies the mapped values of one row block into the matching new one; empty values stay
    // empty and values too wide for their new parameter are dropped.
    const auto carry = [&](const std::uint8_t* from, std::uint8_t* to, bool global, bool state) {
        for (std::size_t i = 0; i < entry.parameters.size(); ++i) {
            const auto j = plan.sourceOf[i];
            if (!j || entry.parameters[i].isGlobal() != global || newLayout.width[i] == 0 ||
                oldLayout.width[*j] == 0)
                continue;
            const int value = readValue(from + oldLayout.offset[*j], oldLayout.width[*j]);
            const bool empty =
                !state && value == storedNoValue(m.description.parameters[*j], oldLayout.width[*j]);
            if (!empty && fitsWidth(value, newLayout.width[i]))
                writeValue(to + newLayout.offset[i], newLayout.width[i], value);
        }
    };

    const std::vector<std::uint8_t> emptyGlobal = BuzzSong::parameterRow(entry, true, false);
    const std::vector<std::uint8_t> emptyTrack = BuzzSong::parameterRow(entry, false, false);
    for (SongPattern& p : block.patterns) {
        SongPattern replaced;
        for (std::size_t r = 0; r < p.rows; ++r) {
            replaced.globalRows.insert(replaced.globalRows.end(), emptyGlobal.begin(),
                                       emptyGlobal.end());
            carry(p.globalRows.data() + r * m.globalRowSize,
                  replaced.globalRows.data() + r * emptyGlobal.size(), true, false);
        }
        for (std::size_t t = 0; t < tracks; ++t) {
            for (std::size_t r = 0; r < p.rows; ++r) {
                const std::size_t at = replaced.trackRows.size();
                replaced.trackRows.insert(replaced.trackRows.end(), emptyTrack.begin(),
                                          emptyTrack.end());
                if (t < block.trackCount)
                    carry(blockOf(p, m, false, t).rows + r * m.trackRowSize,
                          replaced.trackRows.data() + at, false, false);
            }
        }
        p.globalRows = std::move(replaced.globalRows);
        p.trackRows = std::move(replaced.trackRows);
    }

    std::vector<std::uint8_t> globalState = BuzzSong::parameterRow(entry, true, true);
    if (m.globalState.size() == m.globalRowSize)
        carry(m.globalState.data(), globalState.data(), true, true);
    std::vector<std::uint8_t> trackState;
    const std::vector<std::uint8_t> defaultTrack = BuzzSong::parameterRow(entry, false, true);
    for (std::size_t t = 0; t < tracks; ++t) {
        const std::size_t at = trackState.size();
        trackState.insert(trackState.end(), defaultTrack.begin(), defaultTrack.end());
        if (t < m.trackCount && m.trackState.size() >= (t + 1) * m.trackRowSize)
            carry(m.trackState.data() + t * m.trackRowSize, trackState.data() + at, false, true);
    }

    const std::string name = m.name;
    m.dllName = entry.dllName;
    m.type = entry.type;
    m.data = machineData != nullptr ? machineData->machineData : std::vector<std::uint8_t>{};
    m.attributes.clear();
    if (machineData != nullptr) {
        for (const auto& [attribute, value] : machineData->attributes)
            m.attributes.push_back({attribute, value});
    }
    m.globalState = std::move(globalState);
    m.trackState = std::move(trackState);
    m.trackCount = tracks;
    m.databaseIndex = databaseIndex;
    m.description = entry;
    m.globalRowSize = entry.globalRowSize;
    m.trackRowSize = entry.trackRowSize;
    block.trackCount = tracks;
    std::erase_if(song.parameterSets(),
                  [&](const MachineParameterSet& s) { return s.machineName == name; });
    std::erase_if(song.midiBindings(), [&](const MidiBinding& b) { return b.machineName == name; });
    return music::Result::success();
}

} // namespace song
