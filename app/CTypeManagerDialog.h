#pragma once

#include "music/ChordTypeList.h"
#include "music/DataFolder.h"
#include "music/ScaleList.h"

#include <QDialog>

#include <functional>

class QMenu;
class QTreeWidget;

namespace app {

class CChordTypeDialog;
class CScaleDialog;

/**
 * The manager of chord types and scales. On opening it loads the default lists of the data
 * folder into the lists it is given; it adds, renames, removes, loads and saves types, and
 * restores or replaces the defaults.
 */
class CTypeManagerDialog : public QDialog
{
    Q_OBJECT
public:
    /** Shows an input dialog and says whether the user pressed OK; tests fill it instead. */
    using ChordTypeAsker = std::function<bool(CChordTypeDialog&)>;
    using ScaleAsker = std::function<bool(CScaleDialog&)>;

    static constexpr const char* kChordTypeFilter = "List (*.ccl)|*.ccl|All Files (*.*)|*.*||";
    static constexpr const char* kScaleFilter = "List (*.scl)|*.scl|All Files (*.*)|*.*||";

    CTypeManagerDialog(music::ChordTypeList& types, music::ScaleList& scales,
                       music::DataFolder dataFolder, QWidget* parent = nullptr);

    /** Loads both default lists, showing their messages on failure. */
    void loadDefaults();

    /**
     * "Define New Chord Type": asks until the construction string is valid or the user cancels;
     * an invalid one shows "No valid construction string" and asks again with the input kept.
     * Returns whether a type was added.
     */
    bool addChordType(const ChordTypeAsker& ask = {});
    /** "Add Scale": a pattern of fewer than twelve x/o letters shows "Error in String". */
    bool addScale(const ScaleAsker& ask = {});

    void renameChordType(int row, const QString& name);
    void renameScale(int row, const QString& name);
    void removeChordTypes();
    void removeScales();

    bool loadChordTypes(const QString& path);
    bool saveChordTypes(const QString& path);
    bool loadScales(const QString& path);
    bool saveScales(const QString& path);

    QTreeWidget* chordList() const { return m_chordList; }
    QTreeWidget* scaleList() const { return m_scaleList; }
    QMenu* chordMenu() const { return m_chordMenu; }
    QMenu* scaleMenu() const { return m_scaleMenu; }

private:
    void refreshChordTypes();
    void refreshScales();
    bool report(const music::Result& result);
    QString askOpenPath(const char* filter);
    QString askSavePath(const char* filter);
    void buildMenus();

    music::ChordTypeList& m_types;
    music::ScaleList& m_scales;
    music::DataFolder m_dataFolder;
    QTreeWidget* m_chordList = nullptr;
    QTreeWidget* m_scaleList = nullptr;
    QMenu* m_chordMenu = nullptr;
    QMenu* m_scaleMenu = nullptr;
    bool m_keepScaleDefaultCurrent = false;
};

} // namespace app
