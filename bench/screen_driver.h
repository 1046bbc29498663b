#pragma once

#include "app/base/app_state.h"
#include "ui/kit/screen_stack.h"

#include <QObject>
#include <QSize>
#include <QString>

#include <functional>
#include <memory>

class QImage;

namespace tidebrook {

class ListView;

/// The reader's screens over a device, and a user who works with them on their own thread, which
/// the CPU time is taken of. What does not happen as expected ends the program with the exit status
/// 1 and a line that tells it: the time that it took would mean nothing.
class ScreenDriver : public QObject {
public:
    /// A step that the user makes: what begins it, and by what its end is told.
    struct Step {
        QString name;
        std::function<void()> begin;
        std::function<bool()> isThere; ///< asked whenever the list is being painted
    };

    ScreenDriver(const QString &home, const QSize &screen);
    ~ScreenDriver() override;

    /// Opens the category list, has the user work once its rows are painted, and closes it.
    void run(const std::function<void()> &user);

    /// The CPU time in seconds from a step's beginning until all that it leads to is painted. The
    /// picture of the rows has then changed, and shows them as they are.
    double measure(const Step &step);

    /// Ends the program unless this is so.
    void require(bool isSo, const QString &what) const;

    AppState &state() { return *state_; }
    /// The list of the screen on top.
    ListView &list() const;

    // What begins steps.
    void post(int command);
    void press(int key);
    /// Turns the wheel over the list by one notch, downward.
    void turnWheel();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void awaitPainted(const Step &step);
    void settle();
    QImage shown() const;

    DeviceParts device_;
    ScreenStack stack_;
    std::unique_ptr<AppState> state_;
    std::function<void()> painted_; // what follows when the list is painted
    int paints_ = 0;                // of anything
};

} // namespace tidebrook
