#include "app/ChordCollectionModel.h"

#include "app/ActionFactory.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>

#include <algorithm>
#include <type_traits>

namespace app {

namespace {

QString toQ(const std::string& text)
{
    return QString::fromStdString(text);
}

// The levels of the tree as one shape: an item, its own fields and its children.
template <typename Item> constexpr bool kHasChildren = !std::is_same_v<Item, music::Chord>;

auto& childrenOf(music::ChordBaseGroup& item)
{
    return item.sections;
}
const auto& childrenOf(const music::ChordBaseGroup& item)
{
    return item.sections;
}
auto& childrenOf(music::ChordSection& item)
{
    return item.subsections;
}
const auto& childrenOf(const music::ChordSection& item)
{
    return item.subsections;
}
auto& childrenOf(music::ChordSubsection& item)
{
    return item.chords;
}
const auto& childrenOf(const music::ChordSubsection& item)
{
    return item.chords;
}

/** Copies the fields an item shows itself (not its children); true when they differed. */
bool copyOwn(music::ChordBaseGroup& shown, const music::ChordBaseGroup& target)
{
    const bool changed = shown.name != target.name;
    shown.name = target.name;
    return changed;
}
bool copyOwn(music::ChordSection& shown, const music::ChordSection& target)
{
    const bool changed = shown.name != target.name || shown.scaleFlag != target.scaleFlag ||
                         shown.notes != target.notes;
    shown.name = target.name;
    shown.scaleFlag = target.scaleFlag;
    shown.notes = target.notes;
    return changed;
}
bool copyOwn(music::ChordSubsection& shown, const music::ChordSubsection& target)
{
    const bool changed = shown.name != target.name;
    shown.name = target.name;
    return changed;
}
bool copyOwn(music::Chord& shown, const music::Chord& target)
{
    const bool changed = !(shown == target);
    shown = target;
    return changed;
}

} // namespace

ChordCollectionModel::ChordCollectionModel(const music::ChordCollection& collection,
                                           QObject* parent)
    : QAbstractItemModel(parent), m_collection(collection), m_shown(collection)
{
    populated(m_root);
}

ChordCollectionModel::~ChordCollectionModel() = default;

void ChordCollectionModel::refresh()
{
    syncList(m_root, m_shown.baseGroups(), m_collection.baseGroups());
}

// ---- keeping the shown copy in step ----------------------------------------------------------

template <typename Item>
void ChordCollectionModel::syncList(Node& parent, std::vector<Item>& shown,
                                    const std::vector<Item>& target)
{
    const std::size_t n = shown.size();
    const std::size_t m = target.size();
    // Equal items at both ends stay as they are.
    std::size_t head = 0;
    while (head < n && head < m && shown[head] == target[head])
        ++head;
    std::size_t tail = 0;
    while (tail < n - head && tail < m - head && shown[n - 1 - tail] == target[m - 1 - tail])
        ++tail;
    // Items that kept their name but changed inside are changed in place.
    while (head < n - tail && head < m - tail && shown[head].name == target[head].name) {
        syncItem(parent, static_cast<int>(head), shown[head], target[head]);
        ++head;
    }
    while (tail < n - head && tail < m - head &&
           shown[n - 1 - tail].name == target[m - 1 - tail].name) {
        syncItem(parent, static_cast<int>(n - 1 - tail), shown[n - 1 - tail], target[m - 1 - tail]);
        ++tail;
    }
    // The rest pairs up row by row; the surplus is removed or the shortfall inserted.
    const std::size_t oldCount = n - head - tail;
    const std::size_t newCount = m - head - tail;
    const std::size_t paired = std::min(oldCount, newCount);
    for (std::size_t i = head; i < head + paired; ++i)
        syncItem(parent, static_cast<int>(i), shown[i], target[i]);
    const auto at = static_cast<int>(head + paired);
    if (oldCount > paired)
        removeRows(parent, shown, at, static_cast<int>(oldCount - paired));
    else if (newCount > paired)
        insertRows<Item>(parent, shown, at, target.begin() + at,
                         static_cast<int>(newCount - paired));
}

template <typename Item>
void ChordCollectionModel::syncItem(Node& parent, int row, Item& shown, const Item& target)
{
    if (shown == target)
        return;
    Node* node = parent.children[static_cast<std::size_t>(row)].get();
    if (copyOwn(shown, target))
        Q_EMIT dataChanged(createIndex(row, 0, node), createIndex(row, 1, node));
    if constexpr (kHasChildren<Item>) {
        if (node->populated)
            syncList(*node, childrenOf(shown), childrenOf(target));
        else
            childrenOf(shown) = childrenOf(target); // never asked for: no view to tell
    }
}

template <typename Item>
void ChordCollectionModel::removeRows(Node& parent, std::vector<Item>& shown, int first, int count)
{
    beginRemoveRows(indexOf(&parent), first, first + count - 1);
    shown.erase(shown.begin() + first, shown.begin() + first + count);
    parent.children.erase(parent.children.begin() + first, parent.children.begin() + first + count);
    renumber(parent, first);
    endRemoveRows();
}

template <typename Item>
void ChordCollectionModel::insertRows(Node& parent, std::vector<Item>& shown, int at,
                                      typename std::vector<Item>::const_iterator from, int count)
{
    beginInsertRows(indexOf(&parent), at, at + count - 1);
    shown.insert(shown.begin() + at, from, from + count);
    for (int i = 0; i < count; ++i)
        parent.children.insert(parent.children.begin() + at + i, buildNode(&parent));
    renumber(parent, at);
    endInsertRows();
}

std::unique_ptr<ChordCollectionModel::Node> ChordCollectionModel::buildNode(Node* parent)
{
    auto node = std::make_unique<Node>();
    node->parent = parent; // its own children come when they are asked for
    return node;
}

std::size_t ChordCollectionModel::shownChildCount(const Node& node) const
{
    const music::TreePosition p = position(node.parent == nullptr ? QModelIndex() : indexOf(&node));
    const auto& groups = m_shown.baseGroups();
    switch (depth(&node)) {
    case 0:
        return groups.size();
    case 1:
        return groups[static_cast<std::size_t>(p.baseGroup)].sections.size();
    case 2:
        return groups[static_cast<std::size_t>(p.baseGroup)]
            .sections[static_cast<std::size_t>(p.section)]
            .subsections.size();
    case 3:
        return groups[static_cast<std::size_t>(p.baseGroup)]
            .sections[static_cast<std::size_t>(p.section)]
            .subsections[static_cast<std::size_t>(p.subsection)]
            .chords.size();
    default:
        return 0; // a chord
    }
}

ChordCollectionModel::Node& ChordCollectionModel::populated(const Node& node) const
{
    auto& mutableNode = const_cast<Node&>(node);
    if (!mutableNode.populated) {
        // No signals: the views learn about these rows from this very answer.
        const std::size_t count = shownChildCount(node);
        mutableNode.children.reserve(count);
        for (std::size_t row = 0; row < count; ++row)
            mutableNode.children.push_back(buildNode(&mutableNode));
        renumber(mutableNode, 0);
        mutableNode.populated = true;
    }
    return mutableNode;
}

void ChordCollectionModel::renumber(Node& parent, int from)
{
    for (std::size_t row = static_cast<std::size_t>(from); row < parent.children.size(); ++row)
        parent.children[row]->row = static_cast<int>(row);
}

// ---- nodes, positions and indexes ------------------------------------------------------------

ChordCollectionModel::Node* ChordCollectionModel::nodeOf(const QModelIndex& index) const
{
    if (!index.isValid())
        return const_cast<Node*>(&m_root);
    return static_cast<Node*>(index.internalPointer());
}

QModelIndex ChordCollectionModel::indexOf(const Node* node) const
{
    if (node == &m_root)
        return {};
    return createIndex(node->row, 0, node);
}

int ChordCollectionModel::depth(const Node* node)
{
    int levels = 0;
    for (; node->parent != nullptr; node = node->parent)
        ++levels;
    return levels;
}

int ChordCollectionModel::depth(const music::TreePosition& p)
{
    if (p.baseGroup < 0)
        return 0;
    if (p.section < 0)
        return 1;
    if (p.subsection < 0)
        return 2;
    return p.chord < 0 ? 3 : 4;
}

music::TreePosition ChordCollectionModel::position(const QModelIndex& index) const
{
    std::vector<int> rows; // from the item up
    for (const Node* node = nodeOf(index); node->parent != nullptr; node = node->parent)
        rows.push_back(node->row);
    music::TreePosition p;
    int* fields[] = {&p.baseGroup, &p.section, &p.subsection, &p.chord};
    for (std::size_t level = 0; level < rows.size() && level < 4; ++level)
        *fields[level] = rows[rows.size() - 1 - level];
    return p;
}

QModelIndex ChordCollectionModel::index(const music::TreePosition& p, int column) const
{
    const int levels = depth(p);
    if (levels == 0 || column < 0 || column >= 2)
        return {};
    const int rows[] = {p.baseGroup, p.section, p.subsection, p.chord};
    const Node* node = &m_root;
    for (int level = 0; level < levels; ++level) {
        const int row = rows[level];
        const Node& parent = populated(*node);
        if (row < 0 || static_cast<std::size_t>(row) >= parent.children.size())
            return {};
        node = parent.children[static_cast<std::size_t>(row)].get();
    }
    return createIndex(node->row, column, node);
}

QModelIndex ChordCollectionModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    const Node* node = populated(*nodeOf(parent)).children[static_cast<std::size_t>(row)].get();
    return createIndex(row, column, node);
}

