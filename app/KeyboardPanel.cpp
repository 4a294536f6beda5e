#include "app/KeyboardPanel.h"

#include "app/CTreeCtrlX.h"
#include "app/ChordCandidateModel.h"
#include "app/ChordDatabaseCommands.h"
#include "app/ChordDatabasePanel.h"
#include "app/KeyAudition.h"
#include "app/MessageBoxes.h"
#include "app/MidiInputController.h"
#include "app/PartListCommands.h"
#include "app/PartListPanel.h"
#include "app/PartSession.h"
#include "app/PianoKeyboard.h"
#include "midi/MidiSettings.h"
#include "music/ChordNamer.h"
#include "music/ChordSection.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>

#include <algorithm>

namespace app {

namespace {

const QString kKeySetting = QStringLiteral("keyboard/key");
const QString kCaptureSetting = QStringLiteral("keyboard/capture");
const QString kSearchScale = QStringLiteral("search");
constexpr int kOctave = 12;

template <typename Widget>
Widget* named(Widget* widget, const char* objectName, const QString& accessibleName)
{
    widget->setObjectName(QString::fromLatin1(objectName));
    widget->setAccessibleName(accessibleName);
    return widget;
}

QString noteList(const std::vector<int>& notes)
{
    QStringList names;
    for (int note : notes)
        names << QString::fromStdString(music::noteNameWithOctave(note));
    return names.join(QLatin1Char(' '));
}

} // namespace

KeyboardPanel::KeyboardPanel(PartSession& session, ChordDatabasePanel& chordDatabase,
                             PartListPanel& partList, std::shared_ptr<midi::MidiPortList> ports,
                             const midi::MidiSettings& settings, QWidget* parent)
    : QWidget(parent), m_session(session), m_chordDatabase(chordDatabase), m_partList(partList),
      m_settings(settings)
{
    setObjectName(QStringLiteral("keyboardPanel"));
    setAccessibleName(tr("Keyboard panel"));
    m_audition = new KeyAudition(
        std::move(ports), [this] { return m_settings; }, this);
    connect(m_audition, &KeyAudition::failed, this, [this](const QString& message) {
        showStatus(tr("The notes could not be played: %1").arg(message));
    });

    m_keyboard = new PianoKeyboard(this);
    m_scroll = named(new QScrollArea(this), "keyboardScroll", tr("Keyboard, scrollable"));
    m_scroll->setWidget(m_keyboard);
    m_scroll->setWidgetResizable(false);
    m_scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_scroll->setFixedHeight(m_keyboard->height() +
                             m_scroll->horizontalScrollBar()->sizeHint().height() +
                             2 * m_scroll->frameWidth());
    connect(m_keyboard, &PianoKeyboard::keyClicked, this, &KeyboardPanel::toggleNote);
    connect(m_keyboard, &PianoKeyboard::focusKeyChanged, this, [this](int note) {
        const QRect key = m_keyboard->keyRect(note);
        m_scroll->ensureVisible(key.center().x(), key.center().y(), key.width() * 2, 0);
    });

    m_caption = named(new QLabel(tr("Click keys, or select a chord."), this), "keyboardCaption",
                      tr("Notes shown"));
    m_caption->setTextFormat(Qt::PlainText);
    m_key = named(new QComboBox(this), "keyboardKey", tr("Key for the names"));
    m_key->setToolTip(tr("The key the chord names are spelled in."));
    fillKeys();
    m_keyName = named(new QLabel(this), "keyboardKeyName", tr("Spelling"));
    auto* keyLabel = new QLabel(tr("&Key:"), this);
    keyLabel->setBuddy(m_key);

    m_candidates = new ChordCandidateModel(this);
    m_candidateList = named(new QListView(this), "chordCandidateList", tr("Chord names"));
    m_candidateList->setModel(m_candidates);
    m_candidateList->setToolTip(tr("The names of the notes, best first. \"Add chord\" takes the "
                                   "selected name."));
    m_candidateList->setSelectionMode(QAbstractItemView::SingleSelection);
    m_candidateList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_candidateList->setMinimumWidth(280);
    m_candidateList->setFixedHeight(
        m_candidateList->sizeHintForRow(0) > 0 ? m_candidateList->sizeHintForRow(0) * 4 + 6 : 76);

    m_status = named(new QLabel(this), "keyboardStatus", tr("Keyboard status"));
    m_status->setTextFormat(Qt::PlainText);

    auto* top = new QHBoxLayout;
    top->addWidget(m_caption, 1);
    top->addWidget(keyLabel);
    top->addWidget(m_key);
    top->addWidget(m_keyName);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_candidateList, 1);
    bottom->addWidget(createButtons());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->setSpacing(3);
    layout->addLayout(top);
    layout->addWidget(m_scroll);
    layout->addLayout(bottom);
    layout->addWidget(m_status);

