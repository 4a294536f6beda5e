#pragma once

#include <QHeaderView>

namespace app {

/**
 * A header whose sections all take the size of the first or the last (row numbers of one width,
 * tracks of one kind): its size hint measures those two instead of up to two hundred sections,
 * which the item view asks for again at every change of its geometry, start-up included. The
 * measure is kept until the sections, their texts, the font or the style change.
 * Clickable and highlighting its sections, as an item view's own headers are.
 */
class UniformHeader : public QHeaderView
{
    Q_OBJECT
public:
    explicit UniformHeader(Qt::Orientation orientation, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    void setModel(QAbstractItemModel* model) override;

protected:
    bool event(QEvent* event) override;

private:
    mutable QSize m_hint; // invalid: to be measured
};

} // namespace app
