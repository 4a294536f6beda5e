#pragma once

#include <thread>

namespace app {

/**
 * Loads the system's font configuration (fontconfig's configuration files and font caches) on
 * a thread of its own while the program connects to the window system and builds its window,
 * so that the first text measured does not wait for it. Only where Qt finds its fonts through
 * fontconfig (Linux); elsewhere nothing happens. The thread is joined on destruction.
 */
class FontConfigWarmUp
{
public:
    FontConfigWarmUp();
    ~FontConfigWarmUp();
    FontConfigWarmUp(const FontConfigWarmUp&) = delete;
    FontConfigWarmUp& operator=(const FontConfigWarmUp&) = delete;

private:
    std::thread m_thread;
};

} // namespace app
