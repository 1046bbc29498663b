#include "platform/process_lock.h"
#include "platform/service.h"

#include <QFile>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

// Plays both sides of an activation: called with `--home ROOT` it is a service that only runs,
// and called with a ROOT it activates the service and ends with how that ended.

namespace {

using namespace tidebrook;

[[noreturn]] void serve(const DeviceRoot &device, int ready) {
    setsid();
    const ProcessLock lock(serviceLockPath(device));
    if (lock.isHeld() && write(ready, "!", 1) == 1) {
        close(ready);
        alarm(60);
        pause();
    }
    _exit(EXIT_FAILURE);
}

int launch(const DeviceRoot &device) {
    int ends[2];
    if (pipe(ends) != 0)
        return EXIT_FAILURE;
    if (fork() == 0) {
        close(ends[0]);
        serve(device, ends[1]);
    }
    close(ends[1]);
    char ready = 0;
    if (read(ends[0], &ready, 1) == 1)
        return EXIT_SUCCESS;
    std::fputs("the device is locked away\n", stderr);
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char **argv) {
    const DeviceRoot device(QFile::decodeName(argv[argc - 1]));
    if (argc == 3 && QByteArrayView(argv[1]) == "--home")
        return launch(device);
    QString error;
    const Activation activation = activateService(device, &error);
    std::fputs(error.toLocal8Bit().constData(), stdout);
    return static_cast<int>(activation);
}
