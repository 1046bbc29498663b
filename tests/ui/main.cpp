#include "kit/touch_style.h"

#include <QApplication>
#include <QStyleHints>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    tidebrook::installTouchStyle();
    QGuiApplication::styleHints()->setMousePressAndHoldInterval(100); // ms; no test waits longer
    return RUN_ALL_TESTS();
}
