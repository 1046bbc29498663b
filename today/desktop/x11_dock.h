#pragma once

#include <QPointer>
#include <QScreen>
#include <QWidget>

namespace tidebrook {

/// Has a window stand at the top of the primary screen of X11 as a dock, and the window manager
/// leave its room free. It belongs to the window.
class X11Dock : public QObject {
    Q_OBJECT

public:
    /// The window must not have been shown yet.
    explicit X11Dock(QWidget &strip);

    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void follow(QScreen *screen);
    void place();
    void reserve();

    QWidget &strip_;
    QPointer<QScreen> screen_;
};

} // namespace tidebrook
