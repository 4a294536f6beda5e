#include "app/PartSettingsPanel.h"

#include "app/PartSession.h"
#include "app/PartSettingsDelegate.h"
#include "app/PartSettingsModel.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>

#include <algorithm>

namespace app {

PartSettingsPanel::PartSettingsPanel(PartSession& session,
                                     const ActionFactory::ActionLookup& actions, QWidget* parent)
    : QTreeView(parent), m_session(session)
{
    setObjectName(QStringLiteral("settingsView"));
    setAccessibleName(tr("Part settings"));
    setToolTip(tr("Double-click a value, or press F2, to change it."));
    m_model = new PartSettingsModel(session, this);
    m_model->setObjectName(QStringLiteral("settingsModel"));
    setModel(m_model);
    setItemDelegate(new PartSettingsDelegate(this));
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                    QAbstractItemView::AnyKeyPressed);
    header()->setSectionResizeMode(PartSettingsModel::LabelColumn, QHeaderView::ResizeToContents);

    m_menu = ActionFactory::buildContextMenu("settingsView", this, actions);
    m_menu->setAccessibleName(tr("Part settings commands"));
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& point) { m_menu->popup(viewport()->mapToGlobal(point)); });
    ActionFactory::onTriggered(m_menu, "settings.reset", this, [this] { resetSettings(); });
}

bool PartSettingsPanel::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    const QModelIndex value =
        index.isValid() ? index.siblingAtColumn(PartSettingsModel::ValueColumn) : index;
    return QTreeView::edit(value, trigger, event);
}

void PartSettingsPanel::resetSettings()
{
    m_session.edit(QString::fromLatin1(kResetSettings),
                   PartSession::Patterns | PartSession::Settings | PartSession::Cells,
                   [](part::Part& p) {
                       p.patterns().setName({});
                       p.setBaseOctave(part::Part::kDefaultBaseOctave);
                       if (p.currentPattern() < p.patterns().count())
                           p.patterns().setTrackOctaves(p.currentPattern(), {});
                       return true;
                   });
    // The editor's own settings, as a fresh session has them.
    const PartSession fresh;
    m_session.setBaseWave(fresh.baseWave());
    m_session.setDefaultOctave(fresh.defaultOctave());
    m_session.setDefaultLength(fresh.defaultLength());
}

QSize PartSettingsPanel::sizeHint() const
{
    const int row = std::max(sizeHintForRow(0), fontMetrics().height());
    const int height =
        header()->sizeHint().height() + PartSettingsModel::RowCount * row + 2 * frameWidth();
    return {QTreeView::sizeHint().width(), height};
}

bool PartSettingsPanel::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_F2 && key->modifiers() == Qt::NoModifier) {
            event->accept();
            return true;
        }
    }
    return QTreeView::event(event);
}

} // namespace app
