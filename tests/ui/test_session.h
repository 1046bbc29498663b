#pragma once

#include "screen_driver/session.h"
#include "store/category_list.h"
#include "support/blocked_time.h"

#include <gtest/gtest.h>

namespace tidebrook {

inline void failTest(const QString &text) { ADD_FAILURE() << text.toStdString(); }

/// A session whose user fails the test by what it looks for in vain, as does the screens' thread
/// when it is blocked, but for what threads that a busy machine lets wait take of its time.
/// Whatever in a test could block it does so for longer.
class TestSession : public Session {
public:
    explicit TestSession(const DeviceRoot &device, const QSize &screen = {240, 320})
        : Session(device, screen, failTest) {}

protected:
    void show() override {
        BlockedTime blocked;
        Session::show();
        EXPECT_LT(blocked.longest(), std::chrono::milliseconds(500));
    }
};

/// Sees this box, answers it with Enter, and sees no other.
inline void expectBox(User &user, const QString &text, const QString &subject = {}) {
    ASSERT_TRUE(user.seesBox(text, subject)) << text.toStdString();
    user.press(Qt::Key_Return);
    ASSERT_TRUE(user.seesNoBox() && user.seesQuiet() && user.seesNoBox());
}

inline QStringList storedCategories(const DeviceRoot &device) {
    Registry registry(device);
    return CategoryListStore(registry).listedCategories().value_or(QStringList());
}

} // namespace tidebrook
