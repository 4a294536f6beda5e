#include "app/PartListCommands.h"

#include "app/CFindDialog.h"
#include "app/ChordCollectionModel.h"
#include "app/ChordDatabaseCommands.h"
#include "app/ChordDatabasePanel.h"
#include "app/ChordListPrinter.h"
#include "app/ChordSettingsDialog.h"
#include "app/ForbidNotesDialog.h"
#include "app/MessageBoxes.h"
#include "app/PartChordMime.h"
#include "app/PartFileCommands.h"
#include "app/PartListPanel.h"
#include "app/PartSession.h"

#include <QApplication>
#include <QClipboard>
#include <QDataStream>
#include <QIODevice>
#include <QMimeData>
#include <QTimer>

#include <algorithm>

namespace app {

PartListCommands::PartListCommands(PartListPanel& panel, PartSession& session,
                                   ChordDatabasePanel& chordDatabase, PartFileCommands& partFiles)
    : QObject(&panel), m_panel(panel), m_session(session), m_chordDatabase(chordDatabase),
      m_partFiles(partFiles)
{
    setObjectName(QStringLiteral("partListCommands"));
}

std::vector<part::PartChord> PartListCommands::selectedChords() const
{
    std::vector<part::PartChord> chords;
    for (int row : m_session.selectedChords())
        chords.push_back(m_session.part().chord(row));
    return chords;
}

// ---- adding and moving -----------------------------------------------------------------------

std::vector<part::PartChord>
PartListCommands::fromDatabase(const std::vector<music::TreePosition>& positions) const
{
    std::vector<part::PartChord> chords;
    for (const music::TreePosition& position : positions) {
        const music::Chord* source = m_chordDatabase.collection().chordAt(position);
        if (source == nullptr)
            continue;
        part::PartChord chord;
        chord.name = source->name;
        for (music::NoteValue note : source->notes())
            chord.notes[chord.noteCount++] = note;
        chord.pattern = m_session.part().currentPattern();
        chord.length = m_session.defaultLength();
        chords.push_back(std::move(chord));
    }
    return chords;
}

bool PartListCommands::insertChords(int row, std::vector<part::PartChord> chords,
                                    const QString& label)
{
    if (chords.empty())
        return false;
    const int count = static_cast<int>(chords.size());
    if (m_session.part().count() + count > part::Part::kMaxChords) {
        MessageBoxes::error(&m_panel, tr(kPartFull));
        return false;
    }
    row = std::clamp(row, 0, m_session.part().count());
    const int patterns = m_session.part().patterns().count();
    const std::uint16_t current = m_session.part().currentPattern();
    const bool done = m_session.edit(label, PartSession::Chords, [&](part::Part& p) {
        for (int i = 0; i < count; ++i) {
            part::PartChord& chord = chords[static_cast<std::size_t>(i)];
            // Chords from another part may name patterns this one does not have.
            if (chord.pattern >= patterns)
                chord.pattern = current;
            p.insert(row + i, std::move(chord));
        }
        return true;
    });
    if (done) {
        std::vector<int> rows(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            rows[static_cast<std::size_t>(i)] = row + i;
        m_panel.selectRows(rows);
    }
    return done;
}

bool PartListCommands::hasDatabaseChords() const
{
    const std::vector<music::TreePosition> selected = m_chordDatabase.selectedPositions();
    return std::any_of(selected.begin(), selected.end(),
                       [](const music::TreePosition& p) { return p.isChord(); });
}

void PartListCommands::addSelectedDatabaseChords()
{
    insertChords(m_session.part().count(), fromDatabase(m_chordDatabase.selectedPositions()),
                 tr(kAddChord));
}

bool PartListCommands::moveChords(const std::vector<int>& rows, int target, bool copy)
{
    std::vector<int> sorted = rows;
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    std::erase_if(sorted, [this](int r) { return r < 0 || r >= m_session.part().count(); });
    if (sorted.empty())
        return false;
    if (copy) {
        std::vector<part::PartChord> chords;
        for (int r : sorted)
            chords.push_back(m_session.part().chord(r));
        return insertChords(target, std::move(chords), tr(kMoveAddChords));
    }
    target = std::clamp(target, 0, m_session.part().count());
    const int before = static_cast<int>(
        std::count_if(sorted.begin(), sorted.end(), [target](int r) { return r < target; }));
    const int at = target - before;
    const bool done =
        m_session.edit(tr(kMoveAddChords), PartSession::Chords, [&sorted, at](part::Part& p) {
            std::vector<part::PartChord> moved;
            for (auto it = sorted.rbegin(); it != sorted.rend(); ++it) {
                moved.insert(moved.begin(), p.chord(*it));
                p.remove(*it);
            }
            for (std::size_t i = 0; i < moved.size(); ++i)
                p.insert(at + static_cast<int>(i), std::move(moved[i]));
            p.setSelection(part::kNoIndex, part::kNoIndex);
            return true;
        });
    std::vector<int> placed(sorted.size());
    for (std::size_t i = 0; i < placed.size(); ++i)
        placed[i] = at + static_cast<int>(i);
    m_panel.selectRows(placed);
    return done;
}

void PartListCommands::drop(const QMimeData& data, int row, Qt::DropAction action)
{
    // The data lives as long as the drop; the part changes once the drag has ended.
    const QString databaseType = QString::fromLatin1(ChordCollectionModel::kChordMimeType);
    if (data.hasFormat(databaseType)) {
        QByteArray bytes = data.data(databaseType);
        QDataStream stream(&bytes, QIODevice::ReadOnly);
        std::vector<music::TreePosition> positions;
        while (!stream.atEnd()) {
            music::TreePosition p;
            stream >> p.baseGroup >> p.section >> p.subsection >> p.chord;
            if (stream.status() != QDataStream::Ok)
                break;
            positions.push_back(p);
        }
        QTimer::singleShot(0, this, [this, row, chords = fromDatabase(positions)] {
            insertChords(row, chords, tr(kMoveAddChords));
        });
        return;
    }
    const std::vector<int> rows = PartChordMime::rows(data, m_panel.model()->dragSource());
    if (!rows.empty()) {
        QTimer::singleShot(0, this, [this, rows, row, copy = action == Qt::CopyAction] {
            moveChords(rows, row, copy);
        });
        return;
    }
    std::vector<part::PartChord> chords =
        PartChordMime::chords(&data, m_session.part().currentPattern(), m_session.defaultLength());
    QTimer::singleShot(0, this, [this, row, chords = std::move(chords)] {
        insertChords(row, chords, tr(kMoveAddChords));
    });
}

// ---- dialogs ---------------------------------------------------------------------------------

void PartListCommands::editChordSettings()
{
    const int row = m_session.currentChord();
    if (row < 0 || row >= m_session.part().count())
        return;
    QStringList patterns;
    for (int i = 0; i < m_session.part().patterns().count(); ++i)
        patterns << m_panel.model()->patternText(i);
    ChordSettingsDialog dialog(patterns, &m_panel);
    dialog.setChord(m_session.part().chord(row));
    if (dialog.exec() == QDialog::Accepted)
        applyChordSettings(row, dialog.chord());
}

bool PartListCommands::applyChordSettings(int row, const part::PartChord& chord)
{
    if (row < 0 || row >= m_session.part().count())
        return false;
    return m_session.edit(tr(kSetChord), PartSession::Chords, [row, &chord](part::Part& p) {
        p.chord(row) = chord;
        return true;
    });
}

void PartListCommands::forbidNotes()
{
    ForbidNotesDialog dialog(&m_panel);
    dialog.setFlags(m_session.part().pitchClassFlags());
    if (dialog.exec() != QDialog::Accepted)
        return;
    const part::PitchClassFlags flags = dialog.flags();
    m_session.edit(QString::fromLatin1(PartSession::kEditPart), PartSession::Settings,
                   [&flags](part::Part& p) {
                       p.setPitchClassFlags(flags);
                       return true;
                   });
}

// ---- clipboard and removing ------------------------------------------------------------------

void PartListCommands::copy()
{
    const std::vector<part::PartChord> chords = selectedChords();
    if (!chords.empty())
        QApplication::clipboard()->setMimeData(PartChordMime::create(chords));
}

void PartListCommands::cut()
{
    if (m_session.selectedChords().empty())
        return;
    copy();
    removeRows(m_session.selectedChords(), tr(kCut));
}

void PartListCommands::paste(bool append)
{
    std::vector<part::PartChord> chords =
        PartChordMime::chords(QApplication::clipboard()->mimeData(),
                              m_session.part().currentPattern(), m_session.defaultLength());
    int row = m_session.part().count();
    if (!append && m_session.currentChord() >= 0)
        row = m_session.currentChord();
    insertChords(row, std::move(chords), tr(kPaste));
}

void PartListCommands::removeSelected()
{
    removeRows(m_session.selectedChords(), tr(kRemoveChords));
}

void PartListCommands::removeRows(std::vector<int> rows, const QString& label)
{
    if (rows.empty())
        return;
    const bool done = m_session.edit(label, PartSession::Chords, [&rows](part::Part& p) {
        for (auto it = rows.rbegin(); it != rows.rend(); ++it)
            p.remove(*it);
        p.setSelection(part::kNoIndex, part::kNoIndex);
        return true;
    });
    // The chord after the removed ones (or the new last one) becomes the current chord.
    const int count = m_session.part().count();
    if (done && count > 0)
        m_panel.selectRows({std::min(rows.front(), count - 1)});
}

void PartListCommands::clearList()
{
    m_session.edit(tr(kDeleteAllChords), PartSession::Chords, [](part::Part& p) {
        p.clearChords();
        p.setSelection(part::kNoIndex, part::kNoIndex);
        return true;
    });
}

// ---- sorting and normalizing ----------------------------------------------------------------

void PartListCommands::takeTransformed(const char* label, const part::Part& transformed)
{
    const std::vector<int> selected = m_session.selectedChords();
    const int current = m_session.currentChord();
    m_session.edit(tr(label), PartSession::Chords, [&transformed](part::Part& p) {
        const auto first = p.selectionFirst();
        const auto last = p.selectionLast();
        p = transformed;
        p.setSelection(first, last); // the chords stay where they were chosen
        return true;
    });
    m_panel.selectRows(selected, current);
}

void PartListCommands::sort(part::ChordSortKey key, bool descending)
{
    std::vector<int> chords = m_session.selectedChords();
    if (chords.size() < 2)
        chords = part::allChords(m_session.part());
    takeTransformed(part::kUndoSort, part::sortChords(m_session.part(), chords, key, descending));
}

void PartListCommands::normalize(bool all)
{
    const std::vector<int> chords =
        all ? part::allChords(m_session.part()) : m_session.selectedChords();
    if (chords.empty())
        return;
    takeTransformed(part::kUndoNormalize, part::normalizeChords(m_session.part(), chords));
}

void PartListCommands::invert()
{
    if (m_session.selectedChords().empty())
        return;
    const part::ChordEdit edit = part::invertChords(m_session.part(), m_session.selectedChords());
    if (!edit) {
        MessageBoxes::error(&m_panel, QString::fromStdString(edit.result.message()));
        return;
    }
    takeTransformed(part::kUndoInvert, edit.part);
}

// ---- scale search and printing ---------------------------------------------------------------

CNoteKeyboard::Ticks PartListCommands::scaleSearchNotes() const
{
    std::vector<part::PartChord> chords = selectedChords();
    if (chords.empty())
        chords = m_session.part().chords();
    CNoteKeyboard::Ticks ticks{};
    for (const part::PartChord& chord : chords) {
        for (int i = 0; i < chord.noteCount && i < part::PartChord::kMaxNotes; ++i)
            ticks[music::pitchClassOf(chord.notes[static_cast<std::size_t>(i)])] = true;
    }
    return ticks;
}

void PartListCommands::findScale()
{
    ChordDatabaseCommands& search = m_chordDatabase.menuCommands();
    CFindDialog dialog(QStringLiteral("Find scale"), search.scaleSearch().includeHistory(),
                       search.scaleSearch().skipHistory(), &m_panel);
    dialog.keyboard()->setTicks(scaleSearchNotes());
    if (dialog.exec() != QDialog::Accepted)
        return;
    search.findScaleWith(dialog.ticks(), dialog.includeText(), dialog.skipText());
    search.showSearchInfo();
}

bool PartListCommands::hasCurrentPreset() const
{
    return m_partFiles.hasCurrentPreset();
}

void PartListCommands::replaceCurrentPreset()
{
    m_partFiles.replaceCurrentPreset();
}

void PartListCommands::printList()
{
    ChordListPrinter(m_session.part(), m_partFiles.partTitle())
        .preview(&m_panel, m_partFiles.userFolder());
}

} // namespace app
