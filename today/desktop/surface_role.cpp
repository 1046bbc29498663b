#include "today/desktop/surface_role.h"

#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QWindow>

#include <qpa/qplatformnativeinterface.h>
#include <wlr-layer-shell-unstable-v1.h>
#include <xdg-shell.h>

#include <string_view>

namespace tidebrook {

namespace {

constexpr xdg_wm_base_listener popupsListener{
    .ping = [](void *, xdg_wm_base *popups, uint32_t serial) { xdg_wm_base_pong(popups, serial); }};

template <typename Object>
Object *bindTo(wl_registry *registry, uint32_t name, const wl_interface &interface) {
    void *object = wl_registry_bind(registry, name, &interface, 1);
    // From here on, events come with Qt's.
    wl_proxy_set_queue(static_cast<wl_proxy *>(object), nullptr);
    return static_cast<Object *>(object);
}

void onGlobal(void *data, wl_registry *registry, uint32_t name, const char *interface, uint32_t) {
    auto &found = *static_cast<LayerProtocols *>(data);
    if (std::string_view(interface) == zwlr_layer_shell_v1_interface.name) {
        found.shell = bindTo<zwlr_layer_shell_v1>(registry, name, zwlr_layer_shell_v1_interface);
    } else if (std::string_view(interface) == xdg_wm_base_interface.name) {
        found.popups = bindTo<xdg_wm_base>(registry, name, xdg_wm_base_interface);
        xdg_wm_base_add_listener(found.popups, &popupsListener, nullptr);
    }
}

constexpr wl_registry_listener registryListener{
    .global = onGlobal, .global_remove = [](void *, wl_registry *, uint32_t) {}};

/// A queue of its own lets the answers be awaited without any event of Qt's being dispatched.
LayerProtocols askCompositor(wl_display *display) {
    LayerProtocols found;
    wl_event_queue *queue = wl_display_create_queue(display);
    auto *asker = static_cast<wl_display *>(wl_proxy_create_wrapper(display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(asker), queue);
    wl_registry *registry = wl_display_get_registry(asker);
    wl_registry_add_listener(registry, &registryListener, &found);
    wl_display_roundtrip_queue(display, queue);
    wl_registry_destroy(registry);
    wl_proxy_wrapper_destroy(asker);
    wl_event_queue_destroy(queue);
    return found;
}

LayerProtocols findProtocols() {
    QPlatformNativeInterface *native = QGuiApplication::platformNativeInterface();
    void *display = native ? native->nativeResourceForIntegration("wl_display") : nullptr;
    return display ? askCompositor(static_cast<wl_display *>(display)) : LayerProtocols();
}

} // namespace

const LayerProtocols &layerProtocols() {
    static const LayerProtocols protocols = findProtocols();
    return protocols;
}

SurfaceRole::SurfaceRole(QWidget &widget) : QObject(&widget), widget_(widget) {
    widget.setWindowFlag(Qt::BypassWindowManagerHint);
}

wl_surface *SurfaceRole::surface() const {
    return static_cast<wl_surface *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForWindow(
            "surface", widget_.windowHandle()));
}

wl_surface *SurfaceRole::makeSurface() {
    widget_.winId();
    QWindow &window = *widget_.windowHandle();
    if (!surface()) { // Qt destroyed it when the window was hidden
        window.destroy();
        window.create();
    }
    watch(window);
    return surface();
}

void SurfaceRole::watch(QWindow &window) {
    disconnect(&window, &QWindow::visibleChanged, this, nullptr);
    connect(&window, &QWindow::visibleChanged, this, [this](bool isVisible) {
        if (!isVisible)
            drop();
    });
    window.installEventFilter(this);
}

bool SurfaceRole::eventFilter(QObject *object, QEvent *event) {
    if (event->type() == QEvent::PlatformSurface &&
        static_cast<QPlatformSurfaceEvent *>(event)->surfaceEventType() ==
            QPlatformSurfaceEvent::SurfaceAboutToBeDestroyed)
        drop();
    return QObject::eventFilter(object, event);
}

} // namespace tidebrook

#include "moc_surface_role.cpp"
