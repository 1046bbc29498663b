#include "platform/sync/interrupt.h"

#include <atomic>
#include <csignal>

namespace tidebrook {

namespace {

std::atomic<Interrupt *> terminated = nullptr;

void terminate(int) {
    if (Interrupt *interrupt = terminated)
        interrupt->stop();
}

} // namespace

void Interrupt::clear() {
    wakeUp_.clear();
    if (isStopped()) // what was taken may have been the stop's
        wakeUp_.raise();
}

void Interrupt::stop() {
    stop_.raise();
    wakeUp_.raise();
}

TerminationSignals::TerminationSignals(Interrupt &interrupt) {
    terminated = &interrupt;
    struct sigaction action {};
    action.sa_handler = terminate;
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaction(number, &action, nullptr);
}

TerminationSignals::~TerminationSignals() { terminated = nullptr; }

} // namespace tidebrook
