#include "kit/screen_stack.h"

#include "kit/layer.h"
#include "kit/progress_line.h"
#include "kit/touch_style.h"

#include <QCloseEvent>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr int progressUnits = 2;

} // namespace

ScreenStack::ScreenStack() : progressLine_(new ProgressLine(this)) { resize(480, 640); }

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
    layer.setGeometry(rect());
    layer.show();
    layer.raise();
    if (layer.isOpaque()) {
        placeProgressLine(layer);
        progressLine_->raise();
    }
    if (QWidget *first = layer.firstFocus())
        first->setFocus();
    layer.activated();
}

void ScreenStack::pop(Layer &layer) {
    layers_.removeOne(&layer);
    Layer *below = top();
    if (below != nullptr) {
        below->setGeometry(rect());
        below->show();
        if (below->isOpaque())
            placeProgressLine(*below);
        QWidget *focus = below->focusBefore_ ? below->focusBefore_.data() : below->firstFocus();
        if (focus != nullptr)
            focus->setFocus();
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

void ScreenStack::summon() {
    const QList<Layer *> layers = layers_; // which a layer may change
    std::any_of(layers.rbegin(), layers.rend(), [](Layer *layer) { return layer->summoned(); });
}

void ScreenStack::bringForward() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

bool ScreenStack::event(QEvent *event) {
    if (event->type() == QEvent::WindowActivate && top() != nullptr && !isClosing_)
        top()->activated();
    return QWidget::event(event);
}

void ScreenStack::closeEvent(QCloseEvent *event) {
    isClosing_ = true;
    event->setAccepted(layers_.isEmpty()); // else the last layer's end closes the window
    closeTop();
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
