#pragma once

#include "app/PatternKeyMap.h"

#include <QObject>

#include <functional>

namespace part {
class Pattern;
}

namespace app {

class PatternGridPanel;

/**
 * The pattern grid's commands: the tracker keys, the context menu's clipboard and clearing
 * commands with their keys (Ctrl+C, Ctrl+X, Ctrl+V, Ctrl+A, Ctrl+Shift+A, Del, Ctrl+Del) and the
 * track switches (Ctrl+M for the cursor's track). Each change of cells is one live undo step of
 * the part; a command that would change nothing records nothing.
 */
class PatternGridCommands : public QObject
{
    Q_OBJECT
public:
    explicit PatternGridCommands(PatternGridPanel& panel);

    /**
     * What a grid key does: an entry (chord note, fixed note, off) fills the cursor's cell; a
     * change (chance, shift, clear) applies to every selected cell; the octave keys move the
     * entry octave. After an entry, or a change of the cursor's cell alone, the cursor moves on
     * by the step.
     */
    void enterKey(const PatternKey& key);

    void copy();
    void cut();
    /** Pastes at the top left of the selection (or the cursor), cut at the pattern's edges. */
    void paste();
    void selectAll();
    /** Selects a whole track (-1: the cursor's), keeping the cursor's row. */
    void selectTrack(int track = -1);
    void clearSelected();
    void clearPattern();
    /** Turns a track's switch (-1: the cursor's track) on or off; not part of the undo. */
    void toggleTrack(int track = -1);

private:
    void bindMenus();
    void bindKeys();
    /** One live undo step `label` changing the current pattern; false when nothing changed. */
    bool editPattern(const char* label, const std::function<void(part::Pattern&)>& change);
    void moveOn();

    PatternGridPanel& m_panel;
};

} // namespace app
