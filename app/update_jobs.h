#pragma once

#include "platform/sync/interrupt.h"
#include "platform/sync/tasks.h"
#include "subscriptions/device.h"
#include "update/update_run.h"

#include <QObject>
#include <QString>

#include <chrono>
#include <functional>

namespace tidebrook {

/// The updates that the user asks for and waits for, one at a time, each on a thread of its own.
/// While one runs, a key or a button that is pressed, or a finger put on any widget, is the input
/// that ends the wait for a channel. Used by the user-interface thread alone, on which the signals
/// arrive.
class UpdateJobs : public QObject {
    Q_OBJECT

public:
    /// The device's parts outlive it, and its store is there until this has finished.
    explicit UpdateJobs(Device &device);
    /// As `finish`.
    ~UpdateJobs() override;

    // As those of `UpdateRun`. False, and no signal is sent, when one runs already, this has
    // finished, or no thread can be started.
    bool startUpdateChannel(const QString &category, const QString &channel);
    bool startUpdateCategory(const QString &category);

    /// From the start until `done`.
    bool isUpdating() const { return isUpdating_; }

    /// How long each answer is waited for, of what is started from now on: 60 seconds unless it is
    /// set.
    void setAnswerTimeout(std::chrono::milliseconds timeout) { answerTimeout_ = timeout; }

    /// Stops what runs and waits for its end, of which `done` is the only signal. Nothing can be
    /// started any more.
    void finish();

Q_SIGNALS:
    /// An update was started, or is done. As many of the one as of the other.
    void begun();
    void done();

    /// As those of `UpdateObserver`.
    void stepped(int index, int count);
    void channelUpdated(const QString &category, const QString &channel);
    void channelCounted(const QString &category, const QString &channel, int unread, int total);

    /// Sent after `done`; the code is in the registry's "ERRORNO". The names are those of
    /// `UpdateObserver::failed`.
    void failed(const QString &category, const QString &channel);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    using Work = std::function<bool(UpdateRun &)>;

    bool start(const Work &work);
    bool run(const Work &work, std::chrono::milliseconds answerTimeout);
    void noteEnd();

    Device &device_;
    Interrupt interrupt_;
    std::chrono::milliseconds answerTimeout_ = usualAnswerTimeout;
    bool isUpdating_ = false;
    QString failedCategory_;
    QString failedChannel_;
    Tasks tasks_{Tasks::Serial};
};

} // namespace tidebrook
