#include "app/AppIcons.h"

#include <QFile>
#include <QPainter>
#include <QPixmap>

#include <array>

namespace app {

namespace {

constexpr std::array kCommandIcons = {
    AppIcons::CommandIcon{"file.open", "document-open", "song-open"},
    AppIcons::CommandIcon{"file.save", "document-save", "song-save"},
    AppIcons::CommandIcon{"part.new", "document-new", "part-new"},
    AppIcons::CommandIcon{"part.load", "", "part-open"},
    AppIcons::CommandIcon{"part.save", "", "part-save"},
    AppIcons::CommandIcon{"part.play", "media-playback-start", "play"},
    AppIcons::CommandIcon{"part.playChord", "", "play-chord"},
    AppIcons::CommandIcon{"part.stop", "media-playback-stop", "stop"},
    AppIcons::CommandIcon{"part.createMidiFile", "", "midi-file"},
    AppIcons::CommandIcon{"part.createBuzzPatternsButton", "", "buzz-patterns"},
    AppIcons::CommandIcon{"part.addToPresetsButton", "", "add-preset"},
    AppIcons::CommandIcon{"part.printChordList", "document-print", "print"},
    AppIcons::CommandIcon{"view.showBmx", "", "machine-view"},
    AppIcons::CommandIcon{"view.showSettings", "", "settings-view"},
    AppIcons::CommandIcon{"help.topics", "help-contents", "help"},
    AppIcons::CommandIcon{"file.exit", "application-exit", "exit"},
};

/** How much of a drawing shows when its command is disabled. */
constexpr qreal kDisabledOpacity = 0.35;

/**
 * Every size the build rendered of `prefix`-<size>.png; null when there is none. The disabled
 * look is the drawing faded into the background: the style's own grey version comes out lighter
 * than the enabled drawing on a dark palette, so a disabled command would look the brighter one.
 */
QIcon fromRenderedSizes(const QString& prefix)
{
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QString file = QStringLiteral("%1-%2.png").arg(prefix).arg(size);
        QPixmap normal;
        if (!QFile::exists(file) || !normal.load(file))
            continue;
        QPixmap faded(normal.size());
        faded.fill(Qt::transparent);
        QPainter painter(&faded);
        painter.setOpacity(kDisabledOpacity);
        painter.drawPixmap(0, 0, normal);
        painter.end();
        icon.addPixmap(normal, QIcon::Normal);
        icon.addPixmap(faded, QIcon::Disabled);
    }
    return icon;
}

} // namespace

std::span<const AppIcons::CommandIcon> AppIcons::commandIcons()
{
    return kCommandIcons;
}

QIcon AppIcons::forCommand(std::string_view commandId)
{
    for (const CommandIcon& entry : kCommandIcons) {
        if (entry.commandId != commandId)
            continue;
        const QIcon ours = own(entry.ownName);
        if (entry.themeName.empty())
            return ours;
        return QIcon::fromTheme(QString::fromLatin1(entry.themeName.data(),
                                                    static_cast<qsizetype>(entry.themeName.size())),
                                ours);
    }
    return {};
}

QIcon AppIcons::own(std::string_view name)
{
    return fromRenderedSizes(QStringLiteral(":/icons/toolbar/") +
                             QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size())));
}

QIcon AppIcons::application()
{
    return QIcon::fromTheme(QStringLiteral("tonalmancer"),
                            fromRenderedSizes(QStringLiteral(":/icons/tonalmancer")));
}

} // namespace app
