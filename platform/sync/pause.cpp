#include "platform/sync/pause.h"

#include "platform/sync/stop_signal.h"

#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <thread>

namespace tidebrook {

namespace {

int scaleOfEnvironment() {
    bool isNumber = false;
    const int percent = qEnvironmentVariableIntValue("TIDEBROOK_PAUSES", &isNumber);
    return isNumber && percent >= 0 ? percent : 100;
}

std::atomic<int> &scale() {
    static std::atomic<int> percent = scaleOfEnvironment();
    return percent;
}

} // namespace

bool Pause(int milliseconds, const StopSignal *stop) {
    const std::chrono::milliseconds scaled(scaledPause(milliseconds));
    if (stop != nullptr)
        return !stop->wait(scaled);
    if (scaled.count() > 0)
        std::this_thread::sleep_for(scaled);
    return true;
}

int scaledPause(int milliseconds) { return milliseconds * scale().load() / 100; }

void setPauseScale(int percent) { scale() = percent; }

} // namespace tidebrook
