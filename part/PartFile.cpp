#include "part/PartFile.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"
#include "part/PartTextFormat.h"

namespace part {

using namespace textformat;

std::string PartFile::serialize(const Part& part)
{
    std::string out;
    writePatternList(out, part.patterns());
    writeChordList(out, part);
    writeNumber(out, part.baseOctave());
    writeNumber(out, part.currentPattern());
    writeNumber(out, part.selectionFirst());
    writeNumber(out, part.selectionLast());
    writeNumber(out, part.beatsPerMinute());
    writeNumber(out, part.ticksPerBeat());
    writeFlags(out, part.pitchClassFlags());
    return out;
}

Part PartFile::parse(std::string_view bytes)
{
    music::TextLineReader in(bytes);
    Part part;
    readPatternList(in, part.patterns());
    // A part always has a pattern to put new chords on and to show in the editor.
    if (part.patterns().isEmpty())
        part.patterns().append(Pattern());
    readChordList(in, part);
    part.setBaseOctave(static_cast<std::uint8_t>(in.readInt() & 0xFF));
    part.setCurrentPattern(static_cast<std::uint16_t>(in.readInt() & 0xFFFF));
    const auto first = static_cast<std::uint16_t>(in.readInt() & 0xFFFF);
    const auto last = static_cast<std::uint16_t>(in.readInt() & 0xFFFF);
    part.setSelection(first, last);
    const auto bpm = static_cast<std::uint16_t>(in.readInt() & 0xFFFF);
    const auto tpb = static_cast<std::uint16_t>(in.readInt() & 0xFFFF);
    part.setTempo(bpm, tpb);
    part.setPitchClassFlags(readFlags(in));
    return part;
}

music::Result PartFile::load(const std::filesystem::path& path, Part& part)
{
    const std::optional<std::string> bytes = music::readFileBytes(path);
    if (!bytes)
        return music::Result::failure(kOpenError);
    part = parse(*bytes);
    return music::Result::success();
}

music::Result PartFile::save(const std::filesystem::path& path, const Part& part)
{
    if (!music::writeFileSafely(path, serialize(part)))
        return music::Result::failure(kOpenError);
    return music::Result::success();
}

bool PartFile::loadDefault(const std::filesystem::path& path, Part& part)
{
    return load(path, part).ok();
}

} // namespace part
