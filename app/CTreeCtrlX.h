#pragma once

#include <QTreeView>

namespace app {

/**
 * The tree of the chord database: several items can be selected, names are edited in place
 * (F2 or a slow second click), chords are dragged inside the tree (Ctrl copies), and a right
 * click asks the owner for its context menu. F2 renames here even though the window gives the
 * key to another command, as in every tree.
 */
class CTreeCtrlX : public QTreeView
{
    Q_OBJECT
public:
    explicit CTreeCtrlX(QWidget* parent = nullptr);

protected:
    bool event(QEvent* event) override;
};

} // namespace app
