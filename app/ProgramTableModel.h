#pragma once

#include "midi/MidiSettings.h"

#include <QAbstractTableModel>

namespace app {

/**
 * The program table of the MIDI settings as a table to edit: one row per port (0..127), one
 * column per channel (shown 1..16), each cell a program number 0..127. Works on its own copy;
 * the dialog hands it back on OK.
 */
class ProgramTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    explicit ProgramTableModel(const midi::MidiSettings::ProgramTable& table,
                               QObject* parent = nullptr);

    const midi::MidiSettings::ProgramTable& table() const { return m_table; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    midi::MidiSettings::ProgramTable m_table;
};

} // namespace app
