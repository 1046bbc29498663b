#include "kit/layer.h"

#include "kit/screen_stack.h"

namespace tidebrook {

// A subwindow keeps the Tab key among its own controls.
Layer::Layer(ScreenStack &stack) : QWidget(&stack, Qt::SubWindow), stack_(stack) {
    setVisible(false);
}

const Layer *Layer::of(const QWidget &part) {
    const QWidget *above = &part;
    while (above != nullptr && qobject_cast<const Layer *>(above) == nullptr)
        above = above->parentWidget();
    return qobject_cast<const Layer *>(above);
}

// The key is used up also when the focus stays, else the window would look for a widget below.
bool Layer::focusNextPrevChild(bool next) {
    QWidget::focusNextPrevChild(next);
    return true;
}

void Layer::giveFocus(QWidget *part) {
    QWidget *widget = part != nullptr ? part : firstFocus();
    if (stack_.top() != this)
        focusBefore_ = widget;
    else if (widget != nullptr)
        widget->setFocus();
}

void Layer::end(int result) {
    if (hasEnded_)
        return;
    hasEnded_ = true;
    result_ = result;
    loop_.quit();
}

} // namespace tidebrook

#include "moc_layer.cpp"
