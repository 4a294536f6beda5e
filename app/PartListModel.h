#pragma once

#include "part/PartChord.h"

#include <QAbstractTableModel>

#include <functional>
#include <string>
#include <vector>

namespace app {

class PartSession;

/**
 * The part's chords in order, one row each: the chord (its name or its notes, as the part
 * list's View says), its pattern and its length in rows. The model reads the session and keeps
 * a copy of what it shows, so that after every change it can tell the views exactly which rows
 * changed, came or went: selection and scroll position survive edits and undo.
 *
 * Edits in place go back through the session as undoable steps: the name ("Rename chord"), the
 * pattern ("Change pattern"; set on one of several selected chords, it goes to all of them) and
 * the length ("Set chord"). Drops are handed to the owner.
 */
class PartListModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column : int
    {
        ChordColumn,
        PatternColumn,
        LengthColumn,
        ColumnCount,
    };
    enum class Display
    {
        Names,
        Notes,
    };
    /** Chords dropped before `row` (the row count: at the end). */
    using DropHandler = std::function<void(const QMimeData& data, int row, Qt::DropAction action)>;

    explicit PartListModel(PartSession& session, QObject* parent = nullptr);

    Display display() const { return m_display; }
    void setDisplay(Display display);
    void setDropHandler(DropHandler handler) { m_drop = std::move(handler); }
    /** Adds to the data of every drag leaving the list (the part as a MIDI file's URL). */
    using DragExtender = std::function<void(QMimeData& data)>;
    void setDragExtender(DragExtender extender) { m_dragExtender = std::move(extender); }

    /** The pattern column's text for a pattern index: "1: Arpeggio up". */
    QString patternText(int pattern) const;
    /** The names of the part's patterns, by index. */
    const std::vector<std::string>& patternNames() const { return m_patternNames; }
    /** A token naming this model in drags, so that a drop can tell its own rows. */
    quint64 dragSource() const { return reinterpret_cast<quintptr>(this); }

    /** True while the rows follow a change of the part (the views' selection moves with them). */
    bool isSyncing() const { return m_syncing; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    Qt::DropActions supportedDropActions() const override;
    Qt::DropActions supportedDragActions() const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

Q_SIGNALS:
    /** The rows show the part again after a change of the session. */
    void synced();

private:
    /** Brings the shown chords in line with the part: changed rows, then removed or new ones. */
    void syncChords();
    void syncPatternNames();
    void showPlayingChord(int chord);
    QString chordText(const part::PartChord& chord) const;

    PartSession& m_session;
    Display m_display = Display::Names;
    std::vector<part::PartChord> m_chords;
    std::vector<std::string> m_patternNames;
    int m_playing = -1;
    bool m_syncing = false;
    DropHandler m_drop;
    DragExtender m_dragExtender;
};

} // namespace app
