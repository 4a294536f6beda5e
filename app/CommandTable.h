#pragma once

#include <span>
#include <string_view>

/**
 * The program's commands as data: every menu-bar item, the accelerators that have no menu item,
 * the toolbar-only commands and the context menus. CMainFrame and the views build their menus and
 * actions from these tables; nothing else spells a menu text, key or prompt.
 */
struct CommandEntry
{
    /** Stable name of the command ("file.open"); views look actions up by it. */
    std::string_view id;
    /**
     * Where the item sits: for the menu bar the menu title ("&File"); for a context menu the menu's
     * name followed by its sub-menus, separated by "|" ("chordTree|&Chord|&Add Chord"). Empty for
     * commands that are reached by key or toolbar button only.
     */
    std::string_view path;
    /** The item's text with its mnemonic ampersand. */
    std::string_view text;
    /** Key sequence in QKeySequence's portable text ("Ctrl+Shift+O"), or empty. */
    std::string_view keys;
    /** Status-bar prompt, a line break, then the toolbar button's tooltip; either part may be
     * empty. */
    std::string_view prompt;
    /** Shown checked while its flag is set (the two playing commands). */
    bool checkable = false;
    /** Whether the command works in this build; the rest are shown disabled. */
    bool available = true;
};

namespace commands {

/** The menu bar, menu by menu, items in menu order. */
std::span<const CommandEntry> menuBar();
/** Commands reached by accelerator or toolbar button only (Play, Stop, Print chord list...). */
std::span<const CommandEntry> keyAndToolbarOnly();
/** The context menus; the first element of each path names the menu. */
std::span<const CommandEntry> contextMenus();

/** The names of the context menus, in the order the tables list them. */
std::span<const std::string_view> contextMenuNames();

/** The part of a prompt shown in the status bar: the text before its line break. */
std::string_view statusPart(std::string_view prompt);
/** The part of a prompt shown as a toolbar tooltip: the text after its line break, or empty. */
std::string_view toolTipPart(std::string_view prompt);

/** Finds a command of any table by id; nullptr when there is none. */
const CommandEntry* find(std::string_view id);

} // namespace commands
