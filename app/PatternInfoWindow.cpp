#include "app/PatternInfoWindow.h"

#include "app/CTonalmancerDoc.h"
#include "app/MachinePanel.h"
#include "app/MachinePatternModel.h"
#include "app/MessageBoxes.h"
#include "app/UndoTarget.h"
#include "app/WaitCursor.h"
#include "song/BuzzSong.h"
#include "song/SongEdits.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>

namespace app {

namespace {

const QString kAreYouSure = QStringLiteral("Are you sure?");

} // namespace

PatternInfoWindow::PatternInfoWindow(MachinePanel& panel)
    : QWidget(&panel, Qt::Tool), m_panel(panel)
{
    setObjectName(QStringLiteral("patternInfoWindow"));
    setAccessibleName(tr("Pattern Info"));
    setWindowTitle(tr("Pattern Info"));

    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("patternSummary"));
    m_summary->setAccessibleName(tr("About the patterns"));
    m_summary->setWordWrap(true);

    m_model = new MachinePatternModel(panel.document(), this);
    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("patternInfoTable"));
    m_table->setAccessibleName(tr("Patterns of the machine"));
    m_table->setModel(m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setAlternatingRowColors(true);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 6);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setStretchLastSection(true);

    auto* buttons = new QDialogButtonBox(this);
    buttons->setObjectName(QStringLiteral("patternInfoButtons"));
    buttons->setAccessibleName(tr("Pattern commands"));
    const auto add = [this, buttons](const char* name, const QString& text, const QString& tip,
                                     void (PatternInfoWindow::*slot)()) {
        QPushButton* button = buttons->addButton(text, QDialogButtonBox::ActionRole);
        button->setObjectName(QString::fromLatin1(name));
        button->setAccessibleName(QString(text).remove(QLatin1Char('&')));
        button->setToolTip(tip);
        connect(button, &QPushButton::clicked, this, slot);
    };
    add("removeSelected", tr("Remove &Selected"), tr("Remove the selected patterns."),
        &PatternInfoWindow::removeSelected);
    add("removeAll", tr("Remove &All"), tr("Remove every pattern and the machine's sequences."),
        &PatternInfoWindow::removeAll);
    add("removeUnused", tr("Remove &Unused"), tr("Remove the patterns no sequence plays."),
        &PatternInfoWindow::removeUnused);
    add("trim", tr("&Trim"),
        tr("Cut the patterns after their last note and remove tracks without notes."),
        &PatternInfoWindow::trim);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addWidget(m_table, 1);
    layout->addWidget(buttons);
    resize(520, 420);

    // Its removals are taken back here too, not only in the machine list.
    UndoTarget* history = panel.document().history();
    const auto addKeys = [this](const QList<QKeySequence>& keys, const std::function<void()>& run) {
        auto* action = new QAction(this);
        action->setShortcuts(keys);
        action->setShortcutContext(Qt::WindowShortcut);
        connect(action, &QAction::triggered, this, run);
        addAction(action);
    };
    addKeys(QKeySequence::keyBindings(QKeySequence::Undo), [history] {
        if (history->canUndo())
            history->undo();
    });
    QList<QKeySequence> redoKeys = QKeySequence::keyBindings(QKeySequence::Redo);
    if (!redoKeys.contains(QKeySequence(Qt::CTRL | Qt::Key_Y)))
        redoKeys.append(QKeySequence(Qt::CTRL | Qt::Key_Y));
    addKeys(redoKeys, [history] {
        if (history->canRedo())
            history->redo();
    });

    connect(&panel, &MachinePanel::currentMachineChanged, this, [this] {
        if (isVisible())
            refresh();
    });
    refresh();
}

QPushButton* PatternInfoWindow::button(const char* objectName) const
{
    return findChild<QPushButton*>(QString::fromLatin1(objectName));
}

std::optional<std::size_t> PatternInfoWindow::machine() const
{
    const song::BuzzSong* song = m_panel.document().song();
    const auto machine = m_model->machine();
    if (song == nullptr || !machine || *machine >= song->machineCount())
        return std::nullopt;
    return machine;
}

