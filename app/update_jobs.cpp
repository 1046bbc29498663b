#include "app/update_jobs.h"

#include <QCoreApplication>
#include <QEvent>

namespace tidebrook {

namespace {

bool isInput(QEvent::Type type) {
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: // the second press of two
    case QEvent::TouchBegin:
        return true;
    default:
        return false;
    }
}

} // namespace

UpdateJobs::UpdateJobs(Device &device) : device_(device) {}

UpdateJobs::~UpdateJobs() { finish(); }

bool UpdateJobs::startUpdateChannel(const QString &category, const QString &channel) {
    return start(
        [category, channel](UpdateRun &run) { return run.updateChannel(category, channel); });
}

bool UpdateJobs::startUpdateCategory(const QString &category) {
    return start([category](UpdateRun &run) { return run.updateCategory(category); });
}

bool UpdateJobs::start(const Work &work) {
    const auto doWork = [this, work, timeout = answerTimeout_] { return run(work, timeout); };
    const auto end = [this](bool isDone) {
        noteEnd();
        if (!isDone)
            Q_EMIT failed(failedCategory_, failedChannel_);
    };
    if (isUpdating_ || !tasks_.ask(this, doWork, end))
        return false;
    isUpdating_ = true;
    QCoreApplication::instance()->installEventFilter(this);
    Q_EMIT begun();
    return true;
}

bool UpdateJobs::run(const Work &work, std::chrono::milliseconds answerTimeout) {
    const auto later = [this](auto signal) {
        return [this, signal](auto... values) {
            tasks_.post([this, signal, values...] { Q_EMIT(this->*signal)(values...); });
        };
    };
    const auto keepFailure = [this](const QString &category, const QString &channel) {
        tasks_.post([this, category, channel] {
            failedCategory_ = category;
            failedChannel_ = channel;
        });
    };
    UpdateRun updateRun({device_.root, device_.registry, device_.store, interrupt_, answerTimeout},
                        {.stepped = later(&UpdateJobs::stepped),
                         .updated = later(&UpdateJobs::channelUpdated),
                         .counted = later(&UpdateJobs::channelCounted),
                         .failed = keepFailure});
    return work(updateRun);
}

void UpdateJobs::noteEnd() {
    QCoreApplication::instance()->removeEventFilter(this);
    isUpdating_ = false;
    Q_EMIT done();
}

void UpdateJobs::finish() {
    interrupt_.stop();
    tasks_.finish();
    if (isUpdating_)
        noteEnd();
}

bool UpdateJobs::eventFilter(QObject *watched, QEvent *event) {
    // A window gets the same press before its widgets do.
    if (watched->isWidgetType() && isInput(event->type()))
        interrupt_.wake();
    return false;
}

} // namespace tidebrook

#include "moc_update_jobs.cpp"
