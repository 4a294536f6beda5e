// The note transformations of the part's chords as a musician reaches them: the Part menu and
// the part list's Transform menu open their dialogs, each change is one undo step, refusals
// say why, and Remove Double thins out repeated chords. Expected notes are worked out by hand.
#include "AppTestSupport.h"

#include "app/ChordTransformDialog.h"
#include "app/MirrorDialog.h"
#include "app/NoteLimitsDialog.h"
#include "app/NoteSpinBox.h"
#include "app/PartChordMime.h"
#include "app/PartListPanel.h"
#include "app/PartSession.h"
#include "app/TransposeDialog.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QTest>

#include <functional>

namespace {

using app::PartSession;
using apptest::answerDialog;

class PartTransforms : public apptest::AppFixture
{
protected:
    app::PartListPanel& panel() { return *view().partList(); }

    /** "name notes" of a chord, as the part list's notes view writes them. */
    std::string chord(int index)
    {
        const part::PartChord& c = session().part().chord(index);
        return c.name + ' ' + app::PartChordMime::notesText(c).toStdString();
    }
    std::vector<std::string> chords()
    {
        std::vector<std::string> all;
        for (int i = 0; i < session().part().count(); ++i)
            all.push_back(chord(i));
        return all;
    }
    /** A command from the part list's menu, or the Part menu's action when `fromMenuBar`. */
    void trigger(const char* id, bool fromMenuBar = false)
    {
        QAction* item =
            fromMenuBar
                ? frame().action(id)
                : view().contextMenu("partList")->findChild<QAction*>(QString::fromLatin1(id));
        ASSERT_NE(item, nullptr) << id;
        item->trigger();
        QCoreApplication::processEvents();
    }
};

TEST_F(PartTransforms, EachTransformationIsOneUndoStepOnTheSelectionOrTheWholePart)
{
    // The default part: C, Am, F, G, Dm7, G7, Cmaj7, all in the base octave.
    const std::vector<std::string> before = chords();
    struct Case
    {
        const char* name;
        const char* id;
        bool fromMenuBar;
        std::vector<int> selected;
        std::function<void()> answerDialog;
        std::vector<std::pair<int, const char*>> changed; // chord, "name notes" after
        const char* label;
    };
    const Case cases[] = {
        {"up a whole tone, names respelled",
         "part.transpose",
         true,
         {},
         [] {
             answerDialog<app::TransposeDialog>([](app::TransposeDialog& d) {
                 d.halfNotesBox()->setValue(2);
                 d.accept();
             });
         },
         {{0, "D D0 F#0 A0"}, {1, "Bm B0 D1 F#1"}, {6, "Dmaj7 D0 F#0 A0 C#1"}},
         "Transpose"},
        {"a half-note down on two selected chords",
         "part.transpose",
         false,
         {1, 2},
         [] {
             answerDialog<app::TransposeDialog>([](app::TransposeDialog& d) {
                 d.halfNotesBox()->setValue(-1);
                 d.accept();
             });
         },
         {{0, "C C0 E0 G0"}, {1, "G#m G#0 B0 D#1"}, {2, "E E0 G#0 B0"}},
         "Transpose"},
        {"mirrored between D# and E: C major becomes C minor in place",
         "part.mirror",
         false,
         {0, 1},
         [] {
             answerDialog<app::MirrorDialog>([](app::MirrorDialog& d) {
                 d.setAxis({3, true});
                 d.accept();
             });
         },
         {{0, "C G0 D#0 C0"}, {2, "F F0 A0 C1"}},
         "Mirror"},
        {"note limits: an octave up into C1..B1, pitch classes kept",
         "part.noteLimits",
         true,
         {0, 1},
         [] {
             answerDialog<app::NoteLimitsDialog>([](app::NoteLimitsDialog& d) {
                 d.lowBox()->setValue(12);
                 d.highBox()->setValue(23);
                 d.accept();
             });
         },
         {{0, "C C1 E1 G1"}, {1, "Am A1 C1 E1"}, {2, "F F0 A0 C1"}},
         "Note limits"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        panel().selectRows(c.selected);
        c.answerDialog();
        trigger(c.id, c.fromMenuBar);
        for (const auto& [index, text] : c.changed)
            EXPECT_EQ(chord(index), text) << index;
        EXPECT_EQ(session().undoText(), QString::fromLatin1(c.label));
        EXPECT_EQ(session().selectedChords(), c.selected) << "the selection stays";
        const std::vector<std::string> after = chords();
        session().undo();
        EXPECT_EQ(chords(), before);
        session().redo();
        EXPECT_EQ(chords(), after);
        session().undo();
    }
    EXPECT_TRUE(m_messages.texts().isEmpty()) << m_messages.texts().join('|').toStdString();
}

TEST_F(PartTransforms, DialogsShowWhatChangesAndRefuseWhatTheLibraryRefuses)
{
    const int steps = session().history().size();
    struct Case
    {
        const char* name;
        std::function<void(app::ChordTransformDialog&)> fill; // leaves values OK refuses
        const char* reason;                                   // part of the preview text
    };
    const auto transpose = [](int by) {
        return [by](app::ChordTransformDialog& d) {
            static_cast<app::TransposeDialog&>(d).halfNotesBox()->setValue(by);
        };
    };
    const Case cases[] = {
        {"no move", transpose(0), "Choose how many half-notes"},
        {"past B9", transpose(115), "would leave the note range"},
        {"below C0", transpose(-1), "would leave the note range"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        answerDialog<app::TransposeDialog>([&c](app::TransposeDialog& d) {
            EXPECT_EQ(d.scopeLabel()->text(), QStringLiteral("Acts on all 7 chords of the part."));
            c.fill(d);
            EXPECT_FALSE(d.okButton()->isEnabled());
            EXPECT_TRUE(d.previewLabel()->text().contains(QString::fromLatin1(c.reason)))
                << d.previewLabel()->text().toStdString();
            d.reject();
        });
        trigger("part.transpose");
    }
    // A range narrower than an octave has no place for every note.
    answerDialog<app::NoteLimitsDialog>([](app::NoteLimitsDialog& d) {
        d.lowBox()->setValue(24);
        d.highBox()->setValue(33);
        EXPECT_FALSE(d.okButton()->isEnabled());
        d.highBox()->setValue(35);
        EXPECT_TRUE(d.okButton()->isEnabled());
        EXPECT_TRUE(
            d.previewLabel()->text().startsWith(QStringLiteral("C  C0 E0 G0  \u2192  C  C2 E2 G2")))
            << d.previewLabel()->text().toStdString();
        d.reject();
    });
    trigger("part.noteLimits");
    EXPECT_EQ(session().history().size(), steps) << "cancelled dialogs change nothing";
}

TEST(NoteSpinBox, TakesNotesByNameAndOctave)
{
    app::NoteSpinBox box;
    struct Case
    {
        const char* typed;
        int value; // -1: not taken
    };
    // A key the validator refuses is dropped: "C10" stops at C1.
    const Case cases[] = {{"C0", 0},   {"f#3", 42}, {"B9", 119},
                          {"A#1", 22}, {"H2", -1},  {"C10", 12}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typed);
        box.setValue(60);
        auto* line = box.findChild<QLineEdit*>();
        ASSERT_NE(line, nullptr);
        line->selectAll();
        QTest::keyClicks(line, QString::fromLatin1(c.typed)); // through the validator
        box.interpretText();
        EXPECT_EQ(box.value(), c.value < 0 ? 60 : c.value);
    }
    box.setValue(25);
    EXPECT_EQ(box.text(), QStringLiteral("C#2"));
}

TEST_F(PartTransforms, TransposingANameWithoutARootMarksItAndSaysSo)
{
    session().edit(QStringLiteral("Rename chord"), PartSession::Chords, [](part::Part& p) {
        p.chord(0).name = "Intro";
        return true;
    });
    panel().selectRows({0, 1});
    answerDialog<app::TransposeDialog>([](app::TransposeDialog& d) {
        d.halfNotesBox()->setValue(2);
        d.accept();
    });
    trigger("part.transpose");
    const std::string marked = session().part().chord(0).name;
    EXPECT_NE(marked, "Intro");
    EXPECT_NE(marked.find("Intro"), std::string::npos);
    EXPECT_EQ(session().part().chord(1).name, "Bm");
    const QString status = frame().statusBar()->currentMessage();
    EXPECT_TRUE(status.contains(QString::fromStdString(marked))) << status.toStdString();
}

TEST_F(PartTransforms, RemoveDoubleKeepsTheFirstOfNeighboursWithTheSameNotes)
{
    // C, C again (renamed), Am, Am, F...: the repeats go, names aside.
    session().edit(QStringLiteral("Set chord"), PartSession::Chords, [](part::Part& p) {
        part::PartChord again = p.chord(0);
        again.name = "C (again)";
        p.insert(1, again);
        const part::PartChord am = p.chord(2);
        p.insert(3, am);
        return true;
    });
    ASSERT_EQ(session().part().count(), 9);
    struct Case
    {
        std::vector<int> selected;
        int count;
    };
    // One chord selected counts as none: the whole part. Two chords that are not neighbours
    // of a double leave it alone.
    for (const Case& c : {Case{{}, 7}, Case{{0}, 7}, Case{{0, 1}, 8}, Case{{4, 5}, 9}}) {
        SCOPED_TRACE(c.selected.size());
        panel().selectRows(c.selected);
        const int steps = session().history().size();
        trigger("partList.removeDouble");
        EXPECT_EQ(session().part().count(), c.count);
        if (c.count < 9) {
            EXPECT_EQ(session().undoText(), QStringLiteral("Remove double"));
            EXPECT_EQ(session().part().chord(0).name, "C");
            session().undo();
        } else {
            EXPECT_EQ(session().history().size(), steps) << "nothing to remove, no step";
            EXPECT_EQ(frame().statusBar()->currentMessage(),
                      QStringLiteral("No neighbouring chords have the same notes."));
        }
        EXPECT_EQ(session().part().count(), 9);
    }
}

TEST_F(PartTransforms, CommandsWaitForChordsAndTheDialogsAreNamed)
{
    for (const char* id : {"part.transpose", "part.mirror", "part.noteLimits"})
        EXPECT_TRUE(frame().action(id)->isEnabled()) << id;
    panel().selectRows({0});
    trigger("partList.clear");
    for (const char* id : {"part.transpose", "part.mirror", "part.noteLimits"})
        EXPECT_FALSE(frame().action(id)->isEnabled()) << id;
    session().undo();
    EXPECT_TRUE(frame().action("part.mirror")->isEnabled());

    const part::Part& p = session().part();
    app::TransposeDialog transpose(p, part::allChords(p));
    app::MirrorDialog mirror(p, part::allChords(p));
    app::NoteLimitsDialog limits(p, part::allChords(p));
    EXPECT_EQ(mirror.axisBox()->count(), 24);
    EXPECT_EQ(mirror.axisBox()->itemText(7), QStringLiteral("between D# and E"));
    for (QDialog* dialog : std::initializer_list<QDialog*>{&transpose, &mirror, &limits}) {
        EXPECT_FALSE(dialog->accessibleName().isEmpty());
        QList<QWidget*> fields;
        for (QAbstractSpinBox* box : dialog->findChildren<QAbstractSpinBox*>())
            fields << box;
        for (QComboBox* box : dialog->findChildren<QComboBox*>())
            fields << box;
        EXPECT_FALSE(fields.isEmpty());
        for (QWidget* field : fields) {
            EXPECT_FALSE(field->objectName().isEmpty());
            EXPECT_FALSE(field->accessibleName().isEmpty()) << field->objectName().toStdString();
        }
    }
}

} // namespace
