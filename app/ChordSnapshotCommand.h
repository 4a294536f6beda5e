#pragma once

#include "music/ChordCollection.h"

#include <QUndoCommand>

#include <functional>

namespace app {

/**
 * One undoable edit of the chord database, kept as the collection before and after it. Undo and
 * redo put the whole snapshot back and call `changed` so the tree can be rebuilt.
 */
class ChordSnapshotCommand : public QUndoCommand
{
public:
    ChordSnapshotCommand(const QString& text, music::ChordCollection& target,
                         music::ChordCollection before, music::ChordCollection after,
                         std::function<void()> changed)
        : QUndoCommand(text), m_target(target), m_before(std::move(before)),
          m_after(std::move(after)), m_changed(std::move(changed))
    {}

    void undo() override
    {
        m_target = m_before;
        if (m_changed)
            m_changed();
    }
    void redo() override
    {
        m_target = m_after;
        if (m_changed)
            m_changed();
    }

private:
    music::ChordCollection& m_target;
    music::ChordCollection m_before;
    music::ChordCollection m_after;
    std::function<void()> m_changed;
};

} // namespace app
