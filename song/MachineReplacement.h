#pragma once

#include "music/Result.h"
#include "song/BuzzSong.h"
#include "song/SpecDataStore.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace song {

/** A parameter of the replaced machine that the new machine has no counterpart for. */
struct LostParameter
{
    std::string name;
    bool global = true;
    std::size_t cells = 0; // cells of the machine's patterns that held a value in it

    bool operator==(const LostParameter&) const = default;
};

/**
 * How a machine would be replaced by another of the machine database, and what would be lost. A
 * parameter of the new machine takes the values of the old parameter with the same name (ignoring
 * case) and scope (global or track); every other new parameter starts empty (its no-value).
 */
struct ReplacementPlan
{
    /** Per parameter of the new machine, the old parameter whose values it takes, if any. */
    std::vector<std::optional<std::size_t>> sourceOf;
    /** Old parameters without a counterpart, in the old machine's order. */
    std::vector<LostParameter> lostParameters;
    /** Tracks after the replacement: the old count within the new machine's range. */
    std::uint16_t trackCount = 0;
    /** Cells with values in tracks beyond the new machine's maximum. */
    std::size_t lostTrackCells = 0;
    /** Values too wide for the new parameter (a word into a byte), left empty. */
    std::size_t unfitCells = 0;
    /** MIDI bindings of the machine: they address the old machine's parameters and go. */
    std::size_t midiBindings = 0;

    /** Whether nothing with a value would be lost. */
    bool losesNothing() const;
    /**
     * One line per loss, for the warning before replacing: each lost parameter with values
     * ("Cutoff (global): 12 values"), one line for those that only lose their setting, then the
     * values in dropped tracks, values too large, and MIDI bindings.
     */
    std::vector<std::string> describe() const;
};

/**
 * Plans replacing machine `machine` by the database entry `entry`. Both must play notes through a
 * parameter named "note" of the same scope (global or track), and both be generators or both
 * effects; the master cannot be replaced. Changes nothing: this is the dry run.
 */
music::Result planReplacement(const BuzzSong& song, std::size_t machine,
                              const MachineDatabaseEntry& entry, ReplacementPlan& plan);

/**
 * Replaces machine `machine` by the database entry `entry` (at `databaseIndex`) as
 * planReplacement says: the machine keeps its name, position, connections, pattern names and
 * lengths, input automation and sequences; its patterns and state take the values of the mapped
 * parameters; its data and attributes come from `machineData` (the new DLL's entry of
 * specdata.dat) or are empty; its parameter set (which describes the old DLL) and its MIDI
 * bindings are removed. `plan` receives what was lost.
 */
music::Result replaceMachine(BuzzSong& song, std::size_t machine, const MachineDatabaseEntry& entry,
                             std::size_t databaseIndex, const SpecDataEntry* machineData,
                             ReplacementPlan& plan);

} // namespace song
