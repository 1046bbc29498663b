#pragma once

#include "app/app_state.h"
#include "kit/screen_stack.h"
#include "platform/desktop/single_instance.h"
#include "platform/sync/interrupt.h"
#include "platform/sync/tasks.h"
#include "reader/device_opening.h"

#include <QObject>

#include <memory>
#include <optional>

namespace tidebrook {

/// The running reader: what is brought up before the first screen, and taken down behind the last
/// one. There is one in a program.
class Application : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    Application(DeviceOpening &opening, SingleInstance &single);

    /// Brings everything up, shows the screens until the user leaves them, and takes everything
    /// down. False when the window was closed before a screen was seen.
    bool InitInstance();

private:
    void watchOthers();
    void comeForward();
    void showWindow();
    void showWantedSettings();
    int awaitDevice();
    void activateDownloader();
    void runScreens(int messageId);
    void closeDown();

    DeviceOpening &opening_;
    SingleInstance &single_;
    ScreenStack stack_;
    Interrupt stop_; // by the system, which asks the program to end
    const TerminationSignals signals_{stop_};
    std::unique_ptr<Device> device_; // ends after all who use it
    QByteArray windowPlace_;
    std::optional<AppState> state_;
    Threads activation_;
};

} // namespace tidebrook
