#pragma once

#include <QKeySequence>
#include <QTreeView>

#include <functional>
#include <map>

namespace app {

/**
 * The list of the song's machines: rows of several columns, several machines selectable, names
 * edited in place. Its keys are its own: a key bound here (Ctrl+P for Pattern Info, Del...)
 * wins over a window command on the same key while the list has the focus, as in every list
 * whose keys act on its selection.
 */
class MachineTreeView : public QTreeView
{
    Q_OBJECT
public:
    explicit MachineTreeView(QWidget* parent = nullptr);

    /** Runs `slot` on `keys` while the list has the focus. */
    void bindKey(const QKeySequence& keys, std::function<void()> slot);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    const std::function<void()>* slotFor(const QKeyEvent* event) const;

    std::map<int, std::function<void()>> m_keys; // by QKeyCombination::toCombined()
};

} // namespace app
