#include "app/fill_jobs.h"

#include <QTimer>

#include <utility>

namespace tidebrook {

using namespace std::chrono_literals;

namespace {

constexpr auto jobPatience = 2000ms;
constexpr auto screenPatience = 1000ms;
constexpr auto retryPause = 100ms;

} // namespace

FillJobs::FillJobs(NamedMutex &dbMutex) : dbMutex_(dbMutex) {
    connect(&tasks_, &Tasks::begun, this, &FillJobs::begun);
    connect(&tasks_, &Tasks::done, this, &FillJobs::done);
}

FillJobs::~FillJobs() { finish(); }

bool FillJobs::launch(QObject *receiver, Fill fill) {
    if (isFinished_)
        return false;
    outdate(receiver);
    if (fillStop_ >= 1) {
        refuse(receiver, std::move(fill));
        return true;
    }
    // Without any mutex fills run all the same.
    if (dbMutex_.isOpen() && !count(-1, jobPatience))
        return false;
    const auto job = std::make_shared<Job>(Job{std::move(fill), receiver});
    if (!tasks_.ask(
            this, [this, job] { run(*job); }, [this, job] { end(job); })) {
        count(1, jobPatience);
        return false;
    }
    jobs_.push_back(job);
    if (refusedReceiver_ == receiver)
        refused_ = nullptr; // this is the fill that was refused
    return true;
}

void FillJobs::refuse(QObject *receiver, Fill fill) {
    refused_ = std::move(fill.again);
    refusedReceiver_ = receiver;
    offerAgain();
}

void FillJobs::outdate(const QObject *receiver) {
    for (const std::shared_ptr<Job> &job : jobs_)
        job->isOutdated = job->isOutdated || job->receiver == receiver;
}

void FillJobs::requestStop() { count(1, screenPatience); }

bool FillJobs::count(int change, std::chrono::milliseconds timeout) {
    if (!dbMutex_.lock(timeout))
        return false;
    fillStop_ += change;
    dbMutex_.unlock();
    return true;
}

void FillJobs::run(Job &job) {
    FillStop stop(fillStop_, isFinished_);
    job.fill.collect(stop);
    if (stop.isCounted())
        count(-1, jobPatience);
}

void FillJobs::end(const std::shared_ptr<Job> &job) {
    std::erase(jobs_, job);
    if (!job->isOutdated && !job->receiver.isNull())
        job->fill.show();
    offerAgain();
}

// No fill will see the stop for which one was refused. Balanced in its place, the stop no longer
// keeps the screen blank.
void FillJobs::offerAgain() {
    if (!refused_ || isFinished_ || !jobs_.empty())
        return;
    if (fillStop_ >= 1 && !count(-1, 0ms)) {
        QTimer::singleShot(retryPause, this, &FillJobs::offerAgain);
        return;
    }
    const auto again = std::exchange(refused_, nullptr);
    if (!refusedReceiver_.isNull())
        again();
}

void FillJobs::finish() {
    isFinished_ = true;
    tasks_.finish();
}

} // namespace tidebrook

#include "moc_fill_jobs.cpp"
