#pragma once

#include <memory>
#include <optional>
#include <string>

namespace midi {

/**
 * Watches a JACK server and one port of it while the program is connected to that port: RtMidi
 * keeps going quietly after the server or the port has gone, so without this nobody would
 * notice. Builds without JACK watch nothing. Internal to the midi library.
 */
class JackWatch
{
public:
    /** Watches `portName` ("client:port") on the server that JACK_DEFAULT_SERVER names. */
    explicit JackWatch(std::string portName);
    ~JackWatch();
    JackWatch(const JackWatch&) = delete;
    JackWatch& operator=(const JackWatch&) = delete;

    /**
     * Why the port can no longer be used: JACK's reason for shutting down, "The JACK server has
     * shut down." or "The JACK port P has gone away."; nothing while all is well. Called from
     * one thread at a time.
     */
    std::optional<std::string> failure();

    /** Whether a JACK server runs, asked without starting one and without printing anything. */
    static bool serverRunning();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace midi
