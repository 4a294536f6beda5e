#include "app/DefaultFilesReader.h"

namespace app {

namespace {

template <typename List> std::optional<List> loaded(const std::filesystem::path& path)
{
    List list;
    if (!list.load(path))
        return std::nullopt;
    return list;
}

} // namespace

DefaultFilesReader::DefaultFilesReader(const music::DataFolder& folder)
    : m_files(std::async(std::launch::async, [folder] { return read(folder); }))
{}

DefaultFilesReader::Files DefaultFilesReader::read(const music::DataFolder& folder)
{
    Files files;
    files.chordTypes =
        loaded<music::ChordTypeList>(folder.file(music::ChordTypeList::kDefaultFileName));
    files.scales = loaded<music::ScaleList>(folder.file(music::ScaleList::kDefaultFileName));
    files.collection =
        loaded<music::ChordCollection>(folder.file(music::ChordCollection::kDefaultFileName));
    files.partPresets =
        loaded<part::PartPresetList>(folder.file(part::PartPresetList::kDefaultFileName));
    files.patternPresets =
        loaded<part::PatternPresetList>(folder.file(part::PatternPresetList::kDefaultFileName));
    return files;
}

} // namespace app
