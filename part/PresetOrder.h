#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

namespace part {

/**
 * Sorts preset records by name, letter case ignored (ASCII), upwards (A first) or downwards.
 * Equal names keep their order either way, so sorting twice changes nothing.
 */
template <typename Record, typename NameOf>
void sortByName(std::vector<Record>& records, bool upwards, NameOf nameOf)
{
    const auto lower = [](const std::string& s) {
        std::string out = s;
        std::transform(out.begin(), out.end(), out.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        return out;
    };
    std::stable_sort(records.begin(), records.end(), [&](const Record& a, const Record& b) {
        const std::string x = lower(nameOf(a));
        const std::string y = lower(nameOf(b));
        return upwards ? x < y : y < x;
    });
}

} // namespace part
