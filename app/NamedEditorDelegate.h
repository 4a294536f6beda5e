#pragma once

#include <QStyledItemDelegate>

namespace app {

/**
 * The standard in-place editor of an item view, named for assistive technology and tests: a
 * screen reader announces "Pattern name" rather than an anonymous text field when a name is
 * edited in place.
 */
class NamedEditorDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    NamedEditorDelegate(const QString& accessibleName, const QString& objectName,
                        QObject* parent = nullptr);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;

private:
    QString m_accessibleName;
    QString m_objectName;
};

} // namespace app
