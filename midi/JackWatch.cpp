#include "midi/JackWatch.h"

#ifdef TM_HAVE_JACK
#include <jack/jack.h>

#include <atomic>
#include <mutex>
#endif

namespace midi {

#ifdef TM_HAVE_JACK
namespace {

void ignoreJackText(const char*)
{}

/** libjack prints every failed connection attempt; the program reports failures itself. */
void silenceJack()
{
    static std::once_flag once;
    std::call_once(once, [] {
        jack_set_error_function(ignoreJackText);
        jack_set_info_function(ignoreJackText);
    });
}

} // namespace

struct JackWatch::Impl
{
    std::string port;
    jack_client_t* client = nullptr;
    std::atomic<bool> serverGone{false};
    std::atomic<bool> portsChanged{false};
    bool portGone = false;
    std::mutex mutex; // guards reason, written on JACK's notification thread
    std::string reason;

    static void onShutdown(jack_status_t, const char* text, void* arg)
    {
        auto* self = static_cast<Impl*>(arg);
        {
            const std::lock_guard<std::mutex> lock(self->mutex);
            self->reason = text != nullptr ? text : "";
        }
        self->serverGone = true;
    }
    static void onPortRegistration(jack_port_id_t, int registered, void* arg)
    {
        if (registered == 0)
            static_cast<Impl*>(arg)->portsChanged = true;
    }
};

JackWatch::JackWatch(std::string portName) : m_impl(std::make_unique<Impl>())
{
    silenceJack();
    m_impl->port = std::move(portName);
    jack_status_t status{};
    m_impl->client = jack_client_open("Tonalmancer monitor", JackNoStartServer, &status);
    if (m_impl->client == nullptr)
        return;
    jack_on_info_shutdown(m_impl->client, &Impl::onShutdown, m_impl.get());
    jack_set_port_registration_callback(m_impl->client, &Impl::onPortRegistration, m_impl.get());
    jack_activate(m_impl->client);
}

JackWatch::~JackWatch()
{
    if (m_impl->client != nullptr)
        jack_client_close(m_impl->client);
}

std::optional<std::string> JackWatch::failure()
{
    Impl& d = *m_impl;
    if (d.client == nullptr)
        return std::nullopt;
    if (d.serverGone.load()) {
        const std::lock_guard<std::mutex> lock(d.mutex);
        return d.reason.empty() ? std::string("The JACK server has shut down.") : d.reason;
    }
    if (d.portsChanged.exchange(false) && jack_port_by_name(d.client, d.port.c_str()) == nullptr)
        d.portGone = true;
    if (d.portGone)
        return "The JACK port " + d.port + " has gone away.";
    return std::nullopt;
}

bool JackWatch::serverRunning()
{
    silenceJack();
    jack_status_t status{};
    jack_client_t* client = jack_client_open("Tonalmancer probe", JackNoStartServer, &status);
    if (client == nullptr)
        return false;
    jack_client_close(client);
    return true;
}

#else

struct JackWatch::Impl
{};

JackWatch::JackWatch(std::string) : m_impl(std::make_unique<Impl>())
{}

JackWatch::~JackWatch() = default;

std::optional<std::string> JackWatch::failure()
{
    return std::nullopt;
}

bool JackWatch::serverRunning()
{
    return false;
}

#endif

} // namespace midi
