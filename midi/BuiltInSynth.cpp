#include "midi/BuiltInSynth.h"

#include "midi/FluidSynthLibrary.h"
#include "midi/PeakLimiter.h"
#include "music/SafeFileWriter.h"
#include "music/Utf8Path.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace midi {

namespace {

/** FluidSynth with its log output silenced; nullptr when the library cannot be loaded. */
const FluidSynthLibrary* fluidSynth()
{
    const FluidSynthLibrary* fluid = FluidSynthLibrary::get();
    static std::once_flag once;
    if (fluid != nullptr) {
        std::call_once(once, [fluid] {
            for (const int level : {FLUID_PANIC, FLUID_ERR, FLUID_WARN, FLUID_INFO, FLUID_DBG})
                fluid->fluid_set_log_function(level, nullptr, nullptr);
        });
    }
    return fluid;
}

void appendLittleEndian(std::string& out, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

/** The 44-byte header of a 16-bit stereo PCM WAV file holding `dataBytes` bytes of samples. */
std::string wavHeader(std::uint32_t dataBytes)
{
    std::string header;
    header += "RIFF";
    appendLittleEndian(header, 36 + dataBytes, 4);
    header += "WAVEfmt ";
    appendLittleEndian(header, 16, 4);
    appendLittleEndian(header, 1, 2); // PCM
    appendLittleEndian(header, 2, 2); // channels
    appendLittleEndian(header, BuiltInSynth::kSampleRate, 4);
    appendLittleEndian(header, BuiltInSynth::kSampleRate * 4, 4); // bytes per second
    appendLittleEndian(header, 4, 2);                             // bytes per frame
    appendLittleEndian(header, 16, 2);                            // bits per sample
    header += "data";
    appendLittleEndian(header, dataBytes, 4);
    return header;
}

/** Renders `frames` frames of the synth, reverb and chorus mixed in, through the limiter. */
int renderLimited(const FluidSynthLibrary& fluid, fluid_synth_t* synth, PeakLimiter& limiter,
                  float* left, float* right, int frames)
{
    float* dry[2] = {left, right};
    float* effects[4] = {left, right, left, right};
    const int result = fluid.fluid_synth_process(synth, frames, 4, effects, 2, dry);
    limiter.process(left, right, frames);
    return result;
}

std::int16_t toSample(float value)
{
    return static_cast<std::int16_t>(std::lround(std::clamp(value, -1.0f, 1.0f) * 32767.0f));
}

/**
 * Renders the synth into a WAV file in real time on a thread of its own, block by block against
 * absolute deadlines, so the file sounds as the speakers would have.
 */
class WavRenderer
{
public:
    WavRenderer(const FluidSynthLibrary& fluid, fluid_synth_t* synth,
                const std::filesystem::path& path)
        : m_fluid(fluid), m_synth(synth), m_writer(path), m_limiter(BuiltInSynth::kSampleRate)
    {}
    ~WavRenderer() { stop(); }
    WavRenderer(const WavRenderer&) = delete;
    WavRenderer& operator=(const WavRenderer&) = delete;

    bool start()
    {
        if (!m_writer.open() || !m_writer.write(wavHeader(0)))
            return false;
        m_thread = std::thread([this] { run(); });
        return true;
    }

    /** Ends the rendering, completes the header and puts the file in place. */
    void stop()
    {
        if (!m_thread.joinable())
            return;
        m_running = false;
        m_thread.join();
        if (m_writer.seek(0) && m_writer.write(wavHeader(m_dataBytes)))
            m_writer.commit();
    }

private:
    static constexpr int kBlockFrames = 441; // 10 ms

    void run()
    {
        std::array<float, kBlockFrames> left{};
        std::array<float, kBlockFrames> right{};
        std::array<std::int16_t, kBlockFrames * 2> samples{};
        const auto blockTime =
            std::chrono::microseconds(1'000'000LL * kBlockFrames / BuiltInSynth::kSampleRate);
        auto deadline = std::chrono::steady_clock::now();
        while (m_running) {
            left.fill(0.0f);
            right.fill(0.0f);
            renderLimited(m_fluid, m_synth, m_limiter, left.data(), right.data(), kBlockFrames);
            for (std::size_t i = 0; i < left.size(); ++i) {
                samples[2 * i] = toSample(left[i]);
                samples[2 * i + 1] = toSample(right[i]);
            }
            if (!m_writer.write(samples.data(), sizeof(samples)))
                break;
            m_dataBytes += static_cast<std::uint32_t>(sizeof(samples));
            deadline += blockTime;
            std::this_thread::sleep_until(deadline);
        }
    }

    const FluidSynthLibrary& m_fluid;
    fluid_synth_t* m_synth;
    music::SafeFileWriter m_writer;
    PeakLimiter m_limiter;
    std::thread m_thread;
    std::atomic<bool> m_running{true};
    std::uint32_t m_dataBytes = 0;
};

} // namespace

struct BuiltInSynth::Impl
{
    explicit Impl(const FluidSynthLibrary& library) : fluid(library) {}
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    const FluidSynthLibrary& fluid;
    fluid_settings_t* settings = nullptr;
    fluid_synth_t* synth = nullptr;
    fluid_audio_driver_t* driver = nullptr;
    std::unique_ptr<WavRenderer> renderer;
    PeakLimiter limiter{kSampleRate}; // used by the audio driver's thread only

