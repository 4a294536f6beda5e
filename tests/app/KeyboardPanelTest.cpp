// The keyboard panel: the notes of the chosen chord and their names, keys clicked and heard
// through a recording port, "Add chord", MIDI input through a fake input list (lights, names,
// capture, unplugging), and Voicing / Voice Leading with their preview on the panel.
#include "AppTestSupport.h"

#include "app/CMidiSettingsDialog.h"
#include "app/ChordCandidateModel.h"
#include "app/KeyAudition.h"
#include "app/KeyboardPanel.h"
#include "app/MidiInputController.h"
#include "app/NoteSpinBox.h"
#include "app/PartListPanel.h"
#include "app/PartSession.h"
#include "app/PianoKeyboard.h"
#include "app/TransportController.h"
#include "app/VoicingDialog.h"
#include "midi/MidiInPortList.h"
#include "music/FileBytes.h"
#include "part/PartFile.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <mutex>
#include <thread>

namespace {

using app::PartSession;
using Notes = std::vector<int>;

/** MIDI inputs for tests: named devices whose ports remember their handlers. */
class FakeInPortList : public midi::MidiInPortList
{
public:
    explicit FakeInPortList(std::vector<std::string> names) : m_names(std::move(names)) {}
    std::vector<std::string> inputNames() override { return m_names; }
    music::Result open(const std::string& name, midi::MidiInPort::Handlers handlers,
                       std::unique_ptr<midi::MidiInPort>& port) override
    {
        if (std::find(m_names.begin(), m_names.end(), name) == m_names.end())
            return music::Result::failure("No MIDI input device called \"" + name + "\".");
        const std::lock_guard lock(m_mutex);
        m_handlers = std::move(handlers);
        m_open = true;
        port = std::make_unique<Port>(*this, name);
        return music::Result::success();
    }

    /** Sends from a thread of its own, as a real port does; waits until it is sent. */
    void send(const midi::MidiInputEvent& event)
    {
        std::thread([this, event] {
            const std::lock_guard lock(m_mutex);
            if (m_open && m_handlers.event)
                m_handlers.event(event);
        }).join();
    }
    void unplug(const std::string& message)
    {
        std::thread([this, message] {
            const std::lock_guard lock(m_mutex);
            if (m_open && m_handlers.ended)
                m_handlers.ended(message);
        }).join();
    }
    bool isOpen() const { return m_open; }

private:
    struct Port : midi::MidiInPort
    {
        Port(FakeInPortList& list, std::string name) : m_list(list), m_name(std::move(name)) {}
        ~Port() override
        {
            const std::lock_guard lock(m_list.m_mutex);
            m_list.m_open = false;
        }
        const std::string& name() const override { return m_name; }
        FakeInPortList& m_list;
        std::string m_name;
    };

