#include "feed_server/generated_feed.h"
#include "platform/desktop/service.h"
#include "platform/sync/named_event.h"
#include "platform/sync/process_lock.h"
#include "service/running_service.h"
#include "support/private_bus.h"
#include "support/waiting.h"
#include "today/today_item.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QTest>

#include <csignal>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

const QString nothing = u"0 unread. Nothing unread."_s;
const QString noDevice = u"0 unread. Open Tidebrook to begin."_s;

QByteArray feedOf(const QByteArray &title) {
    return "<rss version=\"2.0\"><channel><title>T</title><item><title>" + title +
           "</title><link>http://example.org/</link></item></channel></rss>";
}

/// The Today item as an ordinary window, over a device with a real downloader and a real reader.
class TodayItemTest : public RunningService {
protected:
    // A process has one session bus, which it keeps.
    static void SetUpTestSuite() {
        bus.emplace();
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus->address());
    }
    static void TearDownTestSuite() { bus.reset(); }
    TodayItemTest() { ok(u"setting Enabled 1 --today"_s); }
    ~TodayItemTest() override {
        item_.reset();
        killReader();
    }
    void begin() { item_.emplace(TodayArguments{root_, Place::Window}); }

    HeadlineStrip &strip() { return item_->strip(); }
    bool sees(const QString &text) {
        return QTest::qWaitFor(
            [&] { return strip().isVisible() && strip().accessibleName() == text; }, patienceLimit);
    }
    /// Chooses an entry of the strip's menu by its text.
    void choose(const QString &text) {
        QContextMenuEvent wanted(QContextMenuEvent::Mouse, {}, strip().mapToGlobal(QPoint(9, 9)));
        QApplication::sendEvent(&strip(), &wanted);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&item_->menu()));
        for (QAction *entry : item_->menu().actions()) {
            if (entry->text() == text)
                QTest::mouseClick(&item_->menu(), Qt::LeftButton, {},
                                  item_->menu().actionGeometry(entry).center());
        }
    }
    /// Steps to a title, and taps it.
    void tap(const QString &title) {
        ASSERT_TRUE(QTest::qWaitFor([&] {
            QTest::keyClick(&strip(), Qt::Key_Down);
            return strip().headline() && strip().headline()->title == title;
        }));
        QTest::mouseClick(&strip(), Qt::LeftButton);
    }
    std::optional<pid_t> reader() const {
        return ProcessLock::holder(root_.filePath(u"\\run\\FEEDLARK.lock"));
    }
    void killReader() const {
        if (const auto process = reader())
            kill(*process, SIGKILL);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !reader(); }, patienceLimit));
    }
    /// Whether an article is marked read.
    bool isRead(const QString &title) {
        return ok(u"articles A"_s)
            .contains(QRegularExpression(u"^r\t.*\t%1\t"_s.arg(title),
                                         QRegularExpression::MultilineOption));
    }

    static inline std::optional<PrivateBus> bus;
    std::optional<TodayItem> item_;
};

TEST_F(TodayItemTest, ItSaysInOnePlainLineWhatThereIsWhateverHappensToTheDevice) {
    const QString path = root_.path();
    const QString aside = path + u".aside"_s;
    const QString database = root_.filePath(u"RSSVault.sdf");
    const auto move = [](const QString &from, const QString &to) {
        ASSERT_TRUE(QDir().rename(from, to));
    };
    move(path, aside);
    begin();
    EXPECT_TRUE(sees(noDevice));
    ASSERT_TRUE(QDir().mkdir(path)); // a copy comes a file at a time
    QTest::qWait(10);
    for (const QString &name : QDir(aside).entryList(QDir::AllEntries | QDir::NoDotAndDotDot))
        move(aside + u'/' + name, path + u'/' + name);
    ASSERT_TRUE(QDir().rmdir(aside));
    EXPECT_TRUE(sees(u"0 unread. No channel yet. Open Tidebrook to add one."_s));
    addChannel(u"A"_s, feedOf("&lt;b&gt;x&lt;/b&gt; &#x202E;&amp;&amp;\n y &#xA0;z"));
    EXPECT_TRUE(sees(nothing));
    ok(u"update"_s);
    EXPECT_TRUE(sees(u"1 unread. A: <b>x</b> && y z"_s));
    ok(u"setting Enabled 0 --today"_s);
    waitFor([&] { return !strip().isVisible(); });
    ok(u"setting Enabled 1 --today"_s);
    EXPECT_TRUE(sees(u"1 unread. A: <b>x</b> && y z"_s));
    {
        const auto held = SqliteDatabase::open(database, {});
        ASSERT_TRUE(held->prepare("PRAGMA locking_mode = EXCLUSIVE").next());
        ASSERT_TRUE(held->run("UPDATE RSSRecord SET TITLE = 'held'"));
        QTest::keyClick(&strip(), Qt::Key_Down);
        EXPECT_TRUE(sees(u"1 unread. A: <b>x</b> && y z"_s)) << "it is locked for a moment";
    }
    EXPECT_TRUE(sees(u"1 unread. A: held"_s));
    choose(u"Mark as Read"_s);
    EXPECT_TRUE(sees(nothing));
    const QByteArray sound = contentOf(database);
    writeFile(aside, QByteArray(sound.size(), 'x'));
    QFile::remove(database + u"-wal"_s);
    move(database, database + u".sound"_s);
    move(aside, database);
    EXPECT_TRUE(sees(u"0 unread. The articles cannot be read now."_s));
    QFile::remove(database);
    move(database + u".sound"_s, database);
    EXPECT_TRUE(sees(nothing));
    move(path, aside);
    EXPECT_TRUE(sees(noDevice));
}

