#include "app/CommandLine.h"

#include <QFileInfo>

#include <utility>

#ifndef TM_VERSION
#error "TM_VERSION must name the program's version (set by CMake)"
#endif

namespace app {

CommandLine CommandLine::parse(const QStringList& arguments)
{
    CommandLine line;
    for (const QString& argument : arguments) {
        if (argument == QStringLiteral("--help") || argument == QStringLiteral("-h")) {
            line.m_request = Request::ShowHelp;
            return line;
        }
        if (argument == QStringLiteral("--version")) {
            line.m_request = Request::ShowVersion;
            return line;
        }
    }

    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == QStringLiteral("--data") && i + 1 < arguments.size()) {
            line.m_dataDir = arguments[++i];
        } else if (argument.startsWith(QStringLiteral("--data="))) {
            line.m_dataDir = argument.mid(7);
        } else if (argument.startsWith(QLatin1Char('-')) || !line.m_file.isEmpty()) {
            line.m_request = Request::UsageError;
            return line;
        } else {
            line.m_file = argument;
        }
    }
    if (!line.m_file.isEmpty())
        line.m_fileKind = kindOf(line.m_file);
    return line;
}

CommandLine::FileKind CommandLine::kindOf(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    const std::pair<const char*, FileKind> kinds[] = {
        {"prt", FileKind::Part},
        {"spr", FileKind::PatternPresets},
        {"ppr", FileKind::PartPresets},
        {"crd", FileKind::ChordDatabase},
    };
    for (const auto& [extension, kind] : kinds) {
        if (suffix == QLatin1String(extension))
            return kind;
    }
    return FileKind::Song;
}

QString CommandLine::helpText()
{
    return QStringLiteral(
        "Usage: tonalmancer [--data DIR] [FILE]\n"
        "A workbench for composing with chords for the Buzz tracker: build and search a chord\n"
        "database, arrange chords into a part of step-sequencer patterns, audition it through\n"
        "MIDI, and write it into a Buzz song or a standard MIDI file.\n"
        "\n"
        "FILE is opened at start-up: a Buzz song (.bmx, .bmw), a chord database (.crd), a part\n"
        "(.prt) or a preset file (.spr pattern presets, .ppr part presets).\n"
        "\n"
        "Options:\n"
        "  --data DIR     use DIR as the data folder (created when missing)\n"
        "  -h, --help     show this help and exit\n"
        "  --version      show the version and exit\n"
        "\n"
        "Without --data the data folder is the program's own folder when it holds the shipped\n"
        "files, else $XDG_DATA_HOME/tonalmancer, filled with the shipped files on first start.\n");
}

QString CommandLine::versionText()
{
    return QStringLiteral("tonalmancer " TM_VERSION "\n");
}

} // namespace app
