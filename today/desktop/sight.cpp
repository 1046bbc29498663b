#include "today/desktop/sight.h"

#include "today/desktop/screen_lock.h"
#include "today/desktop/x11.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>

namespace tidebrook {

Sight::Sight(QWidget &window) : window_(window), lock_(new ScreenLock(this)) {
    connect(lock_, &ScreenLock::changed, this, &Sight::update);
    window_.installEventFilter(this);
    if (x11Connection())
        qGuiApp->installNativeEventFilter(this);
    watchHandle();
}

Sight::~Sight() = default;

void Sight::watchHandle() {
    QWindow *handle = window_.windowHandle();
    if (!handle)
        return;
    handle->installEventFilter(this);
    if (x11Connection())
        selectVisibility();
    update();
}

/// In addition to the events that Qt wants.
void Sight::selectVisibility() {
    xcb_connection_t *connection = x11Connection();
    const auto id = xcb_window_t(window_.internalWinId());
    const X11Reply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        connection, xcb_get_window_attributes(connection, id), nullptr));
    if (!attributes)
        return;
    const uint32_t events = attributes->your_event_mask | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    xcb_change_window_attributes(connection, id, XCB_CW_EVENT_MASK, &events);
    isCovered_ = false;
}

bool Sight::eventFilter(QObject *object, QEvent *event) {
    if (object == &window_ && event->type() == QEvent::WinIdChange)
        watchHandle();
    else if (object != &window_ && event->type() == QEvent::Expose)
        update();
    return QObject::eventFilter(object, event);
}

bool Sight::nativeEventFilter(const QByteArray &, void *message, qintptr *) {
    const auto *event = static_cast<xcb_generic_event_t *>(message);
    if ((event->response_type & ~0x80) != XCB_VISIBILITY_NOTIFY)
        return false;
    const auto *visibility = reinterpret_cast<const xcb_visibility_notify_event_t *>(event);
    if (visibility->window == window_.internalWinId()) {
        isCovered_ = visibility->state == XCB_VISIBILITY_FULLY_OBSCURED;
        update();
    }
    return false;
}

void Sight::update() {
    const QWindow *handle = window_.windowHandle();
    const bool isSeen = handle && handle->isExposed() && !isCovered_ && !lock_->isLocked();
    if (isSeen == isSeen_)
        return;
    isSeen_ = isSeen;
    Q_EMIT changed();
}

} // namespace tidebrook

#include "moc_sight.cpp"
