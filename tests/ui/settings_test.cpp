#include "support/test_device.h"
#include "ui/kit/dialog.h"
#include "ui/session.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QStackedWidget>
#include <QTabBar>
#include <QTest>

#include <gtest/gtest.h>

#include <semaphore>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;

using Values = QList<qint64>; // in the order of their names; -1 as a DWORD is 0xFFFFFFFF

constexpr qint64 missing = -2;
constexpr std::array<QStringView, 5> autoNames{u"UpdateMode", u"UpdateInterval", u"UpdateTime",
                                               u"ACTOPTION", u"NoRoaming"};
constexpr std::array<QStringView, 2> todayNames{u"Enabled", u"TodayTimer"};

/// Which of the two pages, by its title.
struct Page {
    QString title;
    QStringView key;
    std::span<const QStringView> names;
};
const Page today{u"Today Setting"_s, testTodayKey, todayNames};
const Page automatic{u"Auto Update"_s, programKey, autoNames};

Values stored(const DeviceRoot &device, const Page &page) {
    Registry registry(device);
    Values values;
    for (const QStringView name : page.names) {
        const auto value = registry.read(page.key, name);
        values.append(value ? static_cast<qint32>(std::get<quint32>(*value)) : missing);
    }
    return values;
}

void store(TestDevice &device, const Page &page, const Values &values) {
    for (qsizetype i = 0; i < values.size(); ++i) {
        if (values[i] != missing)
            device.registry->write(page.key, page.names[static_cast<std::size_t>(i)],
                                   static_cast<quint32>(values[i]));
    }
}

/// The controls of the page on top, in the order of their ids: what is chosen in each (buttons: x
/// or -; lists: the choice, - without one, 0 without any to choose from), in brackets where it
/// cannot be changed.
QString shown(User &user) {
    QStringList parts;
    user.look([&] {
        const auto *sheet = qobject_cast<Dialog *>(user.stack().top());
        const auto *pages = sheet != nullptr ? sheet->control<QStackedWidget>(1032) : nullptr;
        const auto *form =
            pages != nullptr ? dynamic_cast<Form *>(pages->currentWidget()) : nullptr;
        for (int id = 1001; form != nullptr && id <= 1010; ++id) {
            QString part;
            if (const auto *button = form->control<QAbstractButton>(id))
                part = button->isChecked() ? u"x"_s : u"-"_s;
            else if (const auto *box = form->control<QComboBox>(id); box && box->count() == 24)
                part = QString::number(box->currentIndex()) + u'h';
            else if (box != nullptr)
                part = box->count() == 0         ? u"0"_s
                       : box->currentIndex() < 0 ? u"-"_s
                                                 : box->currentText();
            else
                continue;
            parts.append(form->control(id)->isEnabled() ? part : u"[%1]"_s.arg(part));
        }
    });
    return parts.join(u' ');
}

void turnTo(User &user, const Page &page) {
    user.act([&user, &page] {
        auto *tabs = user.stack().top()->findChild<QTabBar *>();
        const int index = page.title == today.title ? 0 : 1;
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(index).center());
    });
    ASSERT_TRUE(user.seesCaption(page.title) && user.seesQuiet());
}

void open(User &user, const Page &page) {
    ASSERT_TRUE(user.seesCaption(u"All Categories"_s));
    user.choose({u"Setting"_s});
    ASSERT_TRUE(user.seesCaption(today.title) && user.seesQuiet());
    turnTo(user, page);
}

struct Case {
    const char *what;
    const Page &page;
    Values before;
    QString shown;
    QStringList taps; // buttons, or keys that go to whatever has the focus
    QString shownThen;
    Values after;
};

void press(User &user, const QStringList &taps) {
    for (const QString &text : taps)
        text == u"Down" ? user.press(Qt::Key_Down) : user.tap(text);
}

const QString never = u"Never Auto Update"_s;
const QString interval = u"Update Interval"_s;
const QString time = u"Update Time"_s;
const QString cradle = u"Only update when ActiveSync available"_s;
const QString roaming = u"Never update when roaming"_s;
const QString enable = u"Enable Today Plugin."_s;
const QString down = u"Down"_s;