    connectSources();
    rename();
    const QRect c4 = m_keyboard->keyRect(4 * kOctave);
    m_scroll->horizontalScrollBar()->setValue(c4.x() - 7 * PianoKeyboard::kWhiteWidth);
}

KeyboardPanel::~KeyboardPanel() = default;

QWidget* KeyboardPanel::createButtons()
{
    auto* box = named(new QWidget(this), "keyboardButtons", tr("Keyboard commands"));
    const auto button = [box](const QString& text, const char* name, const QString& tip) {
        auto* b = new QPushButton(text, box);
        b->setObjectName(QString::fromLatin1(name));
        b->setAccessibleName(QString(text).remove(QLatin1Char('&')));
        b->setToolTip(tip);
        b->setAutoDefault(false);
        return b;
    };
    m_add = button(tr("&Add chord"), "keyboardAddChord",
                   tr("Adds the notes to the part as a new chord with the selected name."));
    m_findChord = button(tr("Find C&hord"), "keyboardFindChord",
                         tr("Selects the next database chord that holds these notes."));
    m_findScale = button(tr("Find Sca&le"), "keyboardFindScale",
                         tr("Lists the scales of the database that hold these notes."));
    m_clear = button(tr("Clea&r"), "keyboardClear", tr("Lets every key go."));
    m_capture = button(tr("Ca&pture"), "keyboardCapture",
                       tr("Takes the chord held on the MIDI keyboard (or the last one held); the "
                          "sustain pedal does the same."));
    m_captureTarget = named(new QComboBox(box), "keyboardCaptureTarget", tr("Capture into"));
    m_captureTarget->addItem(tr("into the part"), int(CaptureTarget::Part));
    m_captureTarget->addItem(tr("into Find Chord"), int(CaptureTarget::ChordSearch));
    m_captureTarget->setToolTip(tr("Where a captured chord goes."));
    m_captureTarget->setCurrentIndex(
        std::clamp(QSettings().value(kCaptureSetting, 0).toInt(), 0, 1));
    connect(m_captureTarget, &QComboBox::currentIndexChanged, this,
            [](int index) { QSettings().setValue(kCaptureSetting, index); });
    m_inputStatus = named(new QLabel(tr("No MIDI input"), box), "keyboardInput", tr("MIDI input"));
    m_inputStatus->setTextFormat(Qt::PlainText);

    connect(m_add, &QPushButton::clicked, this, [this] { addToPart(); });
    connect(m_findChord, &QPushButton::clicked, this, [this] { findChord(); });
    connect(m_findScale, &QPushButton::clicked, this, [this] { findScale(); });
    connect(m_clear, &QPushButton::clicked, this, [this] { clear(); });
    connect(m_capture, &QPushButton::clicked, this, [this] {
        if (m_input != nullptr)
            m_input->capture();
    });
    m_capture->setEnabled(false);

    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(m_add, 0, 0);
    grid->addWidget(m_findChord, 0, 1);
    grid->addWidget(m_findScale, 0, 2);
    grid->addWidget(m_clear, 0, 3);
    grid->addWidget(m_inputStatus, 1, 0, 1, 2);
    grid->addWidget(m_capture, 1, 2);
    grid->addWidget(m_captureTarget, 1, 3);
    return box;
}

