// Takes the screenshots of the manual: starts the program as a user would, opens the main window
// and each dialog in turn, and saves what they show as PNG files into the folder given.
#include "app/AddPresetDialog.h"
#include "app/CAboutDialog.h"
#include "app/CChordFromListDialog.h"
#include "app/CChordTypeDialog.h"
#include "app/CFindDialog.h"
#include "app/CGenerateDialog.h"
#include "app/CIntervalListDialog.h"
#include "app/CMachineChooserDialog.h"
#include "app/CMainFrame.h"
#include "app/CMidiFileDialog.h"
#include "app/CMidiSettingsDialog.h"
#include "app/CPartWriteDialog.h"
#include "app/CScaleDialog.h"
#include "app/CScaleGroupDialog.h"
#include "app/CSearchInfoWindow.h"
#include "app/CTonalmancerApp.h"
#include "app/CTonalmancerDoc.h"
#include "app/CTonalmancerView.h"
#include "app/CTreeCtrlX.h"
#include "app/CTypeManagerDialog.h"
#include "app/ChordCollectionModel.h"
#include "app/ChordDatabaseCommands.h"
#include "app/ChordDatabasePanel.h"
#include "app/ChordSettingsDialog.h"
#include "app/ForbidNotesDialog.h"
#include "app/KeyboardPanel.h"
#include "app/MachineInfoWindow.h"
#include "app/MachineListModel.h"
#include "app/MachinePanel.h"
#include "app/MachineTreeView.h"
#include "app/MathWindow.h"
#include "app/MessageBoxes.h"
#include "app/PartListModel.h"
#include "app/PartListPanel.h"
#include "app/PartSession.h"
#include "app/PartSettingsModel.h"
#include "app/PartSettingsPanel.h"
#include "app/PatternChartWindow.h"
#include "app/PatternGridPanel.h"
#include "app/PatternInfoWindow.h"
#include "app/PatternListPanel.h"
#include "app/PatternTrackHeader.h"
#include "app/PresetPanel.h"
#include "app/RecipeListModel.h"
#include "app/TransportController.h"
#include "app/TransposeDialog.h"
#include "app/VoicingDialog.h"
#include "midi/MidiInPortList.h"
#include "midi/MidiPortList.h"
#include "part/PartFile.h"
#include "song/MachineDatabase.h"
#include "song/PartWriter.h"

#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QListView>
#include <QMenu>
#include <QPalette>
#include <QPixmapCache>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolBar>

#include <cstdio>
#include <utility>

