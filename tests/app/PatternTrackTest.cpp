// Whole tracks of the pattern grid through the track headers' menu: moving, swapping and
// merging, each one live undo step that carries the octave settings, with the track switches
// following a moved track through undo and redo.
#include "AppTestSupport.h"

#include "app/PartSession.h"
#include "app/PatternCellText.h"
#include "app/PatternGridModel.h"
#include "app/PatternGridPanel.h"
#include "app/PatternGridView.h"
#include "app/PatternTrackHeader.h"

#include <QAction>
#include <QMenu>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTest>

namespace {

using app::PartSession;
using part::CellKind;

class PatternTracks : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        AppFixture::SetUp();
        m_panel = qobject_cast<app::PatternGridPanel*>(view().regions().patternGrid);
        ASSERT_NE(m_panel, nullptr);
        session().newPart();
        // Track 1: chord note 1 and an off; track 2: notes 2 and 3; track 3: a fixed C4.
        session().edit(QStringLiteral("Edit pattern"), PartSession::Cells, [](part::Part& p) {
            part::Pattern& pattern = p.patterns().pattern(0);
            pattern.setCell(0, 0, {CellKind::ChordNote, 0, 0});
            pattern.setCell(0, 2, {CellKind::Off, 0, 0});
            pattern.setCell(1, 0, {CellKind::ChordNote, 1, 0});
            pattern.setCell(1, 1, {CellKind::ChordNote, 2, 0});
            pattern.setCell(2, 4, {CellKind::FixedNote, 0, 4});
            pattern.setTrackOctave(0, 9);
            pattern.setTrackOctave(1, 10);
            return true;
        });
    }

    app::PatternGridModel* model() { return m_panel->model(); }
    const part::Pattern& pattern() { return session().part().patterns().pattern(0); }

    /** A track as "row:cell ... /octave setting". */
    std::string track(int t)
    {
        std::string text;
        for (int row = 0; row < part::kRowCount; ++row) {
            const part::PatternCell& cell = pattern().cell(t, row);
            if (cell.kind != CellKind::Nothing)
                text += std::to_string(row) + ':' +
                        app::PatternCellText::format(cell).toStdString() + ' ';
        }
        return text + '/' + std::to_string(pattern().trackOctave(t));
    }
    /** Right-clicks the header of `t` and picks `id` from the menu. */
    void pick(int t, const QString& id)
    {
        app::PatternTrackHeader* header = m_panel->trackHeader();
        header->customContextMenuRequested(header->sectionRect(t).center());
        QMenu* menu = m_panel->trackHeaderMenu();
        QAction* item = menu->findChild<QAction*>(id);
        ASSERT_NE(item, nullptr) << id.toStdString();
        EXPECT_TRUE(item->isEnabled()) << id.toStdString();
        item->trigger();
        menu->hide();
    }

    app::PatternGridPanel* m_panel = nullptr;
};

TEST_F(PatternTracks, MoveSwapAndMergeAreOneLiveStepEachWithTheirOctaves)
{
    const std::string t1 = "0:1 2:off /9";
    const std::string t2 = "0:2 1:3 /10";
    const std::string t3 = "4:C4 /0";
    const std::string empty = "/0";
    struct Case
    {
        int track;
        const char* id;
        std::vector<std::string> after; // tracks 1..4
        const char* label;
    };
    const Case cases[] = {
        {0, "trackHeader.moveRight", {t2, t1, t3, empty}, "Move tracks"},
        {2, "trackHeader.moveLeft", {t1, t3, t2, empty}, "Move tracks"},
        {0, "trackHeader.swapWith3", {t3, t2, t1, empty}, "Move tracks"},
        {2, "trackHeader.swapWith4", {t1, t2, empty, t3}, "Move tracks"},
        // Row 0 has an entry on both tracks: the later track's wins, whichever is merged.
        {0, "trackHeader.mergeInto2", {empty, "0:2 1:3 2:off /10", t3, empty}, "Merge tracks"},
        {1, "trackHeader.mergeInto1", {"0:2 1:3 2:off /9", empty, t3, empty}, "Merge tracks"},
        {2, "trackHeader.mergeInto1", {"0:1 2:off 4:C4 /9", t2, empty, empty}, "Merge tracks"},
    };
    const std::vector<std::string> before = {t1, t2, t3, empty};
    const auto tracks = [this] {
        return std::vector<std::string>{track(0), track(1), track(2), track(3)};
    };
    ASSERT_EQ(tracks(), before);
    QSignalSpy stops(&session(), &PartSession::aboutToEdit);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.id);
        pick(c.track, QString::fromLatin1(c.id));
        EXPECT_EQ(tracks(), c.after);
        EXPECT_EQ(session().undoText(), QString::fromLatin1(c.label));
        session().undo();
        EXPECT_EQ(tracks(), before);
        session().redo();
        EXPECT_EQ(tracks(), c.after);
        session().undo();
    }
    EXPECT_EQ(stops.count(), 0) << "heard at the next row: playback goes on";
    EXPECT_EQ(model()->index(0, 1).data().toString(), QStringLiteral("2")) << "the grid follows";
}

