#pragma once

#include <pthread.h>

#include <cstddef>

namespace tidebrook {

/// While it lives, no thread begins: none gets the stack that it asks for.
class NoThreads {
public:
    NoThreads() {
        pthread_getattr_default_np(&before_);
        pthread_attr_t greedy;
        pthread_getattr_default_np(&greedy);
        pthread_attr_setstacksize(&greedy, std::size_t{1} << 47U);
        pthread_setattr_default_np(&greedy);
        pthread_attr_destroy(&greedy);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&before_);
        pthread_attr_destroy(&before_);
    }
    NoThreads(const NoThreads &) = delete;
    NoThreads &operator=(const NoThreads &) = delete;

private:
    pthread_attr_t before_{};
};

} // namespace tidebrook
