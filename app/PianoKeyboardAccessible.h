#pragma once

#include <QAccessibleWidget>

#include <map>

namespace app {

class PianoKeyboard;

/**
 * What assistive technology sees of a PianoKeyboard: a list whose children are its keys, each a
 * check box named as the keyboard names it ("C4, held"), checked while held, with a "Toggle"
 * action that clicks it. The key interfaces are made on demand and deleted with this one.
 */
class PianoKeyboardAccessible : public QAccessibleWidget
{
public:
    explicit PianoKeyboardAccessible(PianoKeyboard* keyboard);
    ~PianoKeyboardAccessible() override;

    /** Makes QAccessible create this interface for every PianoKeyboard; once per process. */
    static void installFactory();

    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QAccessibleInterface* focusChild() const override;

private:
    PianoKeyboard* keyboard() const;

    mutable std::map<int, QAccessible::Id> m_keys;
};

} // namespace app
