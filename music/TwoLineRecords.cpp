#include "music/TwoLineRecords.h"

#include "music/TextLineReader.h"

namespace music {

std::optional<std::vector<TwoLineRecord>> readTwoLineRecords(std::string_view bytes,
                                                             std::string_view magic)
{
    TextLineReader reader(bytes);
    if (!equalsIgnoringCase(reader.readLine(), magic))
        return std::nullopt;
    const int count = reader.readInt() & 0xFF;
    std::vector<TwoLineRecord> records;
    for (int i = 0; i < count && !reader.atEnd(); ++i) {
        std::string first = reader.readLine();
        std::string second = reader.readLine();
        records.emplace_back(std::move(first), std::move(second));
    }
    return records;
}

std::string
writeTwoLineRecords(std::string_view magic,
                    const std::vector<std::pair<std::string_view, std::string_view>>& records)
{
    std::string out;
    out.append(magic).append("\n");
    out.append(std::to_string(records.size())).append("\n");
    for (const auto& [first, second] : records)
        out.append(first).append("\n").append(second).append("\n");
    return out;
}

} // namespace music