void KeyboardPanel::fillKeys()
{
    m_key->addItem(tr("No key"), QString());
    m_key->addItem(tr("Scale selected in the database"), kSearchScale);
    static constexpr const char* kMajor[] = {"C",  "Db", "D",  "Eb", "E",  "F",
                                             "F#", "G",  "Ab", "A",  "Bb", "B"};
    static constexpr const char* kMinor[] = {"C",  "C#", "D",  "Eb", "E",  "F",
                                             "F#", "G",  "G#", "A",  "Bb", "B"};
    for (const char* tonic : kMajor)
        m_key->addItem(tr("%1 major").arg(QLatin1String(tonic)),
                       QStringLiteral("%1 major").arg(QLatin1String(tonic)));
    for (const char* tonic : kMinor)
        m_key->addItem(tr("%1 minor").arg(QLatin1String(tonic)),
                       QStringLiteral("%1 minor").arg(QLatin1String(tonic)));
    const int stored = m_key->findData(QSettings().value(kKeySetting).toString());
    m_key->setCurrentIndex(std::max(stored, 0));
    connect(m_key, &QComboBox::currentIndexChanged, this, [this] {
        QSettings().setValue(kKeySetting, m_key->currentData().toString());
        rename();
    });
}

void KeyboardPanel::connectSources()
{
    if (QItemSelectionModel* selection = m_chordDatabase.tree()->selectionModel()) {
        connect(selection, &QItemSelectionModel::currentChanged, this, [this] {
            if (!m_searching)
                showDatabaseChord();
            else if (m_key->currentData().toString() == kSearchScale)
                rename();
        });
    }
    connect(&m_session, &PartSession::currentChordChanged, this, [this](int chord) {
        if (chord >= 0 && m_playingChord < 0)
            showPartChord(chord, tr("Part chord %1: %2"));
    });
    connect(&m_session, &PartSession::playingPositionChanged, this, [this](int chord, int) {
        if (chord == m_playingChord)
            return;
        m_playingChord = chord;
        if (chord >= 0)
            showPartChord(chord, tr("Playing chord %1: %2"));
    });
    connect(&m_session, &PartSession::changed, this, [this](PartSession::Changes what) {
        // A chord shown from the part follows its edits (voicing, transposing, undo).
        if (m_showingPartChord && (what & (PartSession::Chords | PartSession::Settings)) &&
            m_session.currentChord() >= 0)
            showPartChord(m_session.currentChord(), tr("Part chord %1: %2"));
    });
}

void KeyboardPanel::setMidiInput(MidiInputController* input)
{
    m_input = input;
    if (m_input != nullptr)
        connectInput();
}

void KeyboardPanel::connectInput()
{
    connect(m_input, &MidiInputController::heldNotesChanged, m_keyboard,
            &PianoKeyboard::setPlayedNotes);
    connect(
        m_input, &MidiInputController::chordPlayed, this, [this](const std::vector<int>& notes) {
            showNotes(notes, tr("Played on %1").arg(QString::fromStdString(m_input->deviceName())));
        });
    connect(m_input, &MidiInputController::captured, this,
            [this](const std::vector<int>& notes) { capture(notes); });
    connect(m_input, &MidiInputController::deviceChanged, this, [this](const QString& name) {
        m_inputStatus->setText(name.isEmpty() ? tr("No MIDI input") : tr("Input: %1").arg(name));
        m_capture->setEnabled(!name.isEmpty());
    });
    connect(m_input, &MidiInputController::ended, this, [this](const QString& message) {
        m_inputStatus->setText(tr("MIDI input ended"));
        MessageBoxes::error(this, tr("MIDI input from %1 has ended: %2")
                                      .arg(QString::fromStdString(m_input->deviceName()), message));
    });
}

// ---- the notes -------------------------------------------------------------------------------

std::vector<int> KeyboardPanel::sounding(const std::vector<int>& values) const
{
    std::vector<int> notes;
    const int base = kOctave * m_session.part().baseOctave();
    for (int value : values) {
        if (!music::isEmptyNote(value))
            notes.push_back(value + base);
    }
    return notes;
}

void KeyboardPanel::showDatabaseChord()
{
    const auto position = m_chordDatabase.currentPosition();
    const music::Chord* chord =
        position ? m_chordDatabase.collection().chordAt(*position) : nullptr;
    if (chord == nullptr) {
        if (m_key->currentData().toString() == kSearchScale)
            rename();
        return;
    }
    std::vector<int> values;
    for (music::NoteValue value : chord->notes())
        values.push_back(value);
    showNotes(sounding(values), tr("Database chord %1").arg(QString::fromStdString(chord->name)));
}

