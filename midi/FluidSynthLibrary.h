#pragma once

#include <fluidsynth.h>

namespace midi {

// The FluidSynth functions the built-in synth calls.
#define TM_FLUIDSYNTH_FUNCTIONS(X)                                                                 \
    X(fluid_set_log_function)                                                                      \
    X(new_fluid_settings)                                                                          \
    X(delete_fluid_settings)                                                                       \
    X(fluid_settings_getstr_default)                                                               \
    X(fluid_settings_setnum)                                                                       \
    X(fluid_settings_setint)                                                                       \
    X(fluid_settings_setstr)                                                                       \
    X(new_fluid_synth)                                                                             \
    X(delete_fluid_synth)                                                                          \
    X(fluid_synth_sfload)                                                                          \
    X(fluid_synth_process)                                                                         \
    X(new_fluid_audio_driver2)                                                                     \
    X(delete_fluid_audio_driver)                                                                   \
    X(fluid_synth_noteon)                                                                          \
    X(fluid_synth_noteoff)                                                                         \
    X(fluid_synth_key_pressure)                                                                    \
    X(fluid_synth_cc)                                                                              \
    X(fluid_synth_program_change)                                                                  \
    X(fluid_synth_channel_pressure)                                                                \
    X(fluid_synth_pitch_bend)                                                                      \
    X(fluid_synth_sysex)

/**
 * FluidSynth, reached through a table of its functions. Where the build names the library's
 * file (TM_FLUIDSYNTH_SONAME, on Linux) it is loaded when the built-in synth is first needed,
 * not at start: FluidSynth brings some forty libraries of its own (sound servers, codecs) that
 * a start-up which never plays through it would otherwise map and relocate. Elsewhere the
 * program links it and the table points at the linked functions.
 */
struct FluidSynthLibrary
{
#define TM_FLUIDSYNTH_MEMBER(name) decltype(&::name) name = nullptr;
    TM_FLUIDSYNTH_FUNCTIONS(TM_FLUIDSYNTH_MEMBER)
#undef TM_FLUIDSYNTH_MEMBER

    /**
     * The functions, loaded on the first call (safe from any thread); nullptr when the library
     * or one of its functions cannot be found, and then on every later call too.
     */
    static const FluidSynthLibrary* get();
};

} // namespace midi
