#include "share/dialogs/channel_adding.h"

#include "res/strings.h"
#include "store/escape_sql.h"

#include <memory>

namespace tidebrook {

namespace {

bool startOne(const ChannelAdding &adding, ChannelRecord channel, const JobEnd &end) {
    channel.channelName = storableName(channel.channelName);
    if (!channel.channelName.isEmpty())
        return AddChannelJob(adding.state, adding.receiver, channel, end);
    const auto addUnnamed = [channel](LockedSubscriptions &subscriptions) {
        return subscriptions.addUnnamedChannel(channel.category, channel.channelLink);
    };
    return startChange(adding.state, adding.receiver, addUnnamed, end);
}

} // namespace

void startAdding(const ChannelAdding &adding, const QList<ChannelRecord> &channels) {
    struct Count {
        qsizetype left;
        int messageId = 0;
    };
    const auto count = std::make_shared<Count>(Count{channels.size()});
    const JobEnd endOne = [count, end = adding.end](int messageId) {
        if (count->messageId == 0)
            count->messageId = messageId;
        if (--count->left == 0)
            end(count->messageId);
    };
    for (const ChannelRecord &channel : channels) {
        if (!startOne(adding, channel, endOne))
            endOne(memoryProblemString);
    }
}

} // namespace tidebrook
