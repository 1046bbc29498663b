#include "bench/screen_driver.h"

#include "bench/series.h"
#include "kit/dialog.h"
#include "kit/list_view.h"
#include "kit/progress_line.h"
#include "kit/touch_style.h"
#include "ui/category_list_screen.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPixmap>
#include <QScreen>
#include <QWheelEvent>

#include <pthread.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <utility>

namespace tidebrook {

using namespace std::chrono_literals;

namespace {

constexpr auto timeout = 60s;
constexpr auto quietOfSteps = 20ms; // several times what a window puts its painting off
constexpr int wheelNotch = 120;

double secondsOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// The window as it stands on the screen, not as it would be painted now.
QImage shown(const QWidget &window) {
    const QPixmap picture = window.screen()->grabWindow(window.winId());
    return picture.toImage().convertToFormat(QImage::Format_RGB32);
}

ScreenDriver::Cost between(const ScreenDriver::Cost &begin, const ScreenDriver::Cost &end) {
    return {end.wall - begin.wall, end.thread - begin.thread, end.process - begin.process};
}

} // namespace

ScreenDriver::ScreenDriver(const QString &home, const QSize &screen) : device_(DeviceRoot(home)) {
    require(device_.open(std::nullopt) == DeviceFault::None, QStringLiteral("the device opens"));
    pthread_getcpuclockid(pthread_self(), &threadClock_);
    stack_.resize(screen);
    stack_.show();
    state_ = std::make_unique<AppState>(device_, stack_);
    QCoreApplication::instance()->installEventFilter(this);
}

ScreenDriver::~ScreenDriver() {
    state_.reset();
    device_.close();
}

void ScreenDriver::run(const std::function<void()> &user) {
    std::thread thread([&] {
        rest(quietOfSteps);
        user();
        mailbox_.post([this] { stack_.close(); });
    });
    OpenCategoryList(*state_);
    thread.join();
}

ScreenDriver::Cost ScreenDriver::now() const {
    return {secondsOf(CLOCK_MONOTONIC), secondsOf(threadClock_),
            secondsOf(CLOCK_PROCESS_CPUTIME_ID)};
}

ScreenDriver::Cost ScreenDriver::since(const Cost &begin) const { return between(begin, now()); }

ScreenDriver::Cost ScreenDriver::answer(const Step &step) {
    const Cost begin = now();
    mailbox_.post([this, isThere = step.isThere] { isThere_ = isThere; });
    step.begin();
    require(isPainted_.try_acquire_for(timeout), step.name);
    return between(begin, painted_);
}

ScreenDriver::Cost ScreenDriver::measure(const Step &step) {
    QImage before;
    look([&] { before = shown(stack_); });
    const Cost begin = now();
    answer(step);
    rest(quietOfSteps);
    const Cost cost = since(begin);
    look([&] {
        const QImage after = shown(stack_);
        require(after != before, step.name + u": another picture");
        require(after == stack_.grab().toImage().convertToFormat(after.format()),
                step.name + u": a picture of the screen");
    });
    return cost;
}

void ScreenDriver::rest(std::chrono::milliseconds quiet) {
    int before = -1;
    const auto isStill = [&] {
        const bool isAtWork = stack_.top() == nullptr || stack_.progressLine().isAtWork();
        return std::exchange(before, paints_) == paints_ && !isAtWork;
    };
    for (bool isOver = false; !isOver; look([&] { isOver = isStill(); }))
        std::this_thread::sleep_for(quiet);
}

void ScreenDriver::look(const std::function<void()> &view) {
    std::binary_semaphore isDone(0);
    mailbox_.post([&] {
        view();
        isDone.release();
    });
    isDone.acquire();
}

void ScreenDriver::require(bool isSo, const QString &what) {
    if (isSo)
        return;
    std::fprintf(stderr, "bench: not so: %s\n", what.toLocal8Bit().constData());
    std::_Exit(1);
}

// It is on the screen once all is done that the event leads to that the painting is of.
bool ScreenDriver::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() != QEvent::Paint)
        return false;
    ++paints_;
    const bool isIn = qobject_cast<QAbstractScrollArea *>(watched->parent()) != nullptr;
    if ((isIn || watched->inherits("QMenu")) && isThere_ && isThere_()) {
        isThere_ = nullptr;
        mailbox_.post([this] {
            painted_ = now();
            isPainted_.release();
        });
    }
    return false;
}

ListView &ScreenDriver::list() {
    ListView *seen = nullptr;
    for (const QPointer<ListView> &list : state_->lists)
        seen = list && list->isVisible() ? list.data() : seen;
    require(seen != nullptr, QStringLiteral("there is a list"));
    return *seen;
}

void ScreenDriver::press(int key) {
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        mailbox_.post([this, type, key] {
            QWidget *popup = QApplication::activePopupWidget();
            QKeyEvent event(type, key, Qt::NoModifier);
            QApplication::sendEvent(popup != nullptr ? popup : stack_.focusWidget(), &event);
        });
    }
}

void ScreenDriver::tapRow(int row) {
    mailbox_.post([this, row] {
        QWidget *area = list().viewport();
        const QPoint place = list().visualRect(list().model()->index(row, 0)).center();
        for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const bool isPress = type == QEvent::MouseButtonPress;
            QMouseEvent event(type, place, area->mapToGlobal(place), Qt::LeftButton,
                              isPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            QApplication::sendEvent(area, &event);
        }
    });
}

void ScreenDriver::turnWheel(int direction) {
    mailbox_.post([this, direction] { turnWheelOver(list(), direction); });
}

void ScreenDriver::post(int command) {
    mailbox_.post([this, command] {
        auto *dialog = qobject_cast<Dialog *>(stack_.top());
        require(dialog != nullptr, QStringLiteral("there is a screen for the command"));
        dialog->post(command);
    });
}

void turnWheelOver(ListView &list, int direction) {
    QWidget *area = list.viewport();
    const QPoint place = area->rect().center();
    QWheelEvent event(place, area->mapToGlobal(place), {}, QPoint(0, -wheelNotch * direction),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(area, &event);
}

int runDriven(int &argc, char **argv,
              const std::function<void(ScreenDriver &, const QString &)> &user) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    installTouchStyle();
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QCoreApplication::arguments();
    ScreenDriver driver(arguments.value(1), {480, 640});
    driver.run([&] { user(driver, arguments.value(2)); });
    return 0;
}

void printCosts(const char *name, const ScreenDriver::Costs &costs) {
    using Cost = ScreenDriver::Cost;
    std::printf("%s count=%zu", name, costs.size());
    const auto print = [&costs](const char *figure, double Cost::*field) {
        const auto isLess = [field](const Cost &a, const Cost &b) { return a.*field < b.*field; };
        const auto worst = std::max_element(costs.begin(), costs.end(), isLess);
        std::printf(" %s-median=%.6f %s-worst=%.6f", figure, medianOf(costs, field), figure,
                    (*worst).*field);
    };
    print("wall", &Cost::wall);
    print("thread", &Cost::thread);
    print("process", &Cost::process);
    std::printf("\n");
    std::fflush(stdout);
}

} // namespace tidebrook
