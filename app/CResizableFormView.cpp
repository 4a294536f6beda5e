#include "app/CResizableFormView.h"

#include <QSettings>
#include <QSplitter>

namespace app {

CResizableFormView::CResizableFormView(QWidget* parent) : QWidget(parent)
{}

QSplitter* CResizableFormView::createSplitter(Qt::Orientation orientation, const QString& name,
                                              QWidget* parent)
{
    auto* splitter = new QSplitter(orientation, parent);
    splitter->setObjectName(name);
    splitter->setChildrenCollapsible(false);
    m_splitters.push_back(splitter);
    return splitter;
}

void CResizableFormView::saveLayout(QSettings& settings) const
{
    for (const QSplitter* splitter : m_splitters)
        settings.setValue(QStringLiteral("view/") + splitter->objectName(), splitter->saveState());
}

void CResizableFormView::restoreLayout(QSettings& settings)
{
    for (QSplitter* splitter : m_splitters) {
        const QByteArray state =
            settings.value(QStringLiteral("view/") + splitter->objectName()).toByteArray();
        if (!state.isEmpty())
            splitter->restoreState(state);
    }
}

} // namespace app
