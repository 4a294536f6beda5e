#include "cli/Command.h"
#include "cli/Console.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <stdexcept>

namespace cli {

const music::DataFolder& Context::dataFolder()
{
    if (!m_dataFolder.isValid()) {
        const music::Result result = music::DataFolder::resolve(
            music::DataFolder::executableDirectory(), m_explicitDataDir, m_dataFolder);
        if (!result)
            throw std::runtime_error(result.message());
    }
    return m_dataFolder;
}

int Context::fail(const std::string& message)
{
    m_err << message << '\n';
    return kExitFailure;
}

namespace {

std::vector<Command> allCommands()
{
    std::vector<Command> commands;
    registerMusicCommands(commands);
    registerPartCommands(commands);
    registerSongCommands(commands);
    registerSongMachineCommands(commands);
    registerMachineCommands(commands);
    registerWritePartCommands(commands);
    registerMidiCommands(commands);
    registerPlayCommands(commands);
    registerTransformCommands(commands);
    registerVoiceCommands(commands);
    registerChordNameCommands(commands);
    return commands;
}

void printHelp(std::ostream& out, const std::vector<Command>& commands)
{
    out << "Usage: tonalmancer-cli COMMAND [ARGUMENTS] [--data DIR]\n\n"
           "Tonalmancer's command-line front end: chord types, scales and chord databases,\n"
           "parts and presets, Buzz songs, MIDI files and playback.\n\n"
           "Commands:\n";
    std::size_t width = 0;
    for (const Command& c : commands)
        width = std::max(width, c.name.size());
    for (const Command& c : commands)
        out << "  " << c.name << std::string(width + 2 - c.name.size(), ' ') << c.summary << '\n';
    out << "\nEvery command accepts --data DIR to use another data folder.\n"
           "Run 'tonalmancer-cli COMMAND --help' for the arguments of one command.\n"
           "Exit status: 0 success, 1 failure (message on stderr), 2 usage error.\n"
           "\nOptions:\n"
           "  -h, --help  show this help and exit\n"
           "  --version   show the version and exit\n";
}

/**
 * The words the shell completion offers: with no command the command names, else the options of
 * that command, one per line. Hidden from --help; bash-completion/tonalmancer-cli calls it.
 */
int printCompletions(std::ostream& out, const std::vector<Command>& commands,
                     const std::vector<std::string>& words)
{
    if (words.size() < 2) {
        for (const Command& c : commands)
            out << c.name << '\n';
        return kExitSuccess;
    }
    const auto command = std::find_if(commands.begin(), commands.end(),
                                      [&](const Command& c) { return c.name == words[1]; });
    if (command == commands.end())
        return kExitUsage;
    for (const OptionSpec& option : command->options) {
        out << "--" << option.name << '\n';
        if (option.shortName != '\0')
            out << '-' << option.shortName << '\n';
    }
    out << "--data\n--help\n";
    return kExitSuccess;
}

void printCommandUsage(std::ostream& out, const Command& c)
{
    out << "Usage: tonalmancer-cli " << c.name;
    if (!c.synopsis.empty())
        out << ' ' << c.synopsis;
    out << " [--data DIR]\n" << c.summary << '\n';
    if (!c.details.empty())
        out << '\n' << c.details << '\n';
}

} // namespace

int runCli(const std::vector<std::string>& words)
{
    const std::vector<Command> commands = allCommands();
    if (words.empty() || words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
        printHelp(words.empty() ? std::cerr : std::cout, commands);
        return words.empty() ? kExitUsage : kExitSuccess;
    }

    if (words[0] == "--version") {
        std::cout << "tonalmancer-cli " << TM_VERSION << '\n';
        return kExitSuccess;
    }
    if (words[0] == "--complete")
        return printCompletions(std::cout, commands, words);

    const auto command = std::find_if(commands.begin(), commands.end(),
                                      [&](const Command& c) { return c.name == words[0]; });
    if (command == commands.end()) {
        std::cerr << "tonalmancer-cli: unknown command \"" << words[0] << "\"\n";
        printHelp(std::cerr, commands);
        return kExitUsage;
    }

    const std::vector<std::string> rest(words.begin() + 1, words.end());
    if (std::find(rest.begin(), rest.end(), "--help") != rest.end()) {
        printCommandUsage(std::cout, *command);
        return kExitSuccess;
    }

    std::vector<OptionSpec> options = command->options;
    options.push_back({"data", true, false});
    try {
        const Arguments args = Arguments::parse(rest, options);
        const std::size_t n = args.positionals().size();
        if (n < command->minPositionals || n > command->maxPositionals)
            throw UsageError("wrong number of arguments");
        Context context(std::cout, std::cerr, args.path("data").value_or(""));
        return command->run(args, context);
    } catch (const UsageError& error) {
        std::cerr << "tonalmancer-cli " << command->name << ": " << error.what() << '\n';
        printCommandUsage(std::cerr, *command);
        return kExitUsage;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return kExitFailure;
    }
}

} // namespace cli

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    cli::useBinaryStandardStreams();
    return cli::runCli(cli::commandLineWords(argc, argv));
}
