#include "reader/application.h"

#include "app/messages.h"
#include "app/today_taps.h"
#include "kit/icon.h"
#include "kit/progress_line.h"
#include "platform/desktop/service.h"
#include "ui/category_list_screen.h"
#include "update/dialogs/settings_sheet.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSocketNotifier>
#include <QTimer>

namespace tidebrook {

namespace {

constexpr int iconSize = 128;
constexpr int windowIconDelay = 300; // ms
constexpr int unseenDelay = 40;      // ms until the window is shown without a screen in it

} // namespace

Application::Application(DeviceOpening &opening, SingleInstance &single)
    : opening_(opening), single_(single) {
    watchOthers();
}

void Application::watchOthers() {
    if (single_.requestDescriptor() >= 0) {
        auto *requests =
            new QSocketNotifier(single_.requestDescriptor(), QSocketNotifier::Read, this);
        connect(requests, &QSocketNotifier::activated, this, [this, requests] {
            if (stack_.isClosing() || stop_.isStopped())
                requests->setEnabled(false); // the process that asks is to run itself
            else
                comeForward();
        });
    }
    if (stop_.descriptor() >= 0) {
        auto *stops = new QSocketNotifier(stop_.descriptor(), QSocketNotifier::Read, this);
        connect(stops, &QSocketNotifier::activated, this, [this, stops] {
            stops->setEnabled(false);
            stack_.close();
        });
    }
}

void Application::comeForward() {
    if (const auto token = single_.takeRequest()) {
        qputenv("XDG_ACTIVATION_TOKEN", token->toUtf8());
        showWindow();
        stack_.bringForward();
        qunsetenv("XDG_ACTIVATION_TOKEN"); // else the browser that a link opens would inherit it
        if (state_) {                      // or else the first screen looks
            lookForTodayTap(*state_);
            showWantedSettings();
        }
    }
}

// The Today item's menu leads to them, too.
void Application::showWantedSettings() {
    if (takeWantedSettings(device_->root))
        QTimer::singleShot(0, &stack_, [this] { showSettings(*state_); });
}

bool Application::InitInstance() {
    const int messageId = awaitDevice();
    if (stack_.isClosing()) {
        device_->close();
        return false;
    }
    activateDownloader();
    if (stack_.isVisible() && !stack_.isMaximized()) // shown before its place was known
        stack_.restoreGeometry(windowPlace_);
    showWindow();
    runScreens(messageId);
    closeDown();
    return true;
}

// Usually the device is open by now, and the window appears with its first screen in it. Where
// opening takes longer, the window is shown and works meanwhile.
int Application::awaitDevice() {
    QTimer unseen;
    unseen.setSingleShot(true);
    unseen.callOnTimeout(this, &Application::showWindow);
    unseen.start(unseenDelay);
    stack_.progressLine().begin();
    DeviceOpening::Opened opened = opening_.take();
    stack_.progressLine().finish();
    device_ = std::move(opened.device);
    windowPlace_ = opened.windowPlace;
    return opened.messageId;
}

void Application::activateDownloader() {
    // Where this fails, an update fails by its time-out.
    activation_.start([root = opening_.root] { activateService(root); });
}

void Application::showWindow() {
    if (stack_.isVisible() || stack_.isClosing())
        return;
    const QSize room = stack_.screen()->availableSize();
    if (room.width() > stack_.width() && room.height() > stack_.height()) {
        stack_.restoreGeometry(windowPlace_);
        stack_.show();
    } else {
        stack_.showMaximized();
    }
}

void Application::runScreens(int messageId) {
    state_.emplace(*device_, stack_);
    // Drawing the icon takes as long as drawing the first screen, which comes first.
    QTimer::singleShot(windowIconDelay, &stack_, [this] {
        stack_.setWindowIcon(icon("tidebrook", QSize(iconSize, iconSize), stack_.palette()));
    });
    if (messageId != 0)
        QTimer::singleShot(0, &stack_, [this, messageId] { ShowError(*state_, messageId); });
    showWantedSettings();
    OpenCategoryList(*state_);
}

// The window closes first; then changes of data are waited for; then the database closes.
void Application::closeDown() {
    stack_.close();
    state_->finish();
    storeWindowPlace(*device_, stack_.saveGeometry());
    activation_.join();
    device_->close();
    state_.reset();
    device_.reset();
}

} // namespace tidebrook

#include "moc_application.cpp"
