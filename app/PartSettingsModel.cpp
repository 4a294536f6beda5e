#include "app/PartSettingsModel.h"

#include "app/LineText.h"
#include "app/PartSession.h"
#include "app/PatternCellText.h"
#include "part/TrackOctave.h"

#include <optional>

namespace app {

namespace {

bool isTrackRow(int row)
{
    return row >= PartSettingsModel::FirstTrackRow &&
           row < PartSettingsModel::FirstTrackRow + part::kTrackCount;
}

QStringList trackOctaveChoices()
{
    QStringList choices;
    for (int setting = 0; setting < PartSettingsModel::kTrackOctaveChoices; ++setting)
        choices << PatternCellText::trackOctaveWords(static_cast<std::uint8_t>(setting));
    return choices;
}

/** The number in `value` when it is one within min..max. */
std::optional<int> numberIn(const QVariant& value, int min, int max)
{
    bool ok = false;
    const int number = value.toString().trimmed().toInt(&ok);
    if (!ok || number < min || number > max)
        return std::nullopt;
    return number;
}

} // namespace

PartSettingsModel::PartSettingsModel(PartSession& session, QObject* parent)
    : QAbstractTableModel(parent), m_session(session)
{
    for (int row = 0; row < RowCount; ++row)
        m_shown[static_cast<std::size_t>(row)] = value(row);
    connect(&m_session, &PartSession::changed, this, [this] { sync(); });
    connect(&m_session, &PartSession::editorSettingsChanged, this, [this] { sync(); });
}

QString PartSettingsModel::label(int row)
{
    switch (row) {
    case PatternListRow:
        return QStringLiteral("Pattern List");
    case BaseWaveRow:
        return QStringLiteral("Base Wave");
    case BaseOctaveRow:
        return QStringLiteral("Base Octave");
    case DefOctaveRow:
        return QStringLiteral("Def Octave");
    case DefLengthRow:
        return QStringLiteral("Def Length");
    default:
        return isTrackRow(row) ? QStringLiteral("Track %1").arg(row - FirstTrackRow + 1)
                               : QString();
    }
}

QVariant PartSettingsModel::value(int row) const
{
    const part::Part& p = m_session.part();
    switch (row) {
    case PatternListRow:
        return QString::fromStdString(p.patterns().name());
    case BaseWaveRow:
        return m_session.baseWave();
    case BaseOctaveRow:
        return static_cast<int>(p.baseOctave());
    case DefOctaveRow:
        return static_cast<int>(m_session.defaultOctave());
    case DefLengthRow:
        return static_cast<int>(m_session.defaultLength());
    default:
        break;
    }
    const part::Pattern* pattern = p.patterns().find(p.currentPattern());
    if (!isTrackRow(row) || pattern == nullptr)
        return {};
    return static_cast<int>(pattern->trackOctave(row - FirstTrackRow));
}

QString PartSettingsModel::display(int row) const
{
    const QVariant v = value(row);
    if (isTrackRow(row)) {
        return v.isValid() ? PatternCellText::trackOctaveWords(static_cast<std::uint8_t>(v.toInt()))
                           : QString();
    }
    return v.toString();
}

QString PartSettingsModel::toolTip(int row) const
{
    switch (row) {
    case PatternListRow:
        return tr("The name of the part's pattern list, saved with the part.");
    case BaseWaveRow:
        return tr("The first wave number used when the part is written into a Buzz song "
                  "(1 to 200).");
    case BaseOctaveRow:
        return tr("The octave the chords play in, and the tracks set to \"base\" (0 to 9).");
    case DefOctaveRow:
        return tr("The octave the pattern editor enters fixed notes in (0 to 9).");
    case DefLengthRow:
        return tr("The rows a chord added to the part plays (1 to 64).");
    default:
        break;
    }
    const QVariant v = value(row);
    if (!v.isValid())
        return tr("The part has no current pattern.");
    const int octave = part::TrackOctave::forFixedNote(static_cast<std::uint8_t>(v.toInt()),
                                                       m_session.part().baseOctave());
    return tr("The octave of track %1 in the current pattern; its fixed notes without an "
              "octave of their own play in octave %2.")
        .arg(row - FirstTrackRow + 1)
        .arg(octave);
}

int PartSettingsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : RowCount;
}

int PartSettingsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant PartSettingsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= RowCount)
        return {};
    const int row = index.row();
    if (index.column() == LabelColumn) {
        if (role == Qt::DisplayRole)
            return label(row);
        return role == Qt::ToolTipRole ? QVariant(toolTip(row)) : QVariant();
    }
    switch (role) {
    case Qt::DisplayRole:
        return display(row);
    case Qt::EditRole:
        return value(row);
    case Qt::ToolTipRole:
        return toolTip(row);
    case Qt::AccessibleTextRole:
        return QStringLiteral("%1: %2").arg(label(row), display(row));
    case MinimumRole:
        switch (row) {
        case BaseWaveRow:
            return 1;
        case DefLengthRow:
            return 1;
        case BaseOctaveRow:
        case DefOctaveRow:
            return 0;
        default:
            return {};
        }
    case MaximumRole:
        switch (row) {
        case BaseWaveRow:
            return 200;
        case DefLengthRow:
            return PartSession::kMaxLength;
        case BaseOctaveRow:
            return kMaxBaseOctave;
        case DefOctaveRow:
            return 9;
        default:
            return {};
        }
    case ChoicesRole:
        return isTrackRow(row) ? QVariant(trackOctaveChoices()) : QVariant();
    default:
        return {};
    }
}

int PartSettingsModel::trackChoice(const QVariant& value) const
{
    if (const auto number = numberIn(value, 0, kTrackOctaveChoices - 1))
        return *number;
    return static_cast<int>(trackOctaveChoices().indexOf(value.toString().trimmed()));
}

bool PartSettingsModel::setData(const QModelIndex& index, const QVariant& v, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index.column() != ValueColumn)
        return false;
    const QModelIndex range = this->index(index.row(), ValueColumn);
    const int minimum = data(range, MinimumRole).toInt();
    const int maximum = data(range, MaximumRole).toInt();
    const auto number = numberIn(v, minimum, maximum);
    switch (index.row()) {
    case PatternListRow: {
        const std::string name = LineText::toLine(v.toString());
        return m_session.edit(QString::fromLatin1(PartSession::kEditPart), PartSession::Patterns,
                              [&name](part::Part& p) {
                                  p.patterns().setName(name);
                                  return true;
                              });
    }
    case BaseWaveRow:
        if (number)
            m_session.setBaseWave(*number);
        return number.has_value();
    case BaseOctaveRow:
        return number && m_session.edit(QString::fromLatin1(PartSession::kEditPart),
                                        PartSession::Settings, [&number](part::Part& p) {
                                            p.setBaseOctave(static_cast<std::uint8_t>(*number));
                                            return true;
                                        });
    case DefOctaveRow:
        if (number)
            m_session.setDefaultOctave(*number);
        return number.has_value();
    case DefLengthRow:
        if (number)
            m_session.setDefaultLength(*number);
        return number.has_value();
    default:
        break;
    }
    const int setting = trackChoice(v);
    return isTrackRow(index.row()) && setting >= 0 &&
           setTrackOctave(index.row() - FirstTrackRow, setting);
}

bool PartSettingsModel::setTrackOctave(int track, int setting)
{
    return m_session.edit(
        QString::fromLatin1(PartSession::kEditPattern), PartSession::Cells,
        [track, setting](part::Part& p) {
            const int current = p.currentPattern();
            if (current >= p.patterns().count())
                return false;
            // The pattern's octaves are one block of 8: read, change one, write back whole.
            part::TrackOctaves block = p.patterns().trackOctaves(current);
            block[static_cast<std::size_t>(track)] = static_cast<std::uint8_t>(setting);
            p.patterns().setTrackOctaves(current, block);
            return true;
        },
        PartSession::EditKind::Live);
}

QVariant PartSettingsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == LabelColumn ? tr("Setting") : tr("Value");
}

Qt::ItemFlags PartSettingsModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags result = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == ValueColumn && value(index.row()).isValid())
        result |= Qt::ItemIsEditable;
    return result;
}

void PartSettingsModel::sync()
{
    // Tooltips of the tracks follow the base octave: a changed base octave repaints them too.
    const bool baseChanged = m_shown[BaseOctaveRow] != value(BaseOctaveRow);
    for (int row = 0; row < RowCount; ++row) {
        const QVariant now = value(row);
        if (now == m_shown[static_cast<std::size_t>(row)] && !(baseChanged && isTrackRow(row)))
            continue;
        m_shown[static_cast<std::size_t>(row)] = now;
        Q_EMIT dataChanged(index(row, LabelColumn), index(row, ValueColumn));
    }
}

} // namespace app
