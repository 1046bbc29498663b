#include "kit/touch_style.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    tidebrook::installTouchStyle();
    return RUN_ALL_TESTS();
}
