#pragma once

#include <QString>
#include <QStringList>

namespace app {

/**
 * The desktop program's command line: `tonalmancer [--data DIR] [FILE]`, or --help / --version.
 * The file is routed by its extension (any case): songs to the document, chord databases to the
 * chord tree, parts and presets to the part editor. A file with another extension is read as a
 * song, so that the song reader says what is wrong with it.
 */
class CommandLine
{
public:
    static constexpr const char* kUsage = "Usage: tonalmancer [--data DIR] [FILE]";

    enum class Request
    {
        Run,
        ShowHelp,
        ShowVersion,
        UsageError,
    };

    enum class FileKind
    {
        Song,           // .bmx, .bmw and anything unknown
        Part,           // .prt
        PatternPresets, // .spr
        PartPresets,    // .ppr
        ChordDatabase,  // .crd
    };

    /**
     * Parses the arguments without the program name. --help and --version win wherever they
     * stand, so that they answer even next to options only Qt knows.
     */
    static CommandLine parse(const QStringList& arguments);

    static FileKind kindOf(const QString& path);

    /** The text of --help, in the layout help2man turns into a manual page. */
    static QString helpText();
    /** The text of --version: the program's name and version on the first line. */
    static QString versionText();

    Request request() const { return m_request; }
    /** The --data folder; empty for the program's own. */
    const QString& dataDir() const { return m_dataDir; }
    /** The file to open; empty for none. */
    const QString& file() const { return m_file; }
    FileKind fileKind() const { return m_fileKind; }

private:
    Request m_request = Request::Run;
    QString m_dataDir;
    QString m_file;
    FileKind m_fileKind = FileKind::Song;
};

} // namespace app
