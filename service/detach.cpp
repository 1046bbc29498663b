#include "service/detach.h"

#include <QFile>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace tidebrook {

namespace {

constexpr char readyMark = '+';

// The new process says that it is ready, or ends and so closes the pipe.
[[noreturn]] void waitUntilReady(int pipe) {
    char mark = 0;
    ssize_t size = 0;
    do {
        size = read(pipe, &mark, 1);
    } while (size < 0 && errno == EINTR);
    _exit(size == 1 && mark == readyMark ? 0 : 1);
}

void turnStream(int stream, const char *path, int flags) {
    // What is no file is not waited for.
    const int file = open(path, flags | O_CLOEXEC | O_NONBLOCK, 0600);
    if (file < 0)
        return;
    dup2(file, stream);
    close(file);
}

} // namespace

bool Detachment::begin() {
    // Whoever reads to the end of what his command writes must not wait for the service's end.
    close_range(STDERR_FILENO + 1, ~0U, 0);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return false;
    const pid_t child = fork();
    if (child < 0)
        return false;
    if (child > 0) {
        close(ends[1]);
        waitUntilReady(ends[0]);
    }
    close(ends[0]);
    readyPipe_ = ends[1];
    setsid();
    return chdir("/") == 0; // so that no file system is kept from being unmounted
}

void Detachment::ready(const QString &logPath) {
    turnStream(STDIN_FILENO, "/dev/null", O_RDONLY);
    turnStream(STDOUT_FILENO, "/dev/null", O_WRONLY);
    turnStream(STDERR_FILENO, "/dev/null", O_WRONLY);
    if (!logPath.isEmpty())
        turnStream(STDERR_FILENO, QFile::encodeName(logPath).constData(),
                   O_WRONLY | O_CREAT | O_TRUNC);
    [[maybe_unused]] const ssize_t written = write(readyPipe_, &readyMark, 1);
    close(readyPipe_);
}

} // namespace tidebrook
