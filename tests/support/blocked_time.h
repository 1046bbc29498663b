#pragma once

#include "platform/descriptor.h"

#include <QObject>

#include <chrono>
#include <optional>

namespace tidebrook {

/// Tells for how long the application's thread has at most been blocked within one turn of its
/// event loops: asleep for storage, a lock or another process while events could not be taken. Its
/// waiting for events is no part of that, nor is what it computes, nor its waiting for a processor
/// on a busy machine. To be made and used in that thread, beside the application object.
///
/// A turn lasts from the loop's waking up until it next looks for events. A nested loop ends the
/// turn that it is begun in; what follows behind it is a turn again. The end of the outermost loop
/// is not to be seen: what the thread does between two of them counts with the last turn, unless
/// `beginAnew` is called behind it. Where another thread ends a nested loop and no event comes
/// with that, what follows is only seen from the next event on.
class BlockedTime : public QObject {
public:
    BlockedTime();

    /// Since this was made or begun anew, with the turn that is under way.
    std::chrono::nanoseconds longest();

    /// Forgets what was, and the turn that is under way.
    void beginAnew();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void begin();
    void end();
    std::chrono::nanoseconds asleep() const;

    const Descriptor scheduling_; // what the system tells of the thread's waits for a processor
    bool isLooking_ = false;      // for events
    std::optional<std::chrono::nanoseconds> begun_; // what `asleep` was then; unset between turns
    std::chrono::nanoseconds longest_{0};
};

} // namespace tidebrook
