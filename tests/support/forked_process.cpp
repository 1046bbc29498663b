#include "support/forked_process.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace tidebrook {

ForkedProcess::ForkedProcess(const std::function<int()> &work) {
    std::fflush(nullptr); // a sanitizer writes in the child what is left in its buffers
    id_ = fork();
    if (id_ != 0)
        return;
    alarm(60); // whatever goes wrong, it does not stay
    _exit(work());
}

ForkedProcess::~ForkedProcess() {
    if (id_ > 0) {
        kill();
        wait();
    }
}

void ForkedProcess::kill() { ::kill(id_, SIGKILL); }

int ForkedProcess::wait() {
    int status = 0;
    const bool isEnded = waitpid(id_, &status, 0) == id_;
    id_ = -1;
    return isEnded && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

ForkedProcesses forkProcesses(int count, const std::function<int()> &work) {
    ForkedProcesses processes;
    for (int i = 0; i < count; ++i)
        processes.push_back(std::make_unique<ForkedProcess>(work));
    return processes;
}

SharedCount::SharedCount() : count_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void SharedCount::add() const { eventfd_write(count_.number(), 1); }

bool SharedCount::wait() const {
    pollfd descriptor{count_.number(), POLLIN, 0};
    return poll(&descriptor, 1, 20'000) == 1;
}

std::uint64_t SharedCount::take() const {
    eventfd_t count = 0;
    return wait() && eventfd_read(count_.number(), &count) == 0 ? count : 0;
}

} // namespace tidebrook
