#include "store/category_list.h"

#include "platform/base/text.h"
#include "store/escape_sql.h"

namespace tidebrook {

namespace {

constexpr QStringView countName = u"CategoryNumber";
// A damaged count must not make a list of four thousand million slots.
constexpr quint32 slotLimit = 65536;

} // namespace

bool CategoryListStore::readCount(quint32 &count) {
    return settings_.RegReadDword(programKey, countName, count);
}

bool CategoryListStore::commit(Registry::Batch &batch) {
    return batch.commit() && settings_.registry().flush();
}

bool CategoryListStore::ReadCategoryList(CategoryList &list) {
    list.clear();
    quint32 count = 0;
    if (!readCount(count) || count == 0)
        return false;
    list.resize(qMin(count, slotLimit));
    const auto values = settings_.registry().values(categoriesKey);
    if (!values)
        return false;
    for (qsizetype i = 0; i < values->size() && i < list.size(); ++i) {
        const Registry::NamedValue &value = values->at(i);
        if (!std::holds_alternative<quint32>(value.value)) {
            settings_.registry().remove(categoriesKey, value.name);
            return false;
        }
        list[i] = cutText(value.name, categoryCapacity).toString();
    }
    return true;
}

std::optional<QStringList> CategoryListStore::listedCategories() {
    // Each read that comes upon a damaged value takes it out and fails.
    constexpr int damagedValueLimit = 100;
    CategoryList list;
    for (int i = 0; i < damagedValueLimit && !ReadCategoryList(list); ++i) {
        if (list.isEmpty())
            break;
    }
    const bool isReadable = settings_.registry().values(programKey).has_value() &&
                            settings_.registry().values(categoriesKey).has_value();
    if (list.isEmpty() && !isReadable)
        return std::nullopt;
    list.removeIf([](const QString &name) { return name.isNull(); });
    return list;
}

bool CategoryListStore::AddCategory(const QString &name) {
    if (name.isNull())
        return false;
    Registry::Batch batch(settings_.registry());
    quint32 count = 0;
    if (!batch.isOpen())
        return false;
    if (!readCount(count)) {
        commit(batch); // the count that the read has made
        return false;
    }
    quint32 data = 0;
    if (settings_.RegReadDword(categoriesKey, name, data))
        return false;
    // The read has made the value; only a value of another type is not a category now.
    return settings_.RegWriteDword(programKey, countName, count + 1) && commit(batch);
}

bool CategoryListStore::ensureListed(const QString &name) {
    // Without a count the first call makes the count.
    return listedCategories().value_or(QStringList()).contains(name) || AddCategory(name) ||
           AddCategory(name);
}

bool CategoryListStore::DeleteCategory(const QString &name) {
    if (name.isNull())
        return false;
    Registry::Batch batch(settings_.registry());
    quint32 count = 0;
    if (!batch.isOpen())
        return false;
    if (!readCount(count)) {
        commit(batch); // the count that the read has made
        return false;
    }
    return settings_.registry().remove(categoriesKey, name) &&
           settings_.RegWriteDword(programKey, countName, qMax(count, 1U) - 1) && commit(batch);
}

} // namespace tidebrook
