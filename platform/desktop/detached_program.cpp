#include "platform/desktop/detached_program.h"

#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <csignal>
#include <ctime>

#include <sys/wait.h>
#include <unistd.h>

namespace tidebrook {

namespace {

constexpr timespec timeout{.tv_sec = 3, .tv_nsec = 0};

// Runs in a process between this one and the program, so that the program is no child of this one.
// A fork has only the calling thread; another may have held the lock of the heap, so nothing here
// allocates.
[[noreturn]] void watch(char *const *arguments) {
    // A lock lasts as long as any process has its file open.
    close_range(STDERR_FILENO + 1, ~0U, 0);
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

} // namespace

bool startDetached(const QString &program, const QString &argument) {
    QByteArray path = QFile::encodeName(QStandardPaths::findExecutable(program));
    if (path.isEmpty())
        return false;
    QByteArray text = argument.toLocal8Bit();
    char *const arguments[] = {path.data(), text.data(), nullptr};
    const pid_t watcher = fork();
    if (watcher == 0)
        watch(arguments);
    int status = 0;
    while (watcher > 0 && waitpid(watcher, &status, 0) < 0 && errno == EINTR) {
    }
    return watcher > 0 && WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

} // namespace tidebrook
