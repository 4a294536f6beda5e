#pragma once

#include "app/ActionFactory.h"
#include "music/ChordDatabaseEdits.h"
#include "music/ChordSearch.h"
#include "music/ScaleSearch.h"
#include "music/TreePosition.h"

#include <QObject>
#include <QString>

#include <vector>

namespace app {

class CSearchInfoWindow;
class ChordDatabasePanel;

/**
 * The Chords menu on the chord database: the type manager, chord and scale search, generating,
 * clearing, loading and saving the database. Bound to the frame's actions by command id. Each
 * command with a dialog has a front end that asks and a `...With` / `...From` form that the
 * front end (and a test) calls with the answer.
 */
class ChordDatabaseCommands : public QObject
{
    Q_OBJECT
public:
    static constexpr const char* kChordListFilter = "List (*.crd)|*.crd|All Files (*.*)|*.*||";

    /** `panel` owns this object and outlives it. */
    ChordDatabaseCommands(ChordDatabasePanel& panel, const ActionFactory::ActionLookup& actions);

    const music::ChordSearch& chordSearch() const { return m_chordSearch; }
    const music::ScaleSearch& scaleSearch() const { return m_scaleSearch; }
    CSearchInfoWindow* searchInfo() const { return m_searchInfo; }

    // Commands whose dialogs have been answered.
    void findChordWith(const music::SearchCriteria::Ticks& ticks, const QString& include,
                       const QString& skip);
    void continueSearch();
    void findScaleWith(const music::SearchCriteria::Ticks& ticks, const QString& include,
                       const QString& skip);
    void generateListWith(const music::ChordDatabaseEdits::GenerateOptions& options);
    bool loadChordListFrom(const QString& path);
    bool saveChordListTo(const QString& path);
    void loadDefaultChordList();
    /** Writes "default.crd" and keeps it current from then on. */
    void saveDefaultChordList();
    void createNewList();

    // Dialog front ends.
    void openManager();
    void findChord();
    void findScale();
    void generateList();
    void loadChordList();
    void saveChordList();
    void showSearchInfo();

private:
    ChordDatabasePanel& m_panel;
    music::ChordSearch m_chordSearch;
    music::ScaleSearch m_scaleSearch;
    /** The sections the last scale search listed, by row of the search info window. */
    std::vector<music::TreePosition> m_scaleHits;
    CSearchInfoWindow* m_searchInfo = nullptr;
};

} // namespace app
