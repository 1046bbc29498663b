#pragma once

#include "app/app_state.h"
#include "kit/screen_stack.h"
#include "platform/sync/mailbox.h"

#include <QObject>
#include <QSize>
#include <QString>

#include <chrono>
#include <ctime>
#include <functional>
#include <memory>
#include <semaphore>
#include <vector>

namespace tidebrook {

class ListView;

/// The reader's screens over a device, and a user on a thread of its own, who goes through them
/// however deep the screens lie. What does not happen as expected ends the program with the exit
/// status 1 and a line that tells it: the time that it took would mean nothing.
class ScreenDriver : public QObject {
public:
    /// What a step costs, in seconds.
    struct Cost {
        double wall = 0;
        double thread = 0;  ///< CPU of the thread that shows the screens
        double process = 0; ///< CPU of all threads
    };
    using Costs = std::vector<Cost>;

    /// A step that the user makes: what begins it, and by what its end is told.
    struct Step {
        QString name;
        std::function<void()> begin;   ///< on the user's thread; the functions that act are for it
        std::function<bool()> isThere; ///< asked whenever a list, page or menu is being painted
    };

    ScreenDriver(const QString &home, const QSize &screen);
    ~ScreenDriver() override;

    /// Opens the category list, has the user work, and closes all that is open when he is done.
    void run(const std::function<void()> &user);

    // For any thread.
    Cost now() const;
    Cost since(const Cost &begin) const;

    // For the user's thread.
    /// From the step's sending until its end is on the screen; what else it leads to goes on.
    Cost answer(const Step &step);
    /// From the step's sending, at rest, until nothing is at work or painted any more. The screen
    /// has then another picture, and shows the widgets as they are.
    Cost measure(const Step &step);
    /// Waits until nothing is at work, and nothing was painted for so long.
    void rest(std::chrono::milliseconds quiet);
    /// Does this on the screens' thread, and waits for it.
    void look(const std::function<void()> &view);

    // They do it on the screens' thread, and do not wait for that.
    void press(int key);
    void tapRow(int row);
    /// By a notch: downward 1, upward -1.
    void turnWheel(int direction);
    void post(int command);

    /// Ends the program unless this is so. For any thread.
    static void require(bool isSo, const QString &what);

    // For the screens' thread, and for the user's while the screens rest.
    AppState &state() { return *state_; }
    /// The list that is to be seen.
    ListView &list();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Device device_;
    ScreenStack stack_;
    std::unique_ptr<AppState> state_;
    Mailbox mailbox_; // of the screens' thread
    clockid_t threadClock_{};

    // Of the screens' thread, but for what was painted by the time that it is told.
    std::function<bool()> isThere_;
    int paints_ = 0; // of anything
    Cost painted_;   // when it was
    std::binary_semaphore isPainted_{0};
};

/// Turns the wheel over a list by a notch, on the screens' thread: downward 1, upward -1.
void turnWheelOver(ListView &list, int direction);

/// The whole of a program that is called with a device's folder and one more argument: shows the
/// screens, 480 by 640 pixels of them and to nobody, and has a user work on that argument. The exit
/// status.
int runDriven(int &argc, char **argv,
              const std::function<void(ScreenDriver &, const QString &)> &user);

/// Prints the line that the driver of the benchmarks reads: the name, how many there are, and the
/// median and the worst of each figure.
void printCosts(const char *name, const ScreenDriver::Costs &costs);

} // namespace tidebrook
