// Hearing the part from the window: F5, Play chord, F8 and Space through a recording port, the
// MIDI settings dialog that opens when no device is chosen, live edits heard at the next row, and
// the playing indicator.
#include "AppTestSupport.h"

#include "app/CMidiSettingsDialog.h"
#include "app/CTempoBar.h"
#include "app/CTreeCtrlX.h"
#include "app/PartListPanel.h"
#include "app/PartSession.h"
#include "app/PlayingIndicator.h"
#include "app/TransportController.h"
#include "player/PartPlayer.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QTreeView>

namespace {

using app::PartSession;
using Notes = std::vector<std::pair<int, int>>; // status, note

constexpr int kChannel = 2;

/**
 * Three chords of two rows on one pattern, base octave 4: C, F and G. Track 0 plays the chord's
 * first note on row 0, so each chord starts with one note: 48, 53 and 55.
 */
part::Part threeChords()
{
    part::Part p = part::Part::makeNew();
    p.setBaseOctave(4);
    p.patterns().pattern(0).setCell(0, 0, {part::CellKind::ChordNote, 0, 0});
    const std::pair<const char*, music::NoteValue> chords[] = {{"C", 0}, {"F", 5}, {"G", 7}};
    for (const auto& [name, root] : chords) {
        part::PartChord chord;
        chord.name = name;
        chord.setNotes({root, static_cast<music::NoteValue>(root + 4)});
        chord.length = 2;
        p.append(chord);
    }
    return p;
}

class Transport : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        m_ports->setNames({"Fake: Synth", "Fake: Keys"});
        AppFixture::SetUp();
        view().midiSettings().setDeviceNumber(1);
        view().midiSettings().setChannel(kChannel);
        view().midiSettings().setProgram(5);
        session().reset(threeChords(), {});
        setTempo(1, 1); // a minute a step: only the first row plays until F8
        showActiveFrame();
        chords().tree()->setFocus(); // anywhere in the main window
    }
    void TearDown() override
    {
        frame().hide();
        AppFixture::TearDown();
    }

    app::TransportController& transport() { return *view().transport(); }
    void setTempo(int bpm, int tpb)
    {
        frame().tempoBar()->setBeatsPerMinute(static_cast<std::uint16_t>(bpm));
        frame().tempoBar()->setTicksPerBeat(static_cast<std::uint16_t>(tpb));
    }
    /** A key pressed where the focus is; back in the main window when a dialog just took it. */
    void key(Qt::Key k)
    {
        if (QApplication::focusWidget() == nullptr) {
            frame().activateWindow();
            EXPECT_TRUE(QTest::qWaitForWindowActive(&frame()));
            chords().tree()->setFocus();
        }
        QTest::keyClick(QApplication::focusWidget(), k);
    }
    /** Note-ons and note-offs the port received, without velocities. */
    Notes notes() const
    {
        Notes out;
        for (const auto& m : m_ports->messages) {
            if (m.size() == 3 && (m[0] & 0xE0) == 0x80)
                out.emplace_back(m[0], m[1]);
        }
        return out;
    }
    std::pair<bool, bool> checkedButtons()
    {
        return {frame().action("part.play")->isChecked(),
                frame().action("part.playChord")->isChecked()};
    }
};

