#include "app/ChordDatabaseCommands.h"
#include "music/ChordCollection.h"

#include "app/CFindDialog.h"
#include "app/CGenerateDialog.h"
#include "app/CSearchInfoWindow.h"
#include "app/CTypeManagerDialog.h"
#include "app/ChordDatabasePanel.h"
#include "app/FileFilters.h"
#include "app/WaitCursor.h"

#include <QAction>
#include <QFileDialog>

#include <functional>

namespace app {

ChordDatabaseCommands::ChordDatabaseCommands(ChordDatabasePanel& panel,
                                             const ActionFactory::ActionLookup& actions)
    : QObject(&panel), m_panel(panel)
{
    setObjectName(QStringLiteral("chordDatabaseCommands"));
    m_searchInfo = new CSearchInfoWindow(&panel);
    m_searchInfo->setObjectName(QStringLiteral("searchInfo"));
    m_searchInfo->setAccessibleName(tr("Search info"));
    connect(m_searchInfo, &CSearchInfoWindow::hitActivated, this, [this](int row) {
        if (row >= 0 && row < static_cast<int>(m_scaleHits.size()))
            m_panel.selectPosition(m_scaleHits[static_cast<std::size_t>(row)]);
    });

    const auto on = [this, &actions](const char* id, const std::function<void()>& slot) {
        if (QAction* action = actions ? actions(id) : nullptr)
            connect(action, &QAction::triggered, this, [slot] { slot(); });
    };
    on("chords.manager", [this] { openManager(); });
    on("chords.findChord", [this] { findChord(); });
    on("chords.findScale", [this] { findScale(); });
    on("chords.continueSearch", [this] { continueSearch(); });
    on("chords.generate", [this] { generateList(); });
    on("chords.createNewList", [this] { createNewList(); });
    on("chords.load", [this] { loadChordList(); });
    on("chords.save", [this] { saveChordList(); });
    on("chords.loadDefault", [this] { loadDefaultChordList(); });
    on("chords.saveAsDefault", [this] { saveDefaultChordList(); });
    on("view.searchInfo", [this] { showSearchInfo(); });
}

// ---- chord list files ------------------------------------------------------------------------

void ChordDatabaseCommands::createNewList()
{
    m_panel.applyEdit(tr("Create New List"), [](music::ChordCollection& c) {
        c.clear();
        return true;
    });
}

bool ChordDatabaseCommands::loadChordListFrom(const QString& path)
{
    music::ChordCollection loaded;
    music::Result result;
    {
        WaitCursor wait;
        result = loaded.load(path.toStdString());
    }
    if (!m_panel.report(result))
        return false;
    m_panel.applyEdit(tr("Load"), [&](music::ChordCollection& c) {
        c = std::move(loaded);
        return true;
    });
    return true;
}

bool ChordDatabaseCommands::saveChordListTo(const QString& path)
{
    WaitCursor wait;
    return m_panel.report(m_panel.collection().save(path.toStdString()));
}

void ChordDatabaseCommands::loadDefaultChordList()
{
    loadChordListFrom(QString::fromStdString(
        m_panel.dataFolder().file(music::ChordCollection::kDefaultFileName).string()));
}

void ChordDatabaseCommands::saveDefaultChordList()
{
    if (saveChordListTo(QString::fromStdString(
            m_panel.dataFolder().file(music::ChordCollection::kDefaultFileName).string())))
        m_panel.setKeepDefaultCurrent(true);
}

void ChordDatabaseCommands::loadChordList()
{
    const QString path =
        QFileDialog::getOpenFileName(&m_panel, tr("Load Chord List"), m_panel.userFolder(),
                                     FileFilters::fromPairs(QString::fromLatin1(kChordListFilter)));
    if (!path.isEmpty())
        loadChordListFrom(path);
}

void ChordDatabaseCommands::saveChordList()
{
    const QString path =
        QFileDialog::getSaveFileName(&m_panel, tr("Save Chord List"), m_panel.userFolder(),
                                     FileFilters::fromPairs(QString::fromLatin1(kChordListFilter)));
    if (!path.isEmpty())
        saveChordListTo(path);
}

// ---- generation ------------------------------------------------------------------------------

void ChordDatabaseCommands::generateListWith(
    const music::ChordDatabaseEdits::GenerateOptions& options)
{
    m_panel.applyEdit(tr("Generate List"), [&](music::ChordCollection& c) {
        music::ChordDatabaseEdits::generateList(c, m_panel.chordTypes(), options);
        return true;
    });
}

void ChordDatabaseCommands::generateList()
{
    CGenerateDialog dialog(CGenerateDialog::Mode::List, m_panel.scales(), &m_panel);
    if (dialog.exec() == QDialog::Accepted)
        generateListWith(dialog.options());
}

// ---- search ----------------------------------------------------------------------------------

void ChordDatabaseCommands::findChordWith(const music::SearchCriteria::Ticks& ticks,
                                          const QString& include, const QString& skip)
{
    const auto hit = m_chordSearch.find(m_panel.collection(), ticks, include.toStdString(),
                                        skip.toStdString(), m_panel.currentPosition());
    if (hit)
        m_panel.selectPosition(*hit);
}

void ChordDatabaseCommands::continueSearch()
{
    if (const auto hit =
            m_chordSearch.continueSearch(m_panel.collection(), m_panel.currentPosition()))
        m_panel.selectPosition(*hit);
}

void ChordDatabaseCommands::findScaleWith(const music::SearchCriteria::Ticks& ticks,
                                          const QString& include, const QString& skip)
{
    const music::ScaleSearchResult result =
        m_scaleSearch.find(m_panel.collection(), ticks, include.toStdString(), skip.toStdString(),
                           m_panel.currentPosition());
    m_scaleHits = result.hits;
    QStringList names;
    for (const std::string& name : result.names)
        names << QString::fromStdString(name);
    m_searchInfo->setResults(names);
    if (result.selection)
        m_panel.selectPosition(*result.selection);
}

void ChordDatabaseCommands::findChord()
{
    CFindDialog dialog(QStringLiteral("Find chord"), m_chordSearch.includeHistory(),
                       m_chordSearch.skipHistory(), &m_panel);
    if (dialog.exec() == QDialog::Accepted)
        findChordWith(dialog.ticks(), dialog.includeText(), dialog.skipText());
}

void ChordDatabaseCommands::findScale()
{
    CFindDialog dialog(QStringLiteral("Find scale"), m_scaleSearch.includeHistory(),
                       m_scaleSearch.skipHistory(), &m_panel);
    if (dialog.exec() != QDialog::Accepted)
        return;
    findScaleWith(dialog.ticks(), dialog.includeText(), dialog.skipText());
    showSearchInfo();
}

void ChordDatabaseCommands::showSearchInfo()
{
    m_searchInfo->show();
    m_searchInfo->raise();
}

void ChordDatabaseCommands::openManager()
{
    CTypeManagerDialog dialog(m_panel.chordTypes(), m_panel.scales(), m_panel.dataFolder(),
                              &m_panel);
    dialog.exec();
}

} // namespace app
