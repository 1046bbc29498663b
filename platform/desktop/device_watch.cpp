#include "platform/desktop/device_watch.h"

#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>

#include <sys/inotify.h>
#include <unistd.h>

#include <array>

namespace tidebrook {

namespace {

constexpr quint32 itself = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr quint32 entries = IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;

// Reads all that has come; whether any of it is more than a write to a watched file.
bool takeEvents(int descriptor) {
    bool isMore = false;
    alignas(inotify_event) std::array<char, 4096> events;
    ssize_t size = 0;
    while ((size = read(descriptor, events.data(), events.size())) > 0) {
        for (ssize_t at = 0; at < size;) {
            const auto *event = reinterpret_cast<const inotify_event *>(events.data() + at);
            isMore = isMore || (event->mask & IN_MODIFY) == 0;
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
    return isMore;
}

} // namespace

// Not by QFileSystemWatcher: it does not notice that a watched folder is renamed, and it wakes the
// program for every file that is made in one.
DeviceWatch::DeviceWatch(const DeviceRoot &device, QObject *parent)
    : QObject(parent), device_(device), inotify_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      identity_(identitiesOf({device.path()})) {
    if (!inotify_.isOpen())
        return;
    auto *events = new QSocketNotifier(inotify_.number(), QSocketNotifier::Read, this);
    connect(events, &QSocketNotifier::activated, this, &DeviceWatch::take);
}

void DeviceWatch::setScope(Scope scope) {
    scope_ = scope;
    if (watch())
        Q_EMIT moved();
}

void DeviceWatch::take() {
    if (!takeEvents(inotify_.number())) {
        Q_EMIT changed();
        return;
    }
    if (watch()) // also because a file that was replaced is watched no more
        Q_EMIT moved();
    else if (scope_ == Scope::Content)
        Q_EMIT changed();
}

bool DeviceWatch::watch() {
    for (const int watch : std::exchange(watches_, {}))
        inotify_rm_watch(inotify_.number(), watch);
    takeEvents(inotify_.number()); // of the removal
    watchPlace();
    if (scope_ == Scope::Content) {
        add(device_.filePath(u"RSSVault.sdf") + u"-wal", IN_MODIFY);
        add(device_.registryPath() + u"-wal", IN_MODIFY);
    }
    // Looked at last: a later change is an event of the watches.
    const FileIdentities before = std::exchange(identity_, identitiesOf({device_.path()}));
    return identity_ != before;
}

// Where there is no device, the nearest folder in which its path can come into being.
void DeviceWatch::watchPlace() {
    QString path = device_.path();
    if (QFileInfo(path).isDir())
        return add(path, scope_ == Scope::Content ? itself | entries : itself);
    while (!QFileInfo(path).isDir() && path != u"/")
        path = QFileInfo(path).absolutePath();
    add(path, itself | entries);
}

void DeviceWatch::add(const QString &path, quint32 events) {
    const int watch =
        inotify_add_watch(inotify_.number(), QFile::encodeName(path).constData(), events);
    if (watch >= 0)
        watches_.insert(watch);
}

} // namespace tidebrook

#include "moc_device_watch.cpp"
