#pragma once

#include "app/ActionFactory.h"
#include "music/DataFolder.h"
#include "music/Result.h"

#include <QListView>

#include <filesystem>
#include <functional>
#include <memory>

class QMenu;

namespace app {

class AddPresetDialog;
class PartSession;
class PresetListModel;
class PresetSource;

/**
 * A preset list region (two instances: pattern presets and part presets) with its context menu
 * ("patternPresets" / "partPresets"): Append and Replace apply the current preset to the part as
 * one undo step, Rename edits the name in place (also F2), Remove, Sort, New, Load, Save, Load
 * Default and Save List As Default act on the list. A double-click or Return appends.
 *
 * Every change the files keep (add, replace, rename, remove, sort) writes the list to its
 * default file in the data folder at once; New, Load and Load Default change only the list shown
 * until then. File dialogs start in the data folder's "user" folder.
 */
class PresetPanel : public QListView
{
    Q_OBJECT
public:
    /** Fills in and answers the "Add Preset" dialog; false when cancelled. */
    using NameAsker = std::function<bool(AddPresetDialog&)>;

    PresetPanel(std::unique_ptr<PresetSource> source, PartSession& session,
                const ActionFactory::ActionLookup& actions, music::DataFolder dataFolder,
                QWidget* parent = nullptr);
    ~PresetPanel() override;

    PresetSource& source() const { return *m_source; }
    PresetListModel* presetModel() const { return m_model; }
    QMenu* contextMenu() const { return m_menu; }
    std::filesystem::path defaultFile() const;
    QString userFolder() const;

    /** The preset the commands act on (the list's current row); -1 for none. */
    int currentPreset() const;
    void setCurrentPreset(int row);

    // The context menu's commands; failures are shown in a message box.
    bool appendPreset();
    bool replaceByPreset();
    void renameCurrent();
    /** Asks first: a removed preset cannot be brought back. */
    bool removeCurrent();
    bool sort(bool upwards);
    void newList();
    bool loadFrom(const QString& path);
    bool saveTo(const QString& path);
    /** Load and Save with their file dialogs. */
    void load();
    void save();
    bool loadDefault();
    bool saveAsDefault();
    /**
     * Shows the source's list after it was replaced from outside: at start-up the default file
     * is read while the window is built, and a missing or damaged one is not reported.
     */
    void showReplacedList();

    /**
     * "Add Pattern To Presets" / "Add Part To Presets": asks for the name in the "Add Preset"
     * dialog and appends the current pattern or the part under it.
     */
    bool addCurrent(const NameAsker& ask = {});
    /** Appends the current pattern or the part under `name` (kept to one line; not blank). */
    bool addCurrentNamed(const QString& name);
    /** "Replace Current Preset": the current preset becomes the current pattern or the part. */
    bool replaceCurrentPreset();
    /**
     * Runs a change of the list that writes `file` (the default file), then shows the list and
     * reports a failure. For changes made outside this panel ("Add List To Presets").
     */
    bool change(const std::function<music::Result(const std::filesystem::path& file)>& run);

Q_SIGNALS:
    void currentPresetChanged(int row);

protected:
    /** F2 edits here, as in the chord database, instead of opening the type manager. */
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void bindMenu();
    void updateCommands();
    bool report(const music::Result& result);
    bool rename(int row, const QString& name);
    QString askPath(bool saving);
    QString commandId(const char* command) const;

    std::unique_ptr<PresetSource> m_source;
    PartSession& m_session;
    music::DataFolder m_dataFolder;
    PresetListModel* m_model = nullptr;
    QMenu* m_menu = nullptr;
};

} // namespace app
