#include "today/reader_start.h"

#include "platform/desktop/own_program.h"
#include "platform/desktop/own_unit.h"
#include "today/today_state.h"
#include "update/today_tap.h"

#include <QProcess>

namespace tidebrook {

namespace {

constexpr std::chrono::seconds offerTime(10);

bool startReader(const DeviceRoot &device) {
    const QString program = ownProgram(QStringLiteral("tidebrook"));
    // The browser that opens a link must outlive the reader.
    const QStringList command =
        outsideOwnUnit({program}, {QStringLiteral("--property=Type=exec"),
                                   QStringLiteral("--property=ExitType=cgroup"),
                                   QStringLiteral("--setenv=TIDEBROOK_HOME"),
                                   QStringLiteral("--setenv=XDG_ACTIVATION_TOKEN")});
    QProcess reader;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TIDEBROOK_HOME"), device.path());
    reader.setProcessEnvironment(environment);
    reader.setProgram(command.first());
    reader.setArguments(command.mid(1));
    if (program.isEmpty() || command.first() == program)
        return !program.isEmpty() && reader.startDetached();
    // The service manager starts it, and says whether it could.
    reader.start();
    return reader.waitForFinished() && reader.exitCode() == 0;
}

} // namespace

ReaderStart::ReaderStart(const DeviceRoot &device) : device_(device) {
    end_.setSingleShot(true);
    end_.callOnTimeout(this, &ReaderStart::withdraw);
}

ReaderStart::~ReaderStart() { withdraw(); }

void ReaderStart::open() {
    start([](TodayOffer &, const Headline &) { return true; }, {});
}

void ReaderStart::open(const Headline &headline) {
    start([](TodayOffer &offer,
             const Headline &tapped) { return offer.offerTap(tapped, ownTodayKey()); },
          headline);
}

void ReaderStart::openSettings() {
    start([](TodayOffer &offer, const Headline &) { return offer.offerSettings(); }, {});
}

// Without the hand-over the reader opens all the same. An offer before stays open until this one
// is, so that nothing is lost that a reader has still to take.
void ReaderStart::start(Offering offering, const Headline &headline) {
    const auto offer = std::make_shared<TodayOffer>(device_);
    offer_ = offer;
    end_.start(offerTime);
    tasks_.ask(
        this,
        [device = device_, offer, offering, headline] {
            offering(*offer, headline);
            return startReader(device);
        },
        [this](bool isStarted) {
            if (isStarted)
                return;
            withdraw();
            Q_EMIT failed();
        });
}

void ReaderStart::withdraw() {
    if (offer_)
        offer_->withdraw();
    offer_.reset();
}

} // namespace tidebrook

#include "moc_reader_start.cpp"
