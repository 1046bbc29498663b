#include "store/category_changes.h"

#include <optional>

namespace tidebrook {

namespace {

std::optional<bool> holdsChannels(FeedStore &store, const QString &category) {
    const auto guard = store.lock();
    if (!store.ListChannels(escapedCategory(category)))
        return std::nullopt;
    return !store.takeChannelRows().isEmpty();
}

} // namespace

CategoryChange RenameCategory(CategoryListStore &categories, FeedStore &store, const QString &old,
                              const QString &to) {
    const std::optional<QStringList> listed = categories.listedCategories();
    if (!listed || !listed->contains(old))
        return CategoryChange::NotListed;
    if (old == to)
        return CategoryChange::Done;
    const std::optional<bool> isOldUsed = holdsChannels(store, old);
    const std::optional<bool> isNewUsed = holdsChannels(store, to);
    if (!isOldUsed || !isNewUsed)
        return CategoryChange::NotMoved;
    const bool wasListed = listed->contains(to);
    if (wasListed && *isOldUsed && *isNewUsed)
        return CategoryChange::NameTaken;
    if (!categories.ensureListed(to))
        return CategoryChange::NotListed;
    if (!store.MoveCategory(old, to)) {
        if (!wasListed)
            categories.DeleteCategory(to); // an empty one that stays does no harm
        return CategoryChange::NotMoved;
    }
    return categories.DeleteCategory(old) ? CategoryChange::Done : CategoryChange::NotListed;
}

} // namespace tidebrook
