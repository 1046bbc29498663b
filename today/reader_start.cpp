#include "today/reader_start.h"

#include "platform/desktop/own_program.h"
#include "today/today_state.h"
#include "update/today_tap.h"

#include <QProcess>

namespace tidebrook {

namespace {

constexpr std::chrono::seconds offerTime(10);

bool startReader(const DeviceRoot &device) {
    const QString program = ownProgram(QStringLiteral("tidebrook"));
    QProcess reader;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TIDEBROOK_HOME"), device.path());
    reader.setProcessEnvironment(environment);
    reader.setProgram(program);
    return !program.isEmpty() && reader.startDetached();
}

} // namespace

ReaderStart::ReaderStart(const DeviceRoot &device) : device_(device) {
    end_.setSingleShot(true);
    end_.callOnTimeout(this, [this] { offer_.reset(); });
}

ReaderStart::~ReaderStart() = default;

void ReaderStart::open() { start(nullptr); }

// Without the hand-over the reader opens all the same.
void ReaderStart::open(const Headline &headline) {
    auto tap = std::make_shared<OfferedTap>(device_);
    offer_ = tap;
    tasks_.ask(
        this, [tap, headline] { return tap->offer(headline, ownTodayKey()); },
        [this, tap](bool) { start(tap); });
}

void ReaderStart::openSettings() { start(std::make_shared<OfferedSettings>(device_)); }

// A process that holds the event open keeps it set until the reader has taken it.
void ReaderStart::start(std::shared_ptr<void> offer) {
    offer_ = std::move(offer);
    end_.start(offerTime);
    tasks_.ask(
        this, [device = device_] { return startReader(device); },
        [this](bool isStarted) {
            if (isStarted)
                return;
            offer_.reset();
            Q_EMIT failed();
        });
}

} // namespace tidebrook
