#include "midi/FluidSynthLibrary.h"

#ifdef TM_FLUIDSYNTH_SONAME
#include <dlfcn.h>
#endif

namespace midi {

namespace {

FluidSynthLibrary load()
{
    FluidSynthLibrary library;
#ifdef TM_FLUIDSYNTH_SONAME
    // Never closed: the audio driver's threads run library code until the synth is deleted.
    void* handle = dlopen(TM_FLUIDSYNTH_SONAME, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        return library;
#define TM_FLUIDSYNTH_LOAD(name)                                                                   \
    library.name = reinterpret_cast<decltype(&::name)>(dlsym(handle, #name));
    TM_FLUIDSYNTH_FUNCTIONS(TM_FLUIDSYNTH_LOAD)
#undef TM_FLUIDSYNTH_LOAD
#else
#define TM_FLUIDSYNTH_LINK(name) library.name = &::name;
    TM_FLUIDSYNTH_FUNCTIONS(TM_FLUIDSYNTH_LINK)
#undef TM_FLUIDSYNTH_LINK
#endif
    return library;
}

bool complete(const FluidSynthLibrary& library)
{
    bool all = true;
#define TM_FLUIDSYNTH_CHECK(name) all = all && library.name != nullptr;
    TM_FLUIDSYNTH_FUNCTIONS(TM_FLUIDSYNTH_CHECK)
#undef TM_FLUIDSYNTH_CHECK
    return all;
}

} // namespace

const FluidSynthLibrary* FluidSynthLibrary::get()
{
    static const FluidSynthLibrary library = load();
    static const bool usable = complete(library);
    return usable ? &library : nullptr;
}

} // namespace midi
