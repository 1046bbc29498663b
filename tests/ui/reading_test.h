#pragma once

#include "kit/list_view.h"
#include "store/seeding.h"
#include "store/store_check.h"
#include "test_device/test_device.h"
#include "ui/test_session.h"
#include "update/auto_list.h"

#include <gtest/gtest.h>

#include <semaphore>

namespace tidebrook {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

inline const QStringList seeded{u"News"_s, u"Science"_s, u"Travel"_s};
inline const QStringList scienceLines{u"Moon: 3/5"_s, u"Odd: 4/4"_s, u"Star: 0/0"_s};
inline const QString databaseProblem = u"Encountering Problem when Accessing Database"_s;
inline const QString fileProblem = u"Encountering Problem when Accessing Crucial File"_s;
inline const QString deleteChannel = u"Are you sure you want to delete this channel?"_s;
inline const QString deleteCategory = u"Are you sure you want to delete this category?"_s;

/// Types another name for the selected category.
inline void typeName(User &user, const QString &before, const QString &name) {
    user.press(Qt::Key_F2);
    ASSERT_TRUE(user.seesEditor(before));
    user.type(name);
    ASSERT_TRUE(user.seesEditor(name));
}
inline void renameCategory(User &user, const QString &before, const QString &name) {
    typeName(user, before, name);
    user.press(Qt::Key_Return);
    ASSERT_TRUE(user.seesNoEditor());
}
/// Has the selected category deleted, but for the answer.
inline void askToDelete(User &user) {
    user.press(Qt::Key_Delete);
    ASSERT_TRUE(user.seesBox(deleteCategory));
}
inline void removeCategory(User &user) {
    askToDelete(user);
    user.tap(u"Yes"_s);
}

/// A device with Planet in News, Comet in Travel, and in Science Moon, whose articles are partly
/// read, Odd, whose titles are, and Star.
class ReadingTest : public testing::Test {
protected:
    ReadingTest() {
        EXPECT_TRUE(device.store->Open());
        SettingsStore(*device.registry).setDword(programKey, u"CategoryNumber", 0);
        seedCategories(device.root, *device.registry);
        device.addChannel(u"Science"_s, u"Moon"_s, {u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s});
        device.store->MarkArticleRead(u"Moon"_s, u"a"_s);
        device.store->MarkArticleRead(u"Moon"_s, u"c"_s);
        device.store->RecountChannel(u"Moon"_s);
        const QString title(254, u'm');
        device.addChannel(u"Science"_s, u"Odd"_s,
                          {QString(title + u"123"), QString(title + u'2'), u""_s, u"b'\"<i>"_s});
    }
    void run(const Hand &user, const QSize &screen = {240, 320}) {
        session = std::make_unique<TestSession>(device.root, screen);
        const auto begin = [&](User &someone) {
            ASSERT_TRUE(someone.seesRows(storedCategories(device.root)) && someone.seesQuiet());
            user(someone);
        };
        EXPECT_TRUE(session->run(begin));
    }
    /// Has a queue of the session do nothing more until the gate is opened.
    void closeGate(User &user, Tasks AppState::*queue) {
        user.look([&] { (session->state().*queue).tell([this] { gate.acquire(); }); });
    }
    /// From the categories to the first channel's articles (2) or the first article (3).
    static void go(User &user, int screen, int category = 1) {
        for (int i = 0; i < category && screen > 0; ++i)
            user.press(Qt::Key_Down);
        for (int i = 1; i <= screen; ++i) {
            user.press(Qt::Key_Return);
            ASSERT_TRUE(user.sees([&user, i] {
                return i == 3 ? !user.list() : user.list() && user.list()->rowCount() > 0;
            }));
            ASSERT_TRUE(user.seesQuiet());
        }
    }
    quint32 setting(QStringView name, QStringView key = programKey) {
        return SettingsStore(*device.registry).dword(key, name);
    }
    /// Puts a channel into the list of automatic updates.
    void updateByItself(const QString &channel, const QString &category,
                        const QString &link = u"http://example.org/feed"_s) {
        isAutoUpdated(device.root, channel); // which makes the list
        setAutoUpdate(device.root, *device.store, {link, channel, category}, true);
    }
    /// The lines of that list.
    QStringList automatic() {
        QStringList lines;
        for (const RefreshJob &job : autoUpdatedChannels(device.root).value_or(QList<RefreshJob>()))
            lines.append(job.channelName + u' ' + job.url + u' ' + job.category);
        return lines;
    }

    TestDevice device{u"Planet\thttp://example.org/a\tNews\n"
                      u"Star\thttp://example.org/b\tScience\n"
                      u"Comet\thttp://example.org/c\tTravel\n"_s};
    std::counting_semaphore<> gate{0};
    std::unique_ptr<TestSession> session;
};

} // namespace tidebrook
