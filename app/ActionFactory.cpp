#include "app/ActionFactory.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>

#include <map>

namespace app {

QAction* ActionFactory::createAction(const CommandEntry& entry, QObject* parent)
{
    auto* action = new QAction(toQString(entry.text), parent);
    action->setObjectName(toQString(entry.id));
    if (!entry.keys.empty())
        action->setShortcut(QKeySequence(toQString(entry.keys)));
    const QString status = toQString(commands::statusPart(entry.prompt));
    const QString tip = toQString(commands::toolTipPart(entry.prompt));
    action->setStatusTip(status);
    action->setToolTip(tip.isEmpty() ? status : tip);
    if (!tip.isEmpty())
        action->setIconText(tip);
    action->setCheckable(entry.checkable);
    action->setEnabled(entry.available);
    return action;
}

QMenu* ActionFactory::buildContextMenu(std::string_view name, QWidget* parent,
                                       const ActionLookup& forward)
{
    auto* root = new QMenu(parent);
    root->setObjectName(toQString(name));
    std::map<QString, QMenu*> subMenus; // by full path
    const QString rootName = toQString(name);
    for (const CommandEntry& entry : commands::contextMenus()) {
        // The table holds every widget's menu: the others' entries are skipped before any text
        // is made (this runs for each panel at start).
        if (entry.path.substr(0, entry.path.find('|')) != name)
            continue;
        const QStringList parts = toQString(entry.path).split(QLatin1Char('|'));
        QMenu* menu = root;
        QString key = rootName;
        for (qsizetype i = 1; i < parts.size(); ++i) {
            key += QLatin1Char('|') + parts[i];
            auto found = subMenus.find(key);
            if (found == subMenus.end()) {
                QMenu* sub = menu->addMenu(parts[i]);
                found = subMenus.emplace(key, sub).first;
            }
            menu = found->second;
        }
        QString text = toQString(entry.text);
        if (!entry.keys.empty()) {
            // Shown, not registered: one key may stand in several sub-menus of the same widget.
            const QKeySequence keys(toQString(entry.keys));
            const QString shown = keys.isEmpty() || keys[0].key() == Qt::Key_unknown
                                      ? toQString(entry.keys)
                                      : keys.toString(QKeySequence::NativeText);
            text += QLatin1Char('\t') + shown;
        }
        auto* action = new QAction(text, root);
        action->setObjectName(toQString(entry.id));
        action->setStatusTip(toQString(commands::statusPart(entry.prompt)));
        action->setEnabled(entry.available);
        if (QAction* target = forward ? forward(entry.id) : nullptr) {
            action->setEnabled(target->isEnabled());
            QObject::connect(action, &QAction::triggered, target, &QAction::trigger);
            QObject::connect(target, &QAction::enabledChanged, action, &QAction::setEnabled);
        }
        menu->addAction(action);
    }
    return root;
}

void ActionFactory::onTriggered(QMenu* menu, std::string_view id, QObject* receiver,
                                const std::function<void()>& slot)
{
    const QString name = toQString(id);
    for (QAction* action : menu->findChildren<QAction*>(name))
        QObject::connect(action, &QAction::triggered, receiver, [slot] { slot(); });
}

void ActionFactory::setEnabled(QMenu* menu, std::string_view id, bool enabled)
{
    const QString name = toQString(id);
    for (QAction* action : menu->findChildren<QAction*>(name))
        action->setEnabled(enabled);
}

} // namespace app
