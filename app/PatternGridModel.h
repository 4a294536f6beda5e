#pragma once

#include "part/Pattern.h"

#include <QAbstractTableModel>

#include <array>
#include <optional>

namespace app {

class PartSession;

/**
 * The part's current pattern as a table: 64 rows (the pattern's rows) by 8 columns (its tracks).
 * It follows the session: every change of the part, the current chord, the tempo, the track
 * switches or the playing position is compared with what it shows, and only the cells that
 * differ are announced (dataChanged), so selection and scrolling survive edits and undo.
 *
 * Display text is PatternCellText's; Qt::AccessibleTextRole reads "Track 3, row 5: chord note
 * 2, shift up". Rows and tracks are numbered as the headers show them: rows from 0 as in the
 * tracker, tracks from 1. Editing a cell's text (Qt::EditRole) is one "Edit pattern" step.
 */
class PatternGridModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Role : int
    {
        CellKindRole = Qt::UserRole + 1, // int: the cell's kind byte
        CellValueRole,                   // int: chord-note index or pitch class
        CellOctaveRole,                  // int: the octave byte
        PastLengthRole,                  // bool: beyond the rows the current chord plays
        BeatRole,                        // bool: the first row of a beat (every TPB-th row)
        PlayingRole,                     // bool: the row being played
        TrackOnRole,                     // bool: the track's switch is on (cells and headers)
        TrackOctaveRole,                 // int: the track's octave setting (headers)
        PreviewRole,                     // int: 0 no preview, 1 previewed, 2 previewed and new
    };

    explicit PatternGridModel(PartSession& session, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /** Whether the part's current pattern exists (a damaged file may point past the list). */
    bool hasPattern() const { return m_hasPattern; }
    /** Whether cells may be edited: there is a pattern and no preview covers it. */
    bool isEditable() const { return m_hasPattern && !m_preview; }
    /** The pattern shown (the preview while there is one); empty when there is none. */
    const part::Pattern& pattern() const { return m_shown; }

    /**
     * Shows `preview` instead of the part's current pattern, read-only, until clearPreview();
     * the part is not touched. Cells that differ from the part's are marked (PreviewRole 2).
     */
    void setPreview(const part::Pattern& preview);
    void clearPreview();
    bool hasPreview() const { return m_preview.has_value(); }
    const part::PatternCell& cell(int row, int track) const { return m_shown.cell(track, row); }

    /** Rows the current chord plays of this pattern; 64 when no chord of it is current. */
    int playedRows() const { return m_playedRows; }
    /** The row being played in this pattern, or -1. */
    int playingRow() const { return m_playingRow; }

private:
    bool isCell(const QModelIndex& index) const;
    /** Brings the model in line with the session and announces what differs. */
    void sync();
    void announceCells(const part::Pattern& next);
    void announceRow(int row);

    PartSession& m_session;
    part::Pattern m_shown;
    part::Pattern m_partPattern; // the part's current pattern, beneath a preview
    std::optional<part::Pattern> m_preview;
    bool m_hasPattern = false;
    int m_playedRows = part::kRowCount;
    int m_ticksPerBeat = 4;
    int m_playingRow = -1;
    std::array<bool, part::kTrackCount> m_tracksOn{};
};

} // namespace app
