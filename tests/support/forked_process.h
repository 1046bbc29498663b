#pragma once

#include "platform/descriptor.h"

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tidebrook {

/// A second process: a fork of this one, without its other threads, that ends with what `work`
/// returns. It ends at the latest with this object.
class ForkedProcess {
public:
    explicit ForkedProcess(const std::function<int()> &work);
    ~ForkedProcess();
    ForkedProcess(const ForkedProcess &) = delete;
    ForkedProcess &operator=(const ForkedProcess &) = delete;

    pid_t id() const { return id_; }
    void kill();
    /// Its exit code; -1 when a signal ended it.
    int wait();

private:
    pid_t id_ = -1;
};

using ForkedProcesses = std::vector<std::unique_ptr<ForkedProcess>>;
ForkedProcesses forkProcesses(int count, const std::function<int()> &work);

/// A count that a process and those forked from it share, for waiting for each other.
class SharedCount {
public:
    SharedCount();

    void add() const;
    /// Waits until it is not zero; false when that does not happen.
    bool wait() const;
    /// Waits like `wait`, returns the count and begins it anew.
    std::uint64_t take() const;

    int descriptor() const { return count_.number(); }

private:
    const Descriptor count_;
};

} // namespace tidebrook
