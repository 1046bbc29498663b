#include "kit/screen_stack.h"

#include "kit/accessible_parts.h"
#include "kit/layer.h"
#include "kit/progress_line.h"
#include "kit/touch_style.h"
#include "kit/touched_window.h"
#include "res/strings.h"

#include <QAccessible>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace tidebrook {

namespace {

constexpr int progressUnits = 2;

} // namespace

ScreenStack::ScreenStack() : progressLine_(new ProgressLine(this)) {
    installAccessibleParts();
    resize(480, 640); // on a desk, until the user chooses
    showTitle();
}

int ScreenStack::run(Layer &layer) {
    if (isClosing_)
        return 0;
    push(layer);
    if (!layer.hasEnded())
        layer.loop_.exec();
    pop(layer);
    return layer.result();
}

void ScreenStack::push(Layer &layer) {
    if (Layer *below = top()) {
        below->focusBefore_ = below->focusWidget();
        if (layer.isOpaque())
            below->hide();
    }
    layers_.append(&layer);
    showTitle();
    layer.setGeometry(rect());
    layer.show();
    layer.raise();
    if (layer.isOpaque()) {
        placeProgressLine(layer);
        progressLine_->raise();
    }
    layer.giveFocus(nullptr);
    if (QAccessible::isActive()) {
        QAccessibleEvent event(&layer,
                               layer.isOpaque() ? QAccessible::DialogStart : QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
    layer.activated();
}

void ScreenStack::pop(Layer &layer) {
    layers_.removeOne(&layer);
    showTitle();
    Layer *below = top();
    if (below != nullptr) {
        below->setGeometry(rect());
        below->show();
        if (below->isOpaque())
            placeProgressLine(*below);
        below->giveFocus(below->focusBefore_);
        below->focusBefore_ = nullptr;
    }
    layer.hide();
    if (below == nullptr)
        return;
    if (isClosing_) // after the caller has looked at the layer's result
        QMetaObject::invokeMethod(this, &ScreenStack::closeTop, Qt::QueuedConnection);
    else if (!below->hasEnded())
        below->activated();
}

void ScreenStack::closeTop() {
    if (Layer *layer = top(); layer != nullptr && !layer->hasEnded())
        layer->closeRequested();
}

void ScreenStack::showTitle() {
    QString title = resourceString(programNameString);
    for (const Layer *layer : std::as_const(layers_)) {
        if (!layer->windowTitle().isEmpty())
            title = layer->windowTitle() + u" \u2013 " + resourceString(programNameString);
    }
    setWindowTitle(title);
}

void ScreenStack::summon() {
    const QList<Layer *> layers = layers_; // which a layer may change
    std::any_of(layers.rbegin(), layers.rend(),
                [](Layer *layer) { return !layer->hasEnded() && layer->summoned(); });
}

void ScreenStack::bringForward() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

bool ScreenStack::event(QEvent *event) {
    if (event->type() == QEvent::WinIdChange && windowHandle() != nullptr)
        handleTouches(*windowHandle());
    if (event->type() == QEvent::WindowActivate && top() != nullptr && !isClosing_)
        top()->activated();
    return QWidget::event(event);
}

void ScreenStack::closeEvent(QCloseEvent *event) {
    isClosing_ = true;
    event->setAccepted(layers_.isEmpty()); // else the last layer's end closes the window
    closeTop();
}

void ScreenStack::keyPressEvent(QKeyEvent *event) {
    if (event->keyCombination() == (Qt::CTRL | Qt::Key_Q))
        close();
}

void ScreenStack::resizeEvent(QResizeEvent *) { arrange(); }

void ScreenStack::placeProgressLine(const Layer &layer) {
    const DialogUnits units = this->units();
    const int height = units.pixels(progressUnits);
    progressLine_->setGeometry(0, units.pixels(layer.headerUnits()) - height, width(), height);
}

void ScreenStack::arrange() {
    setTouchHeight(units().pixels(menuBarUnits));
    for (Layer *layer : layers_) {
        layer->setGeometry(rect());
        if (layer->isOpaque())
            placeProgressLine(*layer);
    }
}

} // namespace tidebrook

#include "moc_screen_stack.cpp"