    std::vector<std::string> m_names;
    std::mutex m_mutex;
    midi::MidiInPort::Handlers m_handlers;
    bool m_open = false;
};

midi::MidiInputEvent key(int note, bool down)
{
    midi::MidiInputEvent event;
    event.kind = down ? midi::MidiInputEvent::Kind::NoteOn : midi::MidiInputEvent::Kind::NoteOff;
    event.note = static_cast<std::uint8_t>(note);
    event.value = down ? 90 : 0;
    return event;
}

midi::MidiInputEvent pedal(bool down)
{
    midi::MidiInputEvent event;
    event.kind = midi::MidiInputEvent::Kind::Pedal;
    event.value = down ? 127 : 0;
    return event;
}

using apptest::onDialog;

class KeyboardPanelTest : public apptest::AppFixture
{
protected:
    void SetUp() override
    {
        midi::MidiInPortList::setSystemList(m_inputs);
        m_ports->setNames({"Fake: Synth"});
        AppFixture::SetUp();
        part::Part shipped;
        ASSERT_TRUE(part::PartFile::load(m_data.file(QStringLiteral("default.prt")).toStdString(),
                                         shipped));
        session().reset(shipped, {});
        panel().keyBox()->setCurrentIndex(0); // no key
        frame().show(); // the panel hears its dock closing only when it was shown
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&frame()));
    }
    void TearDown() override
    {
        AppFixture::TearDown();
        midi::MidiInPortList::setSystemList(nullptr);
    }

    app::KeyboardPanel& panel() { return *view().keyboardPanel(); }
    app::PianoKeyboard& keys() { return *panel().keyboard(); }
    QString topName() { return panel().candidates()->nameAt(0); }
    int base() { return 12 * session().part().baseOctave(); }
    Notes sounding(int chord)
    {
        const part::PartChord& c = session().part().chord(chord);
        Notes notes;
        for (int i = 0; i < c.noteCount; ++i)
            notes.push_back(c.notes[static_cast<std::size_t>(i)] + base());
        std::sort(notes.begin(), notes.end());
        return notes;
    }
    void click(int note)
    {
        QTest::mouseClick(&keys(), Qt::LeftButton, {},
                          keys().keyRect(note).center() + QPoint(0, 20));
    }
    /** Chooses the input device in the MIDI settings dialog. */
    void chooseInput(const QString& name)
    {
        bool seen = false;
        onDialog<app::CMidiSettingsDialog>(
            [name](app::CMidiSettingsDialog& dialog) {
                ASSERT_NE(dialog.inputBox(), nullptr);
                dialog.inputBox()->setCurrentIndex(dialog.inputBox()->findData(name));
                dialog.accept();
            },
            seen);
        frame().action("settings.midi")->trigger();
        ASSERT_TRUE(seen);
    }
    /** Every note of `notes` (all when empty) started on the recording port has ended since. */
    bool everyNoteEnded(const Notes& notes = {}) const
    {
        std::map<int, int> sounding;
        for (const auto& m : m_ports->messages) {
            if (m.size() == 3 && !notes.empty() &&
                std::find(notes.begin(), notes.end(), m[1]) == notes.end())
                continue;
            if (m.size() == 3 && (m[0] & 0xF0) == 0x90 && m[2] > 0)
                ++sounding[m[1]];
            else if (m.size() == 3 && ((m[0] & 0xF0) == 0x80 || (m[0] & 0xF0) == 0x90))
                sounding[m[1]] = 0;
        }
        return std::all_of(sounding.begin(), sounding.end(),
                           [](const auto& entry) { return entry.second == 0; });
    }
    Notes notesStarted() const
    {
        Notes notes;
        for (const auto& m : m_ports->messages) {
            if (m.size() == 3 && (m[0] & 0xF0) == 0x90 && m[2] > 0)
                notes.push_back(m[1]);
        }
        return notes;
    }

    std::shared_ptr<FakeInPortList> m_inputs = std::make_shared<FakeInPortList>(
        std::vector<std::string>{"ALSA: Keys:port 0", "JACK: pad:out"});
};

