#include "platform/sync/interrupt.h"

#include <atomic>

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
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        sigaction(numbers[i], nullptr, &before_[i]);
        if (before_[i].sa_handler != SIG_IGN)
            sigaction(numbers[i], &action, nullptr);
    }
}

TerminationSignals::~TerminationSignals() {
    for (std::size_t i = 0; i < numbers.size(); ++i)
        sigaction(numbers[i], &before_[i], nullptr);
    terminated = nullptr;
}

} // namespace tidebrook
