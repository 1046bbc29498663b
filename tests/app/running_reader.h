#pragma once

#include "platform/desktop/service.h"
#include "reader/application.h"
#include "reader/device_opening.h"
#include "ui/test_session.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <thread>

namespace tidebrook {

/// Runs the whole reader in this process for a user, and closes its window when he is done. False
/// when he saw no screen.
inline bool runReader(const DeviceRoot &root, const Hand &user) {
    SingleInstance single(root);
    single.claim(std::chrono::seconds(10));
    DeviceOpening opening(root);
    Application application(opening, single);
    ScreenStack *window = nullptr;
    for (QWidget *widget : QApplication::topLevelWidgets())
        window = window != nullptr ? window : qobject_cast<ScreenStack *>(widget);
    User someone(*window, failTest);
    std::thread hands([&] {
        user(someone);
        someone.closeWindow();
    });
    const bool isRun = application.InitInstance();
    hands.join();
    EXPECT_TRUE(stopService(root, std::chrono::seconds(10)));
    return isRun;
}

} // namespace tidebrook
