// What a publisher has to bear whom a million devices read: a program's answer to the arithmetic in
// docs/downloader.md. Time is simulated; when a device asks, what it sends and when it tries again
// are decided by the product's own schedule and memory of a feed.

#include "bench/bench.h"
#include "update/auto_schedule.h"
#include "update/update_history.h"

#include <algorithm>
#include <random>

namespace tidebrook {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int readers = 1'000'000;
constexpr qint64 day = 24 * 3600;
constexpr quint32 morning = 6; // the hour that everyone has chosen
constexpr qint64 newsEvery = 3 * 3600;
constexpr double bodyBytes = 100e3; // of the packed document with its headers
constexpr double headerBytes = 300; // of an answer without a document
constexpr qint64 outageBegin = day + 6 * 3600;
constexpr qint64 outageEnd = day + 12 * 3600;

const QDateTime begin(QDate(2026, 6, 10), QTime(0, 0), Qt::UTC);
const QDateTime end = begin.addSecs(2 * day);

/// What devices do, and the publisher.
struct Habits {
    quint32 mode = AutoUpdateSettings::Daily;
    bool areSpread = true;
    bool areConditional = true;
    bool backOff = true;
    bool hasOutage = false;
};

/// What the publisher sees in the second day: the first one leaves the devices with the document.
struct Load {
    std::vector<int> requests = std::vector<int>(day);
    std::vector<double> bytes = std::vector<double>(day);

    void note(qint64 second, double size) {
        if (second < day)
            return;
        ++requests[static_cast<std::size_t>(second - day)];
        bytes[static_cast<std::size_t>(second - day)] += size;
    }

    Runs figures() const {
        const auto first = static_cast<std::ptrdiff_t>(outageBegin - day);
        const auto last = static_cast<std::ptrdiff_t>(outageEnd - day);
        return {{{"peak requests", *std::ranges::max_element(requests)},
                 {"peak bytes", *std::ranges::max_element(bytes)},
                 {"requests", std::reduce(requests.begin(), requests.end(), 0.0)},
                 {"outage requests",
                  std::reduce(requests.begin() + first, requests.begin() + last, 0.0)},
                 {"bytes", std::reduce(bytes.begin(), bytes.end())}}};
    }
};

HttpAnswer answerAt(qint64 second, const HttpValidators &sent, const Habits &habits) {
    HttpAnswer answer;
    answer.progress = HttpProgress::Complete;
    const bool isOut = habits.hasOutage && second >= outageBegin && second < outageEnd;
    answer.status = isOut ? 503 : 200;
    if (isOut)
        return answer;
    answer.validators.etag = QByteArray::number(second / newsEvery);
    answer.isUnchanged = sent.etag == answer.validators.etag;
    return answer;
}

/// What a device does from its last round before the second day on.
void live(const Habits &habits, const AutoUpdateSettings &settings, QDateTime last, Load &load) {
    const RefreshJob job{u"u"_s, u"n"_s, u"c"_s};
    UpdateState state;
    for (;;) {
        const QDateTime now = *nextRound(settings, last, last);
        if (now >= end)
            return;
        last = now;
        const QDateTime next = nextTry(state, settings.isDaily(), now);
        if (habits.backOff && next.isValid() && next > now)
            continue;
        const qint64 second = begin.secsTo(now);
        const HttpAnswer answer =
            answerAt(second, habits.areConditional ? state.validators : HttpValidators(), habits);
        const bool isDocument = answer.status == 200 && !answer.isUnchanged;
        load.note(second, isDocument ? bodyBytes : headerBytes);
        takeTurn(state, job, now, {answer.status == 200 ? 0U : 1009U, 0, {}, true}, answer);
    }
}

Runs simulate(const Habits &habits) {
    Load load;
    std::mt19937 random(2026); // of the moments in which devices were switched on
    AutoUpdateSettings settings{.mode = habits.mode, .interval = 1, .hour = morning};
    for (int i = 0; i < readers; ++i) {
        settings.offset = habits.areSpread ? drawOffset() : 0s;
        const auto before = std::uniform_int_distribution<qint64>(1, 1800)(random);
        const qint64 start = settings.isDaily() ? 0 : day - newsEvery;
        live(habits, settings, begin.addSecs(start - before), load);
    }
    return load.figures();
}

const Column peakRequests{"peak requests", "peak requests/s"};
const Column peakBytes{"peak bytes", "peak MB/s", 1e-6};
const Column allRequests{"requests", "million requests in the day", 1e-6, 2};
const Column allBytes{"bytes", "GB in the day", 1e-9};

Column wanted(Column column, double target) {
    column.target = target;
    return column;
}

} // namespace

void measurePublisher(Bench &bench) {
    if (bench.named.isEmpty())
        return;
    qputenv("TZ", "UTC");
    bench.report.section("A million devices that chose 06:00: the moment is their own", "06:00:00");
    const Habits atOnce{.areSpread = false};
    bench.report.compare({}, simulate({}), simulate(atOnce),
                         {wanted(peakRequests, 0.002), peakBytes, allRequests, allBytes});

    const quint32 interval = AutoUpdateSettings::Interval;
    bench.report.section("A million devices, every 30 minutes; news every 3 hours", "full bodies");
    const Habits whole{.mode = interval, .areConditional = false};
    bench.report.compare({}, simulate({.mode = interval}), simulate(whole),
                         {peakRequests, peakBytes, allRequests, wanted(allBytes, 0.2)});

    bench.report.section("The same; from 06:00 to 12:00 the publisher answers 503", "no back-off");
    const Habits stubborn{.mode = interval, .backOff = false, .hasOutage = true};
    const Column outage{"outage requests", "million requests meanwhile", 1e-6, 2, 0.5};
    bench.report.compare({}, simulate({.mode = interval, .hasOutage = true}), simulate(stubborn),
                         {peakRequests, peakBytes, outage, allRequests});
}

} // namespace tidebrook
