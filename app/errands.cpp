#include "app/errands.h"

#include <system_error>

namespace tidebrook {

Errands::~Errands() { finish(); }

std::shared_ptr<StopSignal> Errands::start(QObject *receiver,
                                           std::function<void(const StopSignal &)> work,
                                           std::function<void()> then) {
    if (isFinished_)
        return nullptr;
    auto errand = std::make_shared<Errand>();
    errand->work = std::move(work);
    errand->receiver = receiver;
    errand->then = std::move(then);
    try {
        errand->thread = std::thread([this, errand] {
            errand->work(*errand->stop);
            errand->work = nullptr;
            mailbox_.post([this, errand] { end(errand); });
        });
    } catch (const std::system_error &) {
        return nullptr;
    }
    errands_.push_back(errand);
    Q_EMIT begun();
    return errand->stop;
}

void Errands::end(const std::shared_ptr<Errand> &errand) {
    if (std::erase(errands_, errand) == 0)
        return; // `finish` has waited for it
    errand->thread.join();
    Q_EMIT done();
    if (!errand->stop->isRaised() && !errand->receiver.isNull())
        errand->then();
}

void Errands::finish() {
    isFinished_ = true;
    for (const std::shared_ptr<Errand> &errand : errands_)
        errand->stop->raise();
    for (const std::shared_ptr<Errand> &errand : std::exchange(errands_, {})) {
        errand->thread.join();
        Q_EMIT done();
    }
}

} // namespace tidebrook