TEST_F(KeyboardPanelTest, ShowsAndNamesTheChordChosenAnywhereInTheWindow)
{
    struct Case
    {
        const char* what;
        std::function<void()> choose;
        Notes notes; // as they sound; empty: those of the part chord below
        int chord;
        QString top; // the best name
        QString caption;
    };
    // The shipped part starts C, Am, F, G in base octave 4 (C is C4 E4 G4 = 48 52 55).
    const Case cases[] = {
        {"the part's current chord",
         [this] { session().setCurrentChord(1); },
         {},
         1,
         QStringLiteral("Am"),
         QStringLiteral("Part chord 2: Am")},
        {"the chord being played",
         [this] { session().setPlayingPosition(3, 0); },
         {},
         3,
         QStringLiteral("G"),
         QStringLiteral("Playing chord 4: G")},
        {"a database chord found by its notes",
         [this] {
             session().setPlayingPosition(-1, -1);
             chords().menuCommands().findChordWith(
                 {true, false, false, false, true, false, false, true, false, false, false, false},
                 QStringLiteral("maj7"), {});
         },
         {48, 52, 55, 59},
         -1,
         QStringLiteral("Cmaj7"),
         QStringLiteral("Database chord Cmaj7")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        c.choose();
        const Notes expected = c.notes.empty() ? sounding(c.chord) : c.notes;
        EXPECT_EQ(panel().notes(), expected);
        EXPECT_EQ(keys().heldNotes(), expected);
        EXPECT_EQ(topName(), c.top);
        EXPECT_EQ(panel().caption(), c.caption);
    }
}

TEST_F(KeyboardPanelTest, NamesAreSpelledForTheChosenKey)
{
    struct Case
    {
        const char* key;
        Notes notes;
        QString top;
        QString description;
    };
    const Case cases[] = {
        {"No key", {52, 60, 67}, QStringLiteral("C/E"), QStringLiteral("C major, first inversion")},
        {"No key", {63, 67, 70}, QStringLiteral("Eb"), QStringLiteral("Eb major")},
        {"E major", {63, 67, 70}, QStringLiteral("D#"), QStringLiteral("D# major")},
        {"A minor", {58, 62, 65}, QStringLiteral("Bb"), QStringLiteral("Bb major")},
        {"No key", {60, 61, 62}, QString(), QStringLiteral("cluster")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.key);
        panel().keyBox()->setCurrentIndex(panel().keyBox()->findText(QString::fromLatin1(c.key)));
        panel().showNotes(c.notes, QStringLiteral("test"));
        ASSERT_GT(panel().candidates()->rowCount(), 0);
        if (!c.top.isEmpty()) {
            EXPECT_EQ(topName(), c.top);
        }
        const QString shown = panel().candidateList()->model()->index(0, 0).data().toString();
        EXPECT_TRUE(shown.contains(c.description)) << shown.toStdString();
    }
}

TEST_F(KeyboardPanelTest, KeysAreCheckBoxesForAssistiveTechnology)
{
    panel().showNotes({48, 52, 55}, QStringLiteral("test"));
    QAccessibleInterface* keyboard = QAccessible::queryAccessibleInterface(&keys());
    ASSERT_NE(keyboard, nullptr);
    EXPECT_EQ(keyboard->childCount(), 120) << "C0 to B9";
    const std::pair<int, const char*> cases[] = {
        {48, "C4, held"}, {49, "C#4"}, {52, "E4, held"}, {0, "C0"}, {119, "B9"}};
    for (const auto& [note, name] : cases) {
        QAccessibleInterface* child = keyboard->child(note);
        ASSERT_NE(child, nullptr) << note;
        EXPECT_EQ(child->text(QAccessible::Name), QString::fromLatin1(name));
        EXPECT_EQ(child->role(), QAccessible::CheckBox);
        EXPECT_EQ(static_cast<bool>(child->state().checked), keys().isHeld(note));
        EXPECT_EQ(keyboard->indexOfChild(child), note);
    }
    // The key's action toggles it, as a click does.
    QAccessibleInterface* d4 = keyboard->child(50);
    ASSERT_NE(d4->actionInterface(), nullptr);
    d4->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(panel().notes(), (Notes{48, 50, 52, 55}));
    EXPECT_EQ(d4->text(QAccessible::Name), QStringLiteral("D4, held"));
}

TEST_F(KeyboardPanelTest, ClickedKeysAreHeardAndNoNoteOutlivesTheSound)
{
    struct Case
    {
        const char* what;
        std::function<void()> silence;
    };
    const Case cases[] = {
        {"the panel closes", [this] { view().keyboardDock()->close(); }},
        {"the MIDI settings open",
         [this] {
             bool seen = false;
             onDialog<app::CMidiSettingsDialog>(
                 [](app::CMidiSettingsDialog& dialog) { dialog.reject(); }, seen);
             frame().action("settings.midi")->trigger();
             EXPECT_TRUE(seen);
         }},
        {"the part starts playing",
         [this] {
             view().midiSettings().setDeviceNumber(0); // else the settings dialog asks first
             view().transport()->playPart();
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        view().transport()->stop();
        view().keyboardDock()->show();
        panel().clear();
        m_ports->messages.clear();
        // Notes the shipped part does not play, so that playback's own notes do not count.
        click(61);
        click(66);
        EXPECT_EQ(panel().notes(), (Notes{61, 66}));
        EXPECT_TRUE(panel().audition()->isPlaying());
        // Each click plays the notes chosen so far; the built-in synth's place (device 0)
        // serves while no device is chosen.
        const Notes started = notesStarted();
        ASSERT_GE(started.size(), 3u);
        EXPECT_EQ(Notes(started.end() - 2, started.end()), (Notes{61, 66}));
        c.silence();
        EXPECT_FALSE(panel().audition()->isPlaying());
        EXPECT_TRUE(everyNoteEnded({61, 66}));
    }
    // Left alone, an audition ends by itself.
    view().transport()->stop();
    view().keyboardDock()->show();
    click(67);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !panel().audition()->isPlaying(); }, 3000));
    EXPECT_TRUE(everyNoteEnded());
}

