#include "app/PartListModel.h"

#include "app/ChordCollectionModel.h"
#include "app/PartChordMime.h"
#include "app/PartSession.h"
#include "part/PartEditor.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QMimeData>

#include <algorithm>
#include <set>

namespace app {

namespace {

const QColor kPlayingBackground(255, 214, 102); // amber, readable with dark text

} // namespace

PartListModel::PartListModel(PartSession& session, QObject* parent)
    : QAbstractTableModel(parent), m_session(session)
{
    m_chords = m_session.part().chords();
    syncPatternNames();
    m_playing = m_session.playingChord();
    connect(&m_session, &PartSession::changed, this, [this](PartSession::Changes what) {
        m_syncing = true;
        if (what.testFlag(PartSession::Chords))
            syncChords();
        if (what.testFlag(PartSession::Patterns))
            syncPatternNames();
        m_syncing = false;
        Q_EMIT synced();
    });
    connect(&m_session, &PartSession::playingPositionChanged, this,
            [this](int chord, int) { showPlayingChord(chord); });
}

void PartListModel::setDisplay(Display display)
{
    if (display == m_display)
        return;
    m_display = display;
    Q_EMIT headerDataChanged(Qt::Horizontal, ChordColumn, ChordColumn);
    if (!m_chords.empty())
        Q_EMIT dataChanged(index(0, ChordColumn), index(rowCount() - 1, ChordColumn));
}

void PartListModel::syncChords()
{
    const std::vector<part::PartChord>& now = m_session.part().chords();
    const std::size_t oldCount = m_chords.size();
    const std::size_t newCount = now.size();
    std::size_t prefix = 0;
    while (prefix < oldCount && prefix < newCount && m_chords[prefix] == now[prefix])
        ++prefix;
    std::size_t suffix = 0;
    while (suffix < oldCount - prefix && suffix < newCount - prefix &&
           m_chords[oldCount - 1 - suffix] == now[newCount - 1 - suffix])
        ++suffix;
    const std::size_t oldMiddle = oldCount - prefix - suffix;
    const std::size_t newMiddle = newCount - prefix - suffix;
    const std::size_t changed = std::min(oldMiddle, newMiddle);
    const auto row = [](std::size_t r) { return static_cast<int>(r); };
    using Diff = std::vector<part::PartChord>::difference_type;

    if (changed > 0) {
        std::copy_n(now.begin() + static_cast<Diff>(prefix), changed,
                    m_chords.begin() + static_cast<Diff>(prefix));
        Q_EMIT dataChanged(index(row(prefix), 0),
                           index(row(prefix + changed - 1), ColumnCount - 1));
    }
    const std::size_t from = prefix + changed;
    if (oldMiddle > changed) {
        beginRemoveRows({}, row(from), row(prefix + oldMiddle - 1));
        m_chords.erase(m_chords.begin() + static_cast<Diff>(from),
                       m_chords.begin() + static_cast<Diff>(prefix + oldMiddle));
        endRemoveRows();
    } else if (newMiddle > changed) {
        beginInsertRows({}, row(from), row(prefix + newMiddle - 1));
        m_chords.insert(m_chords.begin() + static_cast<Diff>(from),
                        now.begin() + static_cast<Diff>(from),
                        now.begin() + static_cast<Diff>(prefix + newMiddle));
        endInsertRows();
    }
}

void PartListModel::syncPatternNames()
{
    std::vector<std::string> names;
    for (const part::Pattern& pattern : m_session.part().patterns().patterns())
        names.push_back(pattern.name());
    if (names == m_patternNames)
        return;
    m_patternNames = std::move(names);
    if (!m_chords.empty())
        Q_EMIT dataChanged(index(0, PatternColumn), index(rowCount() - 1, PatternColumn));
}

void PartListModel::showPlayingChord(int chord)
{
    const int before = m_playing;
    m_playing = chord;
    for (int row : {before, chord}) {
        if (row >= 0 && row < rowCount())
            Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
    }
}

QString PartListModel::chordText(const part::PartChord& chord) const
{
    return m_display == Display::Names ? QString::fromStdString(chord.name)
                                       : PartChordMime::notesText(chord);
}

QString PartListModel::patternText(int pattern) const
{
    if (pattern < 0 || pattern >= static_cast<int>(m_patternNames.size()))
        return tr("%1: (missing)").arg(pattern);
    return QStringLiteral("%1: %2").arg(pattern).arg(
        QString::fromStdString(m_patternNames[static_cast<std::size_t>(pattern)]));
}

int PartListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_chords.size());
}

int PartListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant PartListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const part::PartChord& chord = m_chords[static_cast<std::size_t>(index.row())];
    const bool playing = index.row() == m_playing;
    switch (role) {
    case Qt::DisplayRole:
        switch (index.column()) {
        case ChordColumn:
            return chordText(chord);
        case PatternColumn:
            return patternText(chord.pattern);
        default:
            return static_cast<int>(chord.length);
        }
    case Qt::EditRole:
        switch (index.column()) {
        case ChordColumn:
            return QString::fromStdString(chord.name);
        case PatternColumn:
            return static_cast<int>(chord.pattern);
        default:
            return static_cast<int>(chord.length);
        }
    case Qt::ToolTipRole:
        if (index.column() == ChordColumn)
            return QString::fromStdString(chord.name) + QStringLiteral(": ") +
                   PartChordMime::notesText(chord);
        return {};
    case Qt::AccessibleDescriptionRole:
        return playing ? tr("playing") : QVariant();
    case Qt::BackgroundRole:
        return playing ? QBrush(kPlayingBackground) : QVariant();
    case Qt::ForegroundRole:
        return playing ? QBrush(Qt::black) : QVariant();
    case Qt::FontRole:
        if (playing) {
            QFont font;
            font.setBold(true);
            return font;
        }
        return {};
    case Qt::TextAlignmentRole:
        if (index.column() == LengthColumn)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    default:
        return {};
    }
}

bool PartListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::EditRole || index.row() >= rowCount())
        return false;
    const int row = index.row();
    switch (index.column()) {
    case ChordColumn: {
        const std::string name = value.toString().toStdString();
        return m_session.edit(QStringLiteral("Rename chord"), PartSession::Chords,
                              [row, &name](part::Part& p) {
                                  p.chord(row).name = name;
                                  return true;
                              });
    }
    case PatternColumn: {
        bool ok = false;
        const int pattern = value.toInt(&ok);
        if (!ok || pattern < 0 || pattern >= static_cast<int>(m_patternNames.size()))
            return false;
        // Set on one of several selected chords, the pattern goes to all of them.
        const std::vector<int>& selected = m_session.selectedChords();
        if (selected.size() >= 2 &&
            std::find(selected.begin(), selected.end(), row) != selected.end()) {
            m_session.setPatternOfSelectedChords(pattern);
            return true;
        }
        return m_session.edit(QString::fromLatin1(part::PartEditor::kChangePattern),
                              PartSession::Chords, [row, pattern](part::Part& p) {
                                  p.chord(row).pattern = static_cast<std::uint16_t>(pattern);
                                  return true;
                              });
    }
    default: {
        bool ok = false;
        const int length = value.toInt(&ok);
        if (!ok || length < 1 || length > PartSession::kMaxLength)
            return false;
        return m_session.edit(QStringLiteral("Set chord"), PartSession::Chords,
                              [row, length](part::Part& p) {
                                  p.chord(row).length = static_cast<std::uint8_t>(length);
                                  return true;
                              });
    }
    }
}

QVariant PartListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    switch (section) {
    case ChordColumn:
        return m_display == Display::Names ? tr("Chord") : tr("Notes");
    case PatternColumn:
        return tr("Pattern");
    case LengthColumn:
        return tr("Length");
    default:
        return {};
    }
}

Qt::ItemFlags PartListModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled; // drops go between chords, never onto one
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
    if (index.column() != ChordColumn || m_display == Display::Names)
        flags |= Qt::ItemIsEditable;
    return flags;
}

Qt::DropActions PartListModel::supportedDropActions() const
{
    return Qt::CopyAction | Qt::MoveAction;
}

Qt::DropActions PartListModel::supportedDragActions() const
{
    return Qt::CopyAction | Qt::MoveAction;
}

QStringList PartListModel::mimeTypes() const
{
    return {QString::fromLatin1(PartChordMime::kChordsMimeType),
            QString::fromLatin1(ChordCollectionModel::kChordMimeType),
            QStringLiteral("text/plain")};
}

QMimeData* PartListModel::mimeData(const QModelIndexList& indexes) const
{
    std::set<int> rows;
    for (const QModelIndex& index : indexes) {
        if (index.isValid() && index.row() < rowCount())
            rows.insert(index.row());
    }
    std::vector<part::PartChord> chords;
    for (int row : rows)
        chords.push_back(m_chords[static_cast<std::size_t>(row)]);
    QMimeData* data = PartChordMime::create(chords);
    PartChordMime::setRows(*data, dragSource(), {rows.begin(), rows.end()});
    if (m_dragExtender)
        m_dragExtender(*data);
    return data;
}

bool PartListModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                    const QModelIndex&) const
{
    return data != nullptr &&
           (data->hasFormat(QString::fromLatin1(ChordCollectionModel::kChordMimeType)) ||
            PartChordMime::hasChords(data));
}

bool PartListModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                 const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent) || !m_drop)
        return false;
    if (row < 0 || row > rowCount())
        row = parent.isValid() ? parent.row() : rowCount();
    m_drop(*data, row, action);
    // The owner changes the part itself; the source view must not remove the dragged rows.
    return false;
}

} // namespace app
