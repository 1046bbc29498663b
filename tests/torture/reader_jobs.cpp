// reader_jobs ROOT properties|read: what the reader does and the command line does not, without its
// screens.

#include "subscriptions/locked_subscriptions.h"
#include "update/auto_list.h"

#include <cstdio>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

// Of what is stored, so that a change that was cut short can be made again.
bool changeProperties(Device &device) {
    ChannelProperties now{{}, u"a"_s, {}, false};
    device.store.FindCategory(now.name, now.category);
    if (now.category.isNull() && !device.store.FindCategory(now.name = u"other"_s, now.category))
        return false;
    device.store.GetChannelLink(now.category, now.name, now.link);
    const std::optional<bool> isAutomatic = isAutoUpdated(device.root, now.name);
    now.isAutoUpdated = isAutomatic.value_or(false);
    return isAutomatic &&
           LockedSubscriptions(device).changeChannel(
               now, {u"D"_s, u"other"_s, u"http://127.0.0.1:1/other"_s, false}) == ChangeEnd::Done;
}

bool readFirstUnread(Device &device) {
    QList<ArticleRow> rows;
    ArticleExtract article;
    return device.store.ListArticles(u"a"_s, SortMode::UnreadOnly, rows) && !rows.isEmpty() &&
           device.store.GetArticleDetail(u"a"_s, rows.first().title, article) &&
           device.store.PublishTotalUnread();
}

int run(const QString &root, const QString &job) {
    Device device{DeviceRoot(root)};
    const bool isDone = device.open(std::nullopt) == DeviceFault::None &&
                        (job == u"read" ? readFirstUnread(device) : changeProperties(device));
    device.close();
    if (!isDone)
        std::fprintf(stderr, "%s failed\n", qUtf8Printable(job));
    return isDone ? 0 : 1;
}

} // namespace
} // namespace tidebrook

int main(int argc, char **argv) {
    return argc == 3
               ? tidebrook::run(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]))
               : 2;
}
