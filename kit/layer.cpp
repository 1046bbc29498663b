#include "kit/layer.h"

#include "kit/screen_stack.h"

namespace tidebrook {

// As a subwindow it keeps the Tab key among its own controls.
Layer::Layer(ScreenStack &stack) : QWidget(&stack, Qt::SubWindow), stack_(stack) {
    setVisible(false);
}

// Where there is nothing else to go to, the key is used up all the same, or else the window would
// look for somebody below.
bool Layer::focusNextPrevChild(bool next) {
    QWidget::focusNextPrevChild(next);
    return true;
}

void Layer::end(int result) {
    if (hasEnded_)
        return;
    hasEnded_ = true;
    result_ = result;
    loop_.quit();
}

} // namespace tidebrook
