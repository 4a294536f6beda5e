#include "song/MachineKind.h"

#include <algorithm>

namespace song {

MachineKind machineKind(const MachineDatabaseEntry& entry, std::int32_t dllFlags)
{
    if (entry.type == 0)
        return MachineKind::Master;
    if (entry.type == 2)
        return MachineKind::Effect;
    if (entry.findParameter("wave") >= 0 || (dllFlags & kPlaysWavesFlag) != 0)
        return MachineKind::Sampler;
    const bool playsNotes = entry.findParameter("note") >= 0 ||
                            std::any_of(entry.parameters.begin(), entry.parameters.end(),
                                        [](const MachineParameter& p) {
                                            return p.type == static_cast<int>(ParameterType::Note);
                                        });
    return playsNotes ? MachineKind::Synth : MachineKind::Generator;
}

std::string_view machineKindName(MachineKind kind)
{
    switch (kind) {
    case MachineKind::Master:
        return "master";
    case MachineKind::Synth:
        return "synth";
    case MachineKind::Sampler:
        return "sampler";
    case MachineKind::Generator:
        return "generator";
    case MachineKind::Effect:
        return "effect";
    }
    return "generator";
}

} // namespace song
