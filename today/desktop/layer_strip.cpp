#include "today/desktop/layer_strip.h"

#include <QEvent>
#include <QGuiApplication>

#include <qpa/qplatformnativeinterface.h>
#include <qpa/qplatformscreen.h>
#include <wlr-layer-shell-unstable-v1.h>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr uint32_t topEdge = ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT |
                             ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;

} // namespace

LayerStrip::LayerStrip(QWidget &strip) : SurfaceRole(strip), strip_(strip) {
    strip_.installEventFilter(this);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, [this] {
        if (isWanted_)
            stand();
    });
}

LayerStrip::~LayerStrip() { LayerStrip::drop(); }

void LayerStrip::stand() {
    isWanted_ = true;
    QScreen *screen = QGuiApplication::primaryScreen();
    if (!role_ && screen && !screen->handle()->isPlaceholder())
        takeRole(*screen);
}

void LayerStrip::leave() {
    isWanted_ = false;
    if (!strip_.isVisible())
        drop();
}

void LayerStrip::takeRole(QScreen &screen) {
    screen_ = &screen;
    strip_.move(screen.geometry().topLeft()); // for Qt's global coordinates
    auto *output = static_cast<wl_output *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForScreen("output", &screen));
    zwlr_layer_shell_v1 *shell = layerProtocols().shell;
    role_ = zwlr_layer_shell_v1_get_layer_surface(shell, makeSurface(), output,
                                                  ZWLR_LAYER_SHELL_V1_LAYER_TOP, "tidebrook-today");
    static constexpr zwlr_layer_surface_v1_listener listener{
        .configure =
            [](void *strip, zwlr_layer_surface_v1 *, uint32_t serial, uint32_t width,
               uint32_t height) {
                static_cast<LayerStrip *>(strip)->onConfigured(serial,
                                                               QSize(int(width), int(height)));
            },
        .closed = [](void *strip,
                     zwlr_layer_surface_v1 *) { static_cast<LayerStrip *>(strip)->onClosed(); }};
    zwlr_layer_surface_v1_add_listener(role_, &listener, this);
    zwlr_layer_surface_v1_set_anchor(role_, topEdge);
    askForHeight();
}

void LayerStrip::askForHeight() {
    height_ = strip_.height();
    zwlr_layer_surface_v1_set_size(role_, 0, uint32_t(height_));
    zwlr_layer_surface_v1_set_exclusive_zone(role_, height_);
    wl_surface_commit(surface());
}

void LayerStrip::onConfigured(uint32_t serial, QSize size) {
    zwlr_layer_surface_v1_ack_configure(role_, serial);
    if (size.height() == 0)
        size.setHeight(height_);
    strip_.resize(size);
    strip_.show();
}

void LayerStrip::onClosed() {
    drop();
    strip_.hide();
    isWanted_ = true;
    // The screen is gone. Where Qt knows that already, no later change will call for the strip.
    if (screen_ != QGuiApplication::primaryScreen())
        stand();
}

void LayerStrip::drop() {
    if (role_)
        zwlr_layer_surface_v1_destroy(role_);
    role_ = nullptr;
}

void LayerStrip::adopt(xdg_popup *popup) {
    if (role_)
        zwlr_layer_surface_v1_get_popup(role_, popup);
}

void LayerStrip::setHasKeyboard(bool hasKeyboard) {
    if (!role_)
        return;
    zwlr_layer_surface_v1_set_keyboard_interactivity(role_, hasKeyboard);
    wl_surface_commit(surface());
}

QPoint LayerStrip::fromGlobal(const QPoint &position) const {
    const QPoint inside = strip_.mapFromGlobal(position);
    return {std::clamp(inside.x(), 0, strip_.width() - 1),
            std::clamp(inside.y(), 0, strip_.height() - 1)};
}

bool LayerStrip::eventFilter(QObject *object, QEvent *event) {
    if (object == &strip_ && event->type() == QEvent::Hide)
        isWanted_ = false;
    if (object == &strip_ && event->type() == QEvent::Resize && role_ && strip_.height() != height_)
        askForHeight();
    return SurfaceRole::eventFilter(object, event);
}

} // namespace tidebrook

#include "moc_layer_strip.cpp"