TEST_F(KeyboardPanelTest, AddChordIsOneUndoStepInTheCurrentPatternWithTheChosenName)
{
    struct Case
    {
        const char* what;
        Notes clicked;
        int candidate; // the row of the name chosen
        std::vector<int> stored;
        QString name;
    };
    const Case cases[] = {
        {"the best name", {52, 60, 67}, 0, {4, 12, 19}, QStringLiteral("C/E")},
        {"another name", {57, 60, 64, 67}, 1, {9, 12, 16, 19}, QString()},
        {"below the base octave: moved up", {40, 43, 47}, 0, {4, 7, 11}, QStringLiteral("Em")},
    };
    session().setDefaultLength(12);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        panel().clear();
        for (int note : c.clicked)
            panel().toggleNote(note);
        panel().candidateList()->setCurrentIndex(panel().candidates()->index(c.candidate));
        const QString chosen = panel().candidates()->nameAt(c.candidate);
        const part::Part before = session().part();
        panel().addButton()->click();
        ASSERT_EQ(session().part().count(), before.count() + 1);
        const part::PartChord& added = session().part().chord(before.count());
        EXPECT_EQ(std::vector<int>(added.notes.begin(), added.notes.begin() + added.noteCount),
                  c.stored);
        EXPECT_EQ(QString::fromStdString(added.name), c.name.isEmpty() ? chosen : c.name);
        EXPECT_EQ(added.pattern, before.currentPattern());
        EXPECT_EQ(added.length, 12);
        EXPECT_EQ(session().undoText(), QStringLiteral("Add chord"));
        session().undo();
        EXPECT_EQ(session().part(), before);
    }
    // Eight notes are more than a chord holds: said, nothing added.
    panel().showNotes({48, 50, 52, 53, 55, 57, 59, 60}, QStringLiteral("test"));
    const int count = session().part().count();
    m_messages.clear();
    EXPECT_FALSE(panel().addToPart());
    EXPECT_EQ(session().part().count(), count);
    ASSERT_EQ(m_messages.texts().size(), 1);
    EXPECT_TRUE(m_messages.texts().front().contains(QStringLiteral("at most 7")));
}

