#include "ctl/ctl_process.h"
#include "ctl/hostile_answers.h"
#include "feed/feed_fetcher.h"
#include "platform/sync/stop_signal.h"
#include "support/forked_process.h"
#include "test_device/test_device.h"

#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>

#include <sched.h>
#include <thread>

namespace tidebrook {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The proxy of the environment is a server, and its direct way another one.
class ProxyTest : public CtlTest {
protected:
    ProxyTest() {
        for (const char *const name : {"http_proxy", "https_proxy", "all_proxy", "no_proxy"}) {
            environment_.remove(QString::fromLatin1(name));
            environment_.remove(QString::fromLatin1(name).toUpper());
        }
    }
    QString proxyUrl(const QString &scheme = u"http"_s) const {
        return u"%1://127.0.0.1:%2"_s.arg(scheme).arg(proxy_.port());
    }
    /// What an update of a feed at this address prints, with one variable set.
    QString update(const QString &address, const QString &variable, const QString &value,
                   const QString &noProxy = {}) {
        proxy_.clearRequests();
        const auto environment = environment_;
        environment_.insert(variable, value);
        environment_.insert(u"no_proxy"_s, noProxy);
        ok(u"add --create C ch "_s + address);
        QString out = run(u"update --full"_s).out;
        ok(u"delete ch"_s);
        environment_ = environment;
        return out;
    }
    QByteArray lastPath() const {
        const QList<FeedServer::Request> requests = proxy_.requests();
        return requests.isEmpty() ? QByteArray() : requests.last().path;
    }

