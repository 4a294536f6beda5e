#pragma once

#include "music/ChordCollection.h"
#include "music/TreePosition.h"

#include <QAbstractItemModel>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace app {

/**
 * The chord database as a tree model: base groups, sections (scale groups), subsections
 * (collections) and chords. Column 0 holds the name, column 1 the notes. The model reads the
 * collection it is given and never changes it: renames and drops are handed to the owner, which
 * applies them as undoable edits and then calls `refresh`.
 *
 * The model shows a copy of the collection and mirrors its shape in a tree of nodes; each index
 * points at its node, so an index names the same item for as long as the item is shown.
 * `refresh` compares the copy with the collection and tells the views only what changed (rows
 * removed, inserted or changed), so that open folders and the selection survive an edit.
 *
 * Nodes are made on demand: an item's children get theirs the first time a view asks about them
 * (rowCount, index), so a database of thousands of chords costs only its visible rows at
 * start-up. Below an item whose children were never asked for, `refresh` updates the copy
 * without signals, since no view knows anything there.
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

    /** `collection` must outlive the model. */
    explicit ChordCollectionModel(const music::ChordCollection& collection,
                                  QObject* parent = nullptr);
    ~ChordCollectionModel() override;

    void setRenameHandler(RenameHandler handler) { m_rename = std::move(handler); }
    void setDropHandler(DropHandler handler) { m_drop = std::move(handler); }

    /** Brings the views up to date with the collection, row by row. */
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
    /** One shown item; its children mirror the item's children row for row. */
    struct Node
    {
        Node* parent = nullptr;
        int row = 0;
        bool populated = false; // children made (they mirror the item's children)
        std::vector<std::unique_ptr<Node>> children;
    };

    Node* nodeOf(const QModelIndex& index) const;
    /** Makes the node's children when nobody has asked for them yet; logically const. */
    Node& populated(const Node& node) const;
    /** How many children the item of `node` has in the shown copy. */
    std::size_t shownChildCount(const Node& node) const;
    QModelIndex indexOf(const Node* node) const;
    static int depth(const Node* node);
    static int depth(const music::TreePosition& position);
    std::optional<music::TreePosition> dropTarget(int row, const QModelIndex& parent) const;

    // Changing the shown copy, with the signals the views need.
    template <typename Item>
    void syncList(Node& parent, std::vector<Item>& shown, const std::vector<Item>& target);
    template <typename Item> void syncItem(Node& parent, int row, Item& shown, const Item& target);
    template <typename Item>
    void removeRows(Node& parent, std::vector<Item>& shown, int first, int count);
    template <typename Item>
    void insertRows(Node& parent, std::vector<Item>& shown, int at,
                    typename std::vector<Item>::const_iterator from, int count);
    static std::unique_ptr<Node> buildNode(Node* parent);
    static void renumber(Node& parent, int from);

    const music::ChordCollection& m_collection;
    music::ChordCollection m_shown;
    Node m_root;
    RenameHandler m_rename;
    DropHandler m_drop;
};

} // namespace app
