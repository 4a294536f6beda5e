#pragma once

#include <QAbstractTableModel>

#include <optional>

namespace app {

class CTonalmancerDoc;

/**
 * The patterns of one machine of the open song: name, rows, and the sequence positions (in
 * ticks) that play each. A pattern no sequence plays shows "unused".
 */
class MachinePatternModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column : int
    {
        NameColumn,
        RowsColumn,
        UsedAtColumn,
        ColumnCount
    };

    /** Positions listed per pattern; more are counted. */
    static constexpr std::size_t kMaxPositionsShown = 16;

    explicit MachinePatternModel(const CTonalmancerDoc& document, QObject* parent = nullptr);

    /** Shows the patterns of `machine` (nothing: no patterns). */
    void setMachine(std::optional<std::size_t> machine);
    std::optional<std::size_t> machine() const { return m_machine; }
    /** Catches up with the song: cells in place while the pattern count stays, else anew. */
    void sync();

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    /** The machine when it is still in the song. */
    std::optional<std::size_t> validMachine() const;
    QString usedAt(std::size_t pattern) const;
    QString cellText(int row, int column) const;

    const CTonalmancerDoc& m_document;
    std::optional<std::size_t> m_machine;
    int m_rows = 0;
};

} // namespace app
