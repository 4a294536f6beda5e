#pragma once

#include <QIcon>
#include <QString>

#include <span>
#include <string_view>

namespace app {

/**
 * The program's icons. A command's icon comes from the desktop's icon theme when the theme has
 * the freedesktop name for it, else from the program's own set: line drawings in a mid-tone that
 * reads on light and dark window colours, with an accent per kind of file (blue for songs, orange
 * for parts) so that song and part commands are told apart at a glance. Commands whose meaning
 * has no freedesktop name (part files, presets, the views) always use the program's own icon.
 */
class AppIcons
{
public:
    struct CommandIcon
    {
        std::string_view commandId;
        std::string_view themeName; // empty: no freedesktop name fits
        std::string_view ownName;   // the drawing in app/icons/toolbar
    };

    /** Every command that has an icon. */
    static std::span<const CommandIcon> commandIcons();

    /** The icon of a command: the theme's, else the program's own; null for other commands. */
    static QIcon forCommand(std::string_view commandId);

    /**
     * The program's own icon of a command, without asking the theme (which can take thousands of
     * file look-ups); null for commands without an icon.
     */
    static QIcon ownForCommand(std::string_view commandId);

    /** One of the program's own icons by its drawing's name; null for an unknown name. */
    static QIcon own(std::string_view name);

    /** The application icon: the theme's "tonalmancer" (the installed one), else the built-in. */
    static QIcon application();
};

} // namespace app
