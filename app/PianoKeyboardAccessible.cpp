#include "app/PianoKeyboardAccessible.h"

#include "app/PianoKeyboard.h"

#include <QPointer>

namespace app {

namespace {

/** One key of the keyboard; it has no QObject of its own. */
class KeyInterface : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    KeyInterface(PianoKeyboard* keyboard, int note) : m_keyboard(keyboard), m_note(note) {}

    bool isValid() const override { return !m_keyboard.isNull(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override
    {
        const QAccessibleInterface* parentInterface = parent();
        return parentInterface != nullptr ? parentInterface->window() : nullptr;
    }
    QAccessibleInterface* parent() const override
    {
        return m_keyboard ? QAccessible::queryAccessibleInterface(m_keyboard.data()) : nullptr;
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QAccessibleInterface* focusChild() const override { return nullptr; }

    QString text(QAccessible::Text t) const override
    {
        if (!m_keyboard)
            return {};
        return t == QAccessible::Name ? m_keyboard->keyText(m_note) : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override
    {
        if (!m_keyboard)
            return {};
        const QRect local = m_keyboard->keyRect(m_note);
        return {m_keyboard->mapToGlobal(local.topLeft()), local.size()};
    }
    QAccessible::Role role() const override { return QAccessible::CheckBox; }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!m_keyboard)
            return state;
        state.checkable = true;
        state.checked = m_keyboard->isHeld(m_note);
        state.focusable = true;
        state.focused = m_keyboard->hasFocus() && m_keyboard->focusKey() == m_note;
        state.invisible =
            m_keyboard->visibleRegion().intersected(m_keyboard->keyRect(m_note)).isEmpty();
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    QStringList actionNames() const override { return {toggleAction(), pressAction()}; }
    void doAction(const QString& name) override
    {
        if (m_keyboard && (name == toggleAction() || name == pressAction()))
            m_keyboard->clickKey(m_note);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

    int note() const { return m_note; }
    const PianoKeyboard* keyboard() const { return m_keyboard.data(); }

private:
    QPointer<PianoKeyboard> m_keyboard;
    int m_note;
};

QAccessibleInterface* keyboardFactory(const QString& className, QObject* object)
{
    if (className == QLatin1String("app::PianoKeyboard") && object != nullptr &&
        object->isWidgetType())
        return new PianoKeyboardAccessible(static_cast<PianoKeyboard*>(object));
    return nullptr;
}

} // namespace

PianoKeyboardAccessible::PianoKeyboardAccessible(PianoKeyboard* keyboard)
    : QAccessibleWidget(keyboard, QAccessible::List)
{}

PianoKeyboardAccessible::~PianoKeyboardAccessible()
{
    for (const auto& [note, id] : m_keys)
        QAccessible::deleteAccessibleInterface(id);
}

void PianoKeyboardAccessible::installFactory()
{
    static const bool installed = [] {
        QAccessible::installFactory(keyboardFactory);
        return true;
    }();
    (void)installed;
}

PianoKeyboard* PianoKeyboardAccessible::keyboard() const
{
    return static_cast<PianoKeyboard*>(widget());
}

int PianoKeyboardAccessible::childCount() const
{
    return PianoKeyboard::kKeyCount;
}

QAccessibleInterface* PianoKeyboardAccessible::child(int index) const
{
    if (index < 0 || index >= PianoKeyboard::kKeyCount)
        return nullptr;
    const auto found = m_keys.find(index);
    if (found != m_keys.end())
        return QAccessible::accessibleInterface(found->second);
    auto* key = new KeyInterface(keyboard(), PianoKeyboard::kFirstNote + index);
    m_keys[index] = QAccessible::registerAccessibleInterface(key);
    return key;
}

int PianoKeyboardAccessible::indexOfChild(const QAccessibleInterface* child) const
{
    const auto* key = dynamic_cast<const KeyInterface*>(child);
    if (key == nullptr || key->keyboard() != keyboard())
        return -1;
    return key->note() - PianoKeyboard::kFirstNote;
}

QAccessibleInterface* PianoKeyboardAccessible::childAt(int x, int y) const
{
    const int note = keyboard()->keyAt(keyboard()->mapFromGlobal(QPoint(x, y)));
    return note < 0 ? nullptr : child(note - PianoKeyboard::kFirstNote);
}

QAccessibleInterface* PianoKeyboardAccessible::focusChild() const
{
    if (!keyboard()->hasFocus())
        return nullptr;
    return child(keyboard()->focusKey() - PianoKeyboard::kFirstNote);
}

} // namespace app
