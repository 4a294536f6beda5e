#include "app/PartSession.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

using app::PartSession;

part::PartChord chord(std::string name)
{
    part::PartChord c;
    c.name = std::move(name);
    c.setNotes({0, 4, 7});
    return c;
}

/** A session holding `n` chords, unmodified. */
void fill(PartSession& session, int n)
{
    part::Part p = part::Part::makeNew();
    for (int i = 0; i < n; ++i)
        p.append(chord("C" + std::to_string(i)));
    session.loadPart(p, QStringLiteral("/tmp/x.prt"));
}

TEST(PartSession, EditsAreUndoableStepsAndUnchangedEditsRecordNothing)
{
    PartSession session;
    fill(session, 2);
    const int steps = session.history().size();

    EXPECT_FALSE(session.edit(QStringLiteral("Rename chord"), PartSession::Chords,
                              [](part::Part&) { return true; }));
    EXPECT_FALSE(
        session.edit(QStringLiteral("Rename chord"), PartSession::Chords, [](part::Part& p) {
            p.chord(0).name = "X";
            return false; // abandoned
        }));
    EXPECT_EQ(session.history().size(), steps);

    ASSERT_TRUE(
        session.edit(QStringLiteral("Rename chord"), PartSession::Chords, [](part::Part& p) {
            p.chord(0).name = "Am";
            return true;
        }));
    EXPECT_EQ(session.undoText(), QStringLiteral("Rename chord"));
    EXPECT_TRUE(session.isModified());

    session.undo();
    EXPECT_EQ(session.part().chord(0).name, "C0");
    EXPECT_FALSE(session.isModified()) << "undo back to the loaded part";
    EXPECT_EQ(session.redoText(), QStringLiteral("Rename chord"));
    session.redo();
    EXPECT_EQ(session.part().chord(0).name, "Am");
    EXPECT_TRUE(session.isModified());
}

TEST(PartSession, OnlyEditsThatChangeWhatIsPlayedStopPlayback)
{
    struct Case
    {
        PartSession::EditKind kind;
        const char* label;
        int stopsOnEdit;
        int stopsOnUndo;
    };
    const Case cases[] = {
        {PartSession::EditKind::StopsPlayback, "Add chord", 1, 1},
        {PartSession::EditKind::Live, PartSession::kEditPattern, 0, 0},
        {PartSession::EditKind::Live, PartSession::kPatternPaste, 0, 0},
    };
    for (const Case& c : cases) {
        PartSession session;
        fill(session, 1);
        QSignalSpy stops(&session, &PartSession::aboutToEdit);
        session.edit(
            QString::fromLatin1(c.label), PartSession::Cells,
            [](part::Part& p) {
                p.patterns().pattern(0).setCell(0, 0, {part::CellKind::ChordNote, 1, 0});
                return true;
            },
            c.kind);
        EXPECT_EQ(stops.count(), c.stopsOnEdit) << c.label;
        session.undo();
        EXPECT_EQ(stops.count(), c.stopsOnEdit + c.stopsOnUndo) << c.label;
    }
}

TEST(PartSession, TwoOrMoreSelectedChordsMakeTheRangeAndUndoBringsItBack)
{
    struct Case
    {
        std::vector<int> chosen;
        std::vector<int> selected;
        std::uint16_t first;
        std::uint16_t last;
    };
    const Case cases[] = {
        {{}, {}, part::kNoIndex, part::kNoIndex},
        {{3}, {3}, part::kNoIndex, part::kNoIndex},
        {{5, 2, 3, 3}, {2, 3, 5}, 2, 5},
        {{1, 9}, {1}, part::kNoIndex, part::kNoIndex}, // 9 is past the end
    };
    for (const Case& c : cases) {
        PartSession session;
        fill(session, 6);
        session.setSelectedChords(c.chosen);
        EXPECT_EQ(session.selectedChords(), c.selected);
        EXPECT_EQ(session.part().selectionFirst(), c.first);
        EXPECT_EQ(session.part().selectionLast(), c.last);
        EXPECT_FALSE(session.isModified()) << "selecting is not an edit";
    }

    PartSession session;
    fill(session, 6);
    session.setSelectedChords({1, 2, 3});
    session.edit(QStringLiteral("Remove chords"), PartSession::Chords, [](part::Part& p) {
        p.remove(3);
        p.remove(2);
        p.remove(1);
        p.setSelection(part::kNoIndex, part::kNoIndex);
        return true;
    });
    EXPECT_TRUE(session.selectedChords().empty());
    QSignalSpy selection(&session, &PartSession::selectionChanged);
    session.undo();
    EXPECT_EQ(session.selectedChords(), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(selection.count(), 1);
}

TEST(PartSession, RemovingChordsKeepsTheCurrentChordInsideTheList)
{
    PartSession session;
    fill(session, 3);
    session.setCurrentChord(2);
    session.edit(QStringLiteral("Remove chords"), PartSession::Chords, [](part::Part& p) {
        p.remove(2);
        return true;
    });
    EXPECT_EQ(session.currentChord(), 1);
    session.setCurrentChord(7);
    EXPECT_EQ(session.currentChord(), -1);
}

TEST(PartSession, TempoAndSavingDecideWhetherThePartIsModified)
{
    PartSession session;
    fill(session, 1);
    QSignalSpy modified(&session, &PartSession::modifiedChanged);
    session.setTempo(140, 4);
    EXPECT_TRUE(session.isModified());
    session.markSaved(QStringLiteral("/tmp/y.prt"));
    EXPECT_FALSE(session.isModified());
    EXPECT_EQ(session.filePath(), QStringLiteral("/tmp/y.prt"));
    EXPECT_EQ(modified.count(), 2);

    session.newPart();
    EXPECT_FALSE(session.isModified());
    EXPECT_TRUE(session.filePath().isEmpty());
    EXPECT_EQ(session.part().count(), 0);
    EXPECT_EQ(session.part().patterns().count(), 1);
    EXPECT_EQ(session.undoText(), QStringLiteral("New part"));
}

TEST(PartSession, EditorDefaultsStayInTheirRanges)
{
    PartSession session;
    session.setDefaultLength(200);
    session.setDefaultOctave(-3);
    session.setBaseWave(0);
    EXPECT_EQ(session.defaultLength(), 64);
    EXPECT_EQ(session.defaultOctave(), 0);
    EXPECT_EQ(session.baseWave(), 1);
}

} // namespace
