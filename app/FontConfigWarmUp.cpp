#include "app/FontConfigWarmUp.h"

#ifdef __linux__
#include <dlfcn.h>
#endif

namespace app {

FontConfigWarmUp::FontConfigWarmUp()
{
#ifdef __linux__
    // Qt's own fontconfig, already loaded with Qt; FcInit() is safe from any thread, and Qt's
    // later call finds the configuration loaded. Without it (another font back end) no thread.
    using Init = int (*)();
    const auto init = reinterpret_cast<Init>(dlsym(RTLD_DEFAULT, "FcInit"));
    if (init != nullptr)
        m_thread = std::thread([init] { init(); });
#endif
}

FontConfigWarmUp::~FontConfigWarmUp()
{
    wait();
}

void FontConfigWarmUp::wait()
{
    if (m_thread.joinable())
        m_thread.join();
}

} // namespace app
