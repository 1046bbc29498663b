#include "bench/measured_region.h"

#include <valgrind/callgrind.h>

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

namespace tidebrook {

namespace {

double seconds(const timeval &time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

double cpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double wallSeconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

// In KiB. Not ru_maxrss: that remembers the parent's size from before the exec.
std::int64_t memory(const std::string &field) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.starts_with(field + ':'))
            return std::stoll(line.substr(field.size() + 1));
    }
    return 0;
}

} // namespace

MeasuredRegion::MeasuredRegion() : residentBefore_(memory("VmRSS")) {
    cpu_ = cpuSeconds();
    wall_ = wallSeconds();
    CALLGRIND_START_INSTRUMENTATION;
}

void MeasuredRegion::end() {
    CALLGRIND_STOP_INSTRUMENTATION;
    wall_ = wallSeconds() - wall_;
    cpu_ = cpuSeconds() - cpu_;
}

void MeasuredRegion::print(int items, int stored) const {
    std::printf("cpu=%.6f wall=%.6f before=%lld peak=%lld items=%d stored=%d\n", cpu_, wall_,
                static_cast<long long>(residentBefore_), static_cast<long long>(memory("VmHWM")),
                items, stored);
}

} // namespace tidebrook
