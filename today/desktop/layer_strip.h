#pragma once

#include "today/desktop/surface_role.h"

#include <QPointer>
#include <QScreen>

struct xdg_popup;
struct zwlr_layer_surface_v1;

namespace tidebrook {

/// Has a window stand at the top of the primary screen by the layer shell, which the compositor
/// must have.
class LayerStrip : public SurfaceRole {
    Q_OBJECT

public:
    explicit LayerStrip(QWidget &strip);
    ~LayerStrip() override;

    /// Shows the strip when the compositor has given it its place, which is when there is a screen.
    void stand();
    /// Has a strip that waits for its place wait no longer; one that stands is hidden by `hide()`.
    void leave();

    /// Makes the strip the popup's parent. Nothing while the strip is hidden.
    void adopt(xdg_popup *popup);

    /// Takes all keys from other windows, or leaves all to them, as at first. To take them only on
    /// demand would take all for ever with compositors that know no demand.
    void setHasKeyboard(bool hasKeyboard);

    /// The nearest position within the strip.
    QPoint fromGlobal(const QPoint &position) const;
    QPoint toGlobal(const QPoint &position) const { return strip_.mapToGlobal(position); }

    bool eventFilter(QObject *object, QEvent *event) override;

protected:
    void drop() override;

private:
    void takeRole(QScreen &screen);
    void askForHeight();
    void onConfigured(uint32_t serial, QSize size);
    void onClosed();

    QWidget &strip_;
    zwlr_layer_surface_v1 *role_ = nullptr;
    QPointer<QScreen> screen_; // on which the role was given last
    bool isWanted_ = false;    // although there may be no screen
    int height_ = 0;           // that the compositor was asked for
};

} // namespace tidebrook
