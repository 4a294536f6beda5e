#pragma once

#include "app/UndoTarget.h"

#include <QUndoStack>

namespace app {

/** An undo target over a QUndoStack (the chord database keeps its steps as QUndoCommands). */
class UndoStackTarget : public UndoTarget
{
    Q_OBJECT
public:
    explicit UndoStackTarget(QUndoStack* stack, QObject* parent = nullptr)
        : UndoTarget(parent), m_stack(stack)
    {
        connect(stack, &QUndoStack::indexChanged, this, &UndoTarget::stateChanged);
        connect(stack, &QUndoStack::cleanChanged, this, &UndoTarget::stateChanged);
    }

    bool canUndo() const override { return m_stack->canUndo(); }
    bool canRedo() const override { return m_stack->canRedo(); }
    QString undoText() const override { return m_stack->undoText(); }
    QString redoText() const override { return m_stack->redoText(); }
    void undo() override { m_stack->undo(); }
    void redo() override { m_stack->redo(); }

private:
    QUndoStack* m_stack;
};

} // namespace app
