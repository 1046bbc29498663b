#pragma once

#include <sys/resource.h>

#include <csignal>

namespace tidebrook {

/// While it lives, this process can write nothing into files, as on a full disk.
class FullDisk {
public:
    FullDisk() : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &limit_);
        const rlimit none{0, limit_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &limit_);
        std::signal(SIGXFSZ, signal_);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    void (*signal_)(int);
    rlimit limit_{};
};

} // namespace tidebrook
