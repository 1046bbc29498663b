#include "platform/named_event.h"
#include "platform/process_lock.h"
#include "platform/registry.h"
#include "platform/service.h"
#include "platform/sqlite_database.h"
#include "store/store_check.h"
#include "support/test_device.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <random>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr int patience = 20'000; // ms

/// A run of the real program.
class Reader {
public:
    explicit Reader(const DeviceRoot &root, const QString &platform = u"offscreen"_s) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"TIDEBROOK_HOME"_s, root.path());
        environment.insert(u"QT_QPA_PLATFORM"_s, platform);
        environment.insert(u"XDG_ACTIVATION_TOKEN"_s, u"token"_s);
        environment.remove(u"DISPLAY"_s);
        process_.setProcessEnvironment(environment);
        process_.start(QStringLiteral(TIDEBROOK), {});
        EXPECT_TRUE(process_.waitForStarted());
    }
    ~Reader() {
        process_.kill();
        process_.waitForFinished();
    }
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;

    pid_t id() const { return static_cast<pid_t>(process_.processId()); }
    void signal(int number) const {
        if (id() > 0) // 0 would be all of the test's own processes
            ::kill(id(), number);
    }

    /// Its exit status; -1 when it crashed or went on.
    int end(int milliseconds = patience) {
        const bool isEnded = process_.waitForFinished(milliseconds);
        return isEnded && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
    }
    int end(std::chrono::milliseconds time, int number) {
        signal(number);
        return end(static_cast<int>(time.count()));
    }
    QString words() { return QString::fromLocal8Bit(process_.readAllStandardError()); }

    /// Whether it ends by itself when it gets a signal, as it does once it is under way.
    bool heedsSignals() const {
        QFile status(QStringLiteral("/proc/%1/status").arg(id()));
        if (!status.open(QIODevice::ReadOnly))
            return false;
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("SigCgt:"))
                return (line.mid(7).trimmed().toULongLong(nullptr, 16) >> (SIGTERM - 1) & 1U) != 0;
        }
        return false;
    }
    void expectUnderWay() const {
        ASSERT_TRUE(QTest::qWaitFor([this] { return heedsSignals(); }, patience));
    }

private:
    QProcess process_;
};

class ProgramTest : public testing::Test {
protected:
    ~ProgramTest() override { EXPECT_TRUE(stopService(root_, 10s)); }

    void expectSound() const {
        Registry registry(root_);
        EXPECT_EQ(checkStore(root_, registry), QStringList());
    }
    bool hasDatabase() const { return QFile::exists(root_.filePath(u"RSSVault.sdf")); }
    std::optional<pid_t> holder() const {
        return ProcessLock::holder(root_.filePath(u"\\run\\FEEDLARK.lock"));
    }
    void expectRuns(const Reader &reader) const {
        ASSERT_TRUE(QTest::qWaitFor(
            [&] {
                return holder() == reader.id() && reader.heedsSignals() && hasDatabase() &&
                       runningService(root_);
            },
            patience))
            << "held by " << holder().value_or(0) << ", service "
            << runningService(root_).value_or(0);
    }

    /// Name, time and content of every file that holds data.
    QStringList data() const {
        QStringList files;
        for (const QFileInfo &info : QDir(root_.path()).entryInfoList(QDir::Files, QDir::Name)) {
            QFile file(info.filePath());
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            files.append(info.fileName() + info.lastModified().toString(Qt::ISODateWithMs) +
                         QString::fromLatin1(file.readAll().toHex()));
        }
        return files;
    }

    QTemporaryDir folder_;
    const DeviceRoot root_{folder_.filePath(u"device"_s)};
};

