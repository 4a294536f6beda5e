#pragma once

#include "music/ChordCollection.h"
#include "music/ChordTypeList.h"
#include "music/DataFolder.h"
#include "music/ScaleList.h"
#include "part/PartPresetList.h"
#include "part/PatternPresetList.h"

#include <future>
#include <optional>

namespace app {

/**
 * The default files the window shows from its first frame (chord types, scales, the chord
 * database, the part and pattern presets), read and parsed on a thread of its own while the
 * window is being built. Only the core's readers run there; the panels take the lists on the UI
 * thread.
 */
class DefaultFilesReader
{
public:
    /** Each list as read; empty where its file is missing or damaged (no message at start). */
    struct Files
    {
        std::optional<music::ChordTypeList> chordTypes;
        std::optional<music::ScaleList> scales;
        std::optional<music::ChordCollection> collection;
        std::optional<part::PartPresetList> partPresets;
        std::optional<part::PatternPresetList> patternPresets;
    };

    /** Starts reading the default files of `folder`. */
    explicit DefaultFilesReader(const music::DataFolder& folder);

    /** The files, once the thread is done; call once. */
    Files take() { return m_files.get(); }

    /** Reads the files on the calling thread. */
    static Files read(const music::DataFolder& folder);

private:
    std::future<Files> m_files;
};

} // namespace app
