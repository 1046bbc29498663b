#include "bench/service_cases.h"

#include "bench/background_process.h"
#include "bench/call_trace.h"
#include "bench/cases.h"
#include "bench/process_figures.h"
#include "platform/base/clock.h"
#include "platform/sync/named_event.h"
#include "store/settings_store.h"
#include "update/auto_schedule.h"
#include "update/channel_file.h"
#include "update/download_request.h"
#include "update/request_file.h"

#include <QDir>
#include <QSaveFile>

#include <algorithm>
#include <chrono>
#include <thread>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int feedItems = 30;
constexpr int usualFeeds = 50;
constexpr int roundFeeds = 200;
constexpr int requestCount = 20;
constexpr std::chrono::seconds answerTimeout = 30s;
constexpr std::chrono::seconds watch = 130s;

constexpr double memoryTarget = 1.3;
constexpr double latencyTarget = 20; // ms
constexpr double wakeUpTarget = 3;   // one a minute, in the time of the watch
constexpr double roundCpuTarget = 1.0 / 3;
constexpr double roundBytesTarget = 1.0 / 20;

QString channelName(int number) { return QStringLiteral("Automatic feed %1").arg(number); }

void writeRequest(const DeviceRoot &device, const RefreshJob &job) {
    QSaveFile file(requestFilePath(device));
    const QByteArray bytes = encodeChannelFile(channelLine(job));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw MeasurementError(file.fileName() + u": " + file.errorString());
}

void pauseFor(std::chrono::seconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(1s);
        throwIfInterrupted();
    }
}

} // namespace

/// The service of a device, which hears requests once this is there.
class ServiceCases::Service {
public:
    explicit Service(const QString &home)
        : device_(home), answers_(device_),
          process_(Runner::pathOf(QStringLiteral("feedlarkd")),
                   {QStringLiteral("--foreground"), QStringLiteral("--home"), home},
                   QProcess::StandardError) {
        process_.awaitLine("serves");
    }

    pid_t pid() const { return process_.pid(); }

    void awaitRound(int channels) {
        process_.awaitLine("automatic update: " + QByteArray::number(channels) + " channels");
    }

    /// Has a feed updated; when that was asked for.
    std::chrono::steady_clock::time_point request(const Feed &feed) {
        writeRequest(device_, {feed.url, feed.channel, benchCategory.toString()});
        answers_.expect();
        NamedEvent event(device_, requestEvent, NamedEvent::Reset::Manual);
        const auto start = std::chrono::steady_clock::now();
        if (!event.set() || answers_.wait(answerTimeout) != DownloadAnswer::Done)
            throw MeasurementError(QStringLiteral("a request was not answered"));
        return start;
    }

private:
    const DeviceRoot device_;
    DownloadAnswers answers_;
    BackgroundProcess process_;
};

ServiceCases::ServiceCases(const Options &options, const QString &folder, const Runner &runner,
                           Report &report)
    : options_(options), folder_(folder), runner_(runner), report_(report) {
    server_.setValidators(true);
    qputenv("TIDEBROOK_PAUSES", "0"); // for the programs that are run
}

void ServiceCases::run() {
    measureMemory();
    if (options_.idle)
        countWakeUps();
    measureLatency();
    measureRounds();
}

// --- the memory of a service that sleeps ---

void ServiceCases::measureMemory() {
    report_.section(QStringLiteral("The service asleep, with 50 channels, beside an empty program "
                                   "with its libraries"),
                    QStringLiteral("feedlarkd"), QStringLiteral("empty"));
    const QString idle = makeDevice(QStringLiteral("idle"), usualFeeds, false);
    const QString due = makeDevice(QStringLiteral("due"), usualFeeds, true);
    measureMemory(QStringLiteral("started"), idle, [](Service &) {});
    measureMemory(QStringLiteral("after a round"), due,
                  [](Service &service) { service.awaitRound(usualFeeds); });
    measureMemory(QStringLiteral("after a request"), idle,
                  [this](Service &service) { service.request(feeds(1).first()); });
}

