#include "platform/desktop/service.h"
#include "platform/sql/registry.h"
#include "platform/sync/named_event.h"
#include "platform/sync/process_lock.h"
#include "res/default_channels.h"
#include "store/provisioning.h"
#include "store/store_check.h"
#include "support/waiting.h"
#include "test_device/test_device.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <random>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

using Environment = QMap<QString, QString>;

/// A run of the real program, without a display but for what its environment names.
class Reader {
public:
    explicit Reader(const DeviceRoot &root,
                    const Environment &own = {{u"QT_QPA_PLATFORM"_s, u"offscreen"_s}},
                    const QStringList &arguments = {}) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s})
            environment.remove(name);
        environment.insert(u"TIDEBROOK_HOME"_s, root.path());
        environment.insert(u"XDG_ACTIVATION_TOKEN"_s, u"token"_s);
        environment.insert(u"XDG_RUNTIME_DIR"_s, root.path()); // as every login sets it
        for (const auto &[name, value] : own.asKeyValueRange())
            environment.insert(name, value);
        process_.setProcessEnvironment(environment);
        process_.start(QStringLiteral(TIDEBROOK), arguments);
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
    int end(int number = 0) {
        signal(number);
        const bool isEnded = process_.waitForFinished(patienceLimit);
        return isEnded && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
    }
    QString answer() { return QString::fromLocal8Bit(process_.readAllStandardOutput()); }
    QString words() { return QString::fromLocal8Bit(process_.readAllStandardError()); }

    /// Whether it ends by itself when it gets a signal, as it does once it is under way.
    bool heedsSignals() const {
        QFile file(u"/proc/%1/status"_s.arg(id()));
        const QByteArray status = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        const QByteArray field = "SigCgt:\t";
        const auto caught = status.mid(status.indexOf(field) + field.size(), 16);
        return (caught.toULongLong(nullptr, 16) >> (SIGTERM - 1) & 1U) != 0;
    }
    /// Has it stand still: nothing of it does anything after this.
    void hold() const {
        signal(SIGSTOP);
        siginfo_t stop;
        ASSERT_EQ(waitid(P_PID, static_cast<id_t>(id()), &stop, WSTOPPED | WEXITED | WNOWAIT), 0);
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
            patienceLimit));
    }

    void expectRequest() const {
        NamedEvent request(root_, u"FEEDLARK", NamedEvent::Reset::Manual);
        ASSERT_TRUE(QTest::qWaitFor([&] { return request.test(); }, patienceLimit));
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
    ASSERT_TRUE(stopService(root_, 10s));
    first.hold(); // nobody else writes now
    const QStringList before = data();
    EXPECT_GE(before.size(), 2);
    Reader second(root_);
    expectRequest();
    EXPECT_EQ(data(), before);
    first.signal(SIGCONT);
    EXPECT_EQ(second.end(), 0);
    EXPECT_EQ(second.words(), u"") << "it was not answered";
    EXPECT_FALSE(QFile::exists(root_.filePath(u"\\run\\FEEDLARK.token"))) << "it was not taken";
    EXPECT_EQ(holder(), first.id());
    EXPECT_EQ(first.end(SIGTERM), 0);
    expectSound();
}

TEST_F(ProgramTest, KilledAtAnyMomentItStartsAgainAndEverySignalThatAsksForItEndsItInOrder) {
    std::mt19937 random(2026);
    for (int round = 0; round < 8; ++round) {
        Reader killed(root_);
        QTest::qSleep(std::uniform_int_distribution(0, 400)(random));
        EXPECT_EQ(killed.end(SIGKILL), -1);
    }
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        Reader reader(root_);
        expectRuns(reader);
        EXPECT_EQ(reader.end(signal), 0);
        expectSound();
    }
}

TEST_F(ProgramTest, AStartWhileTheOneBeforeIsClosingRunsItself) {
    Reader first(root_);
    expectRuns(first);
    first.hold();
    tgkill(first.id(), first.id(), SIGTERM); // the first that its main thread sees when it goes on
    const Reader second(root_);
    expectRequest();
    EXPECT_EQ(first.end(SIGCONT), 0);
    expectRuns(second);
}

TEST_F(ProgramTest, AnArgumentIsAnsweredOrRefusedWithoutADisplayAndNothingIsMade) {
    const struct {
        QStringList arguments;
        int status;
        QString answer;
        QString words;
    } calls[]{{{u"--version"_s}, 0, u"tidebrook "_s + QStringLiteral(TIDEBROOK_VERSION), {}},
              {{u"--help"_s}, 0, u"Usage: tidebrook"_s, {}},
              {{u"--no-such"_s, u"--help"_s}, 2, {}, u"\"--no-such\""_s},
              {{u"list.opml"_s}, 2, {}, u"\"list.opml\""_s}};
    for (const auto &call : calls) {
        Reader reader(root_, {}, call.arguments);
        EXPECT_EQ(reader.end(), call.status);
        const QString answer = reader.answer();
        const QString words = reader.words();
        EXPECT_TRUE(answer.startsWith(call.answer) && words.contains(call.words));
        EXPECT_EQ(answer.isEmpty(), call.answer.isEmpty());
        EXPECT_EQ(words.count(u'\n'), call.words.isEmpty() ? 0 : 1) << qPrintable(words);
    }
    EXPECT_FALSE(QFile::exists(root_.path()));
}

TEST_F(ProgramTest, WithoutADisplayItEndsWithoutAWordAndMakesAndOpensNothing) {
    const Environment places[]{
        {},
        {{u"DISPLAY"_s, u":9999"_s}},
        {{u"WAYLAND_DISPLAY"_s, u"nobody"_s}, {u"XDG_SESSION_TYPE"_s, u"wayland"_s}},
        {{u"QT_QPA_PLATFORM"_s, u"xcb"_s}},
        {{u"QT_QPA_PLATFORM"_s, u"none-such"_s}},
    };
    const auto expectNothing = [&] {
        const QStringList before = data();
        for (const Environment &place : places) {
            Reader reader(root_, place);
            EXPECT_EQ(reader.end(), 0);
            EXPECT_EQ(reader.words(), u"");
        }
        EXPECT_EQ(data(), before);
    };
    expectNothing();
    EXPECT_FALSE(QFile::exists(root_.path()));
    provisionDevice(root_, defaultChannelsFile(), testTodayKey.toString());
    expectNothing();
    EXPECT_FALSE(QFile::exists(root_.filePath(u"\\run\\FEEDLARK.lock")));
}

} // namespace
} // namespace tidebrook