    /** The audio driver's callback: the synth through the limiter into the driver's buffers. */
    static int render(void* data, int frames, int effectCount, float* effects[], int outCount,
                      float* out[])
    {
        auto* impl = static_cast<Impl*>(data);
        if (outCount < 2)
            return impl->fluid.fluid_synth_process(impl->synth, frames, effectCount, effects,
                                                   outCount, out);
        if (effectCount != 0) { // separate effect buffers (JACK only): the dry pair is limited
            const int result = impl->fluid.fluid_synth_process(impl->synth, frames, effectCount,
                                                               effects, outCount, out);
            impl->limiter.process(out[0], out[1], frames);
            return result;
        }
        return renderLimited(impl->fluid, impl->synth, impl->limiter, out[0], out[1], frames);
    }

    ~Impl()
    {
        renderer.reset();
        if (driver != nullptr)
            fluid.delete_fluid_audio_driver(driver);
        if (synth != nullptr)
            fluid.delete_fluid_synth(synth);
        if (settings != nullptr)
            fluid.delete_fluid_settings(settings);
    }
};

BuiltInSynth::BuiltInSynth(std::unique_ptr<Impl> impl) : m_impl(std::move(impl))
{}

BuiltInSynth::~BuiltInSynth() = default;

std::filesystem::path BuiltInSynth::findSoundFont(const std::filesystem::path& dataFolder)
{
    namespace fs = std::filesystem;
    std::error_code error;
    if (!dataFolder.empty() && fs::is_directory(dataFolder, error)) {
        std::vector<fs::path> found;
        for (const fs::directory_entry& entry : fs::directory_iterator(dataFolder, error)) {
            std::string extension = music::utf8FromPath(entry.path().extension());
            std::transform(extension.begin(), extension.end(), extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            if (extension == ".sf2" && entry.is_regular_file(error))
                found.push_back(entry.path());
        }
        if (!found.empty())
            return *std::min_element(found.begin(), found.end());
    }
    for (const char* candidate :
         {"/usr/share/sounds/sf2/FluidR3_GM.sf2", "/usr/share/soundfonts/FluidR3_GM.sf2",
          "/usr/share/sounds/sf2/TimGM6mb.sf2", "/usr/share/sounds/sf2/default-GM.sf2",
          "/usr/share/soundfonts/default.sf2"}) {
        if (fs::is_regular_file(candidate, error))
            return candidate;
    }
    const FluidSynthLibrary* fluid = fluidSynth();
    if (fluid == nullptr)
        return {};
    fluid_settings_t* settings = fluid->new_fluid_settings();
    fs::path fallback;
    if (settings != nullptr) {
        char* defaultFont = nullptr;
        if (fluid->fluid_settings_getstr_default(settings, "synth.default-soundfont",
                                                 &defaultFont) == FLUID_OK &&
            defaultFont != nullptr && fs::is_regular_file(defaultFont, error)) {
            fallback = defaultFont;
        }
        fluid->delete_fluid_settings(settings);
    }
    return fallback;
}

std::unique_ptr<BuiltInSynth> BuiltInSynth::open(const std::filesystem::path& dataFolder)
{
    const FluidSynthLibrary* fluid = fluidSynth();
    if (fluid == nullptr)
        return nullptr;
    const std::filesystem::path soundFont = findSoundFont(dataFolder);
    if (soundFont.empty())
        return nullptr;

    auto impl = std::make_unique<Impl>(*fluid);
    impl->settings = fluid->new_fluid_settings();
    if (impl->settings == nullptr)
        return nullptr;
    fluid->fluid_settings_setnum(impl->settings, "synth.sample-rate", kSampleRate);
    fluid->fluid_settings_setint(impl->settings, "synth.threadsafe-api", 1);
    fluid->fluid_settings_setnum(impl->settings, "synth.gain", kGain);
    impl->synth = fluid->new_fluid_synth(impl->settings);
    if (impl->synth == nullptr ||
        // FluidSynth takes file names as UTF-8 (on Windows since version 2.2).
        fluid->fluid_synth_sfload(impl->synth, music::utf8FromPath(soundFont).c_str(), 1) ==
            FLUID_FAILED) {
        return nullptr;
    }

    const char* wavPath = std::getenv(kWavVariable);
    if (wavPath != nullptr && *wavPath != '\0') {
        impl->renderer = std::make_unique<WavRenderer>(*fluid, impl->synth, wavPath);
        if (!impl->renderer->start())
            return nullptr;
    } else {
        // The usual sound servers and systems in turn. JACK is left out on purpose: FluidSynth's
        // JACK driver may start a server of its own, and JACK users reach their synths as ports.
        for (const char* driverName :
             {"pipewire", "pulseaudio", "alsa", "coreaudio", "wasapi", "dsound", "sdl2"}) {
            if (fluid->fluid_settings_setstr(impl->settings, "audio.driver", driverName) !=
                FLUID_OK)
                continue;
            impl->driver =
                fluid->new_fluid_audio_driver2(impl->settings, &Impl::render, impl.get());
            if (impl->driver != nullptr)
                break;
        }
        if (impl->driver == nullptr)
            return nullptr;
    }
    return std::unique_ptr<BuiltInSynth>(new BuiltInSynth(std::move(impl)));
}

void BuiltInSynth::sendMessage(const std::vector<std::uint8_t>& bytes)
{
    if (bytes.empty())
        return;
    const FluidSynthLibrary& fluid = m_impl->fluid;
    fluid_synth_t* synth = m_impl->synth;
    const std::uint8_t status = bytes[0];
    const int channel = status & 0x0F;
    const int data1 = bytes.size() > 1 ? bytes[1] : 0;
    const int data2 = bytes.size() > 2 ? bytes[2] : 0;
    // Failures such as a note-off for a note that no longer sounds are not errors here.
    switch (status & 0xF0) {
    case 0x80:
        fluid.fluid_synth_noteoff(synth, channel, data1);
        break;
    case 0x90:
        if (data2 == 0)
            fluid.fluid_synth_noteoff(synth, channel, data1);
        else
            fluid.fluid_synth_noteon(synth, channel, data1, data2);
        break;
    case 0xA0:
        fluid.fluid_synth_key_pressure(synth, channel, data1, data2);
        break;
    case 0xB0:
        fluid.fluid_synth_cc(synth, channel, data1, data2);
        break;
    case 0xC0:
        fluid.fluid_synth_program_change(synth, channel, data1);
        break;
    case 0xD0:
        fluid.fluid_synth_channel_pressure(synth, channel, data1);
        break;
    case 0xE0:
        fluid.fluid_synth_pitch_bend(synth, channel, data1 | data2 << 7);
        break;
    default:
        if (status == 0xF0 && bytes.size() >= 2) {
            const std::size_t end = bytes.back() == 0xF7 ? bytes.size() - 1 : bytes.size();
            const auto* body = reinterpret_cast<const char*>(bytes.data() + 1);
            fluid.fluid_synth_sysex(synth, body, static_cast<int>(end - 1), nullptr, nullptr,
                                    nullptr, 0);
        }
        break;
    }
}

} // namespace midi
