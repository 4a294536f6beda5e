#include "app/PatternTrackCommands.h"

#include "app/ActionFactory.h"
#include "app/PartSession.h"
#include "app/PatternGridModel.h"
#include "app/PatternGridPanel.h"
#include "app/PatternGridView.h"
#include "part/TrackTransforms.h"

#include <QMainWindow>
#include <QMenu>
#include <QStatusBar>

#include <algorithm>
#include <numeric>

namespace app {

namespace {

constexpr int kStatusMilliseconds = 8000;

QString numbered(const char* id, int track)
{
    return QString::fromLatin1(id) + QString::number(track + 1);
}

bool isTrack(int track)
{
    return track >= 0 && track < part::kTrackCount;
}

} // namespace

PatternTrackCommands::PatternTrackCommands(PatternGridPanel& panel)
    : QObject(&panel), m_panel(panel)
{
    setObjectName(QStringLiteral("patternTrackCommands"));
    bindMenu();
    PartSession& session = m_panel.session();
    // A "Move tracks" step undone or redone takes the switches along.
    connect(&session, &PartSession::undone, this, [this](const QString& label) {
        if (label != QLatin1String(part::kUndoMoveTracks) || m_undoOrders.empty())
            return;
        reorderSwitches(m_undoOrders.back(), true);
        m_redoOrders.push_back(m_undoOrders.back());
        m_undoOrders.pop_back();
    });
    connect(&session, &PartSession::redone, this, [this](const QString& label) {
        if (label != QLatin1String(part::kUndoMoveTracks) || m_redoOrders.empty())
            return;
        reorderSwitches(m_redoOrders.back(), false);
        m_undoOrders.push_back(m_redoOrders.back());
        m_redoOrders.pop_back();
    });
}

void PatternTrackCommands::bindMenu()
{
    QMenu* menu = m_panel.trackHeaderMenu();
    const auto on = [this, menu](const QString& id, const std::function<void()>& slot) {
        ActionFactory::onTriggered(menu, id.toStdString(), this, slot);
    };
    on(QStringLiteral("trackHeader.moveLeft"), [this] { moveTrack(m_panel.menuTrack(), -1); });
    on(QStringLiteral("trackHeader.moveRight"), [this] { moveTrack(m_panel.menuTrack(), 1); });
    for (int track = 0; track < part::kTrackCount; ++track) {
        on(numbered("trackHeader.swapWith", track),
           [this, track] { swapTracks(m_panel.menuTrack(), track); });
        on(numbered("trackHeader.mergeInto", track),
           [this, track] { mergeTrack(m_panel.menuTrack(), track); });
    }
    connect(menu, &QMenu::aboutToShow, this, [this] { updateMenu(); });
}

void PatternTrackCommands::updateMenu()
{
    QMenu* menu = m_panel.trackHeaderMenu();
    const int track = m_panel.menuTrack();
    const bool editable = m_panel.model()->isEditable();
    ActionFactory::setEnabled(menu, "trackHeader.moveLeft", editable && track > 0);
    ActionFactory::setEnabled(menu, "trackHeader.moveRight",
                              editable && track < part::kTrackCount - 1);
    for (int other = 0; other < part::kTrackCount; ++other) {
        for (const char* id : {"trackHeader.swapWith", "trackHeader.mergeInto"})
            ActionFactory::setEnabled(menu, numbered(id, other).toStdString(),
                                      editable && other != track);
    }
}

void PatternTrackCommands::showStatus(const QString& text)
{
    if (auto* window = qobject_cast<QMainWindow*>(m_panel.window()))
        window->statusBar()->showMessage(text, kStatusMilliseconds);
}

bool PatternTrackCommands::moveTrack(int track, int by)
{
    const int to = track + by;
    if (!isTrack(track) || !isTrack(to) || by == 0)
        return false;
    Order order;
    std::iota(order.begin(), order.end(), 0);
    std::vector<int> list(order.begin(), order.end());
    list.erase(list.begin() + track);
    list.insert(list.begin() + to, track);
    std::copy(list.begin(), list.end(), order.begin());
    return reorder(order, track, to, false);
}

bool PatternTrackCommands::swapTracks(int a, int b)
{
    if (!isTrack(a) || !isTrack(b) || a == b)
        return false;
    Order order;
    std::iota(order.begin(), order.end(), 0);
    std::swap(order[static_cast<std::size_t>(a)], order[static_cast<std::size_t>(b)]);
    return reorder(order, a, b, true);
}

bool PatternTrackCommands::reorder(const Order& order, int from, int to, bool swap)
{
    if (!m_panel.model()->isEditable())
        return false;
    const bool done = m_panel.session().edit(
        QString::fromLatin1(part::kUndoMoveTracks), PartSession::Cells,
        [&](part::Part& p) {
            part::Pattern& pattern = p.patterns().pattern(p.currentPattern());
            pattern =
                swap ? part::swapTracks(pattern, from, to) : part::moveTrack(pattern, from, to);
            return true;
        },
        PartSession::EditKind::Live);
    // Empty tracks moved change no cell, yet their switches and the cursor still follow.
    if (done) {
        m_undoOrders.push_back(order);
        m_redoOrders.clear();
    }
    reorderSwitches(order, false);
    // The cursor, or a selected track, goes with the track it was on.
    const QRect selected = m_panel.selectedRect();
    if (selected == QRect(from, 0, 1, part::kRowCount))
        m_panel.selectRect(QRect(to, 0, 1, part::kRowCount));
    else if (m_panel.cursorTrack() == from)
        m_panel.moveCursorTo(m_panel.cursorRow(), to);
    showStatus(swap ? tr("Swapped tracks %1 and %2.").arg(from + 1).arg(to + 1)
                    : tr("Moved track %1 to place %2.").arg(from + 1).arg(to + 1));
    return true;
}

void PatternTrackCommands::reorderSwitches(const Order& order, bool inverse)
{
    PartSession& session = m_panel.session();
    part::RenderOptions options = session.renderOptions();
    const auto before = options.tracks;
    for (std::size_t i = 0; i < order.size(); ++i) {
        const auto old = static_cast<std::size_t>(order[i]);
        if (inverse)
            options.tracks[old] = before[i];
        else
            options.tracks[i] = before[old];
    }
    session.setRenderOptions(options);
}

bool PatternTrackCommands::mergeTrack(int source, int target)
{
    if (!isTrack(source) || !isTrack(target) || source == target || !m_panel.model()->isEditable())
        return false;
    const int conflicts = part::mergeConflicts(m_panel.model()->pattern(), target, source);
    const bool done = m_panel.session().edit(
        QString::fromLatin1(part::kUndoMergeTracks), PartSession::Cells,
        [&](part::Part& p) {
            part::Pattern& pattern = p.patterns().pattern(p.currentPattern());
            pattern = part::mergeTracks(pattern, target, source);
            return true;
        },
        PartSession::EditKind::Live);
    if (!done) {
        showStatus(tr("Track %1 has nothing to merge.").arg(source + 1));
        return false;
    }
    QString text = tr("Merged track %1 into track %2.").arg(source + 1).arg(target + 1);
    if (conflicts > 0)
        text += QLatin1Char(' ') + tr("On %1 rows both had an entry; track %2's was kept.")
                                       .arg(conflicts)
                                       .arg(std::max(source, target) + 1);
    showStatus(text);
    return true;
}

} // namespace app