void ServiceCases::measureMemory(const QString &name, const QString &store,
                                 const std::function<void(Service &)> &preparation) {
    std::vector<Memory> ours;
    std::vector<Memory> theirs;
    for (int run = 0; run < options_.runs; ++run) {
        onCopy(store, [&](const QString &home) {
            Service service(home);
            BackgroundProcess empty(Runner::pathOf(QStringLiteral("bench_idle")), {},
                                    QProcess::StandardOutput);
            empty.awaitLine("ready");
            preparation(service);
            awaitIdle(service.pid());
            if (librariesOf(service.pid()) != librariesOf(empty.pid()))
                throw MeasurementError(QStringLiteral("the empty program has other libraries"));
            const auto [ofService, ofEmpty] = memoryOf(service.pid(), empty.pid());
            ours.push_back(ofService);
            theirs.push_back(ofEmpty);
        });
    }
    const auto row = [&](const QString &what, double Memory::*field, std::optional<double> target) {
        report_.row(
            {name + u": " + what, medianOf(ours, field), medianOf(theirs, field), 0, target});
    };
    // Other programs with the same libraries share the Pss, but nothing else.
    row(QStringLiteral("Pss, KiB"), &Memory::proportional, std::nullopt);
    row(QStringLiteral("as if alone, KiB"), &Memory::alone, memoryTarget);
    row(QStringLiteral("Rss, KiB"), &Memory::resident, std::nullopt);
    row(QStringLiteral("anonymous, KiB"), &Memory::anonymous, std::nullopt);
}

// --- how often it wakes up for nothing ---

// Being traced wakes a process up, so it is another one that is traced.
void ServiceCases::countWakeUps() {
    report_.section(QStringLiteral("The service asleep for 130 s, with automatic updates that are "
                                   "not due"),
                    QStringLiteral("feedlarkd"), QStringLiteral("allowed"));
    Service service(makeDevice(QStringLiteral("watched"), usualFeeds, false));
    Service traced(makeDevice(QStringLiteral("traced"), usualFeeds, false));
    awaitIdle(traced.pid());
    CallTrace trace(traced.pid(), folder_);
    awaitIdle(service.pid());
    const qint64 before = sleepsOf(service.pid());
    pauseFor(watch);
    const qint64 wakeUps = sleepsOf(service.pid()) - before;
    report_.row({QStringLiteral("wake-ups"), static_cast<double>(wakeUps), wakeUpTarget, 0, 1.0});
    report_.note(u"  system calls meanwhile: " + trace.end());
}

// --- how soon a request is at the server ---

void ServiceCases::measureLatency() {
    report_.section(QStringLiteral("From a request's event to its first byte at the server, 20 "
                                   "requests each"),
                    QStringLiteral("feedlarkd"), QStringLiteral("allowed"));
    const QString home = makeDevice(QStringLiteral("asked"), 1, false);
    std::vector<double> cold;
    for (int i = 0; i < requestCount; ++i) {
        Service service(home);
        cold.push_back(latencyOf(service));
    }
    reportLatency(QStringLiteral("first of a service"), cold);
    Service service(home);
    latencyOf(service);
    std::vector<double> warm;
    warm.reserve(requestCount);
    for (int i = 0; i < requestCount; ++i)
        warm.push_back(latencyOf(service));
    reportLatency(QStringLiteral("later ones"), warm);
}

double ServiceCases::latencyOf(Service &service) {
    awaitIdle(service.pid());
    server_.clearRequests();
    const auto start = service.request(feeds(1).first());
    return Milliseconds(server_.requests().first().arrived - start).count();
}

void ServiceCases::reportLatency(const QString &name, const std::vector<double> &latencies) {
    report_.row({name + u": median, ms", medianOf(latencies), latencyTarget, 2, 1.0});
    report_.row({name + u": worst, ms", *std::max_element(latencies.begin(), latencies.end()),
                 latencyTarget, 2, 1.0});
}

// --- what a round costs when nothing has changed ---

