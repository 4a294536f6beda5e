#include "app/NamedEditorDelegate.h"

namespace app {

NamedEditorDelegate::NamedEditorDelegate(const QString& accessibleName, const QString& objectName,
                                         QObject* parent)
    : QStyledItemDelegate(parent), m_accessibleName(accessibleName), m_objectName(objectName)
{}

QWidget* NamedEditorDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                           const QModelIndex& index) const
{
    QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
    if (editor != nullptr) {
        editor->setObjectName(m_objectName);
        editor->setAccessibleName(m_accessibleName);
    }
    return editor;
}

} // namespace app
