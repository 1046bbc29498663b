#include "platform/desktop/detached_program.h"

#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace tidebrook {

namespace {

// Runs in a process between this one and the program, so that the program is no child of this one.
// A fork has only the calling thread; another may have held the lock of the heap, so nothing here
// allocates.
[[noreturn]] void watch(char *const *arguments, const timespec &timeout) {
    setsid();
    sigset_t ended;
    sigset_t before;
    sigemptyset(&ended);
    sigaddset(&ended, SIGCHLD);
    sigprocmask(SIG_BLOCK, &ended, &before);
    const pid_t program = _Fork();
    if (program == 0) {
        sigprocmask(SIG_SETMASK, &before, nullptr);
        execv(arguments[0], arguments);
    }
    if (program <= 0)
        _exit(EXIT_FAILURE);
    sigtimedwait(&ended, nullptr, &timeout);
    int status = 0;
    if (waitpid(program, &status, WNOHANG) == 0)
        _exit(EXIT_SUCCESS); // it is still running
    _exit(WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE);
}

timespec toTimespec(std::chrono::milliseconds time) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    return {seconds.count(), std::chrono::nanoseconds(time - seconds).count()};
}

} // namespace

bool startDetached(const QString &program, const QStringList &arguments,
                   std::chrono::milliseconds timeout) {
    const QString path = QStandardPaths::findExecutable(program);
    if (path.isEmpty())
        return false;
    QList<QByteArray> texts{QFile::encodeName(path)};
    for (const QString &argument : arguments)
        texts.append(argument.toLocal8Bit());
    std::vector<char *> pointers;
    for (QByteArray &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    const timespec limit = toTimespec(timeout);
    const pid_t watcher = fork();
    if (watcher == 0)
        watch(pointers.data(), limit);
    int status = 0;
    while (watcher > 0 && waitpid(watcher, &status, 0) < 0 && errno == EINTR) {
    }
    return watcher > 0 && WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

} // namespace tidebrook
