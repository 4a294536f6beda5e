#include "app/ChordTransformCommands.h"

#include "app/MessageBoxes.h"
#include "app/MirrorDialog.h"
#include "app/NoteLimitsDialog.h"
#include "app/NoteNames.h"
#include "app/PartListCommands.h"
#include "app/PartListPanel.h"
#include "app/PartSession.h"
#include "app/TransposeDialog.h"
#include "part/ChordOrder.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QStatusBar>

namespace app {

namespace {

constexpr int kStatusMilliseconds = 8000;

QString noteText(int value)
{
    return QString::fromStdString(music::noteNameWithOctave(value));
}

QString chordCount(const part::ChordSelection& chords)
{
    return ChordTransformDialog::chordCount(static_cast<int>(chords.size()));
}

} // namespace

ChordTransformCommands::ChordTransformCommands(PartListPanel& panel, PartSession& session,
                                               const ActionFactory::ActionLookup& actions)
    : QObject(&panel), m_panel(panel), m_session(session), m_actions(actions)
{
    setObjectName(QStringLiteral("chordTransformCommands"));
    const auto on = [this](const char* id, void (ChordTransformCommands::*slot)()) {
        if (QAction* action = m_actions ? m_actions(id) : nullptr)
            connect(action, &QAction::triggered, this, slot);
    };
    on("part.transpose", &ChordTransformCommands::transpose);
    on("part.mirror", &ChordTransformCommands::mirror);
    on("part.noteLimits", &ChordTransformCommands::noteLimits);
    ActionFactory::onTriggered(panel.contextMenu(), "partList.removeDouble", this,
                               [this] { removeDouble(); });
    connect(&m_session, &PartSession::changed, this, [this] { updateEnabled(); });
    updateEnabled();
}

part::ChordSelection ChordTransformCommands::targetChords() const
{
    const std::vector<int>& selected = m_session.selectedChords();
    return selected.size() >= 2 ? selected : part::allChords(m_session.part());
}

void ChordTransformCommands::updateEnabled()
{
    const bool hasChords = m_session.part().count() > 0;
    for (const char* id : {"part.transpose", "part.mirror", "part.noteLimits"}) {
        if (QAction* action = m_actions ? m_actions(id) : nullptr)
            action->setEnabled(hasChords);
    }
    ActionFactory::setEnabled(m_panel.contextMenu(), "partList.removeDouble",
                              m_session.part().count() > 1);
}

void ChordTransformCommands::showStatus(const QString& text)
{
    if (auto* window = qobject_cast<QMainWindow*>(m_panel.window()))
        window->statusBar()->showMessage(text, kStatusMilliseconds);
}

bool ChordTransformCommands::take(const char* label, const part::ChordEdit& edit)
{
    if (!edit) {
        MessageBoxes::error(&m_panel, QString::fromStdString(edit.result.message()));
        return false;
    }
    m_panel.commands().takeTransformed(label, edit.part);
    return true;
}

void ChordTransformCommands::transpose()
{
    const part::ChordSelection chords = targetChords();
    if (chords.empty())
        return;
    TransposeDialog dialog(m_session.part(), chords, &m_panel);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const int halfNotes = dialog.halfNotes();
    const part::ChordEdit edit = part::transposeChords(m_session.part(), chords, halfNotes);
    if (!take(part::kUndoTranspose, edit))
        return;
    QString text = tr("Transposed %1 by %2 half-notes.")
                       .arg(chordCount(chords), halfNotes > 0 ? QStringLiteral("+%1").arg(halfNotes)
                                                              : QString::number(halfNotes));
    if (!edit.markedNames.empty()) {
        QStringList names;
        for (int index : edit.markedNames)
            names << QStringLiteral("\"%1\"").arg(
                QString::fromStdString(edit.part.chord(index).name));
        text += QLatin1Char(' ') +
                tr("No root to respell, so marked: %1.").arg(names.join(QStringLiteral(", ")));
    }
    showStatus(text);
}

void ChordTransformCommands::mirror()
{
    const part::ChordSelection chords = targetChords();
    if (chords.empty())
        return;
    MirrorDialog dialog(m_session.part(), chords, &m_panel);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const part::MirrorAxis axis = dialog.axis();
    if (!take(part::kUndoMirror, part::mirrorChords(m_session.part(), chords, axis)))
        return;
    const QString around = axis.halfStepAbove ? tr("between %1 and %2")
                                                    .arg(NoteNames::name(axis.note),
                                                         NoteNames::name((axis.note + 1) % 12))
                                              : NoteNames::name(axis.note);
    showStatus(tr("Mirrored %1 around %2.").arg(chordCount(chords), around));
}

void ChordTransformCommands::noteLimits()
{
    const part::ChordSelection chords = targetChords();
    if (chords.empty())
        return;
    NoteLimitsDialog dialog(m_session.part(), chords, &m_panel);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const int low = dialog.low();
    const int high = dialog.high();
    if (!take(part::kUndoNoteLimits, part::limitChordNotes(m_session.part(), chords, low, high)))
        return;
    showStatus(tr("The notes of %1 lie within %2..%3.")
                   .arg(chordCount(chords), noteText(low), noteText(high)));
}

void ChordTransformCommands::removeDouble()
{
    const int before = m_session.part().count();
    const part::Part thinned = part::removeDoubleChords(m_session.part(), targetChords());
    // The library moves the part's selected range to the chords that remain.
    m_session.edit(QString::fromLatin1(part::kUndoRemoveDouble), PartSession::Chords,
                   [&thinned](part::Part& p) {
                       p = thinned;
                       return true;
                   });
    const int removed = before - m_session.part().count();
    showStatus(removed > 0 ? tr("Removed %1 with the notes of the chord before.")
                                 .arg(ChordTransformDialog::chordCount(removed))
                           : tr("No neighbouring chords have the same notes."));
}

} // namespace app
