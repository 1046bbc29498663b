#include "kit/input_panel.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QWidget>

#include <algorithm>

namespace tidebrook {

InputPanel::InputPanel(QWidget *window) : QObject(window), window_(window) {
    const QInputMethod *method = QGuiApplication::inputMethod();
    connect(method, &QInputMethod::visibleChanged, this, &InputPanel::changed);
    connect(method, &QInputMethod::keyboardRectangleChanged, this, &InputPanel::changed);
}

void InputPanel::putDown() { QGuiApplication::inputMethod()->hide(); }

int InputPanel::coveredHeight() const {
    const QInputMethod *method = QGuiApplication::inputMethod();
    if (!method->isVisible() || method->keyboardRectangle().isEmpty())
        return 0;
    const int top = static_cast<int>(method->keyboardRectangle().top());
    return std::clamp(window_->height() - top, 0, window_->height());
}

} // namespace tidebrook
