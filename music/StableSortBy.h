#pragma once

#include <algorithm>
#include <type_traits>
#include <utility>
#include <vector>

namespace music {

/**
 * Sorts `items` by the key `keyOf` gives each of them (computed once per item), in ascending
 * order when `upwards`, else descending; items with equal keys keep their order either way.
 */
template <typename Item, typename KeyOf>
void stableSortBy(std::vector<Item>& items, KeyOf keyOf, bool upwards)
{
    using Key = std::invoke_result_t<KeyOf, const Item&>;
    std::vector<std::pair<Key, Item>> keyed;
    keyed.reserve(items.size());
    for (Item& item : items) {
        Key key = keyOf(std::as_const(item));
        keyed.emplace_back(std::move(key), std::move(item));
    }
    std::stable_sort(keyed.begin(), keyed.end(), [upwards](const auto& a, const auto& b) {
        return upwards ? a.first < b.first : b.first < a.first;
    });
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i] = std::move(keyed[i].second);
}

} // namespace music