TEST_F(ProgramTest, AFirstStartMakesTheDeviceAndASecondOneOnlyBringsItForward) {
    Reader first(root_);
    expectRuns(first);
    ASSERT_TRUE(stopService(root_, 10s)); // which might write
    const QStringList before = data();
    EXPECT_GE(before.size(), 2);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(Reader(root_).end(), 0);
    EXPECT_LT(timer.elapsed(), 10'000) << "it was not answered";
    EXPECT_FALSE(QFile::exists(root_.filePath(u"\\run\\FEEDLARK.token"))) << "it was not taken";
    EXPECT_EQ(data(), before);
    EXPECT_EQ(holder(), first.id());
    EXPECT_EQ(first.end(10s, SIGTERM), 0);
    expectSound();
}

TEST_F(ProgramTest, EverySignalThatAsksForItEndsItInOrder) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        Reader reader(root_);
        expectRuns(reader);
        EXPECT_EQ(reader.end(10s, signal), 0);
        expectSound();
    }
}

TEST_F(ProgramTest, KilledAtAnyMomentItStartsAgain) {
    std::mt19937 random(2026);
    for (int round = 0; round < 8; ++round) {
        Reader killed(root_);
        QTest::qSleep(std::uniform_int_distribution(0, 400)(random));
        EXPECT_EQ(killed.end(10s, SIGKILL), -1);
    }
    Reader reader(root_);
    expectRuns(reader);
    EXPECT_EQ(reader.end(10s, SIGTERM), 0);
    expectSound();
}

TEST_F(ProgramTest, AStartWhileTheOneBeforeIsClosingRunsItself) {
    Reader first(root_);
    expectRuns(first);
    first.signal(SIGSTOP);
    tgkill(first.id(), first.id(), SIGTERM); // the first that its main thread sees when it goes on
    const Reader second(root_);
    NamedEvent request(root_, u"FEEDLARK", NamedEvent::Reset::Manual);
    ASSERT_TRUE(QTest::qWaitFor([&] { return request.test(); }, patience));
    EXPECT_EQ(first.end(10s, SIGCONT), 0);
    expectRuns(second);
}

TEST_F(ProgramTest, WithoutADisplayItSaysSoAndLeavesASoundDevice) {
    Reader reader(root_, u"xcb"_s);
    EXPECT_NE(reader.end(), 0);
    EXPECT_TRUE(reader.words().contains(u"display")) << reader.words().toStdString();
    Reader next(root_);
    expectRuns(next);
    EXPECT_EQ(next.end(10s, SIGTERM), 0);
    expectSound();
}

TEST_F(ProgramTest, OnBadGroundItStartsAndEndsAllTheSame) {
    {
        Reader reader(root_);
        expectRuns(reader);
        ASSERT_EQ(reader.end(10s, SIGTERM), 0);
        ASSERT_TRUE(stopService(root_, 10s));
    }
    const auto expectStartAndEnd = [](const char *what, const DeviceRoot &root) {
        SCOPED_TRACE(what);
        Reader reader(root);
        reader.expectUnderWay();
        EXPECT_FALSE(QTest::qWaitFor([&] { return !reader.heedsSignals(); }, 500)) << "it ended";
        EXPECT_EQ(reader.end(15s, SIGTERM), 0) << reader.words().toStdString();
    };
    ASSERT_TRUE(writeFile(folder_.filePath(u"file"_s), "x"));
    expectStartAndEnd("no root", DeviceRoot(folder_.filePath(u"file/device"_s)));
    for (const QString &name : {u"RSSVault.sdf"_s, u"registry.db"_s}) {
        const auto other = SqliteDatabase::open(root_.filePath(name), {});
        ASSERT_EQ(other->run("BEGIN EXCLUSIVE"), SqliteStep::Done);
        expectStartAndEnd("a locked file", root_);
        EXPECT_TRUE(stopService(root_, 10s));
    }
    for (const QString &name : {u"RSSVault.sdf"_s, u"registry.db"_s}) {
        QFile::remove(root_.filePath(name) + u"-wal");
        ASSERT_TRUE(writeFile(root_.filePath(name), QByteArray(8192, 'x')));
        expectStartAndEnd("a damaged file", root_);
        EXPECT_TRUE(stopService(root_, 10s));
    }
}

} // namespace
} // namespace tidebrook