void PatternInfoWindow::refresh()
{
    const auto current = m_panel.currentMachine();
    if (current != m_model->machine())
        m_model->setMachine(current);
    else
        m_model->sync();
    const song::BuzzSong* song = m_panel.document().song();
    const auto shown = machine();
    if (!shown) {
        setWindowTitle(tr("Pattern Info"));
        m_summary->setText(tr("No machine is selected in the machine view."));
        return;
    }
    const QString name = QString::fromStdString(song->machines()[*shown].name);
    setWindowTitle(tr("Pattern Info - %1").arg(name));
    m_summary->setText(tr("%1 has %2 patterns in %3 tracks.")
                           .arg(name)
                           .arg(song->patternCount(*shown))
                           .arg(song->machines()[*shown].trackCount));
}

std::vector<std::size_t> PatternInfoWindow::selectedRows() const
{
    std::vector<std::size_t> rows;
    for (const QModelIndex& index : m_table->selectionModel()->selectedRows(0))
        rows.push_back(static_cast<std::size_t>(index.row()));
    std::sort(rows.begin(), rows.end());
    return rows;
}

void PatternInfoWindow::removeSelected()
{
    const auto m = machine();
    const std::vector<std::size_t> rows = selectedRows();
    if (!m || m_model->rowCount() == 0 || rows.empty())
        return;
    if (!MessageBoxes::askYesNo(this, kAreYouSure, QStringLiteral("Remove selected patterns")))
        return;
    WaitCursor wait;
    m_panel.document().edit(tr("Remove patterns"), [&](song::BuzzSong& song) {
        song::removePatterns(song, *m, rows);
        return music::Result::success();
    });
}

void PatternInfoWindow::removeAll()
{
    const auto m = machine();
    if (!m || m_model->rowCount() == 0)
        return;
    if (!MessageBoxes::askYesNo(this, kAreYouSure, QStringLiteral("Remove all patterns")))
        return;
    WaitCursor wait;
    m_panel.document().edit(tr("Remove all patterns"), [&](song::BuzzSong& song) {
        song::removeAllPatterns(song, *m);
        return music::Result::success();
    });
}

void PatternInfoWindow::removeUnused()
{
    const auto m = machine();
    if (!m || m_model->rowCount() == 0)
        return;
    if (!MessageBoxes::askYesNo(this, kAreYouSure, QStringLiteral("Remove unused patterns")))
        return;
    WaitCursor wait;
    const std::size_t before = m_panel.document().song()->patternCount(*m);
    song::BuzzSong trial = *m_panel.document().song();
    song::removeUnusedPatterns(trial, *m);
    if (trial.patternCount(*m) == before) {
        Q_EMIT m_panel.statusMessage(tr("Every pattern of the machine is used."));
        return;
    }
    m_panel.document().edit(tr("Remove unused patterns"), [&](song::BuzzSong& song) {
        song::removeUnusedPatterns(song, *m);
        return music::Result::success();
    });
}

void PatternInfoWindow::trim()
{
    const auto m = machine();
    if (!m)
        return;
    // The question only informs: the patterns are trimmed whatever the answer, as the tracker's
    // users have always known this command (and Undo takes it back).
    MessageBoxes::askYesNo(
        this,
        QStringLiteral(
            "The program only looks for note-entries.\nRemove empty tracks and truncate pattern?"),
        QStringLiteral("Trim Pattern"));
    WaitCursor wait;
    song::BuzzSong trial = *m_panel.document().song();
    song::trimPatterns(trial, *m);
    if (trial.patternBlocks()[*m] == m_panel.document().song()->patternBlocks()[*m]) {
        Q_EMIT m_panel.statusMessage(tr("The patterns hold nothing to trim."));
        return;
    }
    m_panel.document().edit(tr("Trim patterns"), [&](song::BuzzSong& song) {
        song::trimPatterns(song, *m);
        return music::Result::success();
    });
}

void PatternInfoWindow::showEvent(QShowEvent* event)
{
    refresh();
    QWidget::showEvent(event);
}

} // namespace app
