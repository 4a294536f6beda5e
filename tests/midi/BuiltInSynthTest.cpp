#include "midi/BuiltInSynth.h"
#include "midi/FluidSynthLibrary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>

#include <unistd.h>

namespace fs = std::filesystem;

// FluidSynth is loaded when the synth is first needed (by its file name on Linux): a wrong name
// or a missing function would only show when a user first plays through the built-in synth.
TEST(BuiltInSynth, LoadsFluidSynthOnFirstUseAndRendersANote)
{
    ASSERT_NE(midi::FluidSynthLibrary::get(), nullptr) << "FluidSynth could not be loaded";
    if (midi::BuiltInSynth::findSoundFont({}).empty())
        GTEST_SKIP() << "no General MIDI soundfont is installed";

    const fs::path wav =
        fs::temp_directory_path() / ("tm-builtin-synth-" + std::to_string(::getpid()) + ".wav");
    setenv(midi::BuiltInSynth::kWavVariable, wav.c_str(), 1);
    std::unique_ptr<midi::BuiltInSynth> synth = midi::BuiltInSynth::open({});
    unsetenv(midi::BuiltInSynth::kWavVariable);
    ASSERT_NE(synth, nullptr);
    synth->sendMessage({0x90, 60, 100});
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    synth->sendMessage({0x80, 60, 0});
    synth.reset(); // completes the file

    std::ifstream in(wav, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), {});
    fs::remove(wav);
    ASSERT_GT(bytes.size(), 44u);
    EXPECT_EQ(bytes.substr(0, 4), "RIFF");
    int loudest = 0;
    for (std::size_t at = 44; at + 1 < bytes.size(); at += 2) {
        const auto sample = static_cast<std::int16_t>(
            static_cast<std::uint8_t>(bytes[at]) | static_cast<std::uint8_t>(bytes[at + 1]) << 8);
        loudest = std::max(loudest, std::abs(static_cast<int>(sample)));
    }
    EXPECT_GT(loudest, 1000) << "the note was not heard";
}
