// Preloaded into a program: counts its changes of the files below TORTURE_ROOT, has one of them
// fail or be its last, writes them down for a replay, and sets the clock ahead.
//
//   TORTURE_FAULT  "N HOW": what the change with the number N meets, from 1 on. HOW is EIO,
//                  ENOSPC, short (half is written), kill, torn (half is written, then the end), or
//                  with every change from that one on: full (no space), dead (EIO, but for locks)
//   TORTURE_COUNT  a file that gets a letter for each change, and "!" for the one that is met
//   TORTURE_LOG    a file that gets each change with its data
//   TORTURE_CLOCK  a file that begins with the seconds by which the clock is ahead, as eight bytes

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

namespace {

using Path = std::array<char, PATH_MAX>;

struct Orders {
    std::string_view root = text("TORTURE_ROOT");
    long at = 0;
    std::array<char, 16> how{};
    int count = fileOf("TORTURE_COUNT", O_WRONLY | O_APPEND | O_CREAT);
    int log = fileOf("TORTURE_LOG", O_WRONLY | O_APPEND | O_CREAT);
    const std::int64_t *ahead = nullptr;

    Orders() {
        std::sscanf(text("TORTURE_FAULT"), "%ld %15s", &at, how.data());
        const int clock = fileOf("TORTURE_CLOCK", O_RDONLY);
        void *page = clock < 0 ? MAP_FAILED : mmap(nullptr, 8, PROT_READ, MAP_SHARED, clock, 0);
        ahead = page == MAP_FAILED ? nullptr : static_cast<const std::int64_t *>(page);
    }
    static const char *text(const char *name) {
        const char *value = std::getenv(name);
        return value ? value : "";
    }
    // Above the numbers that the program itself gets, which closes those that it did not open.
    static int fileOf(const char *name, int flags) {
        const char *path = text(name);
        const long file = *path ? syscall(SYS_openat, AT_FDCWD, path, flags | O_CLOEXEC, 0600) : -1;
        return file < 0 ? -1 : static_cast<int>(syscall(SYS_fcntl, file, F_DUPFD_CLOEXEC, 900));
    }
    bool is(const char *other) const { return std::strcmp(how.data(), other) == 0; }
};

const Orders &orders() {
    static const Orders orders;
    return orders;
}

bool isOurs(const char *path) {
    return !orders().root.empty() && std::string_view(path).starts_with(orders().root);
}

bool findPath(int file, Path &path) {
    std::array<char, 32> link{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", file);
    const ssize_t size = file < 0 || orders().root.empty()
                             ? -1
                             : readlink(link.data(), path.data(), path.size() - 1);
    path[size < 0 ? 0 : static_cast<std::size_t>(size)] = '\0';
    return isOurs(path.data());
}

enum class Fate { Usual, Fails, Halved };

void die() {
    syscall(SYS_kill, getpid(), SIGKILL);
    for (;;)
        pause();
}

std::atomic<long> changeCount = 0;

// `half` writes half of what is to be written, and is null for what is no write.
template <class Half> Fate meet(char kind, const Half &half) {
    const Orders &given = orders();
    const long own = ++changeCount;
    const bool isLasting = given.is("full") || given.is("dead");
    const bool isMet = given.at > 0 && (isLasting ? own >= given.at : own == given.at);
    if (given.count >= 0)
        syscall(SYS_write, given.count, isMet ? "!" : &kind, 1);
    if (!isMet)
        return Fate::Usual;
    const bool isFirst = own == given.at;
    if (given.is("kill"))
        die();
    if ((given.is("torn") || given.is("short") || given.is("full")) && isFirst && half()) {
        if (given.is("torn"))
            die();
        return Fate::Halved;
    }
    const bool isSpared =
        (given.is("full") && !std::strchr("wotm", kind)) || (given.is("dead") && kind == 'l');
    errno = given.is("EIO") || given.is("dead") ? EIO : ENOSPC;
    return isSpared ? Fate::Usual : Fate::Fails;
}
Fate meet(char kind) {
    return meet(kind, [] { return false; });
}

struct Entry {
    std::uint64_t inode;
    std::int64_t offset;
    std::uint32_t size;
    std::uint32_t pathSize;
    char kind;
    std::array<char, 7> unused{};
};

void put(char kind, const char *path, int file = -1, std::int64_t offset = 0,
         std::string_view data = {}) {
    const int log = orders().log;
    struct stat status {};
    if (log < 0)
        return;
    const int error = errno;
    if (file >= 0)
        fstat(file, &status);
    else
        lstat(path, &status);
    Entry entry{status.st_ino, offset, static_cast<std::uint32_t>(data.size()),
                static_cast<std::uint32_t>(std::strlen(path)), kind};
    const std::array<iovec, 3> parts{iovec{&entry, sizeof entry},
                                     iovec{const_cast<char *>(path), entry.pathSize},
                                     iovec{const_cast<char *>(data.data()), data.size()}};
    syscall(SYS_writev, log, parts.data(), parts.size());
    errno = error;
}

// An offset of -1: where the file stands.
ssize_t writeAt(int file, const void *data, std::size_t size, off_t offset) {
    const auto pass = [&](std::size_t length) -> ssize_t {
        return offset < 0 ? syscall(SYS_write, file, data, length)
                          : syscall(SYS_pwrite64, file, data, length, offset);
    };
    Path path;
    if (!findPath(file, path) || std::strstr(path.data(), ".event"))
        return pass(size);
    ssize_t written = -1;
    const Fate fate = meet('w', [&] {
        written = size > 1 ? pass(size / 2) : -1;
        return written > 0;
    });
    if (fate == Fate::Fails)
        return -1;
    if (fate == Fate::Usual)
        written = pass(size);
    const off_t start = offset < 0 ? lseek(file, 0, SEEK_CUR) - written : offset;
    if (written > 0)
        put('w', path.data(), file, start,
            {static_cast<const char *>(data), static_cast<std::size_t>(written)});
    return written;
}

int openAt(int folder, const char *path, int flags, mode_t mode) {
    const bool isMet = isOurs(path) && (flags & (O_ACCMODE | O_CREAT | O_TRUNC)) != 0 &&
                       !std::strstr(path, ".event");
    if (isMet && meet('o') == Fate::Fails)
        return -1;
    const int file = static_cast<int>(syscall(SYS_openat, folder, path, flags, mode));
    if (file >= 0 && isMet && (flags & O_CREAT) != 0)
        put('c', path, file);
    if (file >= 0 && isMet && (flags & O_TRUNC) != 0)
        put('t', path, file);
    return file;
}

int control(int file, int command, void *argument) {
    const bool isLock = command == F_SETLK || command == F_SETLKW || command == F_OFD_SETLK ||
                        command == F_OFD_SETLKW;
    Path path;
    if (isLock && static_cast<struct flock *>(argument)->l_type != F_UNLCK &&
        findPath(file, path) && meet('l') == Fate::Fails)
        return -1;
    return static_cast<int>(syscall(SYS_fcntl, file, command, argument));
}

int sync(int file, long call) {
    Path path;
    if (!findPath(file, path))
        return static_cast<int>(syscall(call, file));
    if (meet('s') == Fate::Fails)
        return -1;
    const int result = static_cast<int>(syscall(call, file));
    put('s', path.data(), file);
    return result;
}

int resize(int file, off_t size) {
    Path path;
    const bool isMet = findPath(file, path);
    if (isMet && meet('t') == Fate::Fails)
        return -1;
    const int result = static_cast<int>(syscall(SYS_ftruncate, file, size));
    if (isMet && result == 0)
        put('t', path.data(), file, size);
    return result;
}

int renamePath(const char *from, const char *to, unsigned flags) {
    const bool isMet = isOurs(from) || isOurs(to);
    if (isMet && meet('r') == Fate::Fails)
        return -1;
    const int result =
        static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, flags));
    if (isMet && result == 0)
        put('r', from, -1, 0, to);
    return result;
}

