#include "bench/page_cache.h"

#include "platform/base/descriptor.h"

#include <QFile>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace tidebrook {

void dropCachedPages(const QSet<QString> &files) {
    sync(); // what is not yet on the disk stays in memory
    const Descriptor all(open("/proc/sys/vm/drop_caches", O_WRONLY | O_CLOEXEC));
    if (all.isOpen() && write(all.number(), "3", 1) == 1)
        return;
    for (const QString &path : files) {
        const Descriptor file(open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC));
        if (file.isOpen())
            posix_fadvise(file.number(), 0, 0, POSIX_FADV_DONTNEED);
    }
}

double childrenRead() {
    constexpr double blockKibibytes = 0.5;
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return static_cast<double>(usage.ru_inblock) * blockKibibytes;
}

} // namespace tidebrook
