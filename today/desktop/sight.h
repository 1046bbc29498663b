#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QWidget>

namespace tidebrook {

class ScreenLock;

/// Whether the user can see anything of a window. Not, while the window is hidden, other windows
/// cover all of it, or the screen is locked, as far as the desktop lets that be known: on Wayland a
/// covered window is found out when it next draws, and on X11 never where a compositor runs.
/// For the user-interface thread. The window must outlive this.
class Sight : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit Sight(QWidget &window);
    ~Sight() override;

    bool isSeen() const { return isSeen_; }

    bool eventFilter(QObject *object, QEvent *event) override;

Q_SIGNALS:
    /// `isSeen()` has changed.
    void changed();

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void watchHandle();
    void selectVisibility();
    void update();

    QWidget &window_;
    ScreenLock *lock_;       // belongs to this
    bool isCovered_ = false; // on X11
    bool isSeen_ = false;
};

} // namespace tidebrook
