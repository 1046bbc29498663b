#include "bench/first_paint.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QEvent>
#include <QFile>

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>

namespace tidebrook {

namespace {

constexpr unsigned timeout = 120; // seconds

double cpuTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

long long proportionalSize() {
    QFile rollup(QStringLiteral("/proc/self/smaps_rollup"));
    if (rollup.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : rollup.readAll().split('\n')) {
            if (line.startsWith("Pss:"))
                return line.simplified().split(' ').value(1).toLongLong();
        }
    }
    return 0;
}

// Closing down is no part of a start.
void tellAndEnd() {
    const std::chrono::duration<double> at = std::chrono::steady_clock::now().time_since_epoch();
    const double cpu = cpuTime();
    std::printf("at=%.6f cpu=%.6f pss=%lld\n", at.count(), cpu, proportionalSize());
    std::fflush(stdout);
    if (qEnvironmentVariableIsSet("TIDEBROOK_BENCH_STAY")) {
        std::signal(SIGTERM, SIG_DFL);
        pause();
    }
    _exit(0);
}

} // namespace

FirstPaint::FirstPaint(int rows) : rows_(rows) {
    alarm(timeout);
    QCoreApplication::instance()->installEventFilter(this);
}

bool FirstPaint::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() != QEvent::Paint)
        return false;
    const auto *view = qobject_cast<QAbstractItemView *>(watched->parent());
    const bool isList = view != nullptr && view->viewport() == watched && view->model() != nullptr;
    if (isList && view->model()->rowCount() >= rows_) {
        QCoreApplication::instance()->removeEventFilter(this);
        // Behind this event it is painted, and what was painted is on the screen.
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }
    return false;
}

void FirstPaint::customEvent(QEvent * /*event*/) { tellAndEnd(); }

} // namespace tidebrook
