#include "MidiTestSupport.h"

#ifdef _WIN32
#include <process.h>
#define TM_PROCESS_ID _getpid()
#else
#include <unistd.h>
#define TM_PROCESS_ID getpid()
#endif

namespace miditest {

std::filesystem::path scratchFolder(const std::string& name)
{
    const auto dir = std::filesystem::temp_directory_path() /
                     ("tm-midi-" + std::to_string(TM_PROCESS_ID) + "-" + name);
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir;
}

namespace {

bool readVarLen(const std::vector<std::uint8_t>& data, std::size_t& pos, std::uint32_t& value)
{
    value = 0;
    for (int i = 0; i < 4; ++i) {
        if (pos >= data.size())
            return false;
        const std::uint8_t b = data[pos++];
        value = (value << 7) | (b & 0x7Fu);
        if ((b & 0x80) == 0)
            return true;
    }
    return false;
}

std::uint32_t readBig32(const std::vector<std::uint8_t>& d, std::size_t pos)
{
    return (std::uint32_t{d[pos]} << 24) | (std::uint32_t{d[pos + 1]} << 16) |
           (std::uint32_t{d[pos + 2]} << 8) | std::uint32_t{d[pos + 3]};
}

} // namespace

void PrintTo(const ReadEvent& event, std::ostream* out)
{
    *out << "{t=" << event.time << " status=" << int(event.status) << " bytes:";
    for (std::uint8_t b : event.bytes)
        *out << ' ' << int(b);
    *out << '}';
}

std::vector<std::vector<ReadEvent>> readTracks(const std::vector<std::uint8_t>& file)
{
    std::vector<std::vector<ReadEvent>> tracks;
    if (file.size() < 14 || readBig32(file, 0) != 0x4D546864)
        return {};
    std::size_t pos = 14;
    while (pos < file.size()) {
        if (pos + 8 > file.size() || readBig32(file, pos) != 0x4D54726B)
            return {};
        const std::size_t end = pos + 8 + readBig32(file, pos + 4);
        if (end > file.size())
            return {};
        pos += 8;
        std::vector<ReadEvent> events;
        std::uint32_t time = 0;
        while (pos < end) {
            std::uint32_t delta = 0;
            if (!readVarLen(file, pos, delta) || pos >= end)
                return {};
            time += delta;
            ReadEvent event;
            event.time = time;
            event.status = file[pos++];
            std::size_t payload = 0;
            if (event.status == 0xFF) {
                if (pos >= end)
                    return {};
                event.bytes.push_back(file[pos++]);
                std::uint32_t length = 0;
                if (!readVarLen(file, pos, length))
                    return {};
                payload = length;
            } else if (event.status == 0xF0 || event.status == 0xF7) {
                std::uint32_t length = 0;
                if (!readVarLen(file, pos, length))
                    return {};
                payload = length;
            } else if (event.status >= 0x80) {
                const int kind = event.status & 0xF0;
                payload = (kind == 0xC0 || kind == 0xD0) ? 1 : 2;
            } else {
                return {}; // running status: never written
            }
            if (pos + payload > end)
                return {};
            event.bytes.insert(event.bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(pos),
                               file.begin() + static_cast<std::ptrdiff_t>(pos + payload));
            pos += payload;
            events.push_back(std::move(event));
        }
        tracks.push_back(std::move(events));
    }
    return tracks;
}

} // namespace miditest
