#include "store/category_list.h"

#include "platform/base/text.h"
#include "store/escape_sql.h"

namespace tidebrook {

namespace {

constexpr QStringView countName = u"CategoryNumber";
// A damaged count must not exhaust the memory.
constexpr quint32 slotLimit = 65536;

} // namespace

bool CategoryListStore::readCount(quint32 &count) {
    return settings_.RegReadDword(programKey, countName, count);
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
    // Each read that finds a damaged value removes it and fails.
    constexpr int damagedValueLimit = 100;
    CategoryList list;
    for (int i = 0; i < damagedValueLimit && !ReadCategoryList(list); ++i) {
        if (list.isEmpty())
            break;
    }
    const bool isReadable = settings_.registry().values(programKey).has_value() &&
                            settings_.registry().values(categoriesKey).has_value();
    list.removeIf([](const QString &name) { return name.isNull(); });
    return list.isEmpty() && !isReadable ? std::nullopt : std::optional(list);
}

bool CategoryListStore::change(const QString &name,
                               const std::function<bool(quint32 count)> &work) {
    if (name.isNull())
        return false;
    Registry::Batch batch(settings_.registry());
    quint32 count = 0;
    if (!batch.isOpen())
        return false;
    const bool hasCount = readCount(count); // a read without a count makes one, which is kept
    if (hasCount && !work(count))
        return false;
    return batch.commit() && settings_.registry().flush() && hasCount;
}

bool CategoryListStore::AddCategory(const QString &name) {
    return change(name, [&](quint32 count) {
        quint32 data = 0;
        // A read without a value makes it; only a value of another type is not a category then.
        return !settings_.RegReadDword(categoriesKey, name, data) &&
               settings_.RegWriteDword(programKey, countName, count + 1);
    });
}

bool CategoryListStore::ensureListed(const QString &name) {
    const auto isListed = [&] { return listedCategories().value_or(QStringList()).contains(name); };
    if (isListed())
        return true;
    // Without a count the first call makes the count.
    if (!AddCategory(name))
        AddCategory(name);
    return isListed() || (countAnew() && isListed());
}

// A count that is too small hides the last categories, of which each could be added no more.
bool CategoryListStore::countAnew() {
    Registry::Batch batch(settings_.registry());
    const auto values = settings_.registry().values(categoriesKey);
    return batch.isOpen() && values &&
           settings_.RegWriteDword(programKey, countName, static_cast<quint32>(values->size())) &&
           batch.commit() && settings_.registry().flush();
}

bool CategoryListStore::DeleteCategory(const QString &name) {
    return change(name, [&](quint32 count) {
        return settings_.registry().remove(categoriesKey, name) &&
               settings_.RegWriteDword(programKey, countName, qMax(count, 1U) - 1);
    });
}

} // namespace tidebrook
