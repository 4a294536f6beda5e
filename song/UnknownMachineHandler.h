#pragma once

#include "music/Result.h"

#include <filesystem>
#include <optional>
#include <string>

namespace song {

/**
 * Asks the user what to do about a song machine that the machine database does not know. The
 * desktop program answers with dialogs, the command-line program from its options.
 */
class UnknownMachineHandler
{
public:
    virtual ~UnknownMachineHandler() = default;

    /**
     * The song describes the machine's parameters itself: add it to the machine database from
     * that description? `machineName` is the song's name for it, `dllName` its DLL.
     */
    virtual bool learnFromSong(const std::string& machineName, const std::string& dllName) = 0;

    /**
     * Shows `message` ("machine unknown\n<name>\n<dll>\nplease scan your gear-directory") and
     * offers to scan the machine's DLL. Returns the DLL chosen, or nothing to cancel the load.
     */
    virtual std::optional<std::filesystem::path> chooseDllToScan(const std::string& message) = 0;

    /** The scan of the chosen DLL failed with this message; the load fails afterwards. */
    virtual void scanFailed(const music::Result& /*failure*/) {}
};

} // namespace song
