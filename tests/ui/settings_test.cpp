#include "kit/form.h"
#include "kit/layer.h"
#include "platform/sync/named_event.h"
#include "res/ids.h"
#include "support/full_disk.h"
#include "ui/reading_test.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QStackedWidget>

namespace tidebrook {
namespace {

using Values = QList<qint64>; // in the order of their names; -1 as a DWORD is 0xFFFFFFFF

constexpr qint64 missing = -2;

/// One of the two pages.
struct Page {
    QString title;
    QStringView key;
    QList<QStringView> names;
};
const Page today{u"Today Setting"_s, testTodayKey, {u"Enabled", u"TodayTimer"}};
const Page updates{u"Auto Update"_s,
                   programKey,
                   {u"UpdateMode", u"UpdateInterval", u"UpdateTime", u"ACTOPTION", u"NoRoaming"}};

class SettingsTest : public ReadingTest {
protected:
    Values stored(const Page &page) {
        Values values;
        for (const QStringView name : page.names) {
            const auto value = device.registry->read(page.key, name);
            values.append(value ? static_cast<qint32>(std::get<quint32>(*value)) : missing);
        }
        return values;
    }
    void store(const Page &page, const Values &values) {
        for (qsizetype i = 0; i < values.size(); ++i)
            device.registry->write(page.key, page.names[i], static_cast<quint32>(values[i]));
    }
};

QString choice(const QWidget *control) {
    if (const auto *button = qobject_cast<const QAbstractButton *>(control))
        return button->isChecked() ? u"x"_s : u"-"_s;
    const auto *box = qobject_cast<const QComboBox *>(control);
    if (box == nullptr || box->count() == 0)
        return box == nullptr ? QString() : u"0"_s;
    return box->count() == 24         ? QString::number(box->currentIndex()) + u'h'
           : box->currentIndex() >= 0 ? box->currentText()
                                      : u"-"_s;
}

/// The controls of the page on top, in the order of their ids: what is chosen in each (buttons: x
/// or -; lists: the choice, - without one, 0 without any to choose from), in brackets where it
/// cannot be changed.
QString shown(User &user) {
    QStringList parts;
    user.look([&] {
        const auto *pages = user.stack().top()->findChild<QStackedWidget *>();
        const auto &form = dynamic_cast<const Form &>(*pages->currentWidget());
        for (int id = 1001; id <= 1010; ++id) {
            const QString part = choice(form.control(id));
            if (!part.isNull())
                parts.append(form.control(id)->isEnabled() ? part : u"[%1]"_s.arg(part));
        }
    });
    return parts.join(u' ');
}

/// Opens the settings at their first page, or goes on to the second.
void open(User &user, const Page &page) {
    user.choose({u"Setting"_s});
    ASSERT_TRUE(user.seesCaption(today.title) && user.seesQuiet());
    if (&page == &updates)
        user.press(Qt::Key_Tab, Qt::ControlModifier);
    ASSERT_TRUE(user.seesCaption(page.title) && user.seesQuiet());
}

void press(User &user, const QStringList &taps) {
    for (const QString &text : taps)
        text == u"Down" ? user.press(Qt::Key_Down) : user.tap(text);
}

const QString never = u"Never Auto Update"_s;
const QString enable = u"Enable Today Plugin."_s;

struct Case {
    const Page &page;
    Values before;
    QString shown;
    QStringList taps; // buttons, or keys that go to whatever has the focus
    QString shownThen;
    Values after;
};
// clang-format off
const Case cases[]{
    {today, {}, u"- [0]"_s, {enable}, u"x 0"_s, {1, -1}},
    {today, {1, 2}, u"x Fast"_s, {enable}, u"- [Fast]"_s, {0, 2}},
    {today, {5, 0}, u"- [Slow]"_s, {}, u"- [Slow]"_s, {0, 0}},
    {today, {1, 9}, u"x -"_s, {}, u"x -"_s, {1, -1}},

    {updates, {}, u"- - - 0 0 - -"_s, {}, u"- - - 0 0 - -"_s, {2, 0, -1, 0, 0}},
    {updates, {0, 1, 0, 0, 0}, u"x - - [0h] [30 minutes] [-] [-]"_s,
     {u"Update Interval"_s, u"Down"_s, u"Down"_s}, u"- x - [0h] 2 hours - -"_s, {1, 3, 0, 0, 0}},
    {updates, {1, 6, 23, 1, 1}, u"- x - [23h] 16 hours x x"_s,
     {never}, u"x - - [23h] [16 hours] [x] [x]"_s, {0, 6, 23, 1, 1}},
    {updates, {2, 3, 15, 0, 1}, u"- - x 15h [2 hours] - x"_s,
     {u"Only update when ActiveSync available"_s, u"Never update when roaming"_s,
      u"Update Time"_s, u"Down"_s}, u"- - x 16h [2 hours] x -"_s, {2, 3, 16, 1, 0}},
    {updates, {7, 3, 15, 2, 0}, u"- - - 15h [2 hours] x -"_s,
     {}, u"- - - 15h [2 hours] x -"_s, {2, 3, 15, 1, 0}},
    {updates, {1, 0, 99, 0, 0}, u"- x - [-1h] - - -"_s,
     {}, u"- x - [-1h] - - -"_s, {1, 0, -1, 0, 0}},
};
// clang-format on

TEST_F(SettingsTest, AreShownChangedAndStored) {
    for (const Case &one : cases) {
        store(one.page, one.before);
        run([&](User &user) {
            SCOPED_TRACE(one.shown.toStdString());
            open(user, one.page);
            EXPECT_EQ(shown(user), one.shown);
            press(user, one.taps);
            EXPECT_EQ(shown(user), one.shownThen);
            user.resize({320, 240});
            EXPECT_EQ(shown(user), one.shownThen) << "turned";
            user.tap(u"Done"_s);
            EXPECT_TRUE(user.seesCaption(u"All Categories"_s));
        });
        EXPECT_EQ(stored(one.page), one.after) << one.shown.toStdString();
    }
}

TEST_F(SettingsTest, StayAsTheyWereUnlessDone) {
    for (const Hand &leave :
         {tapping(u"Cancel"_s), pressing(Qt::Key_Escape), Hand(&User::closeWindow)}) {
        store(today, {1, 2});
        store(updates, {1, 6, 23, 1, 1});
        run([&](User &user) {
            open(user, updates);
            press(user, {never});
            leave(user);
        });
        EXPECT_EQ(stored(today), Values({1, 2}));
        EXPECT_EQ(stored(updates), Values({1, 6, 23, 1, 1}));
    }
}

TEST_F(SettingsTest, OfAPageThatWasNotSeenAreLeftAloneAndOfBothAreStoredTogether) {
    store(today, {0, 1});
    NamedEvent reload(device.root, u"TODAYITEMS", NamedEvent::Reset::Auto);
    run([&](User &user) {
        open(user, today);
        {
            const FullDisk disk;
            press(user, {enable, u"Done"_s});
            expectBox(user, fileProblem);
        }
        EXPECT_EQ(stored(today), Values({0, 1}));
        EXPECT_FALSE(reload.test());
        open(user, today);
        press(user, {enable, u"Done"_s});
        EXPECT_TRUE(user.seesCaption(u"All Categories"_s) && user.seesQuiet());
        EXPECT_TRUE(reload.test()) << "the Today item is to show what is stored";
        EXPECT_EQ(stored(today), Values({1, 1}));
        EXPECT_EQ(stored(updates), Values(5, missing));
        open(user, today);
        press(user, {enable});
        user.press(Qt::Key_Tab, Qt::ControlModifier);
        ASSERT_TRUE(user.seesCaption(updates.title) && user.seesQuiet());
        press(user, {never, u"Done"_s});
        EXPECT_TRUE(user.seesCaption(u"All Categories"_s));
    });
    EXPECT_EQ(stored(today), Values({0, 1}));
    EXPECT_EQ(stored(updates), Values({0, 0, -1, 0, 0}));
}

TEST_F(SettingsTest, SayHowManyChannelsTakePart) {
    const std::pair<QString, QString> rounds[]{
        {u"Comet"_s, u"No channel takes part. Tick \"Auto update this channel\" in a channel's "
                     "Properties."_s},
        {u"Star"_s, u"1 channel takes part."_s},
        {{}, u"2 channels take part."_s}};
    for (const auto &round : rounds) {
        run([&](User &user) {
            open(user, updates);
            for (const QSize &size : {QSize(320, 240), QSize(240, 320)}) {
                user.resize(size);
                user.look([&] {
                    const auto *pages = user.stack().top()->findChild<QStackedWidget *>();
                    const auto *label = dynamic_cast<const Form &>(*pages->currentWidget())
                                            .control<QLabel>(AutoUpdateCountLabel);
                    EXPECT_EQ(label->text(), round.second);
                    EXPECT_LE(label->heightForWidth(label->width()), label->height()) << "cut";
                });
            }
        });
        updateByItself(round.first, u"Science"_s);
    }
}

TEST_F(SettingsTest, OfADeviceThatWasReplacedAreNotStoredInTheFormerFile) {
    const QString registry = device.root.registryPath();
    run([&](User &user) {
        open(user, today);
        ASSERT_TRUE(QFile::copy(registry, registry + u".copy") && QFile::remove(registry) &&
                    QFile::rename(registry + u".copy", registry));
        user.tap(u"Done"_s);
        expectBox(user, fileProblem);
    });
}

TEST_F(SettingsTest, AreNotOverwrittenBeforeTheyWereRead) {
    store(today, {1, 2});
    run([&](User &user) {
        closeGate(user, &AppState::settings);
        user.choose({u"Setting"_s});
        ASSERT_TRUE(user.seesCaption(today.title));
        EXPECT_EQ(shown(user), u"[-] [0]");
        user.tap(enable);
        user.tap(u"Done"_s);
        EXPECT_TRUE(user.seesCaption(u"All Categories"_s));
        gate.release();
    });
    EXPECT_EQ(stored(today), Values({1, 2}));
}

} // namespace
} // namespace tidebrook
