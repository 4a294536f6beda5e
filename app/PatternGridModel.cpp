#include "app/PatternGridModel.h"

#include "app/PartSession.h"
#include "app/PatternCellText.h"

#include <QBrush>
#include <QColor>
#include <QFont>

#include <algorithm>

namespace app {

PatternGridModel::PatternGridModel(PartSession& session, QObject* parent)
    : QAbstractTableModel(parent), m_session(session)
{
    m_tracksOn.fill(true);
    sync();
    connect(&m_session, &PartSession::changed, this, [this] { sync(); });
    connect(&m_session, &PartSession::currentChordChanged, this, [this] { sync(); });
    connect(&m_session, &PartSession::renderOptionsChanged, this, [this] { sync(); });
    connect(&m_session, &PartSession::playingPositionChanged, this, [this] { sync(); });
}

bool PatternGridModel::isCell(const QModelIndex& index) const
{
    return index.isValid() && index.model() == this && index.row() < part::kRowCount &&
           index.column() < part::kTrackCount;
}

int PatternGridModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : part::kRowCount;
}

int PatternGridModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : part::kTrackCount;
}

QVariant PatternGridModel::data(const QModelIndex& index, int role) const
{
    if (!isCell(index))
        return {};
    const int row = index.row();
    const int track = index.column();
    const part::PatternCell& c = cell(row, track);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return PatternCellText::format(c);
    case Qt::AccessibleTextRole: {
        QString text =
            tr("Track %1, row %2: %3").arg(track + 1).arg(row).arg(PatternCellText::describe(c));
        if (row >= m_playedRows)
            text += tr(", not played");
        if (row == m_playingRow)
            text += tr(", playing");
        if (m_preview)
            text += tr(", preview");
        return text;
    }
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignCenter);
    case CellKindRole:
        return static_cast<int>(c.kind);
    case CellValueRole:
        return static_cast<int>(c.value);
    case CellOctaveRole:
        return static_cast<int>(c.octave);
    case PastLengthRole:
        return row >= m_playedRows;
    case BeatRole:
        return m_ticksPerBeat > 0 && row % m_ticksPerBeat == 0;
    case PlayingRole:
        return row == m_playingRow;
    case TrackOnRole:
        return m_tracksOn[static_cast<std::size_t>(track)];
    case PreviewRole:
        if (!m_preview)
            return 0;
        return c == m_partPattern.cell(track, row) ? 1 : 2;
    default:
        return {};
    }
}

bool PatternGridModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !isEditable() || !isCell(index))
        return false;
    const auto parsed = PatternCellText::parse(value.toString());
    if (!parsed)
        return false;
    const int track = index.column();
    const int row = index.row();
    m_session.edit(
        QString::fromLatin1(PartSession::kEditPattern), PartSession::Cells,
        [&](part::Part& p) {
            p.patterns().pattern(p.currentPattern()).setCell(track, row, *parsed);
            return true;
        },
        PartSession::EditKind::Live);
    return true;
}

QVariant PatternGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical) {
        if (section < 0 || section >= part::kRowCount)
            return {};
        const bool beat = m_ticksPerBeat > 0 && section % m_ticksPerBeat == 0;
        switch (role) {
        case Qt::DisplayRole:
            return QStringLiteral("%1").arg(section, 2, 10, QLatin1Char('0'));
        case Qt::AccessibleTextRole:
            return tr("Row %1").arg(section);
        case Qt::FontRole: {
            QFont font;
            font.setBold(beat);
            return font;
        }
        case Qt::BackgroundRole:
            if (section == m_playingRow)
                return QBrush(QColor(255, 196, 64));
            return {};
        case BeatRole:
            return beat;
        case PlayingRole:
            return section == m_playingRow;
        default:
            return {};
        }
    }
    if (section < 0 || section >= part::kTrackCount)
        return {};
    const std::uint8_t setting = m_shown.trackOctave(section);
    const bool on = m_tracksOn[static_cast<std::size_t>(section)];
    switch (role) {
    case Qt::DisplayRole:
        return tr("Track %1").arg(section + 1);
    case Qt::AccessibleTextRole:
        return tr("Track %1, octave %2, %3")
            .arg(section + 1)
            .arg(PatternCellText::trackOctaveWords(setting), on ? tr("on") : tr("off"));
    case Qt::ToolTipRole:
        return tr("Track %1 plays in octave \"%2\" (set in the part settings). Click the switch "
                  "to turn the track on or off; right-click for the track's commands.")
            .arg(section + 1)
            .arg(PatternCellText::trackOctaveWords(setting));
    case TrackOnRole:
        return on;
    case TrackOctaveRole:
        return static_cast<int>(setting);
    default:
        return {};
    }
}