namespace {

void settle(int ms = 300)
{
    QTest::qWait(ms);
}

bool save(QWidget& widget, const QDir& folder, const QString& name)
{
    widget.show();
    widget.raise();
    settle();
    const bool ok = widget.grab().save(folder.filePath(name + QStringLiteral(".png")));
    std::printf("%s %s\n", ok ? "saved" : "FAILED", qPrintable(name));
    return ok;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    app::CTonalmancerApp::setApplicationNames();
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "Usage: tonalmancer-screenshots OUTPUT_DIR [--data DIR] [SONG.bmx]\n");
        return 2;
    }
    QDir folder(arguments[1]);
    folder.mkpath(QStringLiteral("."));

    app::CTonalmancerApp tonalmancer;
    const QStringList startArguments = arguments.mid(2);
    if (!tonalmancer.start(startArguments, false))
        return 1;
    app::CMainFrame& frame = *tonalmancer.mainFrame();
    app::CTonalmancerView& view = *tonalmancer.view();
    app::ChordDatabasePanel& chords = *view.chordDatabase();
    app::ChordDatabaseCommands& chordCommands = chords.menuCommands();
    frame.resize(1400, 860);
    frame.show();
    settle(600);

    // The database opened a little, with a chord selected, as after a search.
    chordCommands.findChordWith(
        {true, false, false, false, true, false, false, true, false, false, false, false},
        QStringLiteral("maj"), QString());
    settle();
    save(frame, folder, QStringLiteral("main-window"));

    // The toolbar on the default (light) palette and on a dark one: its icons must read on both.
    save(*frame.toolBar(), folder, QStringLiteral("toolbar"));
    const QPalette light = QApplication::palette();
    QPalette dark;
    for (const auto& [role, color] : {std::pair{QPalette::Window, QColor(0x2b, 0x2b, 0x2b)},
                                      std::pair{QPalette::Button, QColor(0x35, 0x35, 0x35)},
                                      std::pair{QPalette::Base, QColor(0x1e, 0x1e, 0x1e)},
                                      std::pair{QPalette::WindowText, QColor(0xe6, 0xe6, 0xe6)},
                                      std::pair{QPalette::ButtonText, QColor(0xe6, 0xe6, 0xe6)},
                                      std::pair{QPalette::Text, QColor(0xe6, 0xe6, 0xe6)}})
        dark.setColor(role, color);
    dark.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x80, 0x80, 0x80));
    // Disabled icons are generated from the palette and cached; start them afresh.
    QPixmapCache::clear();
    QApplication::setPalette(dark);
    save(*frame.toolBar(), folder, QStringLiteral("toolbar-dark"));
    QPixmapCache::clear();
    QApplication::setPalette(light);

    QMenu* treeMenu = view.contextMenu("chordTree");
    treeMenu->popup(chords.tree()->mapToGlobal(QPoint(120, 120)));
    settle();
    save(*treeMenu, folder, QStringLiteral("chord-tree-menu"));
    treeMenu->hide();

    // The part list's menu over the default part, and its chord dialogs.
    app::PartListPanel& partList = *view.partList();
    partList.selectRows({1, 2});
    QMenu* partMenu = view.contextMenu("partList");
    partMenu->popup(partList.view()->mapToGlobal(QPoint(60, 60)));
    settle();
    save(*partMenu, folder, QStringLiteral("part-list-menu"));
    partMenu->hide();
    QStringList patterns;
    for (int i = 0; i < view.partSession()->part().patterns().count(); ++i)
        patterns << partList.model()->patternText(i);
    app::ChordSettingsDialog chordSettings(patterns, &frame);
    chordSettings.setChord(view.partSession()->part().chord(1));
    save(chordSettings, folder, QStringLiteral("chord-settings-dialog"));
    app::ForbidNotesDialog forbid(&frame);
    forbid.setFlags({1, 0, 1, 1, 1, 1, 0, 1, 1, 1, 1, 1});
    save(forbid, folder, QStringLiteral("forbid-notes-dialog"));

    app::CGenerateDialog generate(app::CGenerateDialog::Mode::List, chords.scales(), &frame);
    save(generate, folder, QStringLiteral("generate-dialog"));
    app::CFindDialog find(QStringLiteral("Find chord"),
                          chordCommands.chordSearch().includeHistory(),
                          chordCommands.chordSearch().skipHistory(), &frame);
    find.keyboard()->setTicks(
        {true, false, false, false, true, false, false, true, false, false, false, false});
    save(find, folder, QStringLiteral("find-chord-dialog"));
    app::CTypeManagerDialog manager(chords.chordTypes(), chords.scales(), tonalmancer.dataFolder(),
                                    &frame);
    save(manager, folder, QStringLiteral("type-manager"));
    app::CChordTypeDialog chordType(&frame);
    save(chordType, folder, QStringLiteral("chord-type-dialog"));
    app::CScaleDialog scale(&frame);
    save(scale, folder, QStringLiteral("scale-dialog"));
    app::CIntervalListDialog intervals(&frame);
    save(intervals, folder, QStringLiteral("interval-list"));
    app::CScaleGroupDialog group(QStringLiteral("Add Scale/Group"), chords.scales(), &frame);
    save(group, folder, QStringLiteral("scale-group-dialog"));
    app::CChordFromListDialog picker(chords.chordTypes(), QString(), &frame);
    save(picker, folder, QStringLiteral("chord-from-list"));
    chordCommands.findScaleWith(
        {true, false, true, false, true, false, false, true, false, false, false, false}, QString(),
        QString());
    save(*chordCommands.searchInfo(), folder, QStringLiteral("search-info"));
    // Messages are printed, never shown: a modal box would stop the run. The default song in the
    // machine view; a generator the database does not know is learnt.
    app::MessageBoxes::setHandler(
        [](QWidget*, const QString& text, QMessageBox::Icon, QMessageBox::StandardButtons) {
            std::printf("message: %s\n", qPrintable(text));
            return QMessageBox::Yes;
        });
    if (frame.loadDefaultSong()) {
        view.showMachineView(true);
        app::MachinePanel& machines = *view.machinePanel();
        // The demo part written into the generator, so that its windows have patterns to show.
        part::Part demo;
        if (part::PartFile::load(tonalmancer.dataFolder().file(part::PartFile::kDefaultFileName),
                                 demo)) {
            tonalmancer.document()->edit(QStringLiteral("Create Buzz Patterns"),
                                         [&demo](song::BuzzSong& song) {
                                             song::PartWriteOptions options;
                                             options.makeSequence = true;
                                             song::PartWriter::write(song, 1, demo, options);
                                             return music::Result::success();
                                         });
        }
        machines.selectMachine(1);
        save(frame, folder, QStringLiteral("machine-view"));
        save(*machines.showMachineInfo(), folder, QStringLiteral("machine-info"));
        save(*machines.showPatternInfo(), folder, QStringLiteral("pattern-info"));
        save(*machines.showChart(false), folder, QStringLiteral("notes-chart"));
        for (QWidget* window : std::initializer_list<QWidget*>{
                 machines.showMachineInfo(), machines.showPatternInfo(), machines.showChart(false)})
            window->close();
        QMenu* machineMenu = view.contextMenu("machineView");
        machineMenu->popup(machines.view()->mapToGlobal(QPoint(40, 40)));
        settle();
        save(*machineMenu, folder, QStringLiteral("machine-view-menu"));
        machineMenu->hide();
        // Add Machine (F4): the synths of the database whose name holds "m".
        song::MachineDatabase database;
        if (database.load(tonalmancer.dataFolder().root())) {
            std::vector<std::size_t> candidates;
            for (std::size_t i = 0; i < database.size(); ++i) {
                if (database.entry(i).type != 0)
                    candidates.push_back(i);
            }
            app::CMachineChooserDialog chooser(QStringLiteral("Add Machine"), database.entries(),
                                               candidates, &frame);
            chooser.setKindFilter(app::MachineListModel::Generators);
            save(chooser, folder, QStringLiteral("add-machine-dialog"));
        }
        view.showMachineView(false);
    }

    // The pattern editor on the demo part's first pattern, its first chord chosen.
    part::Part demo;
    if (part::PartFile::load(tonalmancer.dataFolder().file(part::PartFile::kDefaultFileName),
                             demo)) {
        view.partSession()->loadPart(demo, QString());
        view.partSession()->setCurrentChord(0);
        auto* grid = qobject_cast<app::PatternGridPanel*>(view.regions().patternGrid);
        grid->moveCursorTo(2, 1);
        save(*grid, folder, QStringLiteral("pattern-editor"));
        // The settings view and the presets beside the pattern list, with its context menu.
        view.patternPresetPanel()->setCurrentPreset(1);
        if (auto* side = view.findChild<QWidget*>(QStringLiteral("side")))
            save(*side, folder, QStringLiteral("settings-and-presets"));
        QMenu* patternMenu = view.contextMenu("patternList");
        patternMenu->popup(view.patternList()->viewport()->mapToGlobal(QPoint(60, 40)));
        settle();
        save(*patternMenu, folder, QStringLiteral("pattern-list-menu"));
        patternMenu->hide();
        // A track's octave chosen in place, a preset list's menu and the "Add Preset" dialog.
        app::PartSettingsPanel& settings = *view.partSettings();
        const QModelIndex track3 =
            settings.model()->index(app::PartSettingsModel::FirstTrackRow + 2, 1);
        settings.setCurrentIndex(track3);
        settings.edit(track3);
        settle();
        save(settings, folder, QStringLiteral("settings-track-octave"));
        if (QWidget* editor = settings.indexWidget(track3))
            QTest::keyClick(editor, Qt::Key_Escape); // closed without a change
        settings.setCurrentIndex({});
        QMenu* presetMenu = view.contextMenu("patternPresets");
        presetMenu->popup(view.patternPresetPanel()->viewport()->mapToGlobal(QPoint(60, 30)));
        settle();
        save(*presetMenu, folder, QStringLiteral("preset-list-menu"));
        presetMenu->hide();
        view.patternPresetPanel()->addCurrent([&folder](app::AddPresetDialog& dialog) {
            save(dialog, folder, QStringLiteral("add-preset-dialog"));
            dialog.hide();
            return false;
        });

        // The track headers' menu, and the Math Window with its Euclidean arpeggio previewed.
        QMenu* header = grid->trackHeaderMenu();
        header->popup(grid->trackHeader()->mapToGlobal(QPoint(40, 10)));
        settle();
        save(*header, folder, QStringLiteral("track-header-menu"));
        header->hide();
        app::MathWindow& math = *view.mathWindow();
        math.showWindow();
        app::RecipeListModel& recipes = *math.recipeModel();
        for (int row = 0; row < recipes.rowCount(); ++row) {
            if (recipes.index(row).data() == QStringLiteral("Euclidean arpeggio"))
                math.recipeList()->setCurrentIndex(recipes.index(row));
        }
        save(math, folder, QStringLiteral("math-window"));
        save(*grid, folder, QStringLiteral("pattern-preview"));
        math.hide();

        // The transformation dialogs share one frame; Transpose shows it.
        app::TransposeDialog transpose(demo, part::allChords(demo), &frame);
        save(transpose, folder, QStringLiteral("transpose-dialog"));

        // The keyboard panel with E, C and G chosen on it, named; then Voice Leading previewing
        // its outcome on the panel.
        app::KeyboardPanel& keys = *view.keyboardPanel();
        keys.showNotes({52, 60, 67}, QStringLiteral("Chosen on the keyboard"));
        save(frame, folder, QStringLiteral("keyboard-window"));
        save(*view.keyboardDock(), folder, QStringLiteral("keyboard-panel"));
        app::VoicingDialog voicing(demo, part::allChords(demo), 0, true, &frame);
        QObject::connect(&voicing, &app::VoicingDialog::previewChanged, &keys,
                         &app::KeyboardPanel::showNotes);
        voicing.refresh();
        save(voicing, folder, QStringLiteral("voicing-dialog"));
        save(*view.keyboardDock(), folder, QStringLiteral("voicing-preview"));
        voicing.hide();
    }

    // Playing on the built-in synth (into a WAV file when TONALMANCER_SYNTH_WAV names one): the
    // indicator shows, the grid follows the playing row. Then the dialogs of hearing and export.
    if (!midi::MidiPortList::systemList()->deviceNames().empty()) {
        view.midiSettings().setDeviceNumber(0);
        frame.action("part.play")->trigger();
        settle(1500);
        save(frame, folder, QStringLiteral("playing"));
        frame.action("part.stop")->trigger();
    }
    app::CMidiSettingsDialog midiSettings(view.midiSettings(), view.partSession()->renderOptions(),
                                          nullptr, &frame);
    midiSettings.setInputPorts(midi::MidiInPortList::systemList());
    save(midiSettings, folder, QStringLiteral("midi-settings-dialog"));
    app::CMidiFileDialog midiFile(view.midiSettings(), view.partSession()->renderOptions(), &frame);
    save(midiFile, folder, QStringLiteral("midi-file-dialog"));
    song::PartWriteOptions writeOptions;
    writeOptions.render = view.partSession()->renderOptions();
    app::CPartWriteDialog partWrite(writeOptions, &frame);
    save(partWrite, folder, QStringLiteral("buzz-patterns-dialog"));

    app::CAboutDialog about(&frame);
    save(about, folder, QStringLiteral("about"));

    // The song got the demo part: leave without saving it.
    app::MessageBoxes::setHandler([](QWidget*, const QString&, QMessageBox::Icon,
                                     QMessageBox::StandardButtons) { return QMessageBox::No; });
    frame.close();
    return 0;
}
