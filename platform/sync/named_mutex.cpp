#include "platform/sync/named_mutex.h"

#include "platform/base/plain_file.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <ctime>

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace tidebrook {

/// What the file holds.
struct NamedMutex::Shared {
    pthread_mutex_t mutex;
    std::atomic<quint32> mark; // readyMark once the mutex is initialised
};

namespace {

constexpr quint32 readyMark = 0x54424D31;

/// Takes room on the disk, so that a full disk is met here and not by a write to the mapping.
bool reserve(int descriptor, off_t size) {
    int error = posix_fallocate(descriptor, 0, size);
    while (error == EINTR)
        error = posix_fallocate(descriptor, 0, size);
    return error == 0;
}

bool initialiseMutex(pthread_mutex_t *mutex) {
    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0)
        return false;
    const bool isInitialised =
        pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED) == 0 &&
        pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST) == 0 &&
        pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) == 0 &&
        pthread_mutex_init(mutex, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
    return isInitialised;
}

timespec deadlineAfter(std::chrono::milliseconds timeout) {
    const auto end = (std::chrono::steady_clock::now() + timeout).time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(end);
    return {seconds.count(), std::chrono::nanoseconds(end - seconds).count()};
}

/// pthread_mutex_clocklock, which ThreadSanitizer does not know.
int lockUntil(pthread_mutex_t *mutex, const timespec &deadline) {
#ifdef __SANITIZE_THREAD__
    __tsan_mutex_pre_lock(mutex, __tsan_mutex_try_lock);
    const int result = pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &deadline);
    const bool isLocked = result == 0 || result == EOWNERDEAD;
    __tsan_mutex_post_lock(
        mutex, __tsan_mutex_try_lock | (isLocked ? 0U : __tsan_mutex_try_lock_failed), 0);
    return result;
#else
    return pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &deadline);
#endif
}

} // namespace

NamedMutex::NamedMutex(const DeviceRoot &device, QStringView name)
    : file_(openPlainFile(device.path() + u"/run/" + name + u".mutex", O_RDWR | O_CREAT)),
      shared_(share(file_.number())) {}

NamedMutex::~NamedMutex() {
    while (unlock()) {
    }
}

bool NamedMutex::lock(std::chrono::milliseconds timeout) {
    if (!isOpen())
        return false;
    int result = lockUntil(&shared_->mutex, deadlineAfter(timeout));
    if (result == EOWNERDEAD)
        result = pthread_mutex_consistent(&shared_->mutex);
    if (result != 0)
        return false;
    const pid_t self = gettid();
    depth_ = owner_ == self ? depth_ + 1 : 1;
    owner_ = self;
    return true;
}

bool NamedMutex::unlock() {
    if (owner_ != gettid())
        return false;
    --depth_;
    if (depth_ == 0)
        owner_ = 0;
    return pthread_mutex_unlock(&shared_->mutex) == 0;
}

void NamedMutex::Unmap::operator()(Shared *shared) const { munmap(shared, sizeof(Shared)); }

NamedMutex::Mapping NamedMutex::map(int file) {
    void *memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    return Mapping(memory == MAP_FAILED ? nullptr : static_cast<Shared *>(memory));
}

/// The file outlives a power cut, and would then hold an owner that is never declared dead.
/// So every process keeps the file's shared lock while it uses the mutex, and a process that gets
/// the exclusive one is alone with it and initialises the mutex anew. While it turns that into a
/// shared lock, another process may initialise the mutex again, which no process has locked yet.
/// Where a process ended before it had initialised the mutex, the mark is missing.
NamedMutex::Mapping NamedMutex::share(int file) {
    bool isUsable = file >= 0;
    while (isUsable) {
        isUsable = !lockFile(file, LOCK_EX | LOCK_NB) || initialise(file);
        if (!isUsable || !lockFile(file, LOCK_SH))
            break;
        struct stat status {};
        isUsable = fstat(file, &status) == 0;
        if (!isUsable || status.st_size < static_cast<off_t>(sizeof(Shared)))
            continue;
        Mapping shared = map(file);
        if (shared && shared->mark == readyMark)
            return shared;
        isUsable = shared != nullptr;
    }
    if (file >= 0)
        flock(file, LOCK_UN); // others are not to wait for an object that is of no use
    return nullptr;
}

bool NamedMutex::initialise(int file) {
    if (!reserve(file, sizeof(Shared)))
        return false;
    const Mapping shared = map(file);
    if (!shared)
        return false;
    shared->mark = 0;
    if (!initialiseMutex(&shared->mutex))
        return false;
    shared->mark = readyMark;
    return true;
}

} // namespace tidebrook
