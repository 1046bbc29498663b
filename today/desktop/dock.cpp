#include "today/desktop/dock.h"

#include "today/desktop/layer_popup.h"
#include "today/desktop/layer_strip.h"
#include "today/desktop/x11.h"
#include "today/desktop/x11_dock.h"

#include <QMenu>

namespace tidebrook {

void prepareDock() {
    // Qt then leaves windows that bypass the window manager without a role, for others to give.
    qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
}

void dockAtTop(QWidget &strip) {
    if (layerProtocols().isComplete()) {
        auto *layer = strip.findChild<LayerStrip *>({}, Qt::FindDirectChildrenOnly);
        (layer ? layer : new LayerStrip(strip))->stand();
        return;
    }
    if (x11Connection() && !strip.findChild<X11Dock *>({}, Qt::FindDirectChildrenOnly))
        new X11Dock(strip);
    strip.show();
}

void undock(QWidget &strip) {
    if (auto *layer = strip.findChild<LayerStrip *>({}, Qt::FindDirectChildrenOnly))
        layer->leave();
    strip.hide();
}

void popUpFrom(QWidget &strip, QMenu &menu, const QPoint &position) {
    auto *layer = strip.findChild<LayerStrip *>({}, Qt::FindDirectChildrenOnly);
    if (!layer) {
        menu.popup(position);
        return;
    }
    auto *popup = menu.findChild<LayerPopup *>({}, Qt::FindDirectChildrenOnly);
    (popup ? popup : new LayerPopup(menu))->open(*layer, position);
}

} // namespace tidebrook