int removePath(int folder, const char *path, int flags) {
    const bool isMet = isOurs(path);
    if (isMet && meet('u') == Fate::Fails)
        return -1;
    const int result = static_cast<int>(syscall(SYS_unlinkat, folder, path, flags));
    if (isMet && result == 0)
        put('u', path);
    return result;
}

int makeNode(const char *path, mode_t mode, dev_t device) {
    const bool isFolder = S_ISDIR(mode);
    const bool isMet = isOurs(path) && !S_ISFIFO(mode);
    if (isMet && meet(isFolder ? 'm' : 'o') == Fate::Fails)
        return -1;
    const auto result = static_cast<int>(isFolder ? syscall(SYS_mkdir, path, mode & 07777U)
                                                  : syscall(SYS_mknod, path, mode, device));
    if (isMet && result == 0)
        put(isFolder ? 'm' : 'c', path);
    return result;
}

} // namespace

// NOLINTBEGIN: these are the functions of the C library, as it has them.
extern "C" {

ssize_t write(int file, const void *data, size_t size) { return writeAt(file, data, size, -1); }
ssize_t pwrite(int file, const void *data, size_t size, off_t at) {
    return writeAt(file, data, size, at);
}
ssize_t pwrite64(int file, const void *data, size_t size, off64_t at) {
    return writeAt(file, data, size, at);
}

#define TORTURE_OPEN(name, folder, ...)                                                            \
    int name(__VA_ARGS__ const char *path, int flags, ...) {                                       \
        va_list rest;                                                                              \
        va_start(rest, flags);                                                                     \
        const mode_t mode = va_arg(rest, mode_t);                                                  \
        va_end(rest);                                                                              \
        return openAt(folder, path, flags, mode);                                                  \
    }
#define TORTURE_COMMA ,
TORTURE_OPEN(open, AT_FDCWD)
TORTURE_OPEN(open64, AT_FDCWD)
TORTURE_OPEN(openat, folder, int folder TORTURE_COMMA)
TORTURE_OPEN(openat64, folder, int folder TORTURE_COMMA)

#define TORTURE_FCNTL(name)                                                                        \
    int name(int file, int command, ...) {                                                         \
        va_list rest;                                                                              \
        va_start(rest, command);                                                                   \
        void *argument = va_arg(rest, void *);                                                     \
        va_end(rest);                                                                              \
        return control(file, command, argument);                                                   \
    }
TORTURE_FCNTL(fcntl)
TORTURE_FCNTL(fcntl64)

int flock(int file, int operation) {
    Path path;
    if ((operation & LOCK_UN) == 0 && findPath(file, path) && meet('l') == Fate::Fails)
        return -1;
    return static_cast<int>(syscall(SYS_flock, file, operation));
}
int fsync(int file) { return sync(file, SYS_fsync); }
int fdatasync(int file) { return sync(file, SYS_fdatasync); }
int ftruncate(int file, off_t size) noexcept { return resize(file, size); }
int ftruncate64(int file, off64_t size) noexcept { return resize(file, size); }
int rename(const char *from, const char *to) noexcept { return renamePath(from, to, 0); }
int renameat(int, const char *from, int, const char *to) noexcept {
    return renamePath(from, to, 0);
}
int renameat2(int, const char *from, int, const char *to, unsigned flags) noexcept {
    return renamePath(from, to, flags);
}
int unlink(const char *path) noexcept { return removePath(AT_FDCWD, path, 0); }
int unlinkat(int folder, const char *path, int flags) noexcept {
    return removePath(folder, path, flags);
}
int rmdir(const char *path) noexcept { return removePath(AT_FDCWD, path, AT_REMOVEDIR); }
int mkdir(const char *path, mode_t mode) noexcept { return makeNode(path, S_IFDIR | mode, 0); }
int mknod(const char *path, mode_t mode, dev_t device) noexcept {
    return makeNode(path, mode, device);
}

int clock_gettime(clockid_t clock, timespec *time) noexcept {
    const long result = syscall(SYS_clock_gettime, clock, time);
    if (clock == CLOCK_REALTIME && orders().ahead)
        time->tv_sec += *orders().ahead;
    return static_cast<int>(result);
}
int gettimeofday(timeval *time, void *) noexcept {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / 1000};
    return 0;
}
time_t time(time_t *out) noexcept {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    if (out)
        *out = now.tv_sec;
    return now.tv_sec;
}
}
// NOLINTEND
