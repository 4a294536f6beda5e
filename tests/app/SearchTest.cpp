// Find chord, Continue Search and Find scale as seen in the tree and the search info window.
#include "AppTestSupport.h"

#include "app/CFindDialog.h"
#include "app/CSearchInfoWindow.h"
#include "app/CTreeCtrlX.h"
#include "app/ChordCollectionModel.h"

#include <QApplication>
#include <QComboBox>
#include <QListWidget>
#include <QTest>

#include <optional>

namespace {

using music::TreePosition;
using Ticks = music::SearchCriteria::Ticks;

Ticks ticksOf(std::initializer_list<int> pitchClasses)
{
    Ticks ticks{};
    for (const int p : pitchClasses)
        ticks[static_cast<std::size_t>(p)] = true;
    return ticks;
}

/** Group "G": scale group "C major" {maj, maj7, m}, plain section "Other" {Cmaj9}. */
music::ChordCollection searchCollection()
{
    music::ChordCollection c;
    music::ChordSection scale;
    scale.name = "C major";
    scale.scaleFlag = true;
    scale.notes = {0, 2, 4, 5, 7, 9, 11};
    scale.subsections.push_back({"triads",
                                 {music::Chord::fromNotes("Cmaj", {48, 52, 55}),
                                  music::Chord::fromNotes("Cmaj7", {48, 52, 55, 59}),
                                  music::Chord::fromNotes("Am", {57, 60, 64})}});
    music::ChordSection other;
    other.name = "Other";
    other.subsections.push_back({"x", {music::Chord::fromNotes("Cmaj9", {36, 40, 43, 47, 50})}});
    c.baseGroups().push_back({"G", {scale, other}});
    return c;
}

class Search : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        AppFixture::SetUp();
        chords().collection() = searchCollection();
        chords().model()->refresh();
    }
};

