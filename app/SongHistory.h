#pragma once

#include "app/UndoTarget.h"
#include "song/BuzzSong.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

namespace app {

/**
 * The undo history of the open song: each step keeps the whole song as it was before the edit
 * (wave data is shared between copies, so a step costs the machines and patterns only), and
 * the revision number it had, so that the document can tell whether undoing reached the saved
 * state. Undo and redo swap the kept song with the document's through `swap`.
 */
class SongHistory : public UndoTarget
{
    Q_OBJECT
public:
    /** A song and the revision it had; revisions tell saved from unsaved states. */
    struct State
    {
        song::BuzzSong song;
        std::uint64_t revision = 0;
    };
    /** Puts `state` in place of the document's song and returns the document's old one. */
    using Swap = std::function<State(State)>;

    static constexpr std::size_t kMaxSteps = 30;

    explicit SongHistory(Swap swap, QObject* parent = nullptr);

    /** Records an edit named `label`; `before` is the song before it. Clears the redo steps. */
    void record(const QString& label, State before);
    /** Forgets every step (another song was opened). */
    void clear();

    bool canUndo() const override { return !m_undo.empty(); }
    bool canRedo() const override { return !m_redo.empty(); }
    QString undoText() const override { return canUndo() ? m_undo.back().label : QString(); }
    QString redoText() const override { return canRedo() ? m_redo.back().label : QString(); }
    void undo() override;
    void redo() override;

private:
    struct Step
    {
        QString label;
        State state;
    };

    Swap m_swap;
    std::vector<Step> m_undo;
    std::vector<Step> m_redo;
};

} // namespace app
