#pragma once

#include <QAbstractTableModel>

#include <array>

namespace app {

class PartSession;

/**
 * The part settings as a two-column table, label and value: "Pattern List" (the name of the
 * part's pattern list), "Base Wave", "Base Octave", "Track 1".."Track 8" (the current pattern's
 * track octaves, in words), "Def Octave" and "Def Length". Values are edited in place within
 * their ranges (MinimumRole, MaximumRole) or choices (ChoicesRole, the value is the choice's
 * index). The pattern list's name and the base octave are "Edit part" steps, a track octave an
 * "Edit pattern" step that writes the current pattern's block of 8 and is heard at once; the
 * others are the editor's settings, outside the part and its undo.
 */
class PartSettingsModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Row : int
    {
        PatternListRow,
        BaseWaveRow,
        BaseOctaveRow,
        FirstTrackRow,
        DefOctaveRow = FirstTrackRow + 8,
        DefLengthRow,
        RowCount,
    };
    enum Column : int
    {
        LabelColumn,
        ValueColumn,
        ColumnCount,
    };
    enum Role : int
    {
        MinimumRole = Qt::UserRole + 1, // int, for numbers
        MaximumRole,                    // int, for numbers
        ChoicesRole,                    // QStringList, for choices
    };
    static constexpr int kMaxBaseOctave = 9;
    static constexpr int kTrackOctaveChoices = 12;

    explicit PartSettingsModel(PartSession& session, QObject* parent = nullptr);

    /** The label of a row, as the settings list has always shown it. */
    static QString label(int row);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    /** The value of a row (its edit value); invalid for a track without a current pattern. */
    QVariant value(int row) const;
    QString display(int row) const;
    QString toolTip(int row) const;
    /** A track row's choice from an index or one of the choices' words; -1 when neither. */
    int trackChoice(const QVariant& value) const;
    bool setTrackOctave(int track, int setting);
    /** Announces the rows whose value differs from what was shown. */
    void sync();

    PartSession& m_session;
    std::array<QVariant, RowCount> m_shown;
};

} // namespace app
