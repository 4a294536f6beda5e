// The context menus of the main view by name, with their items in menu order and their keys,
// compared with lists written out here from the documented menus.
#include "AppTestSupport.h"

#include "app/MachinePanel.h"

#include <QAction>
#include <QMenu>
#include <QStackedWidget>
#include <QTreeWidget>

namespace {

// "Sub-menu > Item" and, after a tab, the keys shown.
// clang-format off
const std::pair<const char*, QStringList> kExpectedMenus[] = {
    {"machineView", {"Show Settings", "View > Generators\tAlt+1", "View > Effects\tAlt+2",
        "View > Synths\tAlt+3", "View > Samplers\tAlt+4", "View > All\tAlt+5",
        "Info > Notes Chart", "Info > Waves Chart", "Info > Machine Info\tCtrl+I",
        "Info > Pattern Info\tCtrl+P", "Transform > Transpose", "Transform > Invert",
        "Edit > Remove\tDel", "Edit > Rename\tCtrl+R", "Edit > Copy\tCtrl+C",
        "Edit > Paste\tCtrl+V", "Edit > Clone",
        "Edit > Replace", "Clean > Remove Empty Sequences", "Clean > Remove Unused Patterns",
        "New\tF4", "Select All\tCtrl+A"}},
    {"chordTree", {"Base Group > Add Base", "Base Group > Remove\tDel",
        "Base Group > Rename\tCtrl+R", "Base Group > Generate", "Scale/Group > Add Scale",
        "Scale/Group > Remove\tDel", "Scale/Group > Settings\tCtrl+R",
        "Scale/Group > ->Forbid Notes", "Collection > Add Collection", "Collection > Remove\tDel",
        "Collection > Settings\tCtrl+R", "Chord > Add Chord > From List",
        "Chord > Add Chord > By Notes", "Chord > Remove\tDel", "Chord > Settings\tCtrl+R",
        "Chord > Copy\tCtrl+C", "Chord > Cut\tCtrl+X", "Chord > Paste Insert\tCtrl+V",
        "Chord > Paste Append\tCtrl+W", "Sort > Upwards", "Sort > Downwards", "Generate",
        // The database's undo, offered where its commands are.
        "Undo\tCtrl+Z"}},
    {"partList", {"Add Chord", "Chord Settings\tCtrl+R", "Forbid Notes", "View > Names",
        "View > Notes", "Add Part To Presets", "Replace Current Preset", "Copy\tCtrl+C",
        "Cut\tCtrl+X", "Paste Insert\tCtrl+V", "Paste Append\tCtrl+W", "Select All\tCtrl+A",
        "Remove\tDel", "Clear List\tCtrl+Del", "Sort > By Name > Upwards",
        "Sort > By Name > Downwards", "Sort > By Notes > Upwards", "Sort > By Notes > Downwards",
        "Normalize > All", "Normalize > Selected", "Normalize > Invert",
        "Transform > Transpose", "Transform > Mirror", "Transform > Note Limits",
        "Transform > Voicing", "Transform > Voice Leading", "Remove Double", "Find Scale",
        "Print List\tCtrl+P", "Undo\tCtrl+Z"}},
    {"patternList", {"New\tCtrl+Return", "Rename", "Create Copy\tCtrl+Shift+Return",
        "Remove\tCtrl+Shift+Del", "Clear List", "Add Pattern To Presets",
        "Replace Current Preset", "Add List To Presets"}},
    {"patternPresets", {"Append", "Replace", "Rename", "Remove", "Sort > Upwards",
        "Sort > Downwards", "New", "Load", "Save", "Load Default", "Save List As Default"}},
    {"partPresets", {"Append", "Replace", "Rename", "Remove", "Sort > Upwards",
        "Sort > Downwards", "New", "Load", "Save", "Load Default", "Save List As Default"}},
    {"patternEditor", {"Copy\tCtrl+C", "Cut\tCtrl+X", "Paste\tCtrl+V", "Select All\tCtrl+A",
        "Select Track\tCtrl+Shift+A", "Clear Selected\tDel", "Clear Pattern\tCtrl+Entf"}},
    {"settingsView", {"Show Bmx", "Reset"}},
    {"trackHeader", {"Track On\tCtrl+M", "Select Track", "Move Left", "Move Right",
        "Swap With > Track 1", "Swap With > Track 2", "Swap With > Track 3",
        "Swap With > Track 4", "Swap With > Track 5", "Swap With > Track 6",
        "Swap With > Track 7", "Swap With > Track 8", "Merge Into > Track 1",
        "Merge Into > Track 2", "Merge Into > Track 3", "Merge Into > Track 4",
        "Merge Into > Track 5", "Merge Into > Track 6", "Merge Into > Track 7",
        "Merge Into > Track 8"}},
};
// clang-format on

/** The items of a menu, depth first, as "Sub > Item\tKeys" with keys in portable form. */
void flatten(const QMenu* menu, const QString& prefix, QStringList& out)
{
    for (QAction* action : menu->actions()) {
        if (action->isSeparator())
            continue;
        QString text = action->text().remove(QLatin1Char('&'));
        if (action->menu() != nullptr) {
            flatten(action->menu(), prefix + text + QStringLiteral(" > "), out);
            continue;
        }
        const qsizetype tab = text.indexOf(QLatin1Char('\t'));
        if (tab >= 0) {
            const QString shown = text.mid(tab + 1);
            const QKeySequence keys = QKeySequence::fromString(shown, QKeySequence::NativeText);
            const QString portable = keys.toString(QKeySequence::PortableText);
            text = text.left(tab + 1) + (portable.isEmpty() ? shown : portable);
        }
        out << prefix + text;
    }
}

using ContextMenus = apptest::AppFixture;

TEST_F(ContextMenus, EachMenuListsItsItemsInOrderWithTheirKeys)
{
    for (const auto& [name, expected] : kExpectedMenus) {
        SCOPED_TRACE(name);
        const QMenu* menu = view().contextMenu(name);
        ASSERT_NE(menu, nullptr);
        QStringList items;
        flatten(menu, QString(), items);
        EXPECT_EQ(items, expected) << items.join(QStringLiteral(" | ")).toStdString();
    }
}

TEST_F(ContextMenus, ItemsOfMenuBarCommandsFollowTheirEnabledState)
{
    // "Show Bmx" in the settings view is the frame's command; disabling one disables the other.
    QMenu* menu = view().contextMenu("settingsView");
    QAction* item = menu->findChild<QAction*>(QStringLiteral("view.showBmx"));
    ASSERT_NE(item, nullptr);
    EXPECT_TRUE(item->isEnabled());
    frame().action("view.showBmx")->setEnabled(false);
    EXPECT_FALSE(item->isEnabled());
    frame().action("view.showBmx")->setEnabled(true);
    item->trigger();
    EXPECT_TRUE(view().sideStack()->currentWidget()->isAncestorOf(view().machinePanel()));
}

TEST_F(ContextMenus, MachineViewFilterIsKeptInTheSettings)
{
    const std::pair<const char*, int> choices[] = {{"machine.viewGenerators", 0},
                                                   {"machine.viewSynths", 1},
                                                   {"machine.viewSamplers", 2},
                                                   {"machine.viewEffects", 3},
                                                   {"machine.viewAll", 4}};
    QMenu* menu = view().contextMenu("machineView");
    for (const auto& [id, filter] : choices) {
        menu->findChild<QAction*>(QString::fromLatin1(id))->trigger();
        EXPECT_EQ(view().midiSettings().machineFilter(), filter) << id;
    }
}

} // namespace
