#pragma once

#include "today/desktop/surface_role.h"

#include <QMenu>

struct xdg_popup;
struct xdg_surface;

namespace tidebrook {

class LayerStrip;

/// Opens a menu as a popup of a strip of the layer shell.
class LayerPopup : public SurfaceRole {
    Q_OBJECT

public:
    explicit LayerPopup(QMenu &menu);
    ~LayerPopup() override;

    /// See popUpFrom(). Nothing when the menu is open.
    void open(const LayerStrip &strip, const QPoint &position);

protected:
    void drop() override;

private:
    void takeRole(const LayerStrip &strip, const QPoint &position);
    void grabInput();

    QMenu &menu_;
    const LayerStrip *strip_ = nullptr;
    xdg_surface *base_ = nullptr;
    xdg_popup *popup_ = nullptr;
    QPoint place_; // within the strip
};

} // namespace tidebrook
