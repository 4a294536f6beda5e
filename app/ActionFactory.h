#pragma once

#include "app/CommandTable.h"

#include <QString>

#include <functional>
#include <string_view>

class QAction;
class QMenu;
class QObject;
class QWidget;

namespace app {

/** Turns the command tables into Qt actions and menus. */
class ActionFactory
{
public:
    /** Resolves a command id to the frame's action for it; nullptr when there is none. */
    using ActionLookup = std::function<QAction*(std::string_view)>;

    static QString toQString(std::string_view text)
    {
        return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    }

    /**
     * An action for a menu-bar or accelerator command: text, shortcut, status tip (the prompt
     * before its line break), tooltip (the part after it, else the status tip), checkable and
     * enabled as the table says. Its object name is the command's id.
     */
    static QAction* createAction(const CommandEntry& entry, QObject* parent);

    /**
     * Builds the context menu `name` with its sub-menus. Each item shows its keys after a tab (the
     * owning widget handles the keys itself) and carries the command's id as object name. Items
     * whose id `forward` resolves to an action trigger that action and follow its enabled state.
     */
    static QMenu* buildContextMenu(std::string_view name, QWidget* parent,
                                   const ActionLookup& forward);

    /** Connects every item of `menu` (and its sub-menus) whose id is `id`. */
    static void onTriggered(QMenu* menu, std::string_view id, QObject* receiver,
                            const std::function<void()>& slot);
    /** Enables or disables every item of `menu` whose id is `id`. */
    static void setEnabled(QMenu* menu, std::string_view id, bool enabled);
};

} // namespace app
