#pragma once

#include "today/desktop/layer_strip.h"

#include <QMenu>
#include <QPointer>

struct xdg_popup;
struct xdg_surface;

namespace tidebrook {

/// Opens a menu as a popup of a strip of the layer shell.
class LayerPopup : public SurfaceRole {
    Q_OBJECT

public:
    explicit LayerPopup(QMenu &menu);
    ~LayerPopup() override;

    /// See popUpFrom(). Nothing when the menu is open.
    void open(LayerStrip &strip, const QPoint &position);

protected:
    void drop() override;

private:
    void takeRole(LayerStrip &strip, const QPoint &position);
    void grabInput();

    QMenu &menu_;
    QPointer<LayerStrip> strip_;
    xdg_surface *base_ = nullptr;
    xdg_popup *popup_ = nullptr;
    QPoint place_; // within the strip
};

} // namespace tidebrook
