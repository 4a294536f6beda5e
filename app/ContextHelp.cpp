#include "app/ContextHelp.h"

#include "app/HelpRouter.h"

#include <QApplication>
#include <QKeyEvent>
#include <QVariant>
#include <QWidget>

#include <cstring>

namespace app {

namespace {

constexpr const char* kContextProperty = "tonalmancerHelpContext";

// The manual's topics: 1 main window, 3 chord database, 4 generating, 5 editing the database,
// 6 finding, 7 chord types and scales, 11 the Math Window, 12 the song's machines (the machine
// view's windows and dialogs are its children), 13 the pattern list, 14 the part settings,
// 15 presets.
struct ClassContext
{
    const char* className;
    unsigned context;
};
constexpr ClassContext kClassContexts[] = {
    {"app::CMainFrame", 1},          {"app::ChordDatabasePanel", 3},
    {"app::CGenerateDialog", 4},     {"app::CScaleGroupDialog", 5},
    {"app::CChordDialog", 5},        {"app::CChordFromListDialog", 5},
    {"app::CNoteChoiceDialog", 5},   {"app::CFindDialog", 6},
    {"app::CSearchInfoWindow", 6},   {"app::CTypeManagerDialog", 7},
    {"app::CChordTypeDialog", 7},    {"app::CScaleDialog", 7},
    {"app::CIntervalListDialog", 7}, {"app::MathWindow", 11},
    {"app::MachinePanel", 12},       {"app::PatternListPanel", 13},
    {"app::PartSettingsPanel", 14},  {"app::PresetPanel", 15},
    {"app::AddPresetDialog", 15},
};

} // namespace

ContextHelp::ContextHelp(HelpRouter& router, QObject* parent) : QObject(parent), m_router(router)
{
    setObjectName(QStringLiteral("contextHelp"));
    qApp->installEventFilter(this);
}

ContextHelp::~ContextHelp()
{
    qApp->removeEventFilter(this);
}

void ContextHelp::setContext(QWidget* widget, unsigned context)
{
    widget->setProperty(kContextProperty, context);
}

unsigned ContextHelp::contextOf(const QWidget* widget)
{
    for (const QWidget* w = widget; w != nullptr; w = w->parentWidget()) {
        const QVariant own = w->property(kContextProperty);
        if (own.isValid())
            return own.toUInt();
        for (const ClassContext& entry : kClassContexts) {
            if (std::strcmp(w->metaObject()->className(), entry.className) == 0)
                return entry.context;
        }
    }
    return 0;
}

bool ContextHelp::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType())
        return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier)
        return false;
    auto* widget = static_cast<QWidget*>(watched);
    const unsigned context = contextOf(widget);
    if (context == 0 || !m_router.isAvailable())
        return false;
    m_router.request(widget->window(), HelpRouter::kContext, context);
    return true;
}

} // namespace app
