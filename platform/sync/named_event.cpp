#include "platform/sync/named_event.h"

#include <QFile>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>

namespace tidebrook {

namespace {

int openFifo(const QString &path) {
    const QByteArray name = QFile::encodeName(path);
    if (mkfifo(name.constData(), 0600) != 0 && errno != EEXIST)
        return -1;
    // Open for both, it needs no partner, and there is always a reader for what is written.
    return open(name.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW);
}

bool isFifo(int descriptor) {
    struct stat status {};
    return descriptor >= 0 && fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

} // namespace

NamedEvent::NamedEvent(const DeviceRoot &device, QStringView name, Reset reset)
    : fifo_(openFifo(device.path() + u"/run/" + name + u".event")),
      isFifo_(tidebrook::isFifo(fifo_.number())), reset_(reset) {}

bool NamedEvent::set() {
    // A byte more than one is left by setters of the same moment only, so the FIFO is never full.
    return isFifo_ && (isSet() || write(fifo_.number(), "!", 1) == 1);
}

void NamedEvent::reset() { take(); }

bool NamedEvent::test() { return reset_ == Reset::Auto ? take() : isSet(); }

bool NamedEvent::isSet() const {
    int bytes = 0;
    return isFifo_ && ioctl(fifo_.number(), FIONREAD, &bytes) == 0 && bytes > 0;
}

bool NamedEvent::take() {
    // All bytes in one read: two setters of the same moment have set the event once.
    std::array<char, 4096> bytes;
    return isFifo_ && read(fifo_.number(), bytes.data(), bytes.size()) > 0;
}

} // namespace tidebrook