void KeyboardPanel::showPartChord(int index, const QString& caption)
{
    if (index < 0 || index >= m_session.part().count())
        return;
    const part::PartChord& chord = m_session.part().chord(index);
    std::vector<int> values(chord.notes.begin(), chord.notes.begin() + chord.noteCount);
    showNotes(sounding(values),
              caption.arg(QString::number(index + 1), QString::fromStdString(chord.name)));
    m_showingPartChord = true;
}

void KeyboardPanel::showNotes(const std::vector<int>& notes, const QString& caption)
{
    std::vector<int> sorted;
    for (int note : notes) {
        if (note >= PianoKeyboard::kFirstNote && note <= PianoKeyboard::kLastNote)
            sorted.push_back(note);
    }
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    m_notes = sorted;
    m_captionText = caption;
    m_showingPartChord = false;
    m_keyboard->setHeldNotes(m_notes);
    m_caption->setText(m_notes.empty() ? caption
                                       : QStringLiteral("%1 (%2)").arg(caption, noteList(m_notes)));
    rename();
    scrollToNotes();
}

void KeyboardPanel::toggleNote(int note)
{
    std::vector<int> notes = m_notes;
    const auto found = std::find(notes.begin(), notes.end(), note);
    if (found != notes.end())
        notes.erase(found);
    else
        notes.push_back(note);
    showNotes(notes, tr("Chosen on the keyboard"));
    if (m_notes.empty())
        m_audition->stop();
    else
        m_audition->play(m_notes);
}

void KeyboardPanel::clear()
{
    m_audition->stop();
    showNotes({}, tr("Click keys, or select a chord."));
}

void KeyboardPanel::stopSound()
{
    m_audition->stop();
}

void KeyboardPanel::hideEvent(QHideEvent* event)
{
    m_audition->stop(); // no note outlives the panel
    QWidget::hideEvent(event);
}

music::NoteSpeller KeyboardPanel::speller() const
{
    const QString key = m_key->currentData().toString();
    music::NoteSpeller speller;
    if (key == kSearchScale) {
        const auto position = m_chordDatabase.currentAt(ChordDatabasePanel::SectionLevel);
        const music::ChordSection* section =
            position ? m_chordDatabase.collection().sectionAt(*position) : nullptr;
        if (section != nullptr && section->scaleFlag)
            music::NoteSpeller::parseKey(section->name, &m_chordDatabase.scales(), speller);
    } else if (!key.isEmpty()) {
        music::NoteSpeller::parseKey(key.toStdString(), nullptr, speller);
    }
    return speller;
}

void KeyboardPanel::rename()
{
    const music::NoteSpeller spelling = speller();
    m_keyName->setText(spelling.keyName().empty()
                           ? tr("(usual spelling)")
                           : tr("(spelled in %1)").arg(QString::fromStdString(spelling.keyName())));
    if (m_notes.empty()) {
        m_candidates->setCandidates({});
    } else {
        // The user's chord types may have changed since the last time: a namer of the moment.
        const music::ChordNamer namer(m_chordDatabase.chordTypes());
        m_candidates->setCandidates(namer.nameNotes(m_notes, spelling));
    }
    if (m_candidates->rowCount() > 0)
        m_candidateList->setCurrentIndex(m_candidates->index(0));
    m_add->setEnabled(!m_notes.empty());
    m_findChord->setEnabled(!m_notes.empty());
    m_findScale->setEnabled(!m_notes.empty());
}

void KeyboardPanel::scrollToNotes()
{
    if (m_notes.empty())
        return;
    const QRect low = m_keyboard->keyRect(m_notes.front());
    const QRect high = m_keyboard->keyRect(m_notes.back());
    const int middle = (low.left() + high.right()) / 2;
    const int margin =
        std::max(0, (m_scroll->viewport()->width() - (high.right() - low.left())) / 2);
    m_scroll->ensureVisible(middle, 0, std::min(margin, m_scroll->viewport()->width() / 2), 0);
}

void KeyboardPanel::showStatus(const QString& text)
{
    m_status->setText(text);
}

QString KeyboardPanel::chosenName() const
{
    const QModelIndex current = m_candidateList->currentIndex();
    return m_candidates->nameAt(current.isValid() ? current.row() : 0);
}