TEST_F(TodayItemTest, OfVeryManyItStepsThroughTheNewestByHandAndByItself) {
    addChannel(u"A"_s);
    ASSERT_TRUE(SqliteDatabase::open(root_.filePath(u"RSSVault.sdf"), {})
                    ->run("WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE "
                          "i < 10000) INSERT INTO RSSRecord SELECT 'A', 'g' || i, 'title ' || i, "
                          "'http://example.org/', 'text', '2026-01-28', 0, i, 'C' FROM n"));
    begin();
    EXPECT_TRUE(sees(u"0 unread. A: title 10000"_s)) << "the total is the published one";
    QTest::mouseMove(&strip()); // on which it does not step
    const auto step = [&](const QString &to, const auto &act) {
        act();
        EXPECT_TRUE(sees(u"0 unread. A: title "_s + to)) << qPrintable(to);
    };
    const auto key = [&](Qt::Key pressed) {
        return [&, pressed] { QTest::keyClick(&strip(), pressed); };
    };
    const auto swipe = [&](int way) {
        return [&, way] {
            const QPoint begin = strip().rect().center();
            QTest::mousePress(&strip(), Qt::LeftButton, {}, begin);
            QTest::mouseMove(&strip(), begin + QPoint(way, 0));
            QTest::mouseRelease(&strip(), Qt::LeftButton, {}, begin + QPoint(way, 0));
        };
    };
    step(u"9801"_s, key(Qt::Key_Up));
    step(u"10000"_s, key(Qt::Key_Right));
    step(u"9999"_s, swipe(-60));
    step(u"9998"_s, swipe(-60));
    step(u"9999"_s, swipe(60));
    EXPECT_FALSE(reader()) << "a swipe is no tap";
    QTest::mouseMove(&strip(), {-9, -9});
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&strip(), &leave);
    EXPECT_TRUE(sees(u"0 unread. A: title 9997"_s));
    const auto lock = [](bool isLocked) {
        QDBusConnection::sessionBus().send(
            QDBusMessage::createSignal(u"/org/freedesktop/ScreenSaver"_s,
                                       u"org.freedesktop.ScreenSaver"_s, u"ActiveChanged"_s)
            << isLocked);
    };
    const auto staysForSomeSteps = [&] {
        const QString before = strip().accessibleName();
        QTest::qWait(300);
        return strip().accessibleName() == before;
    };
    lock(true);
    waitFor(staysForSomeSteps);
    lock(false);
    waitFor([&] { return !staysForSomeSteps(); });
}

TEST_F(TodayItemTest, ATapOpensTheArticleAlsoAfterAnyOfTheProgramsWasKilled) {
    addChannel(u"A"_s, "<rss version=\"2.0\"><channel><title>T</title>"
                       "<item><title>one</title><link>http://example.org/1</link></item>"
                       "<item><title>two</title><link>http://example.org/2</link></item>"
                       "<item><title>three</title><link>http://example.org/3</link></item>"
                       "</channel></rss>");
    ok(u"auto add A"_s);
    begin();
    EXPECT_TRUE(sees(nothing));
    choose(u"Update Now"_s);
    waitFor([&] { return strip().headline().has_value(); });
    tap(u"two"_s);
    waitFor([&] { return isRead(u"two"_s); });
    killReader();
    kill(*runningService(root_), SIGKILL);
    waitFor([&] { return !runningService(root_); });
    waitFor([&] { return strip().headline() && strip().headline()->title != u"two"; });
    tap(u"three"_s);
    waitFor([&] { return isRead(u"three"_s); });
    EXPECT_FALSE(isRead(u"one"_s));
    killReader();
    {
        // A reader that cannot start does not take it, and no later one finds it.
        NamedEvent tapped(root_, u"CLKTODAY", NamedEvent::Reset::Auto);
        const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
        qputenv("QT_QPA_PLATFORM", "none-such");
        tap(u"one"_s);
        waitFor([&] { return run(u"setting TITLE --today"_s).out == u"one\n"; });
        item_.reset();
        EXPECT_FALSE(tapped.test());
        qputenv("QT_QPA_PLATFORM", platform);
    }
    server_.serve(u"/A"_s, feedOf("four"));
    begin();
    waitFor([&] { return strip().headline().has_value(); });
    choose(u"Update Now"_s);
    tap(u"four"_s);
    waitFor([&] { return isRead(u"four"_s); });
    expectSound();
}