void ServiceCases::measureRounds() {
    report_.section(QStringLiteral("An automatic round over 200 feeds of 30 items, none of which "
                                   "has changed"),
                    QStringLiteral("validators"), QStringLiteral("full bodies"));
    const QString store = makeDevice(QStringLiteral("round"), roundFeeds, true);
    const Sample first = runner_.run(QStringLiteral("bench_round"), {store});
    if (first.stored != roundFeeds * feedItems)
        throw MeasurementError(QStringLiteral("the first round stored %1").arg(first.stored));
    Rounds unchanged;
    Rounds full;
    for (int run = 0; run < options_.runs; ++run) {
        runRound(unchanged, store, Validators::Sent);
        runRound(full, store, Validators::Missing);
    }
    if (options_.counts) {
        countRound(unchanged, store, Validators::Sent);
        countRound(full, store, Validators::Missing);
    }
    reportRounds(unchanged, full);
}

void ServiceCases::runRound(Rounds &rounds, const QString &store, Validators validators) {
    server_.setValidators(validators == Validators::Sent);
    server_.clearCounts();
    onCopy(store, [&](const QString &home) {
        rounds.series.samples.push_back(runner_.run(QStringLiteral("bench_round"), {home}));
    });
    check(rounds.series.samples.back(), validators);
    rounds.bytes = static_cast<double>(server_.bytesSent() + server_.bytesReceived());
}

void ServiceCases::countRound(Rounds &rounds, const QString &store, Validators validators) {
    server_.setValidators(validators == Validators::Sent);
    const QString profile = validators == Validators::Sent ? QStringLiteral("round-unchanged")
                                                           : QStringLiteral("round-full");
    Sample sample;
    onCopy(store, [&](const QString &home) {
        rounds.series.instructions =
            runner_.count(QStringLiteral("bench_round"), {home}, profile, sample);
    });
    check(sample, validators);
}

void ServiceCases::check(const Sample &sample, Validators validators) const {
    const int unchanged = validators == Validators::Sent ? roundFeeds : 0;
    if (sample.items != unchanged || sample.stored != 0)
        throw MeasurementError(QStringLiteral("a round found %1 unchanged and stored %2 articles")
                                   .arg(sample.items)
                                   .arg(sample.stored));
}

void ServiceCases::reportRounds(const Rounds &unchanged, const Rounds &full) {
    const auto row = [&](const QString &name, double ours, double theirs,
                         std::optional<double> target) {
        report_.row({name, ours / roundFeeds, theirs / roundFeeds, 0, target});
    };
    if (options_.counts)
        row(QStringLiteral("instructions/feed"), unchanged.series.instructions,
            full.series.instructions, std::nullopt);
    constexpr double microseconds = 1e6;
    row(QStringLiteral("CPU/feed, us"), unchanged.series.median(&Sample::cpu) * microseconds,
        full.series.median(&Sample::cpu) * microseconds, roundCpuTarget);
    row(QStringLiteral("wall time/feed, us"), unchanged.series.median(&Sample::wall) * microseconds,
        full.series.median(&Sample::wall) * microseconds, std::nullopt);
    row(QStringLiteral("bytes/feed, both ways"), unchanged.bytes, full.bytes, roundBytesTarget);
}

// --- what they have in common ---

Feeds ServiceCases::feeds(int count) const {
    Feeds feeds;
    for (int i = 0; i < count; ++i)
        feeds.append({channelName(i),
                      server_.url(QStringLiteral("/generated/%1/%2").arg(feedItems).arg(i + 1))});
    return feeds;
}

// A device that has never had a round has one due.
QString ServiceCases::makeDevice(const QString &name, int feedCount, bool isRoundDue) const {
    QString home = QDir(folder_).filePath(QStringLiteral("service-") + name);
    makeStore(home, {.automaticFeeds = feeds(feedCount)});
    const DeviceRoot device(home);
    Registry registry(device);
    SettingsStore settings(registry);
    settings.setDword(programKey, u"UpdateMode", AutoUpdateSettings::Interval);
    settings.setDword(programKey, u"UpdateInterval", 6);
    if (!isRoundDue)
        AutoSchedule(registry).endRound(utcNow());
    return home;
}

} // namespace tidebrook
