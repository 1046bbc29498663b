#pragma once

#include <QWidget>

struct wl_surface;
struct xdg_wm_base;
struct zwlr_layer_shell_v1;

namespace tidebrook {

/// What a compositor must offer for strips and their menus, on Qt's connection to it. All events
/// come to the user-interface thread, where Qt dispatches its own. Valid until the application
/// ends.
struct LayerProtocols {
    zwlr_layer_shell_v1 *shell = nullptr;
    xdg_wm_base *popups = nullptr;

    bool isComplete() const { return shell && popups; }
};

/// Asks the compositor once, and waits for its answer then. Null where there is no Wayland.
const LayerProtocols &layerProtocols();

/// A role that this program gives to a window's surface, for Qt cannot. It belongs to the widget.
/// The surface must outlive its role, or the compositor ends the program; Qt destroys a surface
/// when its window is hidden.
class SurfaceRole : public QObject {
    Q_OBJECT

public:
    bool eventFilter(QObject *object, QEvent *event) override;

protected:
    /// The widget must be a window, and is hidden.
    explicit SurfaceRole(QWidget &widget);

    /// A surface that never had a role or a picture. The widget must be hidden.
    wl_surface *makeSurface();
    wl_surface *surface() const;

    /// Ends the role, if there is one. Also called before the surface ends.
    virtual void drop() = 0;

private:
    void watch(QWindow &window);

    QWidget &widget_;
};

} // namespace tidebrook
