#pragma once

#include "store/settings_store.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace tidebrook {

/// The categories' names in their stored order. A slot is null where the registry counts more
/// categories than it holds.
using CategoryList = QStringList;

/// The list of categories in the registry: under the program's key the count "CategoryNumber",
/// and under its subkey "Categories" a value for each, whose name is the category's.
///
/// Every change is one change of the registry, flushed at once; one that fails leaves the count and
/// the values as they were. No error code is recorded. Thread-safe.
class CategoryListStore {
public:
    explicit CategoryListStore(Registry &registry) : settings_(registry) {}

    /// False, with an empty list, when there are no categories. A value of another type among them
    /// is deleted, and the read fails; the next read succeeds.
    bool ReadCategoryList(CategoryList &list);

    /// The names as a list shows them: without empty slots and damaged values, which are deleted.
    /// Nothing when the registry cannot be read.
    std::optional<QStringList> listedCategories();

    /// False when the category exists already, or when there was no count: that is then 0, and the
    /// next call succeeds.
    bool AddCategory(const QString &name);

    /// Adds the category unless it is listed, and corrects a count that hides it. False when it is
    /// not listed afterwards.
    bool ensureListed(const QString &name);

    /// False when there is no such category, or no count, which is then 0. The category's channels
    /// stay.
    bool DeleteCategory(const QString &name);

private:
    bool readCount(quint32 &count);
    bool countAnew();
    bool change(const QString &name, const std::function<bool(quint32 count)> &work);

    SettingsStore settings_;
};

} // namespace tidebrook
