#pragma once

#include "app/ActionFactory.h"
#include "music/DataFolder.h"

#include <QObject>
#include <QString>

namespace part {
class Part;
}

namespace app {

class CTonalmancerView;
class PartSession;

/**
 * The Part menu's files and presets: New Part, Load Part, Save Part, Load Default Part, Save As
 * Default Part and Add Part To Presets, with Replace Current Preset of the part list. Before a
 * changed part would be lost (new, load, load default, exit) the user is asked to save it.
 *
 * Each command with a dialog has a front end that asks and a `...From` / `...To` / `...Named`
 * form that the front end (and a test) calls with the answer.
 */
class PartFileCommands : public QObject
{
    Q_OBJECT
public:
    /** The title of a part never saved or loaded. */
    static constexpr const char* kNewPartTitle = "new part";

    /** `view` owns this object, the session and the part presets. */
    PartFileCommands(CTonalmancerView& view, PartSession& session, music::DataFolder dataFolder,
                     const ActionFactory::ActionLookup& actions);

    /** The part's file name ("song.prt", or "new part") with "*" while it has unsaved changes. */
    QString partTitle() const;
    /** The folder the file dialogs start in: "user" below the data folder. */
    QString userFolder() const;
    QString defaultPartPath() const;

    /**
     * Asks whether to save a changed part before it is replaced: Save (then the save dialog),
     * Discard or Cancel. True when the part may go: unchanged, saved or discarded.
     */
    bool maySafelyDiscard();

    // Commands whose dialogs have been answered. Failures are shown; false then.
    void newPart();
    bool loadPartFrom(const QString& path);
    bool savePartTo(const QString& path);
    /** Reads "default.prt" as an undoable load; silently nothing when it cannot be read. */
    bool loadDefaultPart();
    bool saveAsDefaultPart();
    /** Starts the session with "default.prt", nothing to undo; silently nothing without it. */
    void loadAtStart();
    /** Starts the session with the part at `path` instead; false (and said why) when unreadable. */
    bool openAtStart(const QString& path);
    bool addToPresetsNamed(const QString& name);
    bool hasCurrentPreset() const;
    /** Replaces the part presets' current item by the part, keeping its name (asks first). */
    bool replaceCurrentPreset();

    // Dialog front ends; each first asks about unsaved changes where the part would be lost.
    void askNewPart();
    void askLoadPart();
    /** The save dialog; true when the part was saved. */
    bool askSavePart();
    void askLoadDefaultPart();
    void askAddToPresets();

private:
    bool report(bool ok, const QString& message);
    /** Loads the part file at `path` into `loaded` under a wait cursor; a failure is reported. */
    bool loadReporting(const QString& path, part::Part& loaded);

    CTonalmancerView& m_view;
    PartSession& m_session;
    music::DataFolder m_dataFolder;
};

} // namespace app
