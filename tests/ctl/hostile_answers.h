#pragma once

#include "feed_server/feed_server.h"

#include <vector>

namespace tidebrook {

/// An answer as no server should give it, and the code that a refresh by it ends with.
struct HostileAnswer {
    QByteArray name;
    Answer answer;
    quint32 error;
    bool usesTimeLimit = false; ///< it ends by the time limit of a transfer
    quint32 roundError = error; ///< the code of a round and of `tidebrookctl update`

    QString path() const { return u'/' + QString::fromLatin1(name); }
};

/// Has the server give all of them at their paths, and whatever they redirect to.
std::vector<HostileAnswer> serveHostileAnswers(FeedServer &server);

/// A feed with one article, "New".
extern const QByteArray hostileFeed;

} // namespace tidebrook
