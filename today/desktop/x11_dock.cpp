#include "today/desktop/x11_dock.h"

#include "today/desktop/x11.h"

#include <QEvent>
#include <QtMath>

#include <qpa/qplatformscreen.h>

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace tidebrook {

namespace {

constexpr uint32_t allDesktops = 0xFFFFFFFF;

void setCardinals(QWidget &window, std::string_view property, std::span<const uint32_t> values) {
    xcb_connection_t *connection = x11Connection();
    const X11Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, false, uint16_t(property.size()), property.data()),
        nullptr));
    if (atom)
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, xcb_window_t(window.winId()),
                            atom->atom, XCB_ATOM_CARDINAL, 32, uint32_t(values.size()),
                            values.data());
}

/// A strut begins at the edge of all screens together, so it would cover a screen above.
bool isAtTop(const QRect &strip) {
    return std::ranges::none_of(QGuiApplication::screens(), [&](const QScreen *screen) {
        const QRect other = screen->handle()->geometry();
        return other.top() < strip.top() && other.left() <= strip.right() &&
               other.right() >= strip.left();
    });
}

} // namespace

X11Dock::X11Dock(QWidget &strip) : QObject(&strip), strip_(strip) {
    strip_.setWindowFlag(Qt::FramelessWindowHint);
    strip_.winId(); // Qt heeds the attribute of a window that is there
    strip_.setAttribute(Qt::WA_X11NetWmWindowTypeDock);
    strip_.installEventFilter(this);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &X11Dock::follow);
    follow(QGuiApplication::primaryScreen());
}

void X11Dock::follow(QScreen *screen) {
    if (screen_)
        disconnect(screen_, nullptr, this, nullptr);
    screen_ = screen;
    if (screen)
        connect(screen, &QScreen::geometryChanged, this, &X11Dock::place);
    place();
}

void X11Dock::place() {
    if (!screen_)
        return;
    const QRect all = screen_->geometry();
    strip_.setGeometry(all.x(), all.y(), all.width(), strip_.height());
    reserve();
}

/// In pixels of the device, counted from the top left corner of all screens together.
void X11Dock::reserve() {
    QRect place = screen_->handle()->geometry();
    place.setHeight(qCeil(strip_.height() * screen_->devicePixelRatio()));
    std::array<uint32_t, 12> strut{};
    if (isAtTop(place)) {
        strut[2] = uint32_t(place.bottom() + 1);
        strut[8] = uint32_t(place.left());
        strut[9] = uint32_t(place.right());
    }
    setCardinals(strip_, "_NET_WM_STRUT_PARTIAL", strut);
    setCardinals(strip_, "_NET_WM_STRUT", std::span(strut).first<4>());
}

bool X11Dock::eventFilter(QObject *object, QEvent *event) {
    if (event->type() == QEvent::Resize)
        place();
    else if (event->type() == QEvent::Show) // window managers remove it from a hidden window
        setCardinals(strip_, "_NET_WM_DESKTOP", std::array{allDesktops});
    return QObject::eventFilter(object, event);
}

} // namespace tidebrook

#include "moc_x11_dock.cpp"
