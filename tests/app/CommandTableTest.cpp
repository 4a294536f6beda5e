// The menu bar, accelerators, toolbar, status bar and tempo bar as the user meets them, compared
// with tables written out here from the program's documented commands (not from its own table).
#include "AppTestSupport.h"

#include "app/CTempoBar.h"
#include "app/CommandTable.h"
#include "app/PartSession.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenuBar>
#include <QSpinBox>
#include <QStatusBar>
#include <QStatusTipEvent>
#include <QToolBar>

#include <set>

namespace {

struct MenuRow
{
    const char* menu;
    const char* item;
    const char* keys;
    const char* prompt;
};

// clang-format off
const MenuRow kExpectedMenuBar[] = {
    {"File", "New", "Ctrl+N", "Create a new Buzz song."},
    {"File", "Open...", "Ctrl+O", "Open a Buzz song.\nOpen"},
    {"File", "Update", "Ctrl+Shift+O", "Load the song again."},
    {"File", "Save", "Ctrl+S", "Save Buzz song.\nSave"},
    {"File", "Save As", "", "Save Buzz song with a new name."},
    {"File", "Load Default", "", "Load the default Buzz song."},
    {"File", "Save As Default", "", "Save current song as default Buzz song."},
    {"File", "Exit", "Alt+F4", "Exit Tonalmancer.\nExit"},
    {"Chords", "Manager", "F2", "Manage scale and chord types."},
    {"Chords", "Find Chord", "", "Search for a chord in the database."},
    {"Chords", "Find Scale", "", "Search for a scale in the database."},
    {"Chords", "Continue Search", "F3", "Continue search."},
    {"Chords", "Generate", "", "Generate a new chord database."},
    {"Chords", "Create New List", "", "Create new chord database/clear current database."},
    {"Chords", "Load", "", "Load a predefined chord database from file."},
    {"Chords", "Save", "", "Save current chord database to file."},
    {"Chords", "Load Default", "", nullptr},
    {"Chords", "Save As Default", "", nullptr},
    {"Part", "Create Buzz Patterns", "", "Create patterns for the selected Buzz machine."},
    {"Part", "Create Midi File", "", "Create sequence and save it as midi file.\nCreate midi file"},
    {"Part", "New Part", "", "Create a new part.\nNew part"},
    {"Part", "Load Part", "", "Open part from file.\nOpen part"},
    {"Part", "Save Part", "", "Save current part to file.\nSave part"},
    {"Part", "Load Default Part", "", nullptr},
    {"Part", "Save As Default Part", "", "Load the default part."},
    {"Part", "Add Part To Presets", "", "Add current part to part presets"},
    {"Part", "Add Pattern To Presets", "", "Add current pattern to pattern presets."},
    // The part's note transformations, with the team's own prompts.
    {"Part", "Transpose", "", nullptr},
    {"Part", "Mirror", "", nullptr},
    {"Part", "Note Limits", "", nullptr},
    {"Part", "Voicing", "", nullptr},
    {"Part", "Voice Leading", "", nullptr},
    {"Machines", "Add Machine", "F4", "Add a new machine to the song."},
    {"Machines", "Scan Gear-Directory", "", "Scan all Buzz-machines."},
    {"Machines", "Scan Single File", "", "Scan one machine."},
    {"Settings", "Midi Settings", "", "Change midi settings."},
    {"View", "Midi Settings", "", "Show midi settings dialog."},
    {"View", "Machine Info", "", "Show the machine info."},
    {"View", "Pattern Info", "", "Show the patternlist."},
    {"View", "Search Info", "", "Show the search info window."},
    {"View", "Math Window", "", "Show the pattern generator window."},
    {"View", "Keyboard", "", nullptr},
    {"?", "Help Topics", "Ctrl+F1", "Open help.\nHelp"},
    {"?", "About", "", "Open help.\nHelp"},
};

// Accelerators of the main window and the prompt of the command each one reaches.
const std::pair<const char*, const char*> kExpectedAccelerators[] = {
    {"Ctrl+N", "Create a new Buzz song."},
    {"Ctrl+O", "Open a Buzz song."},
    {"Ctrl+Shift+O", "Load the song again."},
    {"Ctrl+P", "Print chord list."},
    {"Ctrl+S", "Save Buzz song."},
    {"Ctrl+Shift+Del", nullptr}, // remove pattern
    {"Ctrl+F1", "Open help."},
    {"F2", "Manage scale and chord types."},
    {"F3", "Continue search."},
    {"F4", "Add a new machine to the song."},
    {"Alt+F4", "Exit Tonalmancer."},
    {"F5", "Play part."},
    {"F8", "Stop playing."},
    {"Ctrl+Return", nullptr},       // new pattern
    {"Ctrl+Shift+Return", nullptr}, // copy of pattern
    {"Ctrl+Z", "Undo the last change."},
    {"Ctrl+Shift+Z", "Redo the last undone change."},
    {"Ctrl+Y", "Redo the last undone change."},
};

// Toolbar buttons: every command whose prompt has a second line, with that line as tooltip.
const std::pair<const char*, const char*> kExpectedToolTips[] = {
    {"Open a Buzz song.", "Open"},
    {"Save Buzz song.", "Save"},
    {"Exit Tonalmancer.", "Exit"},
    {"Create sequence and save it as midi file.", "Create midi file"},
    {"Create a new part.", "New part"},
    {"Open part from file.", "Open part"},
    {"Save current part to file.", "Save part"},
    {"Open help.", "Help"},
    {"Play part.", "Play"},
    {"Stop playing.", "Stop"},
    {"Play single chord.", "Play chord"},
    {"Print chord list.", "Print a list with the parts chords"},
    {"Create Buzz patterns.", "Create Buzz patterns"},
    {"Switch machine view.", "Show Bmx"},
    {"Switch to settings view.", "Show settings"},
    {"Add current part to part presets.", "Add part to presets"},
};
// clang-format on

QString plain(const QString& text)
{
    QString result = text;
    return result.remove(QLatin1Char('&'));
}

QAction* actionWithKeys(QWidget& window, const QKeySequence& keys)
{
    for (QAction* action : window.actions()) {
        if (action->shortcuts().contains(keys))
            return action;
    }
    return nullptr;
}

using MainWindowCommands = apptest::AppFixture;

TEST_F(MainWindowCommands, MenuBarMatchesTheCommandListItemByItem)
{
    std::vector<std::tuple<QString, QString, QString, QString, QString>> seen;
    for (QAction* menuAction : frame().menuBar()->actions()) {
        for (QAction* item : menuAction->menu()->actions()) {
            if (item->isSeparator())
                continue;
            seen.emplace_back(plain(menuAction->text()), plain(item->text()),
                              item->shortcut().toString(QKeySequence::PortableText),
                              item->statusTip(), item->toolTip());
        }
    }
    ASSERT_EQ(seen.size(), std::size(kExpectedMenuBar));
    for (std::size_t i = 0; i < seen.size(); ++i) {
        const MenuRow& row = kExpectedMenuBar[i];
        const auto& [menu, item, keys, status, tip] = seen[i];
        SCOPED_TRACE(row.item);
        EXPECT_EQ(menu, QString::fromUtf8(row.menu));
        EXPECT_EQ(item, QString::fromUtf8(row.item));
        EXPECT_EQ(keys, QString::fromUtf8(row.keys));
        if (row.prompt == nullptr)
            continue; // the team's own prompt
        const QString prompt = QString::fromUtf8(row.prompt);
        EXPECT_EQ(status, prompt.section(QLatin1Char('\n'), 0, 0));
        if (prompt.contains(QLatin1Char('\n'))) {
            EXPECT_EQ(tip, prompt.section(QLatin1Char('\n'), 1));
        }
    }
}

TEST_F(MainWindowCommands, EveryMenuItemHasAMnemonicThatIsUniqueInItsMenu)
{
    for (QAction* menuAction : frame().menuBar()->actions()) {
        std::set<QChar> letters;
        for (QAction* item : menuAction->menu()->actions()) {
            if (item->isSeparator())
                continue;
            const qsizetype amp = item->text().indexOf(QLatin1Char('&'));
            ASSERT_GE(amp, 0) << item->text().toStdString();
            EXPECT_TRUE(letters.insert(item->text().at(amp + 1).toLower()).second)
                << "mnemonic used twice in " << menuAction->text().toStdString() << ": "
                << item->text().toStdString();
        }
    }
}

TEST_F(MainWindowCommands, AcceleratorsReachTheirCommandsFromAnywhereInTheWindow)
{
    for (const auto& [keys, prompt] : kExpectedAccelerators) {
        SCOPED_TRACE(keys);
        QAction* action = actionWithKeys(frame(), QKeySequence(QString::fromLatin1(keys)));
        ASSERT_NE(action, nullptr);
        EXPECT_EQ(action->shortcutContext(), Qt::WindowShortcut);
        if (prompt != nullptr) {
            EXPECT_EQ(action->statusTip(), QString::fromUtf8(prompt));
        }
    }
}

TEST_F(MainWindowCommands, ToolbarHoldsTheCommandsWithASecondPromptLine)
{
    std::map<QString, QString> buttons;
    for (QAction* action : frame().toolBar()->actions()) {
        if (!action->isSeparator())
            buttons[action->statusTip()] = action->toolTip();
    }
    for (const auto& [status, tip] : kExpectedToolTips) {
        SCOPED_TRACE(status);
        ASSERT_EQ(buttons.count(QString::fromUtf8(status)), 1u);
        EXPECT_EQ(buttons[QString::fromUtf8(status)], QString::fromUtf8(tip));
    }
    EXPECT_EQ(buttons.size(), std::size(kExpectedToolTips));
}

TEST_F(MainWindowCommands, StatusBarShowsOnlyThePromptBeforeItsLineBreakAndReadyWhenIdle)
{
    QStatusBar* status = frame().statusBar();
    EXPECT_EQ(status->currentMessage(), QStringLiteral("Ready"));
    // The mouse over the toolbar button sends its status tip up to the window.
    frame().action("file.open")->showStatusText(frame().toolBar());
    EXPECT_EQ(status->currentMessage(), QStringLiteral("Open a Buzz song."));
    QStatusTipEvent leave{QString()};
    QCoreApplication::sendEvent(&frame(), &leave);
    EXPECT_EQ(status->currentMessage(), QStringLiteral("Ready"));
}

TEST_F(MainWindowCommands, TempoBarDocksAtTheTopOnlyWithItsTwoValues)
{
    app::CTempoBar* tempo = frame().tempoBar();
    EXPECT_EQ(tempo->allowedAreas(), Qt::TopToolBarArea);
    EXPECT_FALSE(tempo->isFloatable());
    EXPECT_EQ(frame().toolBarArea(tempo), Qt::TopToolBarArea);
    EXPECT_EQ(tempo->beatsPerMinuteBox()->toolTip(), QStringLiteral("Beats per minute"));
    EXPECT_EQ(tempo->ticksPerBeatBox()->toolTip(), QStringLiteral("Ticks per beat"));
    // Ticks per beat never reach 0: playback divides by it.
    tempo->ticksPerBeatBox()->setValue(0);
    EXPECT_GE(tempo->ticksPerBeat(), 1);
    tempo->setBeatsPerMinute(140);
    EXPECT_EQ(tempo->beatsPerMinute(), 140);
}

TEST_F(MainWindowCommands, PlayingFlagsDecideWhichPlayButtonsShowPressed)
{
    struct Case
    {
        bool part;
        bool chord;
    };
    for (const Case c : {Case{true, false}, Case{true, true}, Case{false, false}}) {
        frame().setPlayingFlags(c.part, c.chord);
        EXPECT_EQ(frame().action("part.play")->isChecked(), c.part);
        EXPECT_EQ(frame().action("part.playChord")->isChecked(), c.chord);
    }
    // A click on the button does not press it by itself; only the flags do (a part without
    // chords does not play).
    QAction* play = frame().action("part.play");
    view().partSession()->newPart();
    play->trigger();
    EXPECT_FALSE(play->isChecked());
}

TEST_F(MainWindowCommands, EveryRegionsCommandsAreAvailable)
{
    for (const char* id :
         {"file.open", "chords.manager", "chords.findChord", "help.about", "part.new",
          "part.createMidiFile", "part.createBuzzPatterns", "part.play", "machines.add",
          "view.machineInfo", "view.patternInfo", "part.addPatternToPresets"})
        EXPECT_TRUE(frame().action(id)->isEnabled()) << id;
}

TEST(CommandTable, EveryItemOfAContextMenuHasAnIdOfItsOwn)
{
    // Items are bound by id: an id used twice in one menu would run one command from two items.
    std::map<std::string_view, std::set<std::string_view>> seen;
    for (const CommandEntry& entry : commands::contextMenus()) {
        const std::string_view menu = entry.path.substr(0, entry.path.find('|'));
        EXPECT_TRUE(seen[menu].insert(entry.id).second) << entry.id << " twice in " << menu;
    }
    // A misspelt menu name would build a menu that no widget opens.
    const auto names = commands::contextMenuNames();
    for (const auto& [menu, ids] : seen)
        EXPECT_NE(std::find(names.begin(), names.end(), menu), names.end()) << menu;
}

} // namespace