    FeedServer proxy_;
};

TEST_F(ProxyTest, TheFirstRequestTakesTheProxyAndTheSecondNone) {
    const QString far = u"http://feeds.invalid/feed"_s;
    const QString near = u"http://near.localhost/feed"_s;
    proxy_.serve(u"/feed"_s, hostileFeed);
    EXPECT_TRUE(update(far, u"http_proxy"_s, proxyUrl()).startsWith(u"ok\t1\t"));
    EXPECT_EQ(lastPath(), "http://feeds.invalid/feed");
    EXPECT_TRUE(update(far, u"ALL_PROXY"_s, proxyUrl()).startsWith(u"ok\t1\t"));
    EXPECT_TRUE(
        update(far, u"http_proxy"_s, proxyUrl(), u"other,.invalid"_s).contains(u"\t1007\t"));
    EXPECT_EQ(lastPath(), "") << "the name is excepted";

    proxy_.answerStatus(u"/feed"_s, 407, "<p>who are you<br>", {{"Proxy-Authenticate", "Basic"}});
    server_.serve(u"/feed"_s, hostileFeed);
    EXPECT_TRUE(update(near, u"http_proxy"_s, proxyUrl()).startsWith(u"ok\t1\t"));
    EXPECT_EQ(lastPath(), "http://near.localhost/feed");
    EXPECT_EQ(server_.requests().size(), 1) << "the second request goes past the proxy";
}

TEST_F(ProxyTest, AProxyThatFailsIsReported) {
    const QString plain = u"http://feeds.invalid/feed"_s;
    const QString tls = u"https://feeds.invalid/feed"_s;
    const QString closed = u"http://127.0.0.1:1"_s;
    EXPECT_TRUE(update(plain, u"http_proxy"_s, closed).contains(u"\t1007\t"));
    // There is no CONNECT at this server: it answers 404.
    EXPECT_TRUE(update(tls, u"https_proxy"_s, proxyUrl()).contains(u"\t1007\t"));
    EXPECT_EQ(lastPath(), "feeds.invalid:443");
    EXPECT_TRUE(
        update(plain, u"http_proxy"_s, u"http://no.proxy.invalid:1"_s).contains(u"\t1007\t"));
    EXPECT_TRUE(update(plain, u"http_proxy"_s, u"nonsense://:x"_s).contains(u"\t1007\t"));
}

TEST_F(ProxyTest, ASocksProxyIsSpokenTo) {
    const QString far = u"http://feeds.invalid/feed"_s;
    proxy_.serve(u"/feed"_s, hostileFeed);
    proxy_.setGreeting(QByteArray("\5\0\5\0\0\1\0\0\0\0\0\0", 12)); // no password; connected
    EXPECT_TRUE(update(far, u"ALL_PROXY"_s, proxyUrl(u"socks5h"_s)).startsWith(u"ok\t1\t"));
    proxy_.setGreeting(QByteArray("\5\xFF", 2));
    EXPECT_TRUE(update(far, u"ALL_PROXY"_s, proxyUrl(u"socks5h"_s)).contains(u"\t1007\t"));
    proxy_.setGreeting(QByteArray("\5\0\5\4\0\1\0\0\0\0\0\0", 12)); // the host is unreachable
    EXPECT_TRUE(update(far, u"ALL_PROXY"_s, proxyUrl(u"socks5h"_s)).contains(u"\t1007\t"));
}

/// A network and name resolution of this process's own: `hosts` are the names that are known, and
/// the server of all others takes questions and never answers. False where the system does not let
/// it.
bool beAlone(const QString &folder, const QByteArray &hosts) {
    const uid_t user = geteuid();
    if (unshare(CLONE_NEWNET | CLONE_NEWNS | (user == 0 ? 0 : CLONE_NEWUSER)) != 0 ||
        (user != 0 &&
         !writeFile(u"/proc/self/uid_map"_s, "0 " + QByteArray::number(user) + " 1")) ||
        mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return false;
    const std::pair<const char *, QByteArray> files[]{
        {"/etc/hosts", hosts},
        {"/etc/resolv.conf", "nameserver 127.0.0.1\noptions timeout:30 attempts:5\n"},
        {"/etc/nsswitch.conf", "hosts: files dns\n"}};
    for (const auto &[path, content] : files) {
        const QString own = folder + QFileInfo(QString::fromLatin1(path)).fileName();
        writeFile(own, content);
        if (mount(qPrintable(own), path, nullptr, MS_BIND, nullptr) != 0)
            return false;
    }
    const int silent = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0); // as long as the process
    ifreq loopback{.ifr_ifrn = {"lo"}, .ifr_ifru = {}};
    loopback.ifr_flags = IFF_UP;
    sockaddr_in port{AF_INET, htons(53), {htonl(INADDR_LOOPBACK)}, {}};
    return ioctl(silent, SIOCSIFFLAGS, &loopback) == 0 &&
           bind(silent, reinterpret_cast<sockaddr *>(&port), sizeof port) == 0;
}

constexpr int notAllowed = 77;

/// The exit code of `work` in such a process.
int runAlone(const QByteArray &hosts, const std::function<int()> &work) {
    const QTemporaryDir folder;
    ForkedProcess process(
        [&] { return beAlone(folder.path() + u'/', hosts) ? work() : notAllowed; });
    return process.wait();
}

TEST(NameTest, AServerThatHasAnIpv6AddressAloneIsReached) {
    const int code = runAlone("::1 six.test\n", [] {
        FeedServer server("::1");
        server.serve(u"/feed"_s, hostileFeed);
        qputenv("TIDEBROOK_HTTP_PORT", QByteArray::number(server.port()));
        const TestDevice device;
        for (const QString &host : {u"six.test"_s, u"[::1]"_s}) {
            FeedFetcher fetcher(device.root, *device.registry);
            if (!fetcher.fetch(u"http://%1:%2/feed"_s.arg(host).arg(server.port()), u"ch"_s) ||
                !fetcher.download(u"https://%1/feed"_s.arg(host)))
                return 1;
        }
        return 0;
    });
    if (code == notAllowed)
        GTEST_SKIP() << "the system allows no network of a process's own";
    EXPECT_EQ(code, 0);
}

TEST(NameTest, ANameServerThatIsSilentHoldsNothingUp) {
    const auto start = std::chrono::steady_clock::now();
    const int code = runAlone({}, [] {
        const TestDevice device;
        StopSignal stop;
        FeedFetcher late(device.root, *device.registry, {300ms, 600ms, 600ms});
        if (late.fetch(u"http://slow.test/feed"_s, u"ch"_s) || late.error() != 1007 ||
            late.download(u"http://slow.test/feed"_s))
            return 1;
        const HttpLimits limits{.connect = 1min, .requestObject = 1min, .stop = &stop};
        std::thread stopper([&] {
            stop.wait(300ms);
            stop.raise();
        });
        FeedFetcher stopped(device.root, *device.registry, limits);
        const bool isFetched = stopped.fetch(u"http://slow.test/feed"_s, u"ch"_s);
        stopper.join();
        return isFetched ? 2 : 0;
    });
    if (code == notAllowed)
        GTEST_SKIP() << "the system allows no network of a process's own";
    EXPECT_EQ(code, 0);
    // Both the resolver and the request that is stopped have a minute and more.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(patienceLimit));
}

} // namespace
} // namespace tidebrook
