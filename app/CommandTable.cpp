#include "app/CommandTable.h"

#include <array>

namespace commands {

namespace {

// clang-format off
constexpr std::array kMenuBar = {
    CommandEntry{"file.new", "&File", "&New", "Ctrl+N", "Create a new Buzz song."},
    CommandEntry{"file.open", "&File", "&Open...", "Ctrl+O", "Open a Buzz song.\nOpen"},
    CommandEntry{"file.update", "&File", "&Update", "Ctrl+Shift+O", "Load the song again."},
    CommandEntry{"file.save", "&File", "&Save", "Ctrl+S", "Save Buzz song.\nSave"},
    CommandEntry{"file.saveAs", "&File", "Save &As", "", "Save Buzz song with a new name."},
    CommandEntry{"file.loadDefault", "&File", "&Load Default", "", "Load the default Buzz song."},
    CommandEntry{"file.saveAsDefault", "&File", "Save As &Default", "", "Save current song as default Buzz song."},
    CommandEntry{"file.exit", "&File", "E&xit", "Alt+F4", "Exit Tonalmancer.\nExit"},

    CommandEntry{"chords.manager", "&Chords", "&Manager", "F2", "Manage scale and chord types."},
    CommandEntry{"chords.findChord", "&Chords", "&Find Chord", "", "Search for a chord in the database."},
    CommandEntry{"chords.findScale", "&Chords", "Find &Scale", "", "Search for a scale in the database."},
    CommandEntry{"chords.continueSearch", "&Chords", "C&ontinue Search", "F3", "Continue search."},
    CommandEntry{"chords.generate", "&Chords", "&Generate", "", "Generate a new chord database."},
    CommandEntry{"chords.createNewList", "&Chords", "&Create New List", "", "Create new chord database/clear current database."},
    CommandEntry{"chords.load", "&Chords", "&Load", "", "Load a predefined chord database from file."},
    CommandEntry{"chords.save", "&Chords", "Sa&ve", "", "Save current chord database to file."},
    CommandEntry{"chords.loadDefault", "&Chords", "Load &Default", "", "Load the default chord database."},
    CommandEntry{"chords.saveAsDefault", "&Chords", "Save &As Default", "", "Save current chord database as default and keep it up to date."},

    CommandEntry{"part.createBuzzPatterns", "&Part", "Create &Buzz Patterns", "", "Create patterns for the selected Buzz machine."},
    CommandEntry{"part.createMidiFile", "&Part", "Create &Midi File", "", "Create sequence and save it as midi file.\nCreate midi file"},
    CommandEntry{"part.new", "&Part", "&New Part", "", "Create a new part.\nNew part"},
    CommandEntry{"part.load", "&Part", "&Load Part", "", "Open part from file.\nOpen part"},
    CommandEntry{"part.save", "&Part", "&Save Part", "", "Save current part to file.\nSave part"},
    CommandEntry{"part.loadDefault", "&Part", "Load &Default Part", "", "Replace the current part with the default part."},
    CommandEntry{"part.saveAsDefault", "&Part", "Save As Defa&ult Part", "", "Load the default part."},
    CommandEntry{"part.addToPresets", "&Part", "Add &Part To Presets", "", "Add current part to part presets"},
    CommandEntry{"part.addPatternToPresets", "&Part", "Add Pa&ttern To Presets", "", "Add current pattern to pattern presets."},
    CommandEntry{"part.transpose", "&Part", "T&ranspose", "", "Transpose the selected chords (or all) by half-notes."},
    CommandEntry{"part.mirror", "&Part", "Mirr&or", "", "Mirror the notes of the selected chords (or all) around a note."},
    CommandEntry{"part.noteLimits", "&Part", "Note L&imits", "", "Move the notes of the selected chords (or all) into a range by octaves."},
    CommandEntry{"part.voicing", "&Part", "&Voicing", "", "Voice the selected chords (or all) in a style within a range."},
    CommandEntry{"part.voiceLeading", "&Part", "Voi&ce Leading", "", "Move the voices of the selected chords (or all) as little as possible."},

    CommandEntry{"machines.add", "&Machines", "&Add Machine", "F4", "Add a new machine to the song."},
    CommandEntry{"machines.scanGear", "&Machines", "&Scan Gear-Directory", "", "Scan all Buzz-machines."},
    CommandEntry{"machines.scanFile", "&Machines", "Scan Single &File", "", "Scan one machine."},

    CommandEntry{"settings.midi", "&Settings", "&Midi Settings", "", "Change midi settings."},

    CommandEntry{"view.midiSettings", "&View", "&Midi Settings", "", "Show midi settings dialog."},
    CommandEntry{"view.machineInfo", "&View", "Machine &Info", "", "Show the machine info."},
    CommandEntry{"view.patternInfo", "&View", "&Pattern Info", "", "Show the patternlist."},
    CommandEntry{"view.searchInfo", "&View", "&Search Info", "", "Show the search info window."},
    CommandEntry{"view.mathWindow", "&View", "Math &Window", "", "Show the pattern generator window."},
    CommandEntry{"view.keyboard", "&View", "&Keyboard", "", "Show or hide the keyboard panel.", true},

    CommandEntry{"help.topics", "&?", "&Help Topics", "Ctrl+F1", "Open help.\nHelp"},
    CommandEntry{"help.about", "&?", "&About", "", "Open help.\nHelp"},
};

constexpr std::array kKeyAndToolbarOnly = {
    CommandEntry{"part.play", "", "Play", "F5", "Play part.\nPlay", true},
    CommandEntry{"part.stop", "", "Stop", "F8", "Stop playing.\nStop"},
    CommandEntry{"part.playChord", "", "Play Chord", "", "Play single chord.\nPlay chord", true},
    CommandEntry{"part.printChordList", "", "Print Chord List", "Ctrl+P", "Print chord list.\nPrint a list with the parts chords"},
    CommandEntry{"part.createBuzzPatternsButton", "", "Create Buzz Patterns", "", "Create Buzz patterns.\nCreate Buzz patterns"},
    CommandEntry{"part.addToPresetsButton", "", "Add Part To Presets", "", "Add current part to part presets.\nAdd part to presets"},
    CommandEntry{"view.showBmx", "", "Show Bmx", "", "Switch machine view.\nShow Bmx"},
    CommandEntry{"view.showSettings", "", "Show Settings", "", "Switch to settings view.\nShow settings"},
    CommandEntry{"pattern.new", "", "New Pattern", "Ctrl+Return", "Create a new pattern."},
    CommandEntry{"pattern.copy", "", "Create Copy Of Pattern", "Ctrl+Shift+Return", "Create a copy of the current pattern."},
    CommandEntry{"pattern.remove", "", "Remove Pattern", "Ctrl+Shift+Del", "Remove the current pattern."},
    CommandEntry{"edit.undo", "", "Undo", "Ctrl+Z", "Undo the last change."},
    CommandEntry{"edit.redo", "", "Redo", "Ctrl+Shift+Z", "Redo the last undone change."},
};

constexpr std::array<std::string_view, 12> kContextMenuNames = {
    "machineView", "chordTree", "partList", "patternList", "patternPresets", "partPresets",
    "patternEditor", "settingsView", "chordTypes", "scaleTypes", "chordPicker", "trackHeader",
};

constexpr std::array kContextMenus = {
    // The machines of the open song ("Show Bmx").
    CommandEntry{"view.showSettings", "machineView", "&Show Settings", "", "Switch to settings view."},
    CommandEntry{"machine.viewGenerators", "machineView|&View", "&Generators", "Alt+1", "Show the generators only."},
    CommandEntry{"machine.viewEffects", "machineView|&View", "&Effects", "Alt+2", "Show the effects only."},
    CommandEntry{"machine.viewSynths", "machineView|&View", "S&ynths", "Alt+3", "Show the synths only."},
    CommandEntry{"machine.viewSamplers", "machineView|&View", "S&amplers", "Alt+4", "Show the samplers only."},
    CommandEntry{"machine.viewAll", "machineView|&View", "A&ll", "Alt+5", "Show all machines."},
    CommandEntry{"machine.notesChart", "machineView|&Info", "&Notes Chart", "", "Chart the notes of the machine's patterns."},
    CommandEntry{"machine.wavesChart", "machineView|&Info", "&Waves Chart", "", "Chart the waves of the machine's patterns."},
    CommandEntry{"view.machineInfo", "machineView|&Info", "&Machine Info", "Ctrl+I", "Show the machine info."},
    CommandEntry{"view.patternInfo", "machineView|&Info", "&Pattern Info", "Ctrl+P", "Show the patternlist."},
    CommandEntry{"machine.transpose", "machineView|&Transform", "&Transpose", "", "Transpose the machine's patterns."},
    CommandEntry{"machine.invert", "machineView|&Transform", "&Invert", "", "Mirror the notes of the machine's patterns."},
    CommandEntry{"machine.remove", "machineView|&Edit", "&Remove", "Del", "Remove the machine from the song."},
    CommandEntry{"machine.rename", "machineView|&Edit", "Re&name", "Ctrl+R", "Rename the machine."},
    CommandEntry{"machine.copy", "machineView|&Edit", "&Copy", "Ctrl+C", "Copy the machine with its patterns."},
    CommandEntry{"machine.paste", "machineView|&Edit", "P&aste", "Ctrl+V", "Paste the copied machine into the song."},
    CommandEntry{"machine.clone", "machineView|&Edit", "C&lone", "", "Add a copy of the machine."},
    CommandEntry{"machine.replace", "machineView|&Edit", "Re&place", "", "Replace the machine by another one."},
    CommandEntry{"machine.removeEmptySequences", "machineView|C&lean", "Remove &Empty Sequences", "", "Remove sequences without events."},
    CommandEntry{"machine.removeUnusedPatterns", "machineView|C&lean", "Remove &Unused Patterns", "", "Remove patterns that no sequence plays."},
    CommandEntry{"machines.add", "machineView", "&New", "F4", "Add a new machine to the song."},
    CommandEntry{"machine.selectAll", "machineView", "Select &All", "Ctrl+A", "Select every machine."},

    // The chord database tree.
    CommandEntry{"tree.addBase", "chordTree|&Base Group", "Add &Base", "", "Add an empty base group."},
    CommandEntry{"tree.removeBase", "chordTree|&Base Group", "&Remove", "Del", "Remove the selected base groups."},
    CommandEntry{"tree.renameBase", "chordTree|&Base Group", "Re&name", "Ctrl+R", "Rename the selected base group."},
    CommandEntry{"tree.generateBase", "chordTree|&Base Group", "&Generate", "", "Generate a base group from the chord types."},
    CommandEntry{"tree.addScale", "chordTree|&Scale/Group", "Add &Scale", "", "Add a scale group to the selected base group."},
    CommandEntry{"tree.removeScale", "chordTree|&Scale/Group", "&Remove", "Del", "Remove the selected scale groups."},
    CommandEntry{"tree.settingsScale", "chordTree|&Scale/Group", "&Settings", "Ctrl+R", "Change name and notes of the selected scale group."},
    CommandEntry{"tree.forbidNotes", "chordTree|&Scale/Group", "->&Forbid Notes", "", "Remove the chords that use forbidden notes."},
    CommandEntry{"tree.addCollection", "chordTree|C&ollection", "Add &Collection", "", "Add a chord collection to the selected scale group."},
    CommandEntry{"tree.removeCollection", "chordTree|C&ollection", "&Remove", "Del", "Remove the selected collections."},
    CommandEntry{"tree.settingsCollection", "chordTree|C&ollection", "&Settings", "Ctrl+R", "Rename the selected collection."},
    CommandEntry{"tree.addChordFromList", "chordTree|&Chord|&Add Chord", "From &List", "", "Add a chord made from a chord type."},
    CommandEntry{"tree.addChordByNotes", "chordTree|&Chord|&Add Chord", "By &Notes", "", "Add a chord given by its notes."},
    CommandEntry{"tree.removeChord", "chordTree|&Chord", "&Remove", "Del", "Remove the selected chords."},
    CommandEntry{"tree.settingsChord", "chordTree|&Chord", "&Settings", "Ctrl+R", "Change name and notes of the selected chord."},
    CommandEntry{"tree.copy", "chordTree|&Chord", "&Copy", "Ctrl+C", "Copy the selected chords."},
    CommandEntry{"tree.cut", "chordTree|&Chord", "Cu&t", "Ctrl+X", "Cut the selected chords."},
    CommandEntry{"tree.pasteInsert", "chordTree|&Chord", "Paste &Insert", "Ctrl+V", "Insert the copied chords before the selected chord."},
    CommandEntry{"tree.pasteAppend", "chordTree|&Chord", "Paste &Append", "Ctrl+W", "Append the copied chords to the selected collection."},
    CommandEntry{"tree.sortUp", "chordTree|S&ort", "&Upwards", "", "Sort the chords upwards by their notes."},
    CommandEntry{"tree.sortDown", "chordTree|S&ort", "&Downwards", "", "Sort the chords downwards by their notes."},
    CommandEntry{"chords.generate", "chordTree", "&Generate", "", "Generate a new chord database."},
    CommandEntry{"edit.undo", "chordTree", "&Undo", "Ctrl+Z", "Undo the last change."},

    // The chords of the current part.
    CommandEntry{"partList.addChord", "partList", "&Add Chord", "", "Add the selected database chords to the part."},
    CommandEntry{"partList.chordSettings", "partList", "Chord &Settings", "Ctrl+R", "Change the selected chord."},
    CommandEntry{"partList.forbidNotes", "partList", "&Forbid Notes", "", "Set the notes the part may not use."},
    CommandEntry{"partList.viewNames", "partList|&View", "&Names", "", "Show the chords by name."},
    CommandEntry{"partList.viewNotes", "partList|&View", "N&otes", "", "Show the chords by notes."},
    CommandEntry{"part.addToPresets", "partList", "Add &Part To Presets", "", "Add current part to part presets"},
    CommandEntry{"partList.replacePreset", "partList", "&Replace Current Preset", "", "Replace the current part preset by the part."},
    CommandEntry{"partList.copy", "partList", "&Copy", "Ctrl+C", "Copy the selected chords."},
    CommandEntry{"partList.cut", "partList", "Cu&t", "Ctrl+X", "Cut the selected chords."},
    CommandEntry{"partList.pasteInsert", "partList", "Paste &Insert", "Ctrl+V", "Insert the copied chords."},
    CommandEntry{"partList.pasteAppend", "partList", "Paste A&ppend", "Ctrl+W", "Append the copied chords."},
    CommandEntry{"partList.selectAll", "partList", "Select A&ll", "Ctrl+A", "Select every chord of the part."},
    CommandEntry{"partList.remove", "partList", "Re&move", "Del", "Remove the selected chords."},
    CommandEntry{"partList.clear", "partList", "Cl&ear List", "Ctrl+Del", "Remove every chord of the part."},
    CommandEntry{"partList.sortNameUp", "partList|S&ort|By &Name", "&Upwards", "", "Sort the selected chords (or all) by name, A to Z."},
    CommandEntry{"partList.sortNameDown", "partList|S&ort|By &Name", "&Downwards", "", "Sort the selected chords (or all) by name, Z to A."},
    CommandEntry{"partList.sortNotesUp", "partList|S&ort|By N&otes", "&Upwards", "", "Sort the selected chords (or all) by notes, lowest first."},
    CommandEntry{"partList.sortNotesDown", "partList|S&ort|By N&otes", "&Downwards", "", "Sort the selected chords (or all) by notes, highest first."},
    CommandEntry{"partList.normalizeAll", "partList|&Normalize", "&All", "", "Normalize every chord of the part."},
    CommandEntry{"partList.normalizeSelected", "partList|&Normalize", "&Selected", "", "Normalize the selected chords."},
    CommandEntry{"partList.normalizeInvert", "partList|&Normalize", "&Invert", "", "Invert the selected chords: the lowest note goes an octave up."},
    CommandEntry{"part.transpose", "partList|&Transform", "&Transpose", "", "Transpose the selected chords (or all) by half-notes."},
    CommandEntry{"part.mirror", "partList|&Transform", "&Mirror", "", "Mirror the notes of the selected chords (or all) around a note."},
    CommandEntry{"part.noteLimits", "partList|&Transform", "Note &Limits", "", "Move the notes of the selected chords (or all) into a range by octaves."},
    CommandEntry{"part.voicing", "partList|&Transform", "&Voicing", "", "Voice the selected chords (or all) in a style within a range."},
    CommandEntry{"part.voiceLeading", "partList|&Transform", "Voi&ce Leading", "", "Move the voices of the selected chords (or all) as little as possible."},
    CommandEntry{"partList.removeDouble", "partList", "Remove &Double", "", "Remove neighbouring chords with the same notes from the selected chords (or all)."},
    CommandEntry{"chords.findScale", "partList", "Find Sc&ale", "", "Search for a scale in the database."},
    CommandEntry{"part.printChordList", "partList", "Print &List", "Ctrl+P", "Print chord list."},
    CommandEntry{"edit.undo", "partList", "&Undo", "Ctrl+Z", "Undo the last change."},

    // The patterns of the current part.
    CommandEntry{"pattern.new", "patternList", "&New", "Ctrl+Return", "Create a new pattern."},
    CommandEntry{"pattern.rename", "patternList", "&Rename", "", "Rename the current pattern."},
    CommandEntry{"pattern.copy", "patternList", "Create &Copy", "Ctrl+Shift+Return", "Create a copy of the current pattern."},
    CommandEntry{"pattern.remove", "patternList", "Re&move", "Ctrl+Shift+Del", "Remove the current pattern."},
    CommandEntry{"pattern.clear", "patternList", "C&lear List", "", "Remove every pattern."},
    CommandEntry{"part.addPatternToPresets", "patternList", "Add Pattern To &Presets", "", "Add current pattern to pattern presets."},
    CommandEntry{"pattern.replacePreset", "patternList", "Replace Current Pr&eset", "", "Replace the current pattern preset by the pattern."},
    CommandEntry{"pattern.addListToPresets", "patternList", "Add List &To Presets", "", "Add every pattern to the pattern presets."},

    // Pattern presets and part presets: two menus of the same shape.
    CommandEntry{"patternPreset.append", "patternPresets", "&Append", "", "Add the preset to the part as a new pattern."},
    CommandEntry{"patternPreset.replace", "patternPresets", "&Replace", "", "Put the preset in place of the current pattern."},
    CommandEntry{"patternPreset.rename", "patternPresets", "Re&name", "", "Rename the preset."},
    CommandEntry{"patternPreset.remove", "patternPresets", "Re&move", "", "Remove the preset."},
    CommandEntry{"patternPreset.sortUp", "patternPresets|&Sort", "&Upwards", "", "Sort the presets upwards."},
    CommandEntry{"patternPreset.sortDown", "patternPresets|&Sort", "&Downwards", "", "Sort the presets downwards."},
    CommandEntry{"patternPreset.new", "patternPresets", "&New", "", "Start an empty preset list."},
    CommandEntry{"patternPreset.load", "patternPresets", "&Load", "", "Load presets from file."},
    CommandEntry{"patternPreset.save", "patternPresets", "Sa&ve", "", "Save the presets to file."},
    CommandEntry{"patternPreset.loadDefault", "patternPresets", "Load &Default", "", "Load the default presets."},
    CommandEntry{"patternPreset.saveDefault", "patternPresets", "Save List As De&fault", "", "Save the presets as default."},
    CommandEntry{"partPreset.append", "partPresets", "&Append", "", "Add the preset's chords and patterns after the part's."},
    CommandEntry{"partPreset.replace", "partPresets", "&Replace", "", "Replace the whole part by the preset."},
    CommandEntry{"partPreset.rename", "partPresets", "Re&name", "", "Rename the preset."},
    CommandEntry{"partPreset.remove", "partPresets", "Re&move", "", "Remove the preset."},
    CommandEntry{"partPreset.sortUp", "partPresets|&Sort", "&Upwards", "", "Sort the presets upwards."},
    CommandEntry{"partPreset.sortDown", "partPresets|&Sort", "&Downwards", "", "Sort the presets downwards."},
    CommandEntry{"partPreset.new", "partPresets", "&New", "", "Start an empty preset list."},
    CommandEntry{"partPreset.load", "partPresets", "&Load", "", "Load presets from file."},
    CommandEntry{"partPreset.save", "partPresets", "Sa&ve", "", "Save the presets to file."},
    CommandEntry{"partPreset.loadDefault", "partPresets", "Load &Default", "", "Load the default presets."},
    CommandEntry{"partPreset.saveDefault", "partPresets", "Save List As De&fault", "", "Save the presets as default."},

    // The pattern grid. Its last key is shown as the original keyboard labels it.
    CommandEntry{"patternEditor.copy", "patternEditor", "&Copy", "Ctrl+C", "Copy the selected cells."},
    CommandEntry{"patternEditor.cut", "patternEditor", "Cu&t", "Ctrl+X", "Cut the selected cells."},
    CommandEntry{"patternEditor.paste", "patternEditor", "&Paste", "Ctrl+V", "Paste the copied cells."},
    CommandEntry{"patternEditor.selectAll", "patternEditor", "Select &All", "Ctrl+A", "Select every cell."},
    CommandEntry{"patternEditor.selectTrack", "patternEditor", "Select T&rack", "Ctrl+Shift+A", "Select the current track."},
    CommandEntry{"patternEditor.clearSelected", "patternEditor", "C&lear Selected", "Del", "Clear the selected cells."},
    CommandEntry{"patternEditor.clearPattern", "patternEditor", "Clear Patt&ern", "Ctrl+Entf", "Clear the whole pattern."},

    // The pattern grid's track headers: commands on the track right-clicked.
    CommandEntry{"trackHeader.toggle", "trackHeader", "Track &On", "Ctrl+M", "Turn the track on or off."},
    CommandEntry{"patternEditor.selectTrack", "trackHeader", "Select T&rack", "", "Select the track."},
    CommandEntry{"trackHeader.moveLeft", "trackHeader", "Move &Left", "", "Move the track one place to the left, with its octave setting."},
    CommandEntry{"trackHeader.moveRight", "trackHeader", "Move Ri&ght", "", "Move the track one place to the right, with its octave setting."},
    CommandEntry{"trackHeader.swapWith1", "trackHeader|S&wap With", "Track &1", "", "Swap the track with track 1, with their octave settings."},
    CommandEntry{"trackHeader.swapWith2", "trackHeader|S&wap With", "Track &2", "", "Swap the track with track 2, with their octave settings."},
    CommandEntry{"trackHeader.swapWith3", "trackHeader|S&wap With", "Track &3", "", "Swap the track with track 3, with their octave settings."},
    CommandEntry{"trackHeader.swapWith4", "trackHeader|S&wap With", "Track &4", "", "Swap the track with track 4, with their octave settings."},
    CommandEntry{"trackHeader.swapWith5", "trackHeader|S&wap With", "Track &5", "", "Swap the track with track 5, with their octave settings."},
    CommandEntry{"trackHeader.swapWith6", "trackHeader|S&wap With", "Track &6", "", "Swap the track with track 6, with their octave settings."},
    CommandEntry{"trackHeader.swapWith7", "trackHeader|S&wap With", "Track &7", "", "Swap the track with track 7, with their octave settings."},
    CommandEntry{"trackHeader.swapWith8", "trackHeader|S&wap With", "Track &8", "", "Swap the track with track 8, with their octave settings."},
    CommandEntry{"trackHeader.mergeInto1", "trackHeader|Merge &Into", "Track &1", "", "Merge the track into track 1; where both have an entry, the later track's wins."},
    CommandEntry{"trackHeader.mergeInto2", "trackHeader|Merge &Into", "Track &2", "", "Merge the track into track 2; where both have an entry, the later track's wins."},
    CommandEntry{"trackHeader.mergeInto3", "trackHeader|Merge &Into", "Track &3", "", "Merge the track into track 3; where both have an entry, the later track's wins."},
    CommandEntry{"trackHeader.mergeInto4", "trackHeader|Merge &Into", "Track &4", "", "Merge the track into track 4; where both have an entry, the later track's wins."},
    CommandEntry{"trackHeader.mergeInto5", "trackHeader|Merge &Into", "Track &5", "", "Merge the track into track 5; where both have an entry, the later track's wins."},
    CommandEntry{"trackHeader.mergeInto6", "trackHeader|Merge &Into", "Track &6", "", "Merge the track into track 6; where both have an entry, the later track's wins."},
    CommandEntry{"trackHeader.mergeInto7", "trackHeader|Merge &Into", "Track &7", "", "Merge the track into track 7; where both have an entry, the later track's wins."},
    CommandEntry{"trackHeader.mergeInto8", "trackHeader|Merge &Into", "Track &8", "", "Merge the track into track 8; where both have an entry, the later track's wins."},

    // The part settings.
    CommandEntry{"view.showBmx", "settingsView", "Show &Bmx", "", "Switch machine view."},
    CommandEntry{"settings.reset", "settingsView", "&Reset", "", "Reset the part settings."},

    // The type manager's lists.
    CommandEntry{"types.removeChord", "chordTypes", "&Remove", "Del", "Remove the selected chord types."},
    CommandEntry{"types.renameChord", "chordTypes", "&Settings", "Ctrl+R", "Rename the selected chord type."},
    CommandEntry{"types.addChord", "chordTypes", "&Add", "", "Define a new chord type."},
    CommandEntry{"types.sortChordsNameUp", "chordTypes|S&ort|By &Name", "&Upwards", "", "Sort the chord types by name."},
    CommandEntry{"types.sortChordsNameDown", "chordTypes|S&ort|By &Name", "&Downwards", "", "Sort the chord types by name, last first."},
    CommandEntry{"types.sortChordsNotesUp", "chordTypes|S&ort|By N&otes", "&Upwards", "", "Sort the chord types by their notes, lowest first."},
    CommandEntry{"types.sortChordsNotesDown", "chordTypes|S&ort|By N&otes", "&Downwards", "", "Sort the chord types by their notes, highest first."},
    CommandEntry{"types.newChords", "chordTypes", "&New", "", "Start an empty chord type list."},
    CommandEntry{"types.loadChords", "chordTypes", "&Load", "", "Load chord types from file."},
    CommandEntry{"types.saveChords", "chordTypes", "Sa&ve", "", "Save the chord types to file."},
    CommandEntry{"types.loadDefaultChords", "chordTypes", "Load &Default", "", "Restore the default chord types."},
    CommandEntry{"types.saveDefaultChords", "chordTypes", "Save As De&fault", "", "Save the chord types as default."},
    CommandEntry{"types.removeScale", "scaleTypes", "&Remove", "Del", "Remove the selected scales."},
    CommandEntry{"types.renameScale", "scaleTypes", "&Settings", "Ctrl+R", "Rename the selected scale."},
    CommandEntry{"types.addScale", "scaleTypes", "&Add", "", "Add a scale."},
    CommandEntry{"types.sortScalesNameUp", "scaleTypes|S&ort|By &Name", "&Upwards", "", "Sort the scales by name."},
    CommandEntry{"types.sortScalesNameDown", "scaleTypes|S&ort|By &Name", "&Downwards", "", "Sort the scales by name, last first."},
    CommandEntry{"types.sortScalesNotesUp", "scaleTypes|S&ort|By N&otes", "&Upwards", "", "Sort the scales by their notes, lowest first."},
    CommandEntry{"types.sortScalesNotesDown", "scaleTypes|S&ort|By N&otes", "&Downwards", "", "Sort the scales by their notes, highest first."},
    CommandEntry{"types.newScales", "scaleTypes", "&New", "", "Start an empty scale list."},
    CommandEntry{"types.loadScales", "scaleTypes", "&Load", "", "Load scales from file."},
    CommandEntry{"types.saveScales", "scaleTypes", "Sa&ve", "", "Save the scales to file."},
    CommandEntry{"types.loadDefaultScales", "scaleTypes", "Load &Default", "", "Restore the default scales."},
    CommandEntry{"types.saveDefaultScales", "scaleTypes", "Save As De&fault", "", "Save the scales as default."},

    // The chord-list picker of "Add Chord > From List".
    CommandEntry{"picker.apply", "chordPicker", "&Apply", "Return", "Add the chord of the selected type."},
    CommandEntry{"picker.sortNameUp", "chordPicker|S&ort|By &Name", "&Upwards", "", "Sort the chord types by name."},
    CommandEntry{"picker.sortNameDown", "chordPicker|S&ort|By &Name", "&Downwards", "", "Sort the chord types by name, last first."},
    CommandEntry{"picker.sortNotesUp", "chordPicker|S&ort|By N&otes", "&Upwards", "", "Sort the chord types by their notes, lowest first."},
    CommandEntry{"picker.sortNotesDown", "chordPicker|S&ort|By N&otes", "&Downwards", "", "Sort the chord types by their notes, highest first."},
    CommandEntry{"picker.loadList", "chordPicker", "&Load Chord List", "F6", "Load chord types from file."},
};
// clang-format on

template <std::size_t N>
const CommandEntry* findIn(const std::array<CommandEntry, N>& table, std::string_view id)
{
    for (const CommandEntry& entry : table) {
        if (entry.id == id)
            return &entry;
    }
    return nullptr;
}

} // namespace

std::span<const CommandEntry> menuBar()
{
    return kMenuBar;
}

std::span<const CommandEntry> keyAndToolbarOnly()
{
    return kKeyAndToolbarOnly;
}

std::span<const CommandEntry> contextMenus()
{
    return kContextMenus;
}

std::span<const std::string_view> contextMenuNames()
{
    return kContextMenuNames;
}

std::string_view statusPart(std::string_view prompt)
{
    return prompt.substr(0, prompt.find('\n'));
}

std::string_view toolTipPart(std::string_view prompt)
{
    const std::size_t lineBreak = prompt.find('\n');
    return lineBreak == std::string_view::npos ? std::string_view() : prompt.substr(lineBreak + 1);
}

const CommandEntry* find(std::string_view id)
{
    if (const CommandEntry* entry = findIn(kMenuBar, id))
        return entry;
    if (const CommandEntry* entry = findIn(kKeyAndToolbarOnly, id))
        return entry;
    return findIn(kContextMenus, id);
}

} // namespace commands
