#pragma once

#include "app/ActionFactory.h"
#include "part/ChordTransforms.h"

#include <QObject>
#include <QString>

namespace app {

class PartListPanel;
class PartSession;

/**
 * The note transformations of the part's chords in the window: Transpose, Mirror and Note
 * Limits (Part menu and the part list's Transform menu, each through its dialog) and Remove
 * Double (part list). Each acts on the selected chords, or on every chord when at most one is
 * selected (a single click only marks where playback starts), and is one undo step under the
 * part library's label. Refusals come as a message box with the library's text; what was done,
 * and chord names that had to be marked, show in the status bar.
 */
class ChordTransformCommands : public QObject
{
    Q_OBJECT
public:
    /** `actions` resolves the frame's commands by id; `panel` owns this object. */
    ChordTransformCommands(PartListPanel& panel, PartSession& session,
                           const ActionFactory::ActionLookup& actions);

    /** The chords a transformation acts on now. */
    part::ChordSelection targetChords() const;

    void transpose();
    void mirror();
    void noteLimits();
    void removeDouble();

    /** Take an edit of the library as the step `label`; a refused one is shown and dropped. */
    bool take(const char* label, const part::ChordEdit& edit);

private:
    void updateEnabled();
    void showStatus(const QString& text);

    PartListPanel& m_panel;
    PartSession& m_session;
    ActionFactory::ActionLookup m_actions;
};

} // namespace app