// ---- commands --------------------------------------------------------------------------------

bool KeyboardPanel::addToPart()
{
    if (m_notes.empty())
        return false;
    if (m_notes.size() > std::size_t(part::PartChord::kMaxNotes)) {
        MessageBoxes::error(this, tr("A chord of the part holds at most %1 notes; %2 are chosen.")
                                      .arg(part::PartChord::kMaxNotes)
                                      .arg(m_notes.size()));
        return false;
    }
    // Stored notes start at the part's base octave: lower chords move up by whole octaves.
    const int base = kOctave * m_session.part().baseOctave();
    int shift = 0;
    while (m_notes.front() + shift < base)
        shift += kOctave;
    if (m_notes.back() + shift - base >= music::kEmptyNote) {
        MessageBoxes::error(this,
                            tr("These notes do not fit into the part: its notes reach from "
                               "%1 to B9.")
                                .arg(QString::fromStdString(music::noteNameWithOctave(base))));
        return false;
    }
    part::PartChord chord;
    chord.name = chosenName().toStdString();
    for (int note : m_notes)
        chord.notes[chord.noteCount++] = static_cast<music::NoteValue>(note + shift - base);
    chord.pattern = m_session.part().currentPattern();
    chord.length = m_session.defaultLength();
    if (!m_partList.commands().insertChords(m_session.part().count(), {chord},
                                            tr(PartListCommands::kAddChord)))
        return false;
    showStatus(shift > 0 ? tr("Added %1 to the part, %2 octave(s) up: the part's notes start at "
                              "%3.")
                               .arg(chosenName())
                               .arg(shift / kOctave)
                               .arg(QString::fromStdString(music::noteNameWithOctave(base)))
                         : tr("Added %1 to the part.").arg(chosenName()));
    return true;
}

music::SearchCriteria::Ticks KeyboardPanel::pitchClassTicks() const
{
    music::SearchCriteria::Ticks ticks{};
    for (int note : m_notes)
        ticks[music::pitchClassOf(note)] = true;
    return ticks;
}

void KeyboardPanel::findChord()
{
    if (m_notes.empty())
        return;
    const music::SearchCriteria::Ticks ticks = pitchClassTicks();
    m_searching = true;
    m_chordDatabase.menuCommands().findChordWith(ticks, {}, {});
    m_searching = false;
    const auto position = m_chordDatabase.currentPosition();
    const music::Chord* hit = position ? m_chordDatabase.collection().chordAt(*position) : nullptr;
    bool holds = hit != nullptr;
    for (int pitchClass = 0; holds && pitchClass < kOctave; ++pitchClass) {
        if (!ticks[static_cast<std::size_t>(pitchClass)])
            continue;
        const std::vector<music::NoteValue> notes = hit->notes();
        holds = std::any_of(notes.begin(), notes.end(),
                            [pitchClass](int v) { return v % kOctave == pitchClass; });
    }
    showStatus(holds ? tr("Found %1 in the database (F3 finds the next).")
                           .arg(QString::fromStdString(hit->name))
                     : tr("No chord of the database holds these notes."));
}

void KeyboardPanel::findScale()
{
    if (m_notes.empty())
        return;
    const music::SearchCriteria::Ticks ticks = pitchClassTicks();
    m_searching = true;
    m_chordDatabase.menuCommands().findScaleWith(ticks, {}, {});
    m_chordDatabase.menuCommands().showSearchInfo();
    m_searching = false;
    if (m_key->currentData().toString() == kSearchScale)
        rename();
    showStatus(tr("The search info lists the scales that hold these notes."));
}

void KeyboardPanel::capture(const std::vector<int>& notes)
{
    if (notes.empty())
        return;
    const QString device =
        m_input != nullptr ? QString::fromStdString(m_input->deviceName()) : QString();
    showNotes(notes, tr("Captured from %1").arg(device));
    if (captureTarget() == CaptureTarget::Part)
        addToPart();
    else
        findChord();
}

KeyboardPanel::CaptureTarget KeyboardPanel::captureTarget() const
{
    return static_cast<CaptureTarget>(m_captureTarget->currentData().toInt());
}

} // namespace app
