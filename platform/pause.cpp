#include "platform/pause.h"

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

void Pause(int milliseconds) {
    const auto scaled = std::chrono::milliseconds(milliseconds) * scale().load() / 100;
    if (scaled.count() > 0)
        std::this_thread::sleep_for(scaled);
}

void setPauseScale(int percent) { scale() = percent; }

} // namespace tidebrook
