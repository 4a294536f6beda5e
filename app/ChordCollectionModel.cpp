#include "app/ChordCollectionModel.h"

#include "app/ActionFactory.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>

namespace app {

namespace {

// Each level of a position takes 16 bits of the item id, holding index + 1 (0: no such level).
constexpr int kBits = 16;
constexpr quintptr kMask = 0xFFFF;

QString toQ(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

ChordCollectionModel::ChordCollectionModel(const music::ChordCollection& collection,
                                           QObject* parent)
    : QAbstractItemModel(parent), m_collection(collection)
{}

void ChordCollectionModel::refresh()
{
    beginResetModel();
    endResetModel();
}

quintptr ChordCollectionModel::encode(const music::TreePosition& p)
{
    const auto field = [](int value) { return static_cast<quintptr>(value + 1) & kMask; };
    return field(p.baseGroup) | field(p.section) << kBits | field(p.subsection) << (2 * kBits) |
           field(p.chord) << (3 * kBits);
}

music::TreePosition ChordCollectionModel::decode(quintptr id)
{
    const auto field = [id](int shift) { return static_cast<int>((id >> shift) & kMask) - 1; };
    return {field(0), field(kBits), field(2 * kBits), field(3 * kBits)};
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
    if (!index.isValid())
        return {};
    return decode(index.internalId());
}

QModelIndex ChordCollectionModel::index(const music::TreePosition& p, int column) const
{
    switch (depth(p)) {
    case 1:
        return index(p.baseGroup, column, {});
    case 2:
        return index(p.section, column, index(music::TreePosition::ofBaseGroup(p.baseGroup)));
    case 3:
        return index(p.subsection, column,
                     index(music::TreePosition::ofSection(p.baseGroup, p.section)));
    case 4:
        return index(
            p.chord, column,
            index(music::TreePosition::ofSubsection(p.baseGroup, p.section, p.subsection)));
    default:
        return {};
    }
}

QModelIndex ChordCollectionModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column < 0 || column >= 2 || row >= rowCount(parent))
        return {};
    music::TreePosition p = position(parent);
    switch (depth(p)) {
    case 0:
        p.baseGroup = row;
        break;
    case 1:
        p.section = row;
        break;
    case 2:
        p.subsection = row;
        break;
    case 3:
        p.chord = row;
        break;
    default:
        return {};
    }
    return createIndex(row, column, encode(p));
}

QModelIndex ChordCollectionModel::parent(const QModelIndex& child) const
{
    music::TreePosition p = position(child);
    switch (depth(p)) {
    case 2:
        return index(music::TreePosition::ofBaseGroup(p.baseGroup));
    case 3:
        return index(music::TreePosition::ofSection(p.baseGroup, p.section));
    case 4:
        return index(music::TreePosition::ofSubsection(p.baseGroup, p.section, p.subsection));
    default:
        return {};
    }
}

int ChordCollectionModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid() && parent.column() != 0)
        return 0;
    const music::TreePosition p = position(parent);
    const auto& groups = m_collection.baseGroups();
    const auto count = [](const auto& list) { return static_cast<int>(list.size()); };
    switch (depth(p)) {
    case 0:
        return count(groups);
    case 1:
        return count(groups.at(static_cast<std::size_t>(p.baseGroup)).sections);
    case 2:
        return count(groups.at(static_cast<std::size_t>(p.baseGroup))
                         .sections.at(static_cast<std::size_t>(p.section))
                         .subsections);
    case 3:
        return count(groups.at(static_cast<std::size_t>(p.baseGroup))
                         .sections.at(static_cast<std::size_t>(p.section))
                         .subsections.at(static_cast<std::size_t>(p.subsection))
                         .chords);
    default:
        return 0;
    }
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
    const auto& groups = m_collection.baseGroups();
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
        const music::Chord* chord = m_collection.chordAt(p);
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
    const int level = depth(position(index));
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
