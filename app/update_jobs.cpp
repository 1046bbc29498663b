#include "app/update_jobs.h"

#include <QCoreApplication>
#include <QEvent>

#include <system_error>
#include <utility>

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
    if (isUpdating_ || isFinished_)
        return false;
    try {
        thread_ = std::thread(&UpdateJobs::run, this, work, answerTimeout_);
    } catch (const std::system_error &) {
        return false;
    }
    isUpdating_ = true;
    QCoreApplication::instance()->installEventFilter(this);
    Q_EMIT begun();
    return true;
}

void UpdateJobs::run(const Work &work, std::chrono::milliseconds answerTimeout) {
    const UpdateObserver observer{
        .stepped =
            [this](int index, int count) {
                tell([this, index, count] { Q_EMIT stepped(index, count); });
            },
        .updated =
            [this](const QString &category, const QString &channel) {
                tell([this, category, channel] { Q_EMIT channelUpdated(category, channel); });
            },
        .counted =
            [this](const QString &category, const QString &channel, ReadFlagCounts counts) {
                tell([this, category, channel, counts] {
                    Q_EMIT channelCounted(category, channel, counts.unread, counts.total);
                });
            }};
    UpdateRun updateRun({device_.root, device_.registry, device_.store, interrupt_, answerTimeout},
                        observer);
    const bool hasFailed = !work(updateRun);
    tell([this, hasFailed] {
        end();
        if (hasFailed)
            Q_EMIT failed();
    });
}

// Of a run that was waited for by `finish` nothing is told any more.
void UpdateJobs::tell(std::function<void()> call) {
    mailbox_.post([this, call = std::move(call)] {
        if (!isFinished_)
            call();
    });
}

void UpdateJobs::end() {
    thread_.join();
    QCoreApplication::instance()->removeEventFilter(this);
    isUpdating_ = false;
    Q_EMIT done();
}

void UpdateJobs::finish() {
    isFinished_ = true;
    interrupt_.stop();
    if (isUpdating_)
        end();
}

bool UpdateJobs::eventFilter(QObject *watched, QEvent *event) {
    // A window gets the same press before its widgets do.
    if (watched->isWidgetType() && isInput(event->type()))
        interrupt_.noteInput();
    return false;
}

} // namespace tidebrook
