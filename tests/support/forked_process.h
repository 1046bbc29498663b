#pragma once

#include "platform/base/descriptor.h"
#include "support/waiting.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

namespace tidebrook {

/// A second process: a fork of this one, without its other threads, that ends with what `work`
/// returns. It ends at the latest with this object.
class ForkedProcess {
public:
    explicit ForkedProcess(const std::function<int()> &work) {
        std::fflush(nullptr); // a sanitizer writes in the child what is left in its buffers
        id_ = fork();
        if (id_ != 0)
            return;
        alarm(60); // whatever goes wrong, it does not stay
        _exit(work());
    }
    ~ForkedProcess() { kill(); }
    ForkedProcess(const ForkedProcess &) = delete;
    ForkedProcess &operator=(const ForkedProcess &) = delete;

    pid_t id() const { return id_; }
    void kill() {
        if (id_ <= 0) // which would be more than one process
            return;
        ::kill(id_, SIGKILL);
        wait();
    }
    /// Its exit code; -1 when a signal ended it.
    int wait() {
        int status = 0;
        const bool isEnded = waitpid(id_, &status, 0) == id_;
        id_ = -1;
        return isEnded && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t id_ = -1;
};

using ForkedProcesses = std::vector<std::unique_ptr<ForkedProcess>>;
inline ForkedProcesses forkProcesses(int count, const std::function<int()> &work) {
    ForkedProcesses processes;
    for (int i = 0; i < count; ++i)
        processes.push_back(std::make_unique<ForkedProcess>(work));
    return processes;
}

/// A count that a process and those forked from it share, for waiting for each other.
class SharedCount {
public:
    void add() const { eventfd_write(count_.number(), 1); }
    /// Waits until it is not zero; false when that does not happen.
    bool wait() const {
        pollfd descriptor{count_.number(), POLLIN, 0};
        return poll(&descriptor, 1, patienceLimit) == 1;
    }
    /// Waits like `wait`, returns the count and begins it anew.
    std::uint64_t take() const {
        eventfd_t count = 0;
        return wait() && eventfd_read(count_.number(), &count) == 0 ? count : 0;
    }

private:
    const Descriptor count_{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

/// A process that begins `work` and stays where `work` calls what it is given, until it is killed.
inline std::unique_ptr<ForkedProcess>
startStaying(const std::function<void(const std::function<void()> &stay)> &work) {
    const SharedCount isThere;
    auto process = std::make_unique<ForkedProcess>([&] {
        work([&] {
            isThere.add();
            pause();
        });
        return 0;
    });
    EXPECT_TRUE(isThere.wait());
    return process;
}

} // namespace tidebrook
