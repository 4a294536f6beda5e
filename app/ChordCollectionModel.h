#pragma once

#include "music/ChordCollection.h"
#include "music/TreePosition.h"

#include <QAbstractItemModel>

#include <functional>
#include <optional>
#include <vector>

namespace app {

/**
 * The chord database as a tree model: base groups, sections (scale groups), subsections
 * (collections) and chords. Column 0 holds the name, column 1 the notes. The model reads the
 * collection it is given and never changes it: renames and drops are handed to the owner, which
 * applies them as undoable edits and then calls `refresh`.
 */
class ChordCollectionModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    static constexpr const char* kChordMimeType = "application/x-tonalmancer-chord-positions";

    using RenameHandler = std::function<void(const music::TreePosition&, const QString&)>;
    /** Chords dropped at `target`: a subsection (append) or a chord (insert before it). */
    using DropHandler = std::function<void(const std::vector<music::TreePosition>& chords,
                                           const music::TreePosition& target, bool copy)>;

    explicit ChordCollectionModel(const music::ChordCollection& collection,
                                  QObject* parent = nullptr);

    void setRenameHandler(RenameHandler handler) { m_rename = std::move(handler); }
    void setDropHandler(DropHandler handler) { m_drop = std::move(handler); }

    /** Tells the views that the collection changed as a whole. */
    void refresh();

    music::TreePosition position(const QModelIndex& index) const;
    QModelIndex index(const music::TreePosition& position, int column = 0) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
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

    /** The notes of a chord as shown: "C3 E3 G3". */
    static QString chordNotesText(const music::Chord& chord);
    /** The listed notes of a scale group as shown: "C D E F G A B". */
    static QString sectionNotesText(const music::ChordSection& section);

private:
    static quintptr encode(const music::TreePosition& position);
    static music::TreePosition decode(quintptr id);
    static int depth(const music::TreePosition& position);
    std::optional<music::TreePosition> dropTarget(int row, const QModelIndex& parent) const;

    const music::ChordCollection& m_collection;
    RenameHandler m_rename;
    DropHandler m_drop;
};

} // namespace app