Qt::ItemFlags PatternGridModel::flags(const QModelIndex& index) const
{
    if (!isCell(index))
        return Qt::NoItemFlags;
    Qt::ItemFlags result = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (isEditable())
        result |= Qt::ItemIsEditable;
    return result;
}

void PatternGridModel::sync()
{
    const part::Part& p = m_session.part();
    const part::Pattern* current = p.patterns().find(p.currentPattern());
    const bool editableChanged = m_hasPattern != (current != nullptr);
    m_hasPattern = current != nullptr;
    m_partPattern = current != nullptr ? *current : part::Pattern();
    announceCells(m_preview ? *m_preview : m_partPattern);

    const auto playsThisPattern = [&](int chord) {
        return m_hasPattern && chord >= 0 && chord < p.count() &&
               p.chord(chord).pattern == p.currentPattern();
    };
    const int chord = m_session.currentChord();
    const int playedRows = playsThisPattern(chord)
                               ? std::min<int>(p.chord(chord).length, part::kRowCount)
                               : part::kRowCount;
    const int ticksPerBeat = p.ticksPerBeat();
    const auto& tracksOn = m_session.renderOptions().tracks;
    const bool tracksChanged = tracksOn != m_tracksOn;
    if (editableChanged || tracksChanged || playedRows != m_playedRows ||
        ticksPerBeat != m_ticksPerBeat) {
        m_playedRows = playedRows;
        m_ticksPerBeat = ticksPerBeat;
        m_tracksOn = tracksOn;
        Q_EMIT dataChanged(index(0, 0), index(part::kRowCount - 1, part::kTrackCount - 1));
        Q_EMIT headerDataChanged(Qt::Vertical, 0, part::kRowCount - 1);
        if (tracksChanged)
            Q_EMIT headerDataChanged(Qt::Horizontal, 0, part::kTrackCount - 1);
    }

    const int playingChord = m_session.playingChord();
    const int row = m_session.playingRow();
    const int playing =
        playsThisPattern(playingChord) && row >= 0 && row < part::kRowCount ? row : -1;
    if (playing != m_playingRow) {
        const int previous = m_playingRow;
        m_playingRow = playing;
        announceRow(previous);
        announceRow(playing);
    }
}

void PatternGridModel::setPreview(const part::Pattern& preview)
{
    m_preview = preview;
    sync();
    // Which cells are new depends on the part's pattern too; the whole grid is cheap to redraw.
    Q_EMIT dataChanged(index(0, 0), index(part::kRowCount - 1, part::kTrackCount - 1));
}

void PatternGridModel::clearPreview()
{
    if (!m_preview)
        return;
    m_preview.reset();
    sync();
    Q_EMIT dataChanged(index(0, 0), index(part::kRowCount - 1, part::kTrackCount - 1));
}

void PatternGridModel::announceCells(const part::Pattern& next)
{
    int top = part::kRowCount;
    int bottom = -1;
    int left = part::kTrackCount;
    int right = -1;
    for (int track = 0; track < part::kTrackCount; ++track) {
        for (int row = 0; row < part::kRowCount; ++row) {
            if (next.cell(track, row) == m_shown.cell(track, row))
                continue;
            top = std::min(top, row);
            bottom = std::max(bottom, row);
            left = std::min(left, track);
            right = std::max(right, track);
        }
    }
    const bool octavesChanged = next.trackOctaves() != m_shown.trackOctaves();
    m_shown = next;
    if (bottom >= 0)
        Q_EMIT dataChanged(index(top, left), index(bottom, right));
    if (octavesChanged)
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, part::kTrackCount - 1);
}

void PatternGridModel::announceRow(int row)
{
    if (row < 0 || row >= part::kRowCount)
        return;
    Q_EMIT dataChanged(index(row, 0), index(row, part::kTrackCount - 1));
    Q_EMIT headerDataChanged(Qt::Vertical, row, row);
}

} // namespace app