TEST_F(KeyboardPanelTest, MidiInputLightsNamesAndCapturesAndSurvivesUnplugging)
{
    chooseInput(QStringLiteral("JACK: pad:out"));
    ASSERT_TRUE(view().midiInput()->isOpen());
    EXPECT_EQ(panel().inputLabel()->text(), QStringLiteral("Input: JACK: pad:out"));

    // Keys light as they go down; once they settle the chord is named.
    for (int note : {64, 60, 67})
        m_inputs->send(key(note, true));
    EXPECT_TRUE(QTest::qWaitFor(
        [this] {
            return keys().playedNotes() == Notes{60, 64, 67};
        },
        2000));
    EXPECT_TRUE(QTest::qWaitFor([this] { return panel().notes() == Notes{60, 64, 67}; }, 2000));
    EXPECT_EQ(topName(), QStringLiteral("C"));
    EXPECT_EQ(keys().keyText(64), QStringLiteral("E5, held, played"));

    // Capture into the part: the chord held, one "Add chord" step.
    panel().captureBox()->setCurrentIndex(0);
    const int count = session().part().count();
    panel().captureButton()->click();
    ASSERT_EQ(session().part().count(), count + 1);
    EXPECT_EQ(session().part().chord(count).name, "C");
    EXPECT_EQ(session().undoText(), QStringLiteral("Add chord"));

    // Keys up: the lights go out, the last chord stays; the pedal sends it to the chord search.
    for (int note : {60, 64, 67})
        m_inputs->send(key(note, false));
    EXPECT_TRUE(QTest::qWaitFor([this] { return keys().playedNotes().empty(); }, 2000));
    EXPECT_EQ(panel().notes(), (Notes{60, 64, 67}));
    panel().captureBox()->setCurrentIndex(1);
    m_inputs->send(pedal(true));
    EXPECT_TRUE(QTest::qWaitFor(
        [this] {
            const auto position = chords().currentPosition();
            return position && chords().collection().chordAt(*position) != nullptr;
        },
        2000));
    EXPECT_EQ(session().part().count(), count + 1) << "the search adds nothing";

    // Unplugged: a message, input closed, and nothing else changes.
    m_inputs->send(key(62, true));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !keys().playedNotes().empty(); }, 2000));
    m_messages.clear();
    const part::Part before = session().part();
    m_inputs->unplug("The JACK server has shut down.");
    EXPECT_TRUE(QTest::qWaitFor([this] { return !view().midiInput()->isOpen(); }, 2000));
    ASSERT_EQ(m_messages.texts().size(), 1);
    EXPECT_EQ(
        m_messages.texts().front(),
        QStringLiteral("MIDI input from JACK: pad:out has ended: The JACK server has shut down."));
    EXPECT_TRUE(keys().playedNotes().empty());
    EXPECT_EQ(session().part(), before);
    EXPECT_EQ(view().midiSettings().inputDeviceName(), "JACK: pad:out") << "kept for next time";
}

TEST_F(KeyboardPanelTest, TheInputChoiceListsEveryDeviceAndReachesTheSettingsFile)
{
    bool seen = false;
    onDialog<app::CMidiSettingsDialog>(
        [](app::CMidiSettingsDialog& dialog) {
            QComboBox* box = dialog.inputBox();
            ASSERT_NE(box, nullptr);
            const QStringList expected = {QStringLiteral("None"),
                                          QStringLiteral("ALSA: Keys:port 0"),
                                          QStringLiteral("JACK: pad:out")};
            QStringList shown;
            for (int i = 0; i < box->count(); ++i)
                shown << box->itemText(i);
            EXPECT_EQ(shown, expected);
            EXPECT_EQ(box->currentIndex(), 0);
            box->setCurrentIndex(1);
            dialog.accept();
        },
        seen);
    frame().action("view.midiSettings")->trigger();
    ASSERT_TRUE(seen);
    EXPECT_TRUE(view().midiInput()->isOpen());
    view().shutdown();
    EXPECT_FALSE(m_inputs->isOpen()) << "closed on the way out";
    const std::string written =
        music::readFileBytes(m_data.file(QStringLiteral("Tonalmancer.ini")).toStdString())
            .value_or("");
    EXPECT_NE(written.find("\nmidi-input=ALSA: Keys:port 0\n"), std::string::npos);

    // A device that is not plugged in now stays chosen, and input opens once it is back.
    midi::MidiSettings stored;
    stored.setInputDeviceName("ALSA: Gone:port 0");
    auto none = std::make_shared<FakeInPortList>(std::vector<std::string>{});
    app::CMidiSettingsDialog dialog(stored, {}, m_ports);
    dialog.setInputPorts(none);
    EXPECT_EQ(dialog.inputBox()->currentText(),
              QStringLiteral("ALSA: Gone:port 0 (not connected)"));
    EXPECT_EQ(dialog.settings().inputDeviceName(), "ALSA: Gone:port 0");
}