// clang-format off
const Case cases[]{
    {"shown", today, {1, 2}, u"x Fast"_s, {enable}, u"- [Fast]"_s, {0, 2}},
    {"not shown", today, {0, 1}, u"- [Normal]"_s, {enable}, u"x Normal"_s, {1, 1}},
    {"neither 0 nor 1", today, {5, 0}, u"- [Slow]"_s, {}, u"- [Slow]"_s, {0, 0}},
    {"no such speed", today, {1, 9}, u"x -"_s, {}, u"x -"_s, {1, -1}},
    {"no speed", today, {1, missing}, u"x 0"_s, {}, u"x 0"_s, {1, -1}},
    {"nothing", today, {missing, missing}, u"- [0]"_s, {enable}, u"x 0"_s, {1, -1}},

    {"never", automatic, {0, 1, 0, 0, 0}, u"x - - [0h] [30 minutes] [-] [-]"_s,
     {interval, down, down}, u"- x - [0h] 2 hours - -"_s, {1, 3, 0, 0, 0}},
    {"interval", automatic, {1, 6, 23, 1, 1}, u"- x - [23h] 16 hours x x"_s,
     {never}, u"x - - [23h] [16 hours] [x] [x]"_s, {0, 6, 23, 1, 1}},
    {"hour", automatic, {2, 3, 15, 0, 1}, u"- - x 15h [2 hours] - x"_s,
     {cradle, roaming, time, down}, u"- - x 16h [2 hours] x -"_s, {2, 3, 16, 1, 0}},
    {"another mode", automatic, {7, 3, 15, 2, 0}, u"- - - 15h [2 hours] x -"_s,
     {}, u"- - - 15h [2 hours] x -"_s, {2, 3, 15, 1, 0}},
    {"no such choices", automatic, {1, 0, 99, 0, 0}, u"- x - [-1h] - - -"_s,
     {}, u"- x - [-1h] - - -"_s, {1, 0, -1, 0, 0}},
    {"nothing", automatic, Values(5, missing), u"- - - 0 0 - -"_s,
     {}, u"- - - 0 0 - -"_s, {2, 0, -1, 0, 0}},
    {"no hour", automatic, {1, 2, missing, 1, 1}, u"- x - [0] 1 hour - -"_s,
     {}, u"- x - [0] 1 hour - -"_s, {1, 2, -1, 0, 0}},
};
// clang-format on

TEST(Settings, AreShownChangedAndStored) {
    for (const Case &one : cases) {
        TestDevice device;
        store(device, one.page, one.before);
        Session session(device.root);
        EXPECT_TRUE(session.run([&](User &user) {
            SCOPED_TRACE(one.what);
            open(user, one.page);
            EXPECT_EQ(shown(user), one.shown);
            press(user, one.taps);
            EXPECT_EQ(shown(user), one.shownThen);
            user.resize({320, 240});
            EXPECT_EQ(shown(user), one.shownThen) << "turned";
            user.tap(u"Done"_s);
            EXPECT_TRUE(user.seesCaption(u"All Categories"_s));
        }));
        EXPECT_EQ(stored(device.root, one.page), one.after)
            << one.page.title.toStdString() << ": " << one.what;
    }
}

TEST(Settings, StayAsTheyWereUnlessDone) {
    for (const Hand &leave :
         {tapping(u"Cancel"_s), pressing(Qt::Key_Escape), Hand(&User::closeWindow)}) {
        TestDevice device;
        store(device, today, {1, 2});
        store(device, automatic, {1, 6, 23, 1, 1});
        Session session(device.root);
        EXPECT_TRUE(session.run([&](User &user) {
            open(user, automatic);
            press(user, {never});
            EXPECT_EQ(shown(user), u"x - - [23h] [16 hours] [x] [x]");
            leave(user);
        }));
        EXPECT_EQ(stored(device.root, today), Values({1, 2}));
        EXPECT_EQ(stored(device.root, automatic), Values({1, 6, 23, 1, 1}));
    }
}

TEST(Settings, OfAPageThatWasNotSeenAreLeftAloneAndOfBothAreStoredTogether) {
    TestDevice device;
    store(device, today, {0, 1});
    Session session(device.root);
    EXPECT_TRUE(session.run([&](User &user) {
        open(user, today);
        press(user, {enable, u"Done"_s});
        EXPECT_TRUE(user.seesCaption(u"All Categories"_s) && user.seesQuiet());
        EXPECT_EQ(stored(device.root, today), Values({1, 1}));
        EXPECT_EQ(stored(device.root, automatic), Values(5, missing));
        open(user, today);
        press(user, {enable});
        turnTo(user, automatic);
        press(user, {never, u"Done"_s});
        EXPECT_TRUE(user.seesCaption(u"All Categories"_s));
    }));
    EXPECT_EQ(stored(device.root, today), Values({0, 1}));
    EXPECT_EQ(stored(device.root, automatic), Values({0, 0, -1, 0, 0}));
}

TEST(Settings, AreNotOverwrittenBeforeTheyWereRead) {
    TestDevice device;
    store(device, today, {1, 2});
    std::binary_semaphore gate(0);
    Session session(device.root);
    EXPECT_TRUE(session.run([&](User &user) {
        ASSERT_TRUE(user.seesQuiet());
        user.look([&] { session.state().settings.tell([&gate] { gate.acquire(); }); });
        user.choose({u"Setting"_s});
        ASSERT_TRUE(user.seesCaption(today.title));
        EXPECT_EQ(shown(user), u"[-] [0]");
        user.tap(enable);
        user.tap(u"Done"_s);
        EXPECT_TRUE(user.seesCaption(u"All Categories"_s));
        gate.release();
    }));
    EXPECT_EQ(stored(device.root, today), Values({1, 2}));
}

} // namespace
} // namespace tidebrook
