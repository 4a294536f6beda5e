#pragma once

#include <algorithm>
#include <vector>

namespace app {

/**
 * How a list model's rows changed between two snapshots, for fine-grained model signals that
 * keep selection and scroll position: the rows before `first` and the last rows are unchanged;
 * in between, `changed` rows differ in place, then `removed` old rows go or `inserted` new rows
 * come (never both). A list that did not change has changed = removed = inserted = 0.
 */
struct RowDiff
{
    int first = 0;
    int changed = 0;
    int removed = 0;
    int inserted = 0;

    template <typename Row>
    static RowDiff between(const std::vector<Row>& before, const std::vector<Row>& after)
    {
        const auto oldSize = static_cast<int>(before.size());
        const auto newSize = static_cast<int>(after.size());
        int prefix = 0;
        while (prefix < oldSize && prefix < newSize &&
               before[static_cast<std::size_t>(prefix)] == after[static_cast<std::size_t>(prefix)])
            ++prefix;
        int suffix = 0;
        while (suffix < oldSize - prefix && suffix < newSize - prefix &&
               before[static_cast<std::size_t>(oldSize - 1 - suffix)] ==
                   after[static_cast<std::size_t>(newSize - 1 - suffix)])
            ++suffix;
        const int oldMiddle = oldSize - prefix - suffix;
        const int newMiddle = newSize - prefix - suffix;
        RowDiff diff;
        diff.first = prefix;
        diff.changed = std::min(oldMiddle, newMiddle);
        diff.removed = oldMiddle - diff.changed;
        diff.inserted = newMiddle - diff.changed;
        return diff;
    }
};

} // namespace app
