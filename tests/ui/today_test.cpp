#include "app/device_opening.h"
#include "app/instance.h"
#include "platform/named_event.h"
#include "platform/service.h"
#include "support/test_device.h"
#include "ui/kit/list_view.h"
#include "ui/session.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <optional>
#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

void enter(User &user, int lists) {
    for (int i = 0; i < lists; ++i) {
        user.press(Qt::Key_Down); // the second of three
        user.press(Qt::Key_Return);
        ASSERT_TRUE(user.sees([&user, i] {
            return i == 2 ? user.list() == nullptr : user.list() && user.list()->rowCount() == 3;
        }));
        ASSERT_TRUE(user.seesQuiet());
    }
}

Hand inLists(int lists) {
    return [lists](User &user) { enter(user, lists); };
}
Hand choosing(int lists, const QString &entry) {
    return [lists, entry](User &user) {
        enter(user, lists);
        user.choose({entry});
    };
}
void doNothing(User &) {}

/// Where the user has the reader, and how what lies above its screens goes then.
struct Place {
    const char *what;
    Hand go;
    Hand leave = doNothing;
};

TEST(TodayTest, AStartThatBringsTheReaderForwardLeadsToTheTappedHeadlineWhereverTheUserIs) {
    const std::vector<Place> places{
        {"categories", doNothing},
        {"channels", inLists(1)},
        {"articles", inLists(2)},
        {"an article", inLists(3)},
        {"a name being typed", pressing(Qt::Key_F2)},
        {"a question", pressing(Qt::Key_Delete), pressing(Qt::Key_Escape)},
        {"a warning over an article", choosing(3, u"Send Link via SMS"_s),
         pressing(Qt::Key_Return)},
        {"settings", choosing(0, u"Setting"_s), pressing(Qt::Key_Escape)},
        {"the wizard", choosing(1, u"New Channel"_s), pressing(Qt::Key_Escape)},
        {"properties", choosing(1, u"Properties"_s), pressing(Qt::Key_Escape)},
        {"a file dialog", choosing(3, u"Save Link"_s), pressing(Qt::Key_Escape)},
        {"help", pressing(Qt::Key_F1), pressing(Qt::Key_Escape)},
        {"a window that is hidden", [](User &user) { user.act([&] { user.stack().hide(); }); }},
        {"a window that is minimised",
         [](User &user) {
             enter(user, 1);
             user.act([&] { user.stack().setWindowState(Qt::WindowMinimized); });
         }},
    };
    for (const Place &place : places) {
        SCOPED_TRACE(place.what);
        TestDevice device(u"Arts 3\thttp://example.org\tArts\n"
                          u"Books 3\thttp://example.org\tBooks\n"
                          u"Chess 3\thttp://example.org\tChess\n"_s);
        ASSERT_TRUE(device.store->Open());
        for (const QString &category : {u"Arts"_s, u"Books"_s, u"Chess"_s}) {
            for (const QString &channel : {u" 1"_s, u" 2"_s})
                device.addChannel(category, category + channel, {u"a"_s, u"b"_s, u"c"_s});
        }
        SingleInstance single(device.root);
        single.claim(10s);
        DeviceOpening opening(device.root);
        Instance instance(opening, single);
        ScreenStack *window = nullptr;
        for (QWidget *widget : QApplication::topLevelWidgets())
            window = window != nullptr ? window : qobject_cast<ScreenStack *>(widget);
        User user(*window);
        std::thread hands([&] {
            [&] {
                ASSERT_TRUE(user.seesRows({u"Arts"_s, u"Books"_s, u"Chess"_s}));
                place.go(user);
                ASSERT_TRUE(user.seesQuiet());
                for (const auto &[name, text] : {std::pair(u"CATEGORY", u"Chess"_s),
                                                 {u"CHANNEL", u"Chess 2"_s},
                                                 {u"TITLE", u"c"_s}})
                    device.registry->write(testTodayKey, name, text);
                {
                    NamedEvent tapped(device.root, u"CLKTODAY", NamedEvent::Reset::Auto);
                    tapped.set();
                    EXPECT_EQ(SingleInstance(device.root).claim(10s),
                              SingleInstance::Claim::BroughtForward);
                    EXPECT_TRUE(user.sees(
                        [&] { return user.stack().isVisible() && !user.stack().isMinimized(); }));
                    EXPECT_TRUE(user.seesQuiet());
                } // who has told the tap is gone
                place.leave(user);
                EXPECT_TRUE(user.seesPage(u"Chess 2"_s));
                EXPECT_TRUE(user.seesQuiet());
                for (int back = 0; back < 3; ++back) {
                    user.press(Qt::Key_Escape);
                    EXPECT_TRUE(user.seesQuiet());
                }
                EXPECT_TRUE(user.seesCaption(u"All Categories"_s)) << "it leads there once";
            }();
            user.closeWindow();
        });
        EXPECT_TRUE(instance.InitInstance());
        hands.join();
        EXPECT_TRUE(stopService(device.root, 10s));
    }
}

} // namespace
} // namespace tidebrook
