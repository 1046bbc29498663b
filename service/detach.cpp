#include "service/detach.h"

#include "platform/base/plain_file.h"

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

void turnStream(int stream, int file) {
    if (file < 0)
        return;
    dup2(file, stream);
    close(file);
}

} // namespace

bool Detachment::begin() {
    // A caller that reads its command's output to the end must not wait for the service's end.
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
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        turnStream(stream, open("/dev/null", O_RDWR | O_CLOEXEC));
    if (!logPath.isEmpty())
        turnStream(STDERR_FILENO, openPlainFile(logPath, O_WRONLY | O_CREAT | O_TRUNC));
    [[maybe_unused]] const ssize_t written = write(readyPipe_, &readyMark, 1);
    close(readyPipe_);
}

} // namespace tidebrook
