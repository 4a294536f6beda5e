#pragma once

#include "app/PatternKeyMap.h"

#include <QTableView>

namespace app {

/**
 * The pattern grid's table: rectangles are selected by click, drag and Shift with the arrows;
 * the tracker keys of PatternKeyMap are handed to `keyEntered` instead of moving through the
 * items by their text; Enter or a double-click opens the cell's edit popup.
 */
class PatternGridView : public QTableView
{
    Q_OBJECT
public:
    explicit PatternGridView(QWidget* parent = nullptr);

    /** Whether the main row's digits play the upper octave's sharps (chord notes: keypad). */
    bool digitsPlayNotes() const { return m_digitsPlayNotes; }
    void setDigitsPlayNotes(bool on) { m_digitsPlayNotes = on; }

    /** Letters do not jump to items here: they are notes. */
    void keyboardSearch(const QString&) override {}

Q_SIGNALS:
    void keyEntered(const app::PatternKey& key);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_digitsPlayNotes = false;
};

} // namespace app
