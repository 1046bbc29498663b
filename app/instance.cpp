#include "app/instance.h"

#include "app/base/messages.h"
#include "platform/service.h"
#include "res/strings.h"
#include "ui/category_list_screen.h"
#include "ui/kit/icon.h"
#include "ui/kit/progress_line.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QScreen>
#include <QSocketNotifier>
#include <QTimer>

#include <atomic>
#include <csignal>
#include <system_error>

namespace tidebrook {

namespace {

constexpr QSize deskWindow(480, 640);
constexpr int iconSize = 128;
constexpr int unseenPatience = 40; // ms until the window is shown without a screen in it

std::atomic<StopSignal *> signalled = nullptr;

void raiseStop(int) {
    if (StopSignal *stop = signalled)
        stop->raise();
}

void watchSignals(StopSignal &stop) {
    signalled = &stop;
    struct sigaction action {};
    action.sa_handler = raiseStop;
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaction(number, &action, nullptr);
}

} // namespace

Instance::Instance(const DeviceRoot &device, SingleInstance &single)
    : root_(device), single_(single) {
    stack_.setWindowTitle(resourceString(programNameString));
    stack_.setWindowIcon(icon("tidebrook", QSize(iconSize, iconSize), stack_.palette()));
    watchOthers();
}

Instance::~Instance() { signalled = nullptr; }

void Instance::watchOthers() {
    if (single_.requestDescriptor() >= 0) {
        auto *requests =
            new QSocketNotifier(single_.requestDescriptor(), QSocketNotifier::Read, this);
        connect(requests, &QSocketNotifier::activated, this, [this] {
            if (const auto token = single_.takeRequest()) {
                qputenv("XDG_ACTIVATION_TOKEN", token->toUtf8());
                stack_.bringForward();
            }
        });
    }
    watchSignals(stop_);
    if (stop_.descriptor() >= 0) {
        auto *stops = new QSocketNotifier(stop_.descriptor(), QSocketNotifier::Read, this);
        connect(stops, &QSocketNotifier::activated, this, [this, stops] {
            stops->setEnabled(false);
            stack_.close();
        });
    }
}

bool Instance::InitInstance() {
    const int messageId = openDevice();
    if (stack_.isClosing()) {
        device_->close();
        return false;
    }
    activateDownloader();
    showWindow();
    runScreens(messageId);
    closeDown();
    return true;
}

// Usually that takes a few milliseconds, and the window appears with its first screen in it. Where
// it takes longer, the window is there and alive meanwhile.
int Instance::openDevice() {
    WorkQueue opening;
    QEventLoop loop;
    int messageId = 0;
    stack_.progressLine().begin();
    QTimer::singleShot(unseenPatience, &loop, [this] { showWindow(); });
    const bool isBegun = opening.ask(
        &loop,
        [this] {
            device_.emplace(root_);
            return device_->open();
        },
        [&](int message) {
            messageId = message;
            loop.quit();
        });
    if (isBegun) {
        loop.exec();
    } else {
        device_.emplace(root_);
        messageId = device_->open();
    }
    stack_.progressLine().finish();
    return messageId;
}

void Instance::activateDownloader() {
    try {
        activation_ = std::thread([root = root_] { activateService(root); });
    } catch (const std::system_error &) {
        return; // updates will then find nobody, and say so
    }
}

void Instance::showWindow() {
    if (stack_.isVisible() || stack_.isClosing())
        return;
    const QSize room = stack_.screen()->availableSize();
    if (room.width() > deskWindow.width() && room.height() > deskWindow.height()) {
        stack_.resize(deskWindow);
        stack_.show();
    } else {
        stack_.showMaximized();
    }
}

void Instance::runScreens(int messageId) {
    state_.emplace(*device_, stack_);
    if (messageId != 0)
        QTimer::singleShot(0, &stack_, [this, messageId] { ShowError(*state_, messageId); });
    OpenCategoryList(*state_);
}

// The window goes first; what changes data is waited for; then the database closes.
void Instance::closeDown() {
    stack_.close();
    state_->fills.finish();
    state_->settings.finish();
    state_->changes.finish();
    if (activation_.joinable())
        activation_.join();
    device_->close();
    state_.reset();
    device_.reset();
}

} // namespace tidebrook
