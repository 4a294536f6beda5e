#pragma once

#include "music/ChordCandidate.h"

#include <QAbstractListModel>

#include <vector>

namespace app {

/**
 * The names the chord namer gives a set of notes, best first, as a list: "C/E — C major, first
 * inversion". The list is cut to the first kMaxShown names.
 */
class ChordCandidateModel : public QAbstractListModel
{
    Q_OBJECT
public:
    static constexpr int kMaxShown = 8;

    explicit ChordCandidateModel(QObject* parent = nullptr);

    void setCandidates(std::vector<music::ChordCandidate> candidates);
    const std::vector<music::ChordCandidate>& candidates() const { return m_candidates; }
    /** The name of row `row` ("C/E"); empty for a row that does not exist. */
    QString nameAt(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

private:
    std::vector<music::ChordCandidate> m_candidates;
};

} // namespace app