TEST_F(KeyboardPanelTest, VoicingDialogPreviewsOnTheKeyboardAndAppliesOneStep)
{
    struct Case
    {
        const char* command;
        std::vector<int> selected;
        QString label;
    };
    const Case cases[] = {
        {"part.voiceLeading", {1, 2, 3}, QStringLiteral("Voice leading")},
        {"part.voicing", {}, QStringLiteral("Voicing")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.command);
        session().setSelectedChords(c.selected);
        session().setCurrentChord(c.selected.empty() ? 0 : 2);
        const part::Part before = session().part();
        const std::vector<int> targets =
            c.selected.empty() ? std::vector<int>{0, 1, 2, 3, 4, 5, 6} : c.selected;
        Notes previewed;
        bool seen = false;
        onDialog<app::VoicingDialog>(
            [&](app::VoicingDialog& dialog) {
                dialog.styleBox()->setCurrentIndex(
                    dialog.styleBox()->findText(QStringLiteral("drop-2")));
                dialog.lowBox()->setValue(28);  // E2
                dialog.highBox()->setValue(67); // G5
                EXPECT_EQ(dialog.lowBox()->text(), QStringLiteral("E2"));
                EXPECT_TRUE(dialog.rangeLabel()->text().contains(QStringLiteral("E6..G9")))
                    << dialog.rangeLabel()->text().toStdString();
                EXPECT_TRUE(dialog.okButton()->isEnabled());
                EXPECT_TRUE(dialog.movementLabel()->text().contains(QStringLiteral("Movement")));
                previewed = panel().notes();
                dialog.accept();
            },
            seen);
        frame().action(c.command)->trigger();
        ASSERT_TRUE(seen);
        ASSERT_EQ(session().undoText(), c.label);
        const int current = session().currentChord();
        EXPECT_EQ(previewed, sounding(current)) << "the preview showed the current chord's notes";
        for (int index = 0; index < before.count(); ++index) {
            const part::PartChord& now = session().part().chord(index);
            const part::PartChord& old = before.chord(index);
            if (std::find(targets.begin(), targets.end(), index) == targets.end()) {
                EXPECT_EQ(now, old) << "chord " << index << " was not selected";
                continue;
            }
            std::set<int> oldClasses, newClasses;
            for (int i = 0; i < old.noteCount; ++i)
                oldClasses.insert(old.notes[static_cast<std::size_t>(i)] % 12);
            for (int i = 0; i < now.noteCount; ++i) {
                const int note = now.notes[static_cast<std::size_t>(i)];
                newClasses.insert(note % 12);
                EXPECT_GE(note, 28);
                EXPECT_LE(note, 67);
                if (i > 0) {
                    EXPECT_LT(now.notes[static_cast<std::size_t>(i) - 1], note) << "low to high";
                }
            }
            EXPECT_EQ(oldClasses, newClasses) << "chord " << index << " keeps its tones";
        }
        session().undo();
        EXPECT_EQ(session().part(), before);
    }
}

TEST_F(KeyboardPanelTest, VoicingDialogRefusesAnUnusableRangeAndCancelRestoresThePanel)
{
    panel().showNotes({48, 52, 55}, QStringLiteral("before"));
    const part::Part before = session().part();
    bool seen = false;
    onDialog<app::VoicingDialog>(
        [](app::VoicingDialog& dialog) {
            const std::tuple<int, int, bool, const char*> ranges[] = {
                {40, 30, false, "lies above the highest"},
                {0, 3, false, "No close voicing"},
                {0, 35, true, "Movement"},
            };
            for (const auto& [low, high, usable, text] : ranges) {
                dialog.styleBox()->setCurrentIndex(0);
                dialog.lowBox()->setValue(low);
                dialog.highBox()->setValue(high);
                EXPECT_EQ(dialog.okButton()->isEnabled(), usable) << low << ".." << high;
                EXPECT_TRUE(dialog.movementLabel()->text().contains(QString::fromLatin1(text)))
                    << dialog.movementLabel()->text().toStdString();
            }
            dialog.reject();
        },
        seen);
    frame().action("part.voicing")->trigger();
    ASSERT_TRUE(seen);
    EXPECT_EQ(session().part(), before);
    EXPECT_EQ(panel().notes(), (Notes{48, 52, 55}));
    EXPECT_EQ(panel().caption(), QStringLiteral("before"));
}

} // namespace
