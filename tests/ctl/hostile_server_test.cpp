#include "ctl/ctl_process.h"
#include "ctl/hostile_answers.h"
#include "feed/feed_fetcher.h"
#include "feed_server/direct_port.h"
#include "test_device/test_device.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUrl>

#include <algorithm>
#include <future>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

// The time limits are only for servers that use them up: a busy machine is not to fail the rest.
const HttpLimits patientLimits{20s, 20s, 20s, 200'000};
const HttpLimits hastyLimits{20s, 1s, 1s, 200'000};
constexpr qint64 sentLimit = 40'000'000;  // bytes that an answer may cost
constexpr qint64 memoryLimit = 64 * 1024; // KiB by which no answer may make a process grow

/// A figure of this process's memory, in KiB.
qint64 memory(const QString &name) {
    static const QRegularExpression number(u"^%1:\\s+(\\d+)"_s.arg(name),
                                           QRegularExpression::MultilineOption);
    return number.match(QString::fromLatin1(contentOf(u"/proc/self/status"_s)))
        .captured(1)
        .toLongLong();
}

class HostileServerTest : public CtlTest {
protected:
    const DirectPort directPort_{server_};

    /// The address of a row, at a host of its own, as a round asks a host for one feed at a time.
    QString address(std::size_t row, const QString &path) const {
        return u"http://r%1.localhost:%2"_s.arg(row).arg(server_.port()) +
               QString::fromLatin1(QUrl::toPercentEncoding(path, "/"));
    }
    QByteArray subscriptions(const std::vector<HostileAnswer> &rows) const {
        QString list = u"<opml><body>"_s;
        for (std::size_t i = 0; i < rows.size(); ++i)
            list += u"<outline type='rss' text='r%1' url='%2'/>"_s.arg(QString::number(i),
                                                                       address(i, rows[i].path()));
        return (list + u"</body></opml>").toUtf8();
    }
    /// What a server says comes back to it in headers of the requests behind it.
    void expectCleanRequests() {
        server_.clearRequests();
        ok(u"update --jobs 16"_s);
        int conditional = 0;
        for (const FeedServer::Request &request : server_.requests()) {
            conditional += request.header("If-None-Match").isNull() ? 0 : 1;
            for (const auto &[name, value] : request.headers) {
                SCOPED_TRACE(QByteArray(request.path + ": " + name + value).constData());
                EXPECT_TRUE(std::ranges::all_of(value, [](uchar c) { return c >= ' '; }));
                EXPECT_NE(name, "Cookie");
            }
        }
        EXPECT_GT(conditional, 3);
    }
};

TEST_F(HostileServerTest, EveryAnswerEndsWithItsCodeAndInItsLimits) {
    const std::vector<HostileAnswer> rows = serveHostileAnswers(server_);
    const TestDevice device;
    const auto errorOf = [&](std::size_t i, const HttpLimits &limits, bool isDirect) {
        const QString url = address(i, rows[i].path());
        FeedFetcher fetcher(device.root, *device.registry, limits, {false, false});
        isDirect ? fetcher.download(url) : fetcher.fetch(url, u"ch"_s);
        return fetcher.error();
    };
    const auto expectLimits = [&](std::size_t i, bool isDirect) {
        server_.clearCounts();
        writeFile(u"/proc/self/clear_refs"_s, "5"); // begins the peak anew
        const qint64 before = memory(u"VmRSS"_s);
        const quint32 error = errorOf(i, patientLimits, isDirect);
        EXPECT_LT(memory(u"VmHWM"_s) - before, memoryLimit);
        EXPECT_LT(server_.bytesSent(), sentLimit); // of which a part waits in the sockets' buffers
        return error;
    };
    std::vector<std::pair<std::size_t, std::future<quint32>>> slow;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(rows[i].name.constData());
        if (rows[i].usesTimeLimit) {
            slow.emplace_back(i, std::async(std::launch::async, [&errorOf, i] {
                                  errorOf(i, hastyLimits, true);
                                  return errorOf(i, hastyLimits, false);
                              }));
            continue;
        }
        EXPECT_EQ(expectLimits(i, false), rows[i].error);
        expectLimits(i, true);
    }
    for (auto &[i, error] : slow)
        EXPECT_EQ(error.get(), rows[i].error) << rows[i].name.constData();
}

// Through the queue of a round, whose requests follow redirects by themselves.
TEST_F(HostileServerTest, ARoundOverAllOfThemLosesNothing) {
    std::vector<HostileAnswer> rows = serveHostileAnswers(server_);
    std::erase_if(rows, [](const HostileAnswer &row) { return row.usesTimeLimit; });
    for (const HostileAnswer &row : rows)
        server_.serve(
            row.path(),
            QByteArray(hostileFeed).replace("New", "Old").replace("new", row.name.toHex()));
    writeFile(filePath(u"list.opml"_s), subscriptions(rows));
    ok(u"import %1 C"_s.arg(filePath(u"list.opml"_s)));
    ok(u"update --jobs 16"_s);
    for (const HostileAnswer &row : rows)
        server_.setAnswer(row.path(), row.answer);
    EXPECT_EQ(run(u"update --jobs 16 --full"_s).exitCode, 1);

    const QJsonArray states = QJsonDocument::fromJson(ok(u"updates --json"_s).toUtf8()).array();
    ASSERT_EQ(states.size(), rows.size());
    const QDateTime latest = QDateTime::currentDateTimeUtc().addDays(8);
    for (const QJsonValue state : states) {
        const HostileAnswer &row = rows[state[u"name"].toString().sliced(1).toUInt()];
        SCOPED_TRACE(row.name.constData());
        EXPECT_EQ(state[u"errorCode"].toInteger(), row.roundError);
        EXPECT_LT(QDateTime::fromString(state[u"nextTry"].toString(), Qt::ISODate), latest);
    }
    QStringList counts;
    for (const QString &channel : ok(u"channels C"_s).split(u'\n', Qt::SkipEmptyParts))
        counts.append(channel.section(u'\t', 0, 0));
    EXPECT_EQ(counts.count(u"2/2"), 1) << "the new article is the same in all channels";
    EXPECT_EQ(counts.count(u"1/1"), std::ssize(rows) - 1);
    expectSound();
    expectCleanRequests();
}

} // namespace
} // namespace tidebrook
