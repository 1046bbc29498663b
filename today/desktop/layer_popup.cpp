#include "today/desktop/layer_popup.h"

#include <QGuiApplication>

#include <qpa/qplatformnativeinterface.h>
#include <xdg-shell.h>

namespace tidebrook {

namespace {

/// The compositor keeps the menu on the screen.
xdg_positioner *makePositioner(const QPoint &position, const QSize &size) {
    xdg_positioner *positioner = xdg_wm_base_create_positioner(layerProtocols().popups);
    xdg_positioner_set_size(positioner, size.width(), size.height());
    xdg_positioner_set_anchor_rect(positioner, position.x(), position.y(), 1, 1);
    xdg_positioner_set_anchor(positioner, XDG_POSITIONER_ANCHOR_BOTTOM_LEFT);
    xdg_positioner_set_gravity(positioner, XDG_POSITIONER_GRAVITY_BOTTOM_RIGHT);
    xdg_positioner_set_constraint_adjustment(positioner,
                                             XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_X |
                                                 XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_Y);
    return positioner;
}

} // namespace

LayerPopup::LayerPopup(QMenu &menu) : SurfaceRole(menu), menu_(menu) {}

LayerPopup::~LayerPopup() { LayerPopup::drop(); }

void LayerPopup::open(LayerStrip &strip, const QPoint &position) {
    if (!popup_)
        takeRole(strip, strip.fromGlobal(position));
}

void LayerPopup::takeRole(LayerStrip &strip, const QPoint &position) {
    strip_ = &strip;
    wl_surface *surface = makeSurface();
    base_ = xdg_wm_base_get_xdg_surface(layerProtocols().popups, surface);
    static constexpr xdg_surface_listener baseListener{
        .configure = [](void *data, xdg_surface *base, uint32_t serial) {
            auto &popup = *static_cast<LayerPopup *>(data);
            xdg_surface_ack_configure(base, serial);
            if (popup.strip_ && !popup.menu_.isVisible())
                popup.menu_.popup(popup.strip_->toGlobal(popup.place_));
        }};
    xdg_surface_add_listener(base_, &baseListener, this);
    xdg_positioner *positioner = makePositioner(position, menu_.sizeHint());
    popup_ = xdg_surface_get_popup(base_, nullptr, positioner);
    xdg_positioner_destroy(positioner);
    static constexpr xdg_popup_listener popupListener{
        .configure = [](void *popup, xdg_popup *, int32_t x, int32_t y, int32_t,
                        int32_t) { static_cast<LayerPopup *>(popup)->place_ = QPoint(x, y); },
        .popup_done =
            [](void *popup, xdg_popup *) {
                static_cast<LayerPopup *>(popup)->drop();
                static_cast<LayerPopup *>(popup)->menu_.close();
            },
        .repositioned = [](void *, xdg_popup *, uint32_t) {}};
    xdg_popup_add_listener(popup_, &popupListener, this);
    strip.adopt(popup_);
    strip.setHasKeyboard(true);
    grabInput();
    wl_surface_commit(surface);
}

/// So that a click outside closes the menu.
void LayerPopup::grabInput() {
    QPlatformNativeInterface *native = QGuiApplication::platformNativeInterface();
    auto *seat = static_cast<wl_seat *>(native->nativeResourceForIntegration("wl_seat"));
    const auto serial = reinterpret_cast<quintptr>(native->nativeResourceForIntegration("serial"));
    if (seat)
        xdg_popup_grab(popup_, seat, uint32_t(serial));
}

void LayerPopup::drop() {
    if (!popup_)
        return;
    xdg_popup_destroy(popup_);
    popup_ = nullptr;
    xdg_surface_destroy(base_);
    base_ = nullptr;
    if (strip_)
        strip_->setHasKeyboard(false);
}

} // namespace tidebrook

#include "moc_layer_popup.cpp"
