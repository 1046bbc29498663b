#include "platform/desktop/own_unit.h"
#include "platform/desktop/service.h"
#include "platform/sync/process_lock.h"
#include "support/device_folders.h"
#include "support/forked_process.h"

#include <gtest/gtest.h>

#include <csignal>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

using ServiceTest = DeviceFolders;

TEST_F(ServiceTest, AskingForItsHolderOrTakingItAgainDoesNotLoseALock) {
    const QString path = serviceLockPath(device_);
    const ProcessLock lock(path);
    ASSERT_TRUE(lock.isHeld());
    EXPECT_EQ(ProcessLock::holder(path), getpid());
    EXPECT_FALSE(ProcessLock(path).isHeld());
    EXPECT_FALSE(ProcessLock(device_.path() + u"/run/../run/feedlarkd.lock").isHeld());
    const pid_t self = getpid();
    ForkedProcess child([&] {
        const bool isRefused = !ProcessLock(path).isHeld();
        return isRefused && ProcessLock::holder(path) == self ? 0 : 1;
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(ServiceTest, OneThatDoesNotEndIsNotTakenForStopped) {
    const auto deaf = startStaying([&](const auto &stay) {
        std::signal(SIGTERM, SIG_IGN);
        const ProcessLock lock(serviceLockPath(device_));
        if (lock.isHeld())
            stay();
    });
    EXPECT_FALSE(stopService(device_, 50ms));
    EXPECT_EQ(runningService(device_), deaf->id());
}

TEST_F(ServiceTest, OnlyWhatTheServiceManagerStartedHasItStartTheRest) {
    const QString folder = device_.path();
    const QStringList command{u"/bin/echo"_s, u"a b"_s};
    const QStringList byManager{
        folder + u"/systemd-run"_s, u"--user"_s, u"--quiet"_s,   u"--collect"_s,
        u"--property=Type=exec"_s,  u"--"_s,     u"/bin/echo"_s, u"a b"_s};
    ASSERT_TRUE(QFile(u"/bin/true"_s).copy(byManager.first()));
    const QByteArray path = qgetenv("PATH");
    const QByteArray own = QByteArray::number(getpid());
    const QByteArray parents = QByteArray::number(getppid());
    const struct {
        QByteArray process;
        QByteArray path;
        QStringList expected;
    } cases[]{{own, QFile::encodeName(folder), byManager},
              {parents, QFile::encodeName(folder), command},
              {"", QFile::encodeName(folder), command},
              {own, "/nowhere", command}};
    for (const auto &row : cases) {
        qputenv("SYSTEMD_EXEC_PID", row.process);
        qputenv("PATH", row.path);
        EXPECT_EQ(outsideOwnUnit(command, {u"--property=Type=exec"_s}), row.expected);
    }
    qunsetenv("SYSTEMD_EXEC_PID");
    qputenv("PATH", path);
}

} // namespace
} // namespace tidebrook
