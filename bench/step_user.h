#pragma once

#include "bench/figures.h"
#include "kit/progress_line.h"
#include "screen_driver/session.h"

#include <chrono>
#include <semaphore>

namespace tidebrook {

/// Measures what the user of a session does, step by step: "wall", and the CPU of the "thread" that
/// shows the screens and of the whole "process". What does not happen as expected ends the program
/// with the exit status 1: the time that it took would mean nothing.
class StepUser : public QObject {
public:
    /// What begins a step, and by what its end is seen.
    struct Step {
        QString name;
        Hand begin;
        std::function<bool()> isThere; ///< asked whenever a list, page or menu is being painted
    };

    /// On the screens' thread, as is the end.
    explicit StepUser(Session &session);

    Figures now() const; ///< thread-safe
    Figures since(const Figures &begin) const;

    // On the user's thread.
    /// From the step's sending until its end is on the screen; what else it leads to goes on.
    Figures answer(const Step &step);
    /// The same, until nothing is at work or painted any more.
    Figures measure(const Step &step);
    /// Waits until nothing is at work, and nothing was painted for so long: by default several
    /// times what a window puts its painting off.
    void rest(std::chrono::milliseconds quiet = std::chrono::milliseconds(20));
    /// Waits until this is so and nothing is at work.
    void await(const QString &what, const std::function<bool()> &isThere);

    bool isAtWork() const { return state.stack.progressLine().isAtWork(); }
    static void require(bool isSo, const QString &what); ///< thread-safe

    AppState &state;
    User &user;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    clockid_t threadClock_{};

    Figures begin_; // of the step
    // Of the screens' thread, until a step's end is painted.
    std::function<bool()> isThere_;
    Figures answer_;
    std::binary_semaphore isPainted_{0};
    int paints_ = 0; // of anything
};

} // namespace tidebrook
