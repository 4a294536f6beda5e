#include "app/PatternGridCommands.h"

#include "app/ActionFactory.h"
#include "app/MessageBoxes.h"
#include "app/PartSession.h"
#include "app/PatternCellEdits.h"
#include "app/PatternClipboard.h"
#include "app/PatternGridModel.h"
#include "app/PatternGridPanel.h"
#include "app/PatternGridView.h"
#include "app/PatternTrackHeader.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMimeData>
#include <QShortcut>

namespace app {

using Action = PatternKey::Action;

namespace {

const QRect kWholePattern(0, 0, part::kTrackCount, part::kRowCount);

} // namespace

PatternGridCommands::PatternGridCommands(PatternGridPanel& panel) : QObject(&panel), m_panel(panel)
{
    setObjectName(QStringLiteral("patternGridCommands"));
    bindMenus();
    bindKeys();
    connect(m_panel.grid(), &PatternGridView::keyEntered, this,
            [this](const PatternKey& key) { enterKey(key); });
    connect(m_panel.trackHeader(), &PatternTrackHeader::switchClicked, this,
            [this](int track) { toggleTrack(track); });
}

void PatternGridCommands::bindMenus()
{
    const auto on = [this](QMenu* menu, std::string_view id, const std::function<void()>& slot) {
        ActionFactory::onTriggered(menu, id, this, slot);
    };
    QMenu* menu = m_panel.contextMenu();
    on(menu, "patternEditor.copy", [this] { copy(); });
    on(menu, "patternEditor.cut", [this] { cut(); });
    on(menu, "patternEditor.paste", [this] { paste(); });
    on(menu, "patternEditor.selectAll", [this] { selectAll(); });
    on(menu, "patternEditor.selectTrack", [this] { selectTrack(); });
    on(menu, "patternEditor.clearSelected", [this] { clearSelected(); });
    on(menu, "patternEditor.clearPattern", [this] { clearPattern(); });
    QMenu* header = m_panel.trackHeaderMenu();
    on(header, "trackHeader.toggle", [this] { toggleTrack(m_panel.menuTrack()); });
    on(header, "patternEditor.selectTrack", [this] { selectTrack(m_panel.menuTrack()); });
}

void PatternGridCommands::bindKeys()
{
    // The menus only show these keys; the grid takes them while it has the focus.
    const auto key = [this](const QKeySequence& sequence, const std::function<void()>& slot) {
        auto* shortcut = new QShortcut(sequence, m_panel.grid(), nullptr, nullptr,
                                       Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, [slot] { slot(); });
    };
    key(QKeySequence::Copy, [this] { copy(); });
    key(QKeySequence::Cut, [this] { cut(); });
    key(QKeySequence::Paste, [this] { paste(); });
    key(QKeySequence::SelectAll, [this] { selectAll(); });
    key(QKeySequence(QStringLiteral("Ctrl+Shift+A")), [this] { selectTrack(); });
    key(QKeySequence(QStringLiteral("Del")), [this] { clearSelected(); });
    key(QKeySequence(QStringLiteral("Ctrl+Del")), [this] { clearPattern(); });
    key(QKeySequence(QStringLiteral("Ctrl+M")), [this] { toggleTrack(); });
}

bool PatternGridCommands::editPattern(const char* label,
                                      const std::function<void(part::Pattern&)>& change)
{
    if (!m_panel.model()->isEditable())
        return false;
    return m_panel.session().edit(
        QString::fromLatin1(label), PartSession::Cells,
        [&change](part::Part& p) {
            change(p.patterns().pattern(p.currentPattern()));
            return true;
        },
        PartSession::EditKind::Live);
}

void PatternGridCommands::moveOn()
{
    const int row = std::min(m_panel.cursorRow() + m_panel.step(), part::kRowCount - 1);
    m_panel.moveCursorTo(row, m_panel.cursorTrack());
}

void PatternGridCommands::enterKey(const PatternKey& key)
{
    PartSession& session = m_panel.session();
    switch (key.action) {
    case Action::None:
        return;
    case Action::OctaveDown:
    case Action::OctaveUp:
        session.setDefaultOctave(session.defaultOctave() +
                                 (key.action == Action::OctaveUp ? 1 : -1));
        return;
    case Action::ChordNote:
    case Action::FixedNote:
    case Action::Off: {
        const auto cell = PatternCellEdits::entered(key, session.defaultOctave());
        const int row = m_panel.cursorRow();
        const int track = m_panel.cursorTrack();
        editPattern(PartSession::kEditPattern,
                    [&](part::Pattern& pattern) { pattern.setCell(track, row, *cell); });
        moveOn();
        return;
    }
    case Action::Chance:
    case Action::ShiftUp:
    case Action::ShiftDown:
    case Action::Clear: {
        const QRect rect = m_panel.selectedRect();
        if (rect.isEmpty())
            return;
        const std::uint8_t base = session.part().baseOctave();
        editPattern(PartSession::kEditPattern, [&](part::Pattern& pattern) {
            PatternCellEdits::modify(pattern, rect, key.action, base);
        });
        if (rect.width() == 1 && rect.height() == 1)
            moveOn();
        return;
    }
    }
}

void PatternGridCommands::copy()
{
    const QRect rect = m_panel.selectedRect();
    if (rect.isEmpty())
        return;
    const PatternClipboard::Block block = PatternCellEdits::copy(m_panel.model()->pattern(), rect);
    QGuiApplication::clipboard()->setMimeData(PatternClipboard::toMimeData(block).release());
}

void PatternGridCommands::cut()
{
    const QRect rect = m_panel.selectedRect();
    if (rect.isEmpty() || !m_panel.model()->isEditable())
        return;
    copy();
    editPattern(PartSession::kPatternCut,
                [&rect](part::Pattern& pattern) { PatternCellEdits::clear(pattern, rect); });
}

void PatternGridCommands::paste()
{
    if (!m_panel.model()->isEditable())
        return;
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    QString error;
    const auto block =
        data != nullptr ? PatternClipboard::fromMimeData(*data, &error) : std::nullopt;
    if (!block) {
        MessageBoxes::error(&m_panel,
                            error.isEmpty() ? tr("The clipboard holds no pattern cells.") : error);
        return;
    }
    const QRect target = m_panel.selectedRect();
    const QPoint topLeft = target.isEmpty() ? QPoint(0, 0) : target.topLeft();
    QRect pasted;
    editPattern(PartSession::kPatternPaste, [&](part::Pattern& pattern) {
        pasted = PatternCellEdits::paste(pattern, *block, topLeft);
    });
    if (!pasted.isEmpty())
        m_panel.selectRect(pasted);
}

void PatternGridCommands::selectAll()
{
    const int row = m_panel.cursorRow();
    const int track = m_panel.cursorTrack();
    m_panel.selectRect(kWholePattern);
    m_panel.grid()->selectionModel()->setCurrentIndex(m_panel.model()->index(row, track),
                                                      QItemSelectionModel::NoUpdate);
}

void PatternGridCommands::selectTrack(int track)
{
    if (track < 0 || track >= part::kTrackCount)
        track = m_panel.cursorTrack();
    const int row = m_panel.cursorRow();
    m_panel.selectRect(QRect(track, 0, 1, part::kRowCount));
    m_panel.grid()->selectionModel()->setCurrentIndex(m_panel.model()->index(row, track),
                                                      QItemSelectionModel::NoUpdate);
}

void PatternGridCommands::clearSelected()
{
    const QRect rect = m_panel.selectedRect();
    if (rect.isEmpty())
        return;
    editPattern(PartSession::kEditPattern,
                [&rect](part::Pattern& pattern) { PatternCellEdits::clear(pattern, rect); });
}

void PatternGridCommands::clearPattern()
{
    editPattern(PartSession::kEditPattern,
                [](part::Pattern& pattern) { PatternCellEdits::clear(pattern, kWholePattern); });
}

void PatternGridCommands::toggleTrack(int track)
{
    if (track < 0 || track >= part::kTrackCount)
        track = m_panel.cursorTrack();
    PartSession& session = m_panel.session();
    part::RenderOptions options = session.renderOptions();
    auto& on = options.tracks[static_cast<std::size_t>(track)];
    on = !on;
    session.setRenderOptions(options);
}

} // namespace app
