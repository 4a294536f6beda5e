#pragma once

#include <QAbstractTableModel>

#include <string>
#include <vector>

namespace app {

class PartSession;

/**
 * The part's patterns as a table: name and how many chords of the part play each, with the
 * pattern's number (from 00, as the part file counts them) as the row header. It follows the
 * session and announces only the rows that changed (rows inserted, removed or changed in place), so
 * selection and scrolling survive edits and undo. The current pattern's row is bold. Editing a name
 * is one "Rename pattern" step.
 */
class PatternListModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column : int
    {
        NameColumn,
        ChordsColumn,
        ColumnCount,
    };
    static constexpr const char* kRenamePattern = "Rename pattern";

    explicit PatternListModel(PartSession& session, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /** True while the model announces a change of the part (views move their cursor then). */
    bool isSyncing() const { return m_syncing; }
    /** A pattern's number as the list shows it: "00", "01"... */
    static QString number(int row);

private:
    struct Row
    {
        std::string name;
        int chords = 0;
        bool current = false;
        friend bool operator==(const Row&, const Row&) = default;
    };

    std::vector<Row> rowsOfPart() const;
    /** Brings the rows in line with the session and announces what differs. */
    void sync();

    PartSession& m_session;
    std::vector<Row> m_rows;
    bool m_syncing = false;
};

} // namespace app