QModelIndex ChordCollectionModel::parent(const QModelIndex& child) const
{
    if (!child.isValid())
        return {};
    return indexOf(nodeOf(child)->parent);
}

int ChordCollectionModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid() && parent.column() != 0)
        return 0;
    return static_cast<int>(populated(*nodeOf(parent)).children.size());
}

int ChordCollectionModel::columnCount(const QModelIndex&) const
{
    return 2;
}

QString ChordCollectionModel::chordNotesText(const music::Chord& chord)
{
    QStringList names;
    for (const music::NoteValue note : chord.notes())
        names << toQ(music::noteNameWithOctave(note));
    return names.join(QLatin1Char(' '));
}

QString ChordCollectionModel::sectionNotesText(const music::ChordSection& section)
{
    if (!section.scaleFlag)
        return {};
    QStringList names;
    for (const music::NoteValue note : section.notes)
        names << ActionFactory::toQString(music::noteName(note));
    return names.join(QLatin1Char(' '));
}

QVariant ChordCollectionModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const music::TreePosition p = position(index);
    const auto& groups = m_shown.baseGroups();
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::ToolTipRole)
        return {};
    const auto b = static_cast<std::size_t>(p.baseGroup);
    switch (depth(p)) {
    case 1:
        return index.column() == 0 ? toQ(groups.at(b).name) : QVariant();
    case 2: {
        const auto& section = groups.at(b).sections.at(static_cast<std::size_t>(p.section));
        return index.column() == 0 ? toQ(section.name) : QVariant(sectionNotesText(section));
    }
    case 3: {
        const auto& sub = groups.at(b)
                              .sections.at(static_cast<std::size_t>(p.section))
                              .subsections.at(static_cast<std::size_t>(p.subsection));
        return index.column() == 0 ? toQ(sub.name) : QVariant();
    }
    case 4: {
        const music::Chord* chord = m_shown.chordAt(p);
        if (chord == nullptr)
            return {};
        return index.column() == 0 ? toQ(chord->name) : QVariant(chordNotesText(*chord));
    }
    default:
        return {};
    }
}

