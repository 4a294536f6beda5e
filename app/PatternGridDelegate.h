#pragma once

#include <QStyledItemDelegate>

namespace app {

/**
 * Draws the pattern grid as a step sequencer reads: chord notes as their number with a small
 * arrow for a shift, chance notes with an orange "?", fixed notes as note name and octave ("t"
 * for the track's octave), off-events as "off". The first row of every beat is tinted, rows the
 * current chord does not play are greyed, a muted track's notes are faded, and the row being
 * played carries an amber band with a marker at its left. A preview (the Math Window's pattern
 * before it is applied) is tinted violet, more strongly where it differs from the part. Edits a
 * cell in a small line popup that takes the cell's text ("3", "?2+", "C#4", "off").
 */
class PatternGridDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
};

} // namespace app
