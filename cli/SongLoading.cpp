#include "cli/SongLoading.h"

#include "music/Utf8Path.h"
#include "song/DataFolderMachineCatalog.h"
#include "song/FileErrorCode.h"
#include "song/SongReader.h"
#include "song/SongWriter.h"
#include "song/UnknownMachineHandler.h"

#include <ostream>

namespace cli {

namespace {

/** Answers the reader's questions from the command line: --learn and --scan-dll. */
class CliUnknownMachineHandler : public song::UnknownMachineHandler
{
public:
    CliUnknownMachineHandler(const Arguments& args, std::ostream& err)
        : m_learn(args.has("learn")), m_dlls(args.values("scan-dll")), m_err(err)
    {}

    bool learnFromSong(const std::string& machineName, const std::string& dllName) override
    {
        if (m_learn)
            m_err << "learning machine \"" << machineName << "\" (" << dllName
                  << ") from the song\n";
        return m_learn; // declined, --scan-dll is asked next
    }

    std::optional<std::filesystem::path> chooseDllToScan(const std::string& /*message*/) override
    {
        if (m_nextDll >= m_dlls.size())
            return std::nullopt;
        return music::pathFromUtf8(m_dlls[m_nextDll++]);
    }

    void scanFailed(const music::Result& failure) override { m_err << failure.message() << '\n'; }

private:
    bool m_learn = false;
    std::vector<std::string> m_dlls;
    std::size_t m_nextDll = 0;
    std::ostream& m_err;
};

} // namespace

std::vector<OptionSpec> songReadingOptions()
{
    return {{"learn", false, false}, {"scan-dll", true, true}};
}

std::vector<OptionSpec> withSongReading(std::vector<OptionSpec> options)
{
    for (OptionSpec& o : songReadingOptions())
        options.push_back(std::move(o));
    return options;
}

bool loadSong(const std::filesystem::path& path, const Arguments& args, Context& context,
              song::BuzzSong& out)
{
    song::DataFolderMachineCatalog catalog(context.dataFolder().root());
    CliUnknownMachineHandler handler(args, context.err());
    song::SongReader reader(catalog, &handler);
    const music::Result result = reader.read(path, out);
    for (const std::string& warning : reader.warnings())
        context.err() << warning << '\n';
    if (result)
        return true;
    if (!result.message().empty())
        context.err() << result.message() << '\n';
    context.err() << song::loadErrorText(result.code()) << '\n';
    return false;
}

int saveSong(const song::BuzzSong& song, const std::filesystem::path& path, Context& context)
{
    const music::Result result = song::SongWriter::write(song, path);
    if (result)
        return kExitSuccess;
    if (!result.message().empty())
        context.err() << result.message() << '\n';
    return context.fail(song::saveErrorText(result.code()));
}

} // namespace cli
