#pragma once

class QMenu;
class QPoint;
class QWidget;

namespace tidebrook {

/// To be called before the application is made: without it a strip is an ordinary window on
/// Wayland.
void prepareDock();

/// Shows the window as a strip of its own height over the whole width of the primary screen, at
/// its top, on all desktops, and keeps it there while screens change. A maximised window begins
/// below it. That holds on X11, and on Wayland where the compositor has the layer shell; elsewhere
/// the window is merely shown. With the layer shell it is shown a moment later, when the
/// compositor has given it its place.
///
/// The strip is hidden by `undock()`, and shown again by this alone. With the layer shell
/// it is also hidden while there is no screen, and gets no key but while its menu is open. It must
/// open no window of its own there, such as a tool tip or a menu, other than by `popUpFrom()`: the
/// compositor would take it for an ordinary window.
///
/// For the user-interface thread, as all of this header.
void dockAtTop(QWidget &strip);

/// Hides the strip, also one that still waits for its place.
void undock(QWidget &strip);

/// Opens a menu without submenus from a strip that `dockAtTop()` shows, near a position of Qt's
/// global coordinates within the strip. Returns at once; the menu may open a moment later. A click
/// outside closes it. The menu must have its entries by now.
void popUpFrom(QWidget &strip, QMenu &menu, const QPoint &position);

} // namespace tidebrook
