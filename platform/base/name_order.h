#pragma once

#include <QCollator>
#include <QList>

#include <algorithm>
#include <utility>
#include <vector>

namespace tidebrook {

/// The order of names for people: that of the user's language, upper and lower case together, and
/// numbers by their values. Where no language is set, that of English.
QCollator nameOrder();

/// Sorts items by their `name`. Names that are equal in that order are sorted by their codes.
template <class Named> void sortByName(QList<Named> &items) {
    struct Keyed {
        QCollatorSortKey key;
        Named item;
    };
    const QCollator order = nameOrder();
    std::vector<Keyed> keyed;
    keyed.reserve(static_cast<std::size_t>(items.size()));
    for (Named &item : items)
        keyed.push_back({order.sortKey(item.name), std::move(item)});
    std::sort(keyed.begin(), keyed.end(), [](const Keyed &one, const Keyed &other) {
        const int way = one.key.compare(other.key);
        return way != 0 ? way < 0 : one.item.name < other.item.name;
    });
    std::transform(keyed.begin(), keyed.end(), items.begin(),
                   [](Keyed &one) { return std::move(one.item); });
}

} // namespace tidebrook
