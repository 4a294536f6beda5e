#pragma once

#include <QObject>
#include <QString>

namespace app {

/**
 * Something the user can undo and redo: the chord database, the part. The main view binds its
 * Undo and Redo commands to the target of the panel that has the focus, and names the step in
 * the command's text ("Undo Add chord").
 */
class UndoTarget : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual bool canUndo() const = 0;
    virtual bool canRedo() const = 0;
    /** The label of the step that undo takes back ("Add chord"); empty when there is none. */
    virtual QString undoText() const = 0;
    /** The label of the step that redo brings back; empty when there is none. */
    virtual QString redoText() const = 0;
    virtual void undo() = 0;
    virtual void redo() = 0;

Q_SIGNALS:
    /** Any of the above may have changed. */
    void stateChanged();
};

} // namespace app
