#pragma once

#include "song/MachineKind.h"

#include <QAbstractTableModel>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace song {
class BuzzSong;
struct SongMachine;
} // namespace song

namespace app {

class CTonalmancerDoc;

/**
 * The machines of the open song as the machine view lists them: name, DLL, kind, tracks,
 * patterns and sequences, one row per machine that passes the filter, in song order. The model
 * reads the document's song; `sync` brings it up to date after an edit with row removals and
 * insertions where it can, so that the view keeps its selection and scroll position.
 */
class MachineListModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column : int
    {
        NameColumn,
        KindColumn,
        TracksColumn,
        PatternsColumn,
        SequencesColumn,
        DllColumn, // last: long, and the side of the window is narrow
        ColumnCount
    };

    /** The machine filter of the settings file. */
    enum Filter : std::uint8_t
    {
        Generators = 0,
        Synths = 1,
        Samplers = 2,
        Effects = 3,
        All = 4,
    };

    /** Renames machine `machine` to `name`; returns whether it was renamed. */
    using RenameHandler = std::function<bool(std::size_t machine, const QString& name)>;

    explicit MachineListModel(const CTonalmancerDoc& document, QObject* parent = nullptr);

    /** Whether a machine of `kind` is listed under `filter`; unknown filters list everything. */
    static bool passes(std::uint8_t filter, song::MachineKind kind);
    /** The kind of a song machine, from the database description it resolved to. */
    static song::MachineKind kindOf(const song::SongMachine& machine);
    /** "Synth", "Sampler"... as the Kind column shows it. */
    static QString kindText(song::MachineKind kind);

    std::uint8_t filter() const { return m_filter; }
    /** Lists the machines that pass `filter` (a reset: the rows change wholesale). */
    void setFilter(std::uint8_t filter);
    /** Catches up with the song after an edit, undo or redo. */
    void sync();
    /** Rebuilds the rows from scratch (another song was opened). */
    void reload();

    /** The song's index of the machine in `row`; no check. */
    std::size_t machineAt(int row) const { return m_rows[static_cast<std::size_t>(row)].machine; }
    /**
     * The name of the machine in `row` as the rows were last built: still the old name while
     * the song has changed and `sync` has not run yet. No check.
     */
    const std::string& nameAt(int row) const { return m_rows[static_cast<std::size_t>(row)].name; }
    /** The row of song machine `machine`, or -1 when it is filtered out or absent. */
    int rowOfMachine(std::size_t machine) const;
    /** The row of the machine named `name` (exact), or -1. */
    int rowOfName(const std::string& name) const;

    void setRenameHandler(RenameHandler handler) { m_rename = std::move(handler); }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    /** Editing a name asks the rename handler; the song's change then updates the row. */
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

private:
    struct Row
    {
        std::size_t machine = 0;
        std::string name;
    };

    std::vector<Row> currentRows() const;
    QString cellText(const song::BuzzSong& song, std::size_t machine, int column) const;
    QString toolTip(const song::BuzzSong& song, std::size_t machine) const;

    const CTonalmancerDoc& m_document;
    std::uint8_t m_filter = All;
    std::vector<Row> m_rows;
    RenameHandler m_rename;
};

} // namespace app