/// A desktop's service for notifications.
class Desktop : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    QStringList texts;

public Q_SLOTS:
    // The interface's name and parameters.
    // NOLINTNEXTLINE(readability-identifier-naming, readability-function-size)
    Q_SCRIPTABLE uint Notify(const QString &, uint, const QString &, const QString &,
                             const QString &text, const QStringList &, const QVariantMap &, int) {
        texts.append(text);
        return 7;
    }

Q_SIGNALS:
    Q_SCRIPTABLE void ActionInvoked(uint id, const QString &action);
};

TEST_F(TodayItemTest, ARoundIsNotifiedOnceIfItBroughtSomethingAndThatIsWanted) {
    Desktop desktop;
    auto own = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"desktop"_s);
    ASSERT_TRUE(own.registerService(u"org.freedesktop.Notifications"_s) &&
                own.registerObject(u"/org/freedesktop/Notifications"_s, &desktop,
                                   QDBusConnection::ExportScriptableContents));
    for (const char *name : {"A", "B"}) {
        addChannel(QString::fromLatin1(name), generatedFeed(3, static_cast<quint32>(*name)));
        ok(u"auto add "_s + QString::fromLatin1(name));
    }
    begin();
    EXPECT_TRUE(sees(nothing));
    const auto updateUntil = [&](const std::function<bool()> &condition) {
        server_.clearRequests();
        waitFor([&] {
            choose(u"Update Now"_s); // unless a round is running
            return condition();
        });
    };
    updateUntil([&] { return run(u"setting NewArticles --today"_s).out == u"6\n"; });
    item_.reset();
    ok(u"setting Notify 1 --today"_s);
    begin();
    waitFor([&] { return strip().isVisible(); }); // it has read the settings
    server_.serve(u"/B"_s, generatedFeed(3, 'B', 1));
    updateUntil([&] { return !desktop.texts.isEmpty(); });
    updateUntil([&] { return server_.requests().size() > 4; }); // nothing new
    server_.serve(u"/A"_s, generatedFeed(5, 'A', 1));
    updateUntil([&] { return desktop.texts.size() > 1; });
    EXPECT_EQ(desktop.texts,
              (QStringList{u"1 new article in 1 channel"_s, u"3 new articles in 1 channel"_s}));
    Q_EMIT desktop.ActionInvoked(8, u"default"_s);
    EXPECT_FALSE(reader());
    Q_EMIT desktop.ActionInvoked(7, u"default"_s);
    waitFor([&] { return reader().has_value(); });
}

TEST_F(TodayItemTest, OneRunsForADeviceAndEveryEndLeavesRoomForAnother) {
    const auto start = [&](const QStringList &arguments,
                           const QString &platform = qEnvironmentVariable("QT_QPA_PLATFORM")) {
        auto process = std::make_unique<QProcess>();
        environment_.insert(u"QT_QPA_PLATFORM"_s, platform);
        process->setProcessEnvironment(environment_);
        process->start(QStringLiteral(TIDEBROOK_TODAY), arguments);
        EXPECT_TRUE(process->waitForStarted());
        return process;
    };
    const auto end = [](QProcess &process) {
        return process.waitForFinished(patienceLimit) &&
                       process.exitStatus() == QProcess::NormalExit
                   ? process.exitCode()
                   : -1;
    };
    const auto holder = [&] { return ProcessLock::holder(root_.filePath(u"\\run\\TODAY.lock")); };
    for (const int signal : {SIGKILL, SIGTERM}) {
        const auto first = start({u"--window"_s});
        waitFor([&] { return holder() == first->processId(); });
        EXPECT_EQ(end(*start({u"--tray"_s})), 0);
        EXPECT_EQ(holder(), first->processId());
        kill(static_cast<pid_t>(first->processId()), signal);
        EXPECT_EQ(end(*first), signal == SIGTERM ? 0 : -1);
    }
    EXPECT_EQ(end(*start({u"--nowhere"_s})), 2);
    EXPECT_EQ(end(*start({u"--tray"_s, u"--strip"_s})), 2);
    const auto blind = start({}, u"none-such"_s);
    EXPECT_EQ(end(*blind), 1);
    EXPECT_TRUE(blind->readAllStandardError().startsWith("tidebrook-today: "));
    expectSound();
}

} // namespace
} // namespace tidebrook

#include "today_item_test.moc"
