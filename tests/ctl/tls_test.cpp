#include "ctl/ctl_process.h"
#include "ctl/hostile_answers.h"
#include "feed/feed_fetcher.h"
#include "test_device/test_device.h"

#include <QRegularExpression>

#include <sys/prctl.h>

#include <csignal>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// Feeds over TLS at NAME.localhost, and the authorities that are trusted.
class TlsTest : public CtlTest {
protected:
    void SetUp() override {
        ASSERT_EQ(QProcess::execute(QStringLiteral(TLS_CERTIFICATES), {folder_.path()}), 0);
        environment_.insert(u"SSL_CERT_FILE"_s, folder_.filePath(u"trusted.pem"_s));
        environment_.insert(u"SSL_CERT_DIR"_s, folder_.filePath(u"nowhere"_s));
        writeFile(folder_.filePath(u"feed"_s),
                  "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + hostileFeed);
    }
    ~TlsTest() override {
        for (const auto &server : servers_) {
            server->kill();
            server->waitForFinished();
        }
    }

    /// The address of a server at that name with a certificate and other options.
    QString serve(const QString &name, const QString &certificate, const QString &options) {
        auto &server = *servers_.emplace_back(std::make_unique<QProcess>());
        server.setWorkingDirectory(folder_.path());
        server.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
        server.start(u"openssl"_s,
                     u"s_server -HTTP -accept 127.0.0.1:0 -cert %1.pem -key %1.key %2"_s
                         .arg(certificate, options)
                         .split(u' ', Qt::SkipEmptyParts));
        static const QRegularExpression accepting(u"ACCEPT 127.0.0.1:(\\d+)\\n"_s);
        QRegularExpressionMatch match;
        QString said;
        while (!match.hasMatch() && server.waitForReadyRead(20'000)) {
            said += QString::fromLatin1(server.readAllStandardOutput());
            match = accepting.match(said);
        }
        EXPECT_TRUE(match.hasMatch()) << server.readAllStandardError().constData();
        return u"https://%1.localhost:%2/feed"_s.arg(name, match.captured(1));
    }

    std::vector<std::unique_ptr<QProcess>> servers_;
};

TEST_F(TlsTest, AServerThatCannotBeTrustedIsNotReachedAndTheReasonIsSaid) {
    struct Row {
        QString name;
        QString certificate;
        QString options;
        QString reason; // empty: its feed is taken
    };
    const Row rows[]{
        {u"good"_s, u"good"_s, u""_s, u""_s},
        {u"unlisted"_s, u"unlisted"_s, u""_s, u""_s},
        {u"asking"_s, u"good"_s, u"-verify 1"_s, u""_s},
        {u"wrong"_s, u"good"_s, u""_s, u"no alternative certificate subject name"_s},
        {u"expired"_s, u"expired"_s, u""_s, u"certificate has expired"_s},
        {u"revoked"_s, u"revoked"_s, u""_s, u"certificate revoked"_s},
        {u"early"_s, u"early"_s, u""_s, u"not yet valid"_s},
        {u"self"_s, u"self"_s, u""_s, u"self.signed certificate"_s},
        {u"unknown"_s, u"unknown"_s, u""_s, u"unable to get local issuer certificate"_s},
        {u"old"_s, u"good"_s, u"-tls1_1 -cipher DEFAULT@SECLEVEL=0"_s, u"protocol"_s},
        {u"strict"_s, u"good"_s, u"-Verify 1 -tls1_3"_s, u"certificate required"_s},
        {u"strict12"_s, u"good"_s, u"-Verify 1 -tls1_2"_s, u"handshake failure"_s},
    };
    for (const Row &row : rows)
        ok(u"add --create C %1 %2"_s.arg(row.name, serve(row.name, row.certificate, row.options)));
    server_.setGreeting("HTTP/1.1 400 Bad Request\r\n\r\n");
    ok(u"add C plain https://plain.localhost:%1/"_s.arg(server_.port()));

    const QStringList lines = run(u"update"_s).lines();
    EXPECT_EQ(lines.size(), std::ssize(rows) + 1);
    const auto expectLine = [&](const QString &name, const QString &reason) {
        const QRegularExpression line(
            reason.isEmpty() ? u"^ok\t\\d\t\\d/\\d\t%1$"_s.arg(name)
                             : u"^error\t1007\t[^\t]+\t%1\t.*(%2)"_s.arg(name, reason));
        EXPECT_EQ(lines.filter(line).size(), 1) << qPrintable(name + u'\n' + lines.join(u'\n'));
    };
    for (const Row &row : rows)
        expectLine(row.name, row.reason);
    expectLine(u"plain"_s, u"wrong version"_s);

    server_.setGreeting({});
    server_.redirect(u"/moved"_s, serve(u"expired"_s, u"expired"_s, {}).toUtf8());
    ok(u"add C moved "_s + server_.url(u"/moved"));
    EXPECT_EQ(run(u"request C moved"_s).exitCode, 1);
    waitFor([&] {
        return contentOf(filePath(u"run/feedlarkd.log"_s))
            .contains("(1007): SSL certificate problem: certificate has expired\n");
    });
    ok(u"service stop"_s);
}

TEST_F(TlsTest, AHandshakeThatHangsEndsAsUnreached) {
    const TestDevice device;
    FeedFetcher fetcher(device.root, *device.registry, {300ms, 600ms, 600ms});
    EXPECT_FALSE(fetcher.fetch(u"https://127.0.0.1:%1/"_s.arg(server_.port()), u"ch"_s));
    EXPECT_EQ(fetcher.error(), 1007U);
    EXPECT_TRUE(fetcher.detail().contains(u"timeout")) << qPrintable(fetcher.detail());
}

} // namespace
} // namespace tidebrook
