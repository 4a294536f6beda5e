#include "app/VoicingCommands.h"

#include "app/KeyboardPanel.h"
#include "app/MessageBoxes.h"
#include "app/PartListPanel.h"
#include "app/PartSession.h"
#include "app/VoicingDialog.h"
#include "part/ChordTransforms.h"
#include "part/ChordVoicer.h"

#include <QAction>
#include <QMainWindow>
#include <QStatusBar>

namespace app {

namespace {

constexpr int kStatusMilliseconds = 8000;

} // namespace

VoicingCommands::VoicingCommands(PartListPanel& panel, PartSession& session,
                                 KeyboardPanel* keyboard,
                                 const ActionFactory::ActionLookup& actions)
    : QObject(&panel), m_panel(panel), m_session(session), m_keyboard(keyboard), m_actions(actions)
{
    setObjectName(QStringLiteral("voicingCommands"));
    if (QAction* action = m_actions ? m_actions("part.voicing") : nullptr)
        connect(action, &QAction::triggered, this, [this] { run(false); });
    if (QAction* action = m_actions ? m_actions("part.voiceLeading") : nullptr)
        connect(action, &QAction::triggered, this, [this] { run(true); });
    connect(&m_session, &PartSession::changed, this, [this] { updateEnabled(); });
    updateEnabled();
}

void VoicingCommands::updateEnabled()
{
    for (const char* id : {"part.voicing", "part.voiceLeading"}) {
        if (QAction* action = m_actions ? m_actions(id) : nullptr)
            action->setEnabled(m_session.part().count() > 0);
    }
}

std::vector<int> VoicingCommands::targetChords() const
{
    const std::vector<int>& selected = m_session.selectedChords();
    return selected.size() >= 2 ? selected : part::allChords(m_session.part());
}

VoicingOutcome VoicingCommands::voice(const part::Part& part, const std::vector<int>& indices,
                                      const part::VoicingOptions& options, bool leadVoices,
                                      bool keepFirst)
{
    VoicingOutcome outcome;
    outcome.result = part::ChordVoicer::checkOptions(options);
    if (!outcome.result)
        return outcome;
    std::vector<part::PartChord> chords;
    bool firstKept = !keepFirst;
    for (int index : indices) {
        if (index < 0 || index >= part.count())
            continue;
        const part::PartChord& chord = part.chord(index);
        // Said here with the number the part list shows; the library counts from 0.
        if (chord.noteCount > 0 && firstKept &&
            part::ChordVoicer::candidates(chord, options).empty()) {
            outcome.result = music::Result::failure(
                part::ChordVoicer::noVoicingMessage(chord, options, index + 1));
            return outcome;
        }
        firstKept = firstKept || chord.noteCount > 0;
        outcome.indices.push_back(index);
        chords.push_back(chord);
    }
    outcome.result =
        leadVoices ? part::VoiceLeading::lead(chords, options, keepFirst, outcome.chords)
                   : part::VoiceLeading::voiceEach(chords, options, keepFirst, outcome.chords);
    if (!outcome.result)
        return outcome;
    outcome.before = part::VoiceLeading::runCost(chords);
    outcome.after = part::VoiceLeading::runCost(outcome.chords);
    return outcome;
}

bool VoicingCommands::run(bool leadVoices)
{
    const std::vector<int> chords = targetChords();
    if (chords.empty())
        return false;
    const int current = m_session.currentChord();
    VoicingDialog dialog(m_session.part(), chords, current, leadVoices, &m_panel);
    std::vector<int> shownNotes;
    QString shownCaption;
    if (m_keyboard != nullptr) {
        shownNotes = m_keyboard->notes();
        shownCaption = m_keyboard->caption();
        connect(&dialog, &VoicingDialog::previewChanged, m_keyboard, &KeyboardPanel::showNotes);
        dialog.refresh(); // the preview of the fields as they open
    }
    const bool accepted = dialog.exec() == QDialog::Accepted;
    if (!accepted) {
        if (m_keyboard != nullptr)
            m_keyboard->showNotes(shownNotes, shownCaption);
        return false;
    }
    return apply(dialog.outcome(), dialog.leadVoices());
}

bool VoicingCommands::apply(const VoicingOutcome& outcome, bool leadVoices)
{
    if (!outcome.result) {
        MessageBoxes::error(&m_panel, QString::fromStdString(outcome.result.message()));
        return false;
    }
    const std::string_view label =
        leadVoices ? part::VoiceLeading::kVoiceLeadingLabel : part::VoiceLeading::kVoicingLabel;
    const bool changed =
        m_session.edit(QString::fromLatin1(label.data(), static_cast<qsizetype>(label.size())),
                       PartSession::Chords, [&outcome](part::Part& p) {
                           for (std::size_t k = 0; k < outcome.indices.size(); ++k) {
                               if (outcome.indices[k] < p.count())
                                   p.chord(outcome.indices[k]) = outcome.chords[k];
                           }
                           return true;
                       });
    if (auto* window = qobject_cast<QMainWindow*>(m_panel.window())) {
        window->statusBar()->showMessage(
            changed
                ? tr("%1: the voices move %2 half-notes instead of %3.")
                      .arg(QString::fromLatin1(label.data(), static_cast<qsizetype>(label.size())))
                      .arg(outcome.after.movement)
                      .arg(outcome.before.movement)
                : tr("The chords already had these voicings."),
            kStatusMilliseconds);
    }
    return changed;
}

} // namespace app
