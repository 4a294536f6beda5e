#include "app/ChordCandidateModel.h"

namespace app {

ChordCandidateModel::ChordCandidateModel(QObject* parent) : QAbstractListModel(parent)
{
    setObjectName(QStringLiteral("chordCandidates"));
}

void ChordCandidateModel::setCandidates(std::vector<music::ChordCandidate> candidates)
{
    if (candidates.size() > std::size_t(kMaxShown))
        candidates.resize(kMaxShown);
    beginResetModel();
    m_candidates = std::move(candidates);
    endResetModel();
}

QString ChordCandidateModel::nameAt(int row) const
{
    if (row < 0 || row >= rowCount())
        return {};
    return QString::fromStdString(m_candidates[static_cast<std::size_t>(row)].name);
}

int ChordCandidateModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_candidates.size());
}

QVariant ChordCandidateModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const music::ChordCandidate& c = m_candidates[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return QStringLiteral("%1 \u2014 %2")
            .arg(QString::fromStdString(c.name), QString::fromStdString(c.description));
    case Qt::ToolTipRole: {
        QStringList notes;
        for (const music::SpelledNote& note : c.notes)
            notes << QString::fromStdString(note.text());
        return tr("Notes: %1").arg(notes.join(QLatin1Char(' ')));
    }
    default:
        return {};
    }
}

} // namespace app
