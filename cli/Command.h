#pragma once

#include "cli/Arguments.h"
#include "music/DataFolder.h"

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace cli {

/** Exit codes that scripts rely on. */
inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFailure = 1; // the system's message was printed on stderr
inline constexpr int kExitUsage = 2;

/** What a command runs with: its output streams and the data folder (resolved on first use). */
class Context
{
public:
    Context(std::ostream& out, std::ostream& err, std::filesystem::path explicitDataDir)
        : m_out(out), m_err(err), m_explicitDataDir(std::move(explicitDataDir))
    {}

    std::ostream& out() { return m_out; }
    std::ostream& err() { return m_err; }

    /**
     * The data folder: --data DIR when given, else the program's own. Throws std::runtime_error
     * with the message when no folder can be used.
     */
    const music::DataFolder& dataFolder();

    /** Prints a failure message on stderr and returns kExitFailure. */
    int fail(const std::string& message);

private:
    std::ostream& m_out;
    std::ostream& m_err;
    std::filesystem::path m_explicitDataDir;
    music::DataFolder m_dataFolder;
};

/** One subcommand of tonalmancer-cli. */
struct Command
{
    std::string name;
    std::string synopsis; // the arguments, as shown in the usage text
    std::string summary;  // one line for --help
    std::vector<OptionSpec> options;
    std::size_t minPositionals = 0;
    std::size_t maxPositionals = 0;
    std::function<int(const Arguments&, Context&)> run;
    std::string details = {}; // more about the command and its output, for COMMAND --help
};

// Each area of the program registers its commands in a file of its own.
void registerMusicCommands(std::vector<Command>& commands);
void registerPartCommands(std::vector<Command>& commands);
void registerSongCommands(std::vector<Command>& commands);
void registerMachineCommands(std::vector<Command>& commands);
void registerWritePartCommands(std::vector<Command>& commands);
void registerMidiCommands(std::vector<Command>& commands);
void registerPlayCommands(std::vector<Command>& commands);
void registerTransformCommands(std::vector<Command>& commands);
void registerVoiceCommands(std::vector<Command>& commands);
void registerChordNameCommands(std::vector<Command>& commands);
void registerSongMachineCommands(std::vector<Command>& commands);

} // namespace cli
