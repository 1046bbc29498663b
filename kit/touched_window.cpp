#include "kit/touched_window.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QStyleHints>
#include <QWindow>

#include <utility>

namespace tidebrook {

namespace {

/// A filter for what Qt makes of touches for the mouse.
class Touches : public QObject {
public:
    using QObject::QObject;

    // What comes again is not spontaneous any more.
    bool eventFilter(QObject *window, QEvent *event) override {
        const auto *mouse = event->isPointerEvent() && event->spontaneous()
                                ? dynamic_cast<QMouseEvent *>(event)
                                : nullptr;
        if (mouse == nullptr || mouse->source() != Qt::MouseEventSynthesizedByQt)
            return false;
        QCoreApplication::postEvent(window,
                                    isLateDoubleClick(*mouse) ? pressOf(*mouse) : mouse->clone());
        return true;
    }

private:
    // A double click follows its second press, which by itself leads to nothing.
    bool isLateDoubleClick(const QMouseEvent &mouse) {
        if (mouse.type() == QEvent::MouseButtonPress)
            passed_ = mouse.timestamp() - std::exchange(pressed_, mouse.timestamp());
        const int interval = QGuiApplication::styleHints()->mouseDoubleClickInterval();
        return mouse.type() == QEvent::MouseButtonDblClick &&
               passed_ >= static_cast<quint64>(interval);
    }

    static QMouseEvent *pressOf(const QMouseEvent &mouse) {
        auto *press =
            new QMouseEvent(QEvent::MouseButtonPress, mouse.position(), mouse.scenePosition(),
                            mouse.globalPosition(), mouse.button(), mouse.buttons(),
                            mouse.modifiers(), mouse.source(), mouse.pointingDevice());
        press->setTimestamp(mouse.timestamp());
        return press;
    }

    quint64 pressed_ = 0; // when the last press was, in ms
    quint64 passed_ = 0;  // before it, since the one before
};

} // namespace

void handleTouches(QWindow &window) { window.installEventFilter(new Touches(&window)); }

} // namespace tidebrook
