#pragma once

#include "music/Note.h"
#include "music/Result.h"
#include "song/MachineClip.h"

#include <QObject>
#include <QString>

#include <cstddef>
#include <optional>
#include <vector>

namespace app {

class MachinePanel;

/**
 * The machine view's commands on the song: Remove, Rename, Copy, Paste, Clone, Replace, New
 * (Add Machine), the Clean and Transform commands. Each change is one undoable step of the
 * document, named after its command; failures are shown with the song library's own text.
 * The copied machine stays here for the whole run, so it can be pasted into a song opened later.
 */
class MachineCommands : public QObject
{
    Q_OBJECT
public:
    /** `panel` owns this object and outlives it. */
    explicit MachineCommands(MachinePanel& panel);

    /** Remove (Del): the selected machines, or the current one, after asking. */
    void remove();
    /** Renames machine `machine`; a refused name is shown and false returned. */
    bool rename(std::size_t machine, const QString& name);
    /** Copy (Ctrl+C): the current machine with its patterns onto the program's clipboard. */
    void copy();
    /** Paste (Ctrl+V): the copied machine, fed into the master or the current effect. */
    void paste();
    /** Clone: a copy of each selected machine with its patterns and connections. */
    void clone();
    /** Replace: asks for a compatible machine of the database, warns what is lost, replaces. */
    void replace();
    /** Replaces the current machine by database entry `databaseIndex`, warning first. */
    bool replaceWith(std::size_t databaseIndex);
    /** New / Add Machine (F4): asks for a machine of the database and adds it. */
    void addMachine();
    /** Adds database entry `databaseIndex`, fed into the master or the current effect. */
    bool addFromDatabase(std::size_t databaseIndex);
    void removeEmptySequences();
    /** Remove Unused Patterns of the selected machines, after asking. */
    void removeUnusedPatterns();
    /** Transpose: asks for the half-notes, then moves the notes of the selected machines. */
    void transpose();
    void transposeBy(int halfNotes);
    /** Invert: asks for the axis note, then mirrors the notes of the selected machines. */
    void invert();
    void invertAround(music::NoteValue centre);

    /** What Copy put on the clipboard, if anything. */
    const std::optional<song::MachineClip>& clip() const { return m_clip; }

private:
    /** Shows a failure with the library's text; returns whether it succeeded. */
    bool report(const music::Result& result);
    /** The current machine when it is an effect or the master: where new machines feed. */
    std::optional<std::size_t> destination() const;
    /** The selected machines, else the current one; says so when there is none. */
    std::vector<std::size_t> targets();
    void applyNoteTransform(const QString& label, bool invert, int value);

    MachinePanel& m_panel;
    std::optional<song::MachineClip> m_clip;
};

} // namespace app
