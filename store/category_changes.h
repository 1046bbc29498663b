#pragma once

#include "store/category_list.h"
#include "store/feed_store.h"

#include <QString>

namespace tidebrook {

/// How a change that concerns the list of categories and the database ended.
enum class CategoryChange {
    Done,
    NameTaken, ///< the other category holds channels, and so does this one
    NotListed, ///< the list of categories could not be read or changed
    NotMoved,  ///< the database failed; its error field has the code
};

/// Renames a category with all its channels and their articles, which are in a listed category at
/// every moment. One that was broken off in the middle goes on where it was: a name that is listed
/// and holds no channels counts as free. After a failure the channels are still in `old`, except
/// that `NotListed` may also mean that only the empty `old` could not be taken off the list. The
/// caller holds the lock of the channels.
CategoryChange RenameCategory(CategoryListStore &categories, FeedStore &store, const QString &old,
                              const QString &to);

} // namespace tidebrook