TEST_F(Search, FindChordSelectsTheFirstHitInWalkOrderOrLeavesTheSelection)
{
    struct Case
    {
        const char* what;
        Ticks ticks;
        const char* include;
        const char* skip;
        TreePosition expected;
        std::optional<TreePosition> before = std::nullopt; // selected first
    };
    const Case cases[] = {
        {"C E G in any octave", ticksOf({0, 4, 7}), "", "", TreePosition::ofChord(0, 0, 0, 0)},
        {"include maj, skip 7", {}, "Maj", "7", TreePosition::ofChord(0, 0, 0, 0)},
        {"skip maj", {}, "", "MAJ", TreePosition::ofChord(0, 0, 0, 2)},
        {"notes across octaves", ticksOf({2, 11}), "", "", TreePosition::ofChord(0, 1, 0, 0)},
        {"no hit", ticksOf({1}), "", "", TreePosition::ofChord(0, 0, 0, 1),
         TreePosition::ofChord(0, 0, 0, 1)},
        {"the only hit selected already",
         {},
         "am",
         "",
         TreePosition::ofChord(0, 0, 0, 2),
         TreePosition::ofChord(0, 0, 0, 2)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        chords().tree()->clearSelection();
        chords().tree()->setCurrentIndex({});
        if (c.before)
            chords().selectPosition(*c.before);
        chords().menuCommands().findChordWith(c.ticks, QString::fromLatin1(c.include),
                                              QString::fromLatin1(c.skip));
        EXPECT_EQ(chords().currentPosition(), c.expected);
    }
}

TEST_F(Search, ContinueSearchMovesOnAndWrapsAround)
{
    chords().menuCommands().continueSearch(); // before any search: nothing happens
    EXPECT_FALSE(chords().currentPosition().has_value());
    chords().menuCommands().findChordWith({}, QStringLiteral("maj"), QString());
    std::vector<TreePosition> visited{*chords().currentPosition()};
    for (int i = 0; i < 3; ++i) {
        chords().menuCommands().continueSearch();
        visited.push_back(*chords().currentPosition());
    }
    EXPECT_EQ(visited, (std::vector<TreePosition>{
                           TreePosition::ofChord(0, 0, 0, 0), TreePosition::ofChord(0, 0, 0, 1),
                           TreePosition::ofChord(0, 1, 0, 0), TreePosition::ofChord(0, 0, 0, 0)}));
    // F3 reaches it as the menu command does.
    EXPECT_EQ(frame().action("chords.continueSearch")->shortcut(), QKeySequence(Qt::Key_F3));
    frame().action("chords.continueSearch")->trigger();
    EXPECT_EQ(chords().currentPosition(), TreePosition::ofChord(0, 0, 0, 1));
}

TEST_F(Search, FindScaleListsTheMatchingScaleGroups)
{
    chords().menuCommands().findScaleWith(ticksOf({0, 4, 7}), QString(), QString());
    EXPECT_EQ(chords().menuCommands().searchInfo()->results(),
              QStringList{QStringLiteral("C major")});
    EXPECT_EQ(chords().currentPosition(), TreePosition::ofSection(0, 0));
    // Without notes a section without scale notes matches too; the list is emptied first.
    chords().menuCommands().findScaleWith({}, QString(), QString());
    EXPECT_EQ(chords().menuCommands().searchInfo()->results(),
              (QStringList{QStringLiteral("C major"), QStringLiteral("Other")}));
    chords().menuCommands().findScaleWith(ticksOf({1}), QString(), QString());
    EXPECT_TRUE(chords().menuCommands().searchInfo()->results().isEmpty());
    EXPECT_EQ(chords().menuCommands().searchInfo()->list()->toolTip(),
              QStringLiteral("List of scales, matching the search parameters."));
}

TEST_F(Search, TextsEnteredInTheDialogFillTheHistoryOnce)
{
    // The dialog is answered as a user would: the include text typed twice, in two spellings.
    for (const char* text : {"Maj", "mAJ"}) {
        apptest::answerDialog<app::CFindDialog>([text](app::CFindDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Find chord"));
            EXPECT_EQ(dialog.includeBox()->toolTip(),
                      QStringLiteral("Find chords/scales including this text."));
            EXPECT_EQ(dialog.skipBox()->toolTip(),
                      QStringLiteral("Skip, if text is part of the chords name."));
            dialog.includeBox()->setEditText(QString::fromLatin1(text));
            dialog.accept();
        });
        chords().menuCommands().findChord();
    }
    EXPECT_EQ(chords().menuCommands().chordSearch().includeHistory().entries(),
              std::vector<std::string>{"maj"});
    EXPECT_EQ(chords().currentPosition(), TreePosition::ofChord(0, 0, 0, 1));

    // The next dialog offers the history in its drop-down.
    apptest::answerDialog<app::CFindDialog>([](app::CFindDialog& dialog) {
        EXPECT_EQ(dialog.includeBox()->count(), 1);
        EXPECT_EQ(dialog.includeBox()->itemText(0), QStringLiteral("maj"));
        EXPECT_TRUE(dialog.includeBox()->currentText().isEmpty());
        dialog.reject();
    });
    chords().menuCommands().findChord();
}

TEST_F(Search, KeysWorkInTheShownWindow)
{
    showActiveFrame();
    chords().tree()->setFocus();
    chords().menuCommands().findChordWith({}, QStringLiteral("maj"), QString());
    ASSERT_EQ(chords().currentPosition(), TreePosition::ofChord(0, 0, 0, 0));

    QTest::keyClick(chords().tree(), Qt::Key_F3);
    EXPECT_EQ(chords().currentPosition(), TreePosition::ofChord(0, 0, 0, 1));

    // Del removes the selected chord from the tree, Ctrl+Z brings it back.
    QTest::keyClick(chords().tree(), Qt::Key_Delete);
    EXPECT_EQ(chords().collection().baseGroups()[0].sections[0].subsections[0].chords.size(), 2u);
    QTest::keyClick(chords().tree(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(chords().collection().baseGroups()[0].sections[0].subsections[0].chords.size(), 3u);

    // Ctrl+C and Ctrl+W copy a chord to the end of its collection.
    chords().selectPosition(TreePosition::ofChord(0, 0, 0, 0));
    QTest::keyClick(chords().tree(), Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(chords().tree(), Qt::Key_W, Qt::ControlModifier);
    const auto& list = chords().collection().baseGroups()[0].sections[0].subsections[0].chords;
    ASSERT_EQ(list.size(), 4u);
    EXPECT_EQ(list.back().name, "Cmaj");
    frame().hide();
}

} // namespace
