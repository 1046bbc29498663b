#include "bench/screen_driver.h"

#include "ui/category_list_screen.h"
#include "ui/kit/dialog.h"
#include "ui/kit/list_view.h"

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QPixmap>
#include <QScreen>
#include <QTimer>
#include <QWheelEvent>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <utility>

namespace tidebrook {

using namespace std::chrono_literals;

namespace {

constexpr auto patience = 60s;
constexpr auto quiet = 20ms; // several times what a window puts its painting off
constexpr int wheelNotch = 120;

// Of this thread, in seconds.
double cpuTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace

ScreenDriver::ScreenDriver(const QString &home, const QSize &screen) : device_(DeviceRoot(home)) {
    require(device_.open() == 0, QStringLiteral("the device opens"));
    stack_.resize(screen);
    state_ = std::make_unique<AppState>(device_, stack_);
    QCoreApplication::instance()->installEventFilter(this);
}

ScreenDriver::~ScreenDriver() {
    state_.reset();
    device_.close();
}

void ScreenDriver::run(const std::function<void()> &user) {
    const auto work = [&] {
        awaitPainted({QStringLiteral("the first list is painted"), [this] { stack_.show(); },
                      [this] { return list().rowCount() > 0; }});
        require(list().hasFocus(), QStringLiteral("the list has the focus"));
        user();
        stack_.close();
    };
    QMetaObject::invokeMethod(this, work, Qt::QueuedConnection);
    OpenCategoryList(*state_);
}

double ScreenDriver::measure(const Step &step) {
    const QImage before = shown();
    const double begin = cpuTime();
    awaitPainted(step);
    const double cpu = cpuTime() - begin;
    QWidget &area = *list().viewport(); // beside which a scroll bar may have come
    const QImage after = shown().copy(area.geometry());
    require(after != before.copy(area.geometry()), step.name + u": another picture");
    require(after == area.grab().toImage().convertToFormat(after.format()),
            step.name + u": a picture of the rows");
    return cpu;
}

void ScreenDriver::require(bool isSo, const QString &what) const {
    if (isSo)
        return;
    std::fprintf(stderr, "bench_screens: not so: %s\n", what.toLocal8Bit().constData());
    std::_Exit(1);
}

void ScreenDriver::awaitPainted(const Step &step) {
    QEventLoop loop;
    bool isPainted = false;
    painted_ = [&] {
        isPainted = isPainted || step.isThere();
        if (isPainted)
            loop.quit();
    };
    QTimer::singleShot(patience, &loop, [&] { require(false, step.name); });
    step.begin();
    if (!isPainted)
        loop.exec();
    painted_ = nullptr;
    settle();
}

// Until nothing more is painted.
void ScreenDriver::settle() {
    int before = 0;
    do {
        before = paints_;
        QEventLoop loop;
        QTimer::singleShot(quiet, &loop, &QEventLoop::quit);
        loop.exec();
    } while (paints_ != before);
}

bool ScreenDriver::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Paint) {
        ++paints_;
        if (painted_ && watched == list().viewport())
            painted_();
    }
    return false;
}

// The list as it stands on the screen, not as it would be painted now.
QImage ScreenDriver::shown() const {
    const QRect place(list().mapTo(&stack_, QPoint()), list().size());
    return stack_.screen()
        ->grabWindow(stack_.winId(), place.x(), place.y(), place.width(), place.height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

ListView &ScreenDriver::list() const {
    auto *list = stack_.top() != nullptr ? stack_.top()->findChild<ListView *>() : nullptr;
    require(list != nullptr, QStringLiteral("there is a list"));
    return *list;
}

void ScreenDriver::post(int command) {
    auto *dialog = qobject_cast<Dialog *>(stack_.top());
    require(dialog != nullptr, QStringLiteral("there is a screen for the command"));
    dialog->post(command);
}

void ScreenDriver::press(int key) {
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier);
        QApplication::sendEvent(stack_.focusWidget(), &event);
    }
}

void ScreenDriver::turnWheel() {
    QWidget *area = list().viewport();
    const QPoint place = area->rect().center();
    QWheelEvent event(place, area->mapToGlobal(place), {}, QPoint(0, -wheelNotch), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(area, &event);
}

} // namespace tidebrook