TEST_F(Transport, PlayCommandsStartWhereTheSelectionSaysAndStopEndsTheirNotes)
{
    constexpr int on = 0x90 | kChannel;
    constexpr int off = 0x80 | kChannel;
    struct Case
    {
        const char* what;
        bool singleChord;
        int current;
        std::vector<int> selected;
        int note; // the one note of the first row
        std::pair<bool, bool> flags;
    };
    const Case cases[] = {
        {"F5 without a current chord starts at the first", false, -1, {}, 48, {true, false}},
        {"F5 starts at the current chord", false, 1, {1}, 53, {true, false}},
        {"F5 outside the selected range starts at its first", false, 2, {0, 1}, 48, {true, false}},
        {"F5 inside the selected range", false, 2, {1, 2}, 55, {true, false}},
        {"Play chord plays the current chord", true, 2, {0, 1}, 55, {true, true}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        m_ports->messages.clear();
        session().setSelectedChords(c.selected);
        session().setCurrentChord(c.current);
        if (c.singleChord)
            frame().action("part.playChord")->trigger();
        else
            key(Qt::Key_F5);
        ASSERT_TRUE(transport().isPlaying());
        EXPECT_EQ(std::make_pair(frame().isPlayingPart(), frame().isPlayingChord()), c.flags);
        EXPECT_EQ(checkedButtons(), c.flags);
        EXPECT_EQ(m_ports->messages.front(), (std::vector<std::uint8_t>{0xC0 | kChannel, 5}));
        EXPECT_EQ(notes(), (Notes{{on, c.note}}));
        EXPECT_EQ(session().playingRow(), 0);
        EXPECT_TRUE(transport().indicator()->isVisible());

        key(Qt::Key_F8);
        EXPECT_FALSE(transport().isPlaying());
        EXPECT_EQ(notes(), (Notes{{on, c.note}, {off, c.note}}));
        EXPECT_EQ(checkedButtons(), std::make_pair(false, false));
        EXPECT_FALSE(frame().isPlayingPart() || frame().isPlayingChord());
        EXPECT_EQ(std::make_pair(session().playingChord(), session().playingRow()),
                  std::make_pair(-1, -1));
        EXPECT_FALSE(transport().indicator()->isVisible());
        EXPECT_EQ(m_ports->opened, m_ports->closed); // open exactly while playing
    }
    EXPECT_EQ(view().midiSettings().programAt(0, kChannel), 5) << "kept in the program table";
    EXPECT_TRUE(m_messages.texts().isEmpty());
}

TEST_F(Transport, WithoutADeviceTheMidiSettingsDialogOpensFirst)
{
    struct Case
    {
        const char* what;
        int choice; // device chosen in the dialog, -1: cancelled
        bool plays;
    };
    const Case cases[] = {{"cancelled: nothing plays, nothing is said", -1, false},
                          {"a device chosen: it plays on it", 0, true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        view().midiSettings().setDeviceNumber(midi::MidiSettings::kNoDevice);
        bool asked = false;
        apptest::onDialog<app::CMidiSettingsDialog>(
            [choice = c.choice](app::CMidiSettingsDialog& dialog) {
                if (choice < 0) {
                    dialog.reject();
                    return;
                }
                dialog.deviceBox()->setCurrentIndex(choice);
                dialog.accept();
            },
            asked);
        key(Qt::Key_F5);
        EXPECT_TRUE(asked);
        EXPECT_EQ(transport().isPlaying(), c.plays);
        EXPECT_EQ(m_ports->opened, c.plays ? 1 : 0);
        EXPECT_EQ(view().midiSettings().deviceNumber(),
                  c.plays ? c.choice : midi::MidiSettings::kNoDevice);
        key(Qt::Key_F8);
    }
    EXPECT_TRUE(m_messages.texts().isEmpty());
}

TEST_F(Transport, LiveEditsAreHeardAtTheNextRowAndOtherEditsStop)
{
    // A cell written into row 1 while row 0 plays sounds on row 1 (250 ms later); renaming a
    // chord changes what plays and stops.
    setTempo(60, 4);
    key(Qt::Key_F5);
    ASSERT_TRUE(transport().isPlaying());
    session().edit(
        QString::fromLatin1(PartSession::kEditPattern), PartSession::Cells,
        [](part::Part& p) {
            p.patterns().pattern(0).setCell(1, 1, {part::CellKind::ChordNote, 1, 0});
            return true;
        },
        PartSession::EditKind::Live);
    EXPECT_TRUE(transport().isPlaying());
    ASSERT_TRUE(QTest::qWaitFor([this] { return session().playingRow() == 1; }, 2000));
    EXPECT_EQ(notes(), (Notes{{0x90 | kChannel, 48}, {0x90 | kChannel, 52}}));

    setTempo(30, 4); // the tempo bar is a live edit too
    EXPECT_TRUE(transport().isPlaying());
    EXPECT_EQ(transport().player().interval(), 500);

    session().edit(QStringLiteral("Rename chord"), PartSession::Chords, [](part::Part& p) {
        p.chord(0).name = "Cmaj";
        return true;
    });
    EXPECT_FALSE(transport().isPlaying());
    EXPECT_EQ(notes().size(), 4u) << "both notes ended";
    EXPECT_EQ(checkedButtons(), std::make_pair(false, false));
}

TEST_F(Transport, SpaceTogglesPlaybackInTheGridAndThePartListOnly)
{
    const std::pair<const char*, QWidget*> places[] = {
        {"pattern grid", view().regions().patternGrid},
        {"part list", view().partList()->view()},
    };
    for (const auto& [where, region] : places) {
        SCOPED_TRACE(where);
        region->setFocus();
        key(Qt::Key_Space);
        EXPECT_TRUE(transport().isPlaying());
        key(Qt::Key_Space);
        EXPECT_FALSE(transport().isPlaying());
    }
    chords().tree()->setFocus();
    key(Qt::Key_Space);
    EXPECT_FALSE(transport().isPlaying());
}

TEST_F(Transport, TheIndicatorShowsThePlaybackAndItsChangesApplyToTheNextMessages)
{
    app::PlayingIndicator& indicator = *transport().indicator();
    key(Qt::Key_F5);
    ASSERT_TRUE(indicator.isVisible());
    struct Field
    {
        QSpinBox* box;
        const char* tip;
        int shown;
    };
    const Field fields[] = {
        {indicator.channelBox(), "The midi channel for playback.", kChannel + 1},
        {indicator.portBox(), "The midi port for playback.", 0},
        {indicator.velocityBox(), "Velocity, the notes are played with.", 80},
        {indicator.programBox(), "The program for midi playback.", 5},
    };
    for (const Field& f : fields) {
        EXPECT_EQ(f.box->toolTip(), QString::fromLatin1(f.tip));
        EXPECT_EQ(f.box->value(), f.shown) << f.tip;
    }

    // A new program and channel go out at once; the settings keep them.
    m_ports->messages.clear();
    indicator.programBox()->setValue(40);
    indicator.channelBox()->setValue(10);
    EXPECT_EQ(m_ports->messages,
              (std::vector<std::vector<std::uint8_t>>{{0xC0 | kChannel, 40}, {0xC9, 40}}));
    EXPECT_EQ(view().midiSettings().program(), 40);
    EXPECT_EQ(view().midiSettings().channel(), 9);
    key(Qt::Key_F8);
    // The note of the first row ends on the channel it started on.
    EXPECT_EQ(notes().back(), std::make_pair(0x80 | kChannel, 48));
    EXPECT_FALSE(indicator.isVisible());
    indicator.setVisible(true); // a restored window layout cannot show it while idle
    EXPECT_FALSE(indicator.isVisible());
}

TEST_F(Transport, LoopingIsAnOptionOfTheIndicatorKeptForTheNextRun)
{
    setTempo(600, 20); // 5 ms rows: three chords of two rows take 30 ms a round
    transport().indicator()->loopBox()->setChecked(true);
    key(Qt::Key_F5);
    int rounds = 0;
    QObject::connect(&session(), &PartSession::playingPositionChanged,
                     [&rounds](int c, int r) { rounds += c == 0 && r == 0; });
    EXPECT_TRUE(QTest::qWaitFor([&rounds] { return rounds >= 2; }, 3000)) << "no second round";
    transport().indicator()->loopBox()->setChecked(false);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !transport().isPlaying(); }, 3000));

    ASSERT_TRUE(start());
    EXPECT_FALSE(view().transport()->indicator()->isLooping());
    view().transport()->indicator()->loopBox()->setChecked(true);
    ASSERT_TRUE(start());
    EXPECT_TRUE(view().transport()->indicator()->isLooping());
    EXPECT_TRUE(view().transport()->player().isLooping());
    // The bar's fields are built when first shown, from the option kept meanwhile.
    EXPECT_TRUE(view().transport()->indicator()->loopBox()->isChecked());
    view().transport()->indicator()->loopBox()->setChecked(false); // for the other tests
}

} // namespace
