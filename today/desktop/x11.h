#pragma once

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace tidebrook {

/// Qt's connection to the X server; null where there is none.
inline xcb_connection_t *x11Connection() {
    auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

struct FreeReply {
    void operator()(void *reply) const { std::free(reply); }
};
template <typename Reply> using X11Reply = std::unique_ptr<Reply, FreeReply>;

} // namespace tidebrook