TEST_F(PatternTracks, SwitchesFollowAMovedTrackThroughUndoAndRedo)
{
    part::RenderOptions options = session().renderOptions();
    options.tracks[0] = false; // track 1 muted
    session().setRenderOptions(options);
    const auto muted = [this] {
        std::vector<int> off;
        for (int t = 0; t < part::kTrackCount; ++t) {
            if (!session().renderOptions().tracks[static_cast<std::size_t>(t)])
                off.push_back(t);
        }
        return off;
    };
    m_panel->moveCursorTo(5, 0);
    pick(0, QStringLiteral("trackHeader.moveRight"));
    EXPECT_EQ(muted(), std::vector<int>{1});
    EXPECT_EQ(m_panel->cursorTrack(), 1) << "the cursor goes with its track";
    pick(1, QStringLiteral("trackHeader.swapWith6"));
    EXPECT_EQ(muted(), std::vector<int>{5});
    // A cell edit between the moves and its undo do not confuse the switches.
    session().edit(
        QStringLiteral("Edit pattern"), PartSession::Cells,
        [](part::Part& p) {
            p.patterns().pattern(0).setCell(7, 9, {CellKind::Off, 0, 0});
            return true;
        },
        PartSession::EditKind::Live);
    session().undo();
    EXPECT_EQ(muted(), std::vector<int>{5});
    session().undo();
    EXPECT_EQ(muted(), std::vector<int>{1});
    session().undo();
    EXPECT_EQ(muted(), std::vector<int>{0});
    EXPECT_EQ(track(0), "0:1 2:off /9");
    session().redo();
    session().redo();
    EXPECT_EQ(muted(), std::vector<int>{5});
}

TEST_F(PatternTracks, MenuOffersOnlyWhatTheTrackCanDo)
{
    app::PatternTrackHeader* header = m_panel->trackHeader();
    QMenu* menu = m_panel->trackHeaderMenu();
    const auto enabled = [menu](const char* id) {
        return menu->findChild<QAction*>(QString::fromLatin1(id))->isEnabled();
    };
    struct Case
    {
        int track;
        std::vector<std::pair<const char*, bool>> items;
    };
    const Case cases[] = {
        {0,
         {{"trackHeader.moveLeft", false},
          {"trackHeader.moveRight", true},
          {"trackHeader.swapWith1", false},
          {"trackHeader.mergeInto1", false},
          {"trackHeader.mergeInto2", true}}},
        {7, {{"trackHeader.moveRight", false}, {"trackHeader.swapWith8", false}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.track);
        header->customContextMenuRequested(header->sectionRect(c.track).center());
        for (const auto& [id, on] : c.items)
            EXPECT_EQ(enabled(id), on) << id;
        menu->hide();
    }
    // An empty track merged anywhere changes nothing and says so.
    const int steps = session().history().size();
    pick(5, QStringLiteral("trackHeader.mergeInto1"));
    EXPECT_EQ(session().history().size(), steps);
    EXPECT_EQ(frame().statusBar()->currentMessage(),
              QStringLiteral("Track 6 has nothing to merge."));
}

} // namespace
