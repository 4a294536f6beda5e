#pragma once

#include "song/MachineDatabase.h"

#include <cstdint>
#include <string_view>

namespace song {

/** What a machine is, as far as the machine database can tell. */
enum class MachineKind
{
    Master,
    Synth,     // a generator that plays notes and no waves
    Sampler,   // a generator that plays the song's waves
    Generator, // any other generator (drums with triggers, aux returns)
    Effect
};

/** The flag of a machine DLL's own description that says it plays the song's waves. */
inline constexpr std::int32_t kPlaysWavesFlag = 2;

/**
 * The kind of a machine from its database entry. Type 0 is the master and type 2 an effect; every
 * other type is a generator. A generator is a sampler when it has a parameter named "wave" (as
 * the part writer looks it up) or when `dllFlags` carries kPlaysWavesFlag; otherwise it is a
 * synth when it has a note parameter (of type note, or named "note"); otherwise a plain
 * generator. machines.ini keeps no DLL flags, so for machines known only from the database the
 * wave parameter decides; callers that read the DLL itself can pass its flags.
 */
MachineKind machineKind(const MachineDatabaseEntry& entry, std::int32_t dllFlags = 0);

/** "master", "synth", "sampler", "generator" or "effect". */
std::string_view machineKindName(MachineKind kind);

/** Synths, samplers and plain generators. */
inline bool isGenerator(MachineKind kind)
{
    return kind == MachineKind::Synth || kind == MachineKind::Sampler ||
           kind == MachineKind::Generator;
}

} // namespace song
