#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace song {

/** A parameter-window record of the PDLG section; its 44 bytes belong to the tracker. */
struct ParameterWindow
{
    std::string machineName;
    std::array<std::uint8_t, 44> data{};

    bool operator==(const ParameterWindow&) const = default;
};

} // namespace song
