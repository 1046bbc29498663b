#include "kit/touch_style.h"

#include <QApplication>
#include <QStyleHints>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

int main(int argc, char **argv) {
    // Not what the desktop of a developer sets for all of its programs.
    qputenv("QT_QPA_PLATFORM", qEnvironmentVariable("TIDEBROOK_PLATFORM", u"offscreen"_s).toUtf8());
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    tidebrook::installTouchStyle();
    QGuiApplication::styleHints()->setMousePressAndHoldInterval(100); // ms; no test waits longer
    return RUN_ALL_TESTS();
}
