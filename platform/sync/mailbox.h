#pragma once

#include <QObject>

#include <functional>

namespace tidebrook {

/// Takes calls from any thread to its own, which makes them from its event loop, in the order in
/// which they were posted. What is waiting when the mailbox ends is forgotten.
///
/// It is a queued call of Qt, but for one thing: ThreadSanitizer sees that what a call finds was
/// there before it was posted.
class Mailbox : public QObject {
public:
    /// Thread-safe.
    void post(std::function<void()> call);

protected:
    bool event(QEvent *event) override;
};

} // namespace tidebrook
