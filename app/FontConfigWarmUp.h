#pragma once

#include <thread>

namespace app {

/**
 * Loads the system's font configuration (fontconfig's configuration files and font caches) on
 * a thread of its own while the program connects to the window system and builds its window,
 * so that the first text measured waits less or not at all. Only where Qt finds its fonts
 * through fontconfig (Linux); elsewhere nothing happens. The thread is joined on destruction.
 */
class FontConfigWarmUp
{
public:
    FontConfigWarmUp();
    ~FontConfigWarmUp();
    FontConfigWarmUp(const FontConfigWarmUp&) = delete;
    FontConfigWarmUp& operator=(const FontConfigWarmUp&) = delete;

    /**
     * Waits until the configuration is loaded. Call before the first text is measured: Qt asking
     * while the thread still loads would load a second copy instead of waiting for this one.
     */
    void wait();

private:
    std::thread m_thread;
};

} // namespace app
