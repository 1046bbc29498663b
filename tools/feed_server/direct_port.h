#pragma once

#include "feed_server/feed_server.h"

namespace tidebrook {

/// While it exists, a server's port stands for port 80 in the direct downloads of this process.
class DirectPort {
public:
    explicit DirectPort(const FeedServer &server) {
        qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(server.port()));
    }
    ~DirectPort() { qunsetenv("TIDEBROOK_HTTP_PORT"); }
    DirectPort(const DirectPort &) = delete;
    DirectPort &operator=(const DirectPort &) = delete;
};

} // namespace tidebrook
