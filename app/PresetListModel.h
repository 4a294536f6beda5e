#pragma once

#include <QAbstractListModel>

#include <functional>
#include <vector>

namespace app {

class PresetSource;

/**
 * The presets of one preset list, by name, with a summary as tooltip. `refresh()` compares the
 * list with what the model shows and announces only the rows that changed, so selection and
 * scrolling survive changes. Names are edited in place through the rename handler.
 */
class PresetListModel : public QAbstractListModel
{
    Q_OBJECT
public:
    /** Renames preset `row`; returns whether the name changed. */
    using RenameHandler = std::function<bool(int row, const QString& name)>;

    /** `source` must outlive the model. */
    explicit PresetListModel(const PresetSource& source, QObject* parent = nullptr);

    void setRenameHandler(RenameHandler handler) { m_rename = std::move(handler); }
    /** Shows the source's current presets. */
    void refresh();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    struct Row
    {
        QString name;
        QString summary;
        friend bool operator==(const Row&, const Row&) = default;
    };

    const PresetSource& m_source;
    std::vector<Row> m_rows;
    RenameHandler m_rename;
};

} // namespace app