bool ChordCollectionModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || index.column() != 0 || role != Qt::EditRole || !m_rename)
        return false;
    const QString name = value.toString();
    if (name == data(index, Qt::EditRole).toString())
        return false;
    m_rename(position(index), name);
    return true;
}

QVariant ChordCollectionModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == 0 ? tr("Name") : tr("Notes");
}

Qt::ItemFlags ChordCollectionModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    Qt::ItemFlags result = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == 0)
        result |= Qt::ItemIsEditable;
    const int level = depth(nodeOf(index));
    if (level == 4)
        result |= Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    if (level == 3)
        result |= Qt::ItemIsDropEnabled;
    return result;
}

Qt::DropActions ChordCollectionModel::supportedDropActions() const
{
    return Qt::MoveAction | Qt::CopyAction;
}

Qt::DropActions ChordCollectionModel::supportedDragActions() const
{
    return Qt::MoveAction | Qt::CopyAction;
}

QStringList ChordCollectionModel::mimeTypes() const
{
    return {QString::fromLatin1(kChordMimeType)};
}

QMimeData* ChordCollectionModel::mimeData(const QModelIndexList& indexes) const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    for (const QModelIndex& index : indexes) {
        const music::TreePosition p = position(index);
        if (index.column() != 0 || !p.isChord())
            continue;
        stream << p.baseGroup << p.section << p.subsection << p.chord;
    }
    auto* mime = new QMimeData;
    mime->setData(QString::fromLatin1(kChordMimeType), bytes);
    return mime;
}

std::optional<music::TreePosition> ChordCollectionModel::dropTarget(int row,
                                                                    const QModelIndex& parent) const
{
    const music::TreePosition p = position(parent);
    if (depth(p) == 3) {
        // Between the chords of a collection: insert before the chord at `row`, or append.
        if (row >= 0 && row < rowCount(parent))
            return music::TreePosition::ofChord(p.baseGroup, p.section, p.subsection, row);
        return p;
    }
    if (depth(p) == 4)
        return p; // onto a chord: insert before it
    return std::nullopt;
}

bool ChordCollectionModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int row, int,
                                           const QModelIndex& parent) const
{
    return data != nullptr && data->hasFormat(QString::fromLatin1(kChordMimeType)) &&
           dropTarget(row, parent).has_value();
}

bool ChordCollectionModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row,
                                        int column, const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent) || !m_drop)
        return false;
    QByteArray bytes = data->data(QString::fromLatin1(kChordMimeType));
    QDataStream stream(&bytes, QIODevice::ReadOnly);
    std::vector<music::TreePosition> chords;
    while (!stream.atEnd()) {
        music::TreePosition p;
        stream >> p.baseGroup >> p.section >> p.subsection >> p.chord;
        if (stream.status() != QDataStream::Ok)
            break;
        chords.push_back(p);
    }
    if (chords.empty())
        return false;
    m_drop(chords, *dropTarget(row, parent), action == Qt::CopyAction);
    // The owner moves the chords itself; the view must not remove the dragged rows again.
    return false;
}

} // namespace app
