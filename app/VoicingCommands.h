#pragma once

#include "app/ActionFactory.h"
#include "music/Result.h"
#include "part/Part.h"
#include "part/VoiceLeading.h"
#include "part/VoicingOptions.h"

#include <QObject>

#include <vector>

namespace app {

class KeyboardPanel;
class PartListPanel;
class PartSession;

/** What voicing a set of chords gives, before it is applied. */
struct VoicingOutcome
{
    music::Result result;
    /** The part indices of the chords, ascending, and their new notes in that order. */
    std::vector<int> indices;
    std::vector<part::PartChord> chords;
    part::VoiceLeadingCost before;
    part::VoiceLeadingCost after;
};

/**
 * "Voicing" and "Voice Leading" in the window (Part menu and the part list's Transform menu):
 * one dialog for both, on the selected chords or on every chord when at most one is selected.
 * The selected chords are voiced as one run in their order, also when the selection has gaps.
 * While the dialog is open the keyboard panel previews the current chord's new notes; OK
 * applies one undo step, "Voice leading" when the voices are led, "Voicing" otherwise.
 */
class VoicingCommands : public QObject
{
    Q_OBJECT
public:
    /** `panel` owns this object; `keyboard` may be null (no preview). */
    VoicingCommands(PartListPanel& panel, PartSession& session, KeyboardPanel* keyboard,
                    const ActionFactory::ActionLookup& actions);

    /**
     * Voices `indices` of `part` with `options`. A chord that has no voicing in the range is
     * named as the part list numbers it (from 1).
     */
    static VoicingOutcome voice(const part::Part& part, const std::vector<int>& indices,
                                const part::VoicingOptions& options, bool leadVoices,
                                bool keepFirst);
    /** The chords the commands act on now. */
    std::vector<int> targetChords() const;

    /** Opens the dialog, the voices led or not at first; true when something was applied. */
    bool run(bool leadVoices);
    /** Applies an outcome as one step named after `leadVoices`; false when nothing changed. */
    bool apply(const VoicingOutcome& outcome, bool leadVoices);

private:
    void updateEnabled();

    PartListPanel& m_panel;
    PartSession& m_session;
    KeyboardPanel* m_keyboard;
    ActionFactory::ActionLookup m_actions;
};

} // namespace app
