#include "part/PartPresetList.h"

#include "music/FileBytes.h"
#include "music/SafeFileWriter.h"
#include "music/TextLineReader.h"
#include "part/PartTextFormat.h"
#include "part/PresetOrder.h"

namespace part {

using namespace textformat;

PartPreset PartPresetList::presetOf(const Part& part, const std::string& name)
{
    PartPreset preset;
    preset.name = name;
    preset.part = part;
    preset.part.setCurrentPattern(0);
    return preset;
}

std::string PartPresetList::serialize() const
{
    std::string out;
    writeText(out, kMagic);
    writeNumber(out, static_cast<std::uint16_t>(count()));
    for (const PartPreset& preset : m_presets) {
        const Part& p = preset.part;
        writeText(out, preset.name);
        writeNumber(out, p.beatsPerMinute());
        writeNumber(out, p.ticksPerBeat());
        writeNumber(out, p.selectionFirst());
        writeNumber(out, p.selectionLast());
        writeNumber(out, p.baseOctave());
        writeFlags(out, p.pitchClassFlags());
        writePatternList(out, p.patterns());
        writeChordList(out, p);
    }
    return out;
}

music::Result PartPresetList::parse(std::string_view bytes)
{
    music::TextLineReader in(bytes);
    if (!music::equalsIgnoringCase(in.readLine(), kMagic))
        return music::Result::failure(kMagicError);
    std::vector<PartPreset> presets;
    const int declared = in.readInt() & 0xFFFF;
    // Stop at the end of the data rather than making thousands of records from a few bytes.
    for (int i = 0; i < declared && !in.atEnd(); ++i) {
        PartPreset preset;
        preset.name = in.readLine();
        Part& p = preset.part;
        const auto bpm = static_cast<std::uint16_t>(in.readInt() & 0xFFFF);
        const auto tpb = static_cast<std::uint16_t>(in.readInt() & 0xFFFF);
        p.setTempo(bpm, tpb);
        const auto first = static_cast<std::uint16_t>(in.readInt() & 0xFFFF);
        const auto last = static_cast<std::uint16_t>(in.readInt() & 0xFFFF);
        p.setSelection(first, last);
        p.setBaseOctave(static_cast<std::uint8_t>(in.readInt() & 0xFF));
        p.setPitchClassFlags(readFlags(in));
        readPatternList(in, p.patterns());
        readChordList(in, p);
        presets.push_back(std::move(preset));
    }
    m_presets = std::move(presets);
    return music::Result::success();
}

music::Result PartPresetList::load(const std::filesystem::path& path)
{
    const std::optional<std::string> bytes = music::readFileBytes(path);
    if (!bytes)
        return music::Result::failure(kOpenError);
    return parse(*bytes);
}

music::Result PartPresetList::save(const std::filesystem::path& path) const
{
    if (!music::writeFileSafely(path, serialize()))
        return music::Result::failure(kOpenError);
    return music::Result::success();
}

bool PartPresetList::append(PartPreset preset)
{
    if (count() >= kMaxCount)
        return false;
    m_presets.push_back(std::move(preset));
    return true;
}

music::Result PartPresetList::add(const Part& part, const std::string& name,
                                  const std::filesystem::path& file)
{
    if (count() >= kMaxCount)
        return music::Result::failure("The preset list is full.");
    m_presets.push_back(presetOf(part, name));
    return save(file);
}

music::Result PartPresetList::replace(int index, const Part& part,
                                      const std::filesystem::path& file)
{
    if (index < 0 || index >= count())
        return music::Result::success();
    PartPreset& preset = m_presets[static_cast<std::size_t>(index)];
    preset = presetOf(part, preset.name);
    return save(file);
}

music::Result PartPresetList::rename(int index, const std::string& name,
                                     const std::filesystem::path& file)
{
    if (index < 0 || index >= count())
        return music::Result::success();
    m_presets[static_cast<std::size_t>(index)].name = name;
    return save(file);
}

music::Result PartPresetList::remove(int index, const std::filesystem::path& file)
{
    if (index < 0 || index >= count())
        return music::Result::success();
    m_presets.erase(m_presets.begin() + index);
    return save(file);
}

music::Result PartPresetList::sortByName(bool upwards, const std::filesystem::path& file)
{
    part::sortByName(m_presets, upwards,
                     [](const PartPreset& p) -> const std::string& { return p.name; });
    return save(file);
}

} // namespace part
