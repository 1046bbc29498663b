#include "ctl/hostile_answers.h"

namespace tidebrook {

using namespace std::chrono_literals;

const QByteArray hostileFeed = "<rss><channel><title>Feed</title><item><title>New</title>"
                               "<guid>new</guid></item></channel></rss>";

namespace hostile { // its short names are for the tables alone
namespace {

using Ending = Answer::Ending;

const QByteArray &feed = hostileFeed;
const QByteArray text = "<p>not here<br>"; // which is no XML
const QByteArray ok = "HTTP/1.1 200 OK\r\n";
const QByteArray chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
const QByteArray size = QByteArray::number(feed.size());
const QByteArray length = "Content-Length: " + size + "\r\n";
const QByteArray hexSize = QByteArray::number(feed.size(), 16);
const QByteArray chunk = hexSize + "\r\n" + feed + "\r\n";
const QByteArray last = "0\r\n\r\n";

Answer raw(const QByteArray &bytes, const QByteArray &repeated = {},
           Ending ending = Ending::Close) {
    return {.manner = Answer::Manner::Raw, .body = bytes, .repeated = repeated, .ending = ending};
}
/// A feed of the right length, behind these header lines.
Answer headed(const QByteArray &lines) { return raw(ok + length + lines + "\r\n" + feed); }
/// A feed under this status line; the connection's end is its end.
Answer started(const QByteArray &line) { return raw(line + "\r\n\r\n" + feed); }
Answer status(const QByteArray &code, const QByteArray &lines = {}, const QByteArray &body = feed) {
    return raw("HTTP/1.1 " + code + " Status\r\nContent-Length: " +
               QByteArray::number(body.size()) + "\r\n" + lines + "\r\n" + body);
}
/// A body that is said to be packed so.
Answer packed(const QByteArray &method, const QByteArray &body) {
    return raw(ok + "Content-Encoding: " + method +
               "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
}
Answer redirect(const QByteArray &location) {
    return status("302", "Connection: close\r\nLocation: " + location + "\r\n", text);
}
Answer slow(std::chrono::milliseconds interval, Answer answer) {
    answer.interval = interval;
    return answer;
}

using Rows = std::vector<HostileAnswer>;

Rows lengths() {
    return {
        {"length missing", raw(ok + "\r\n" + feed), 0},
        {"length too short", raw(ok + "Content-Length: 20\r\n\r\n" + feed), 1002},
        {"length too long", raw(ok + "Content-Length: 9999\r\n\r\n" + feed), 1008},
        {"length zero", raw(ok + "Content-Length: 0\r\n\r\n" + feed), 1009},
        {"length negative", raw(ok + "Content-Length: -1\r\n\r\n" + feed), 1008},
        {"length of letters", raw(ok + "Content-Length: many\r\n\r\n" + feed), 1008},
        {"length empty", raw(ok + "Content-Length:\r\n\r\n" + feed), 1008},
        {"length beyond 64 bits", raw(ok + "Content-Length: 99999999999999999999\r\n\r\n" + feed),
         0},
        {"length of 8 EiB", raw(ok + "Content-Length: 9223372036854775807\r\n\r\n" + feed), 1008},
        {"length twice", headed(length), 0},
        {"lengths that differ", headed("Content-Length: 20\r\n"), 1002},
        {"lengths in a list", raw(ok + "Content-Length: 20, " + size + "\r\n\r\n" + feed), 1002},
        {"length and chunks",
         raw(ok + "Content-Length: 5\r\nTransfer-Encoding: chunked\r\n\r\n" + chunk + last), 0},
        {"chunks and length",
         raw(ok + "Transfer-Encoding: chunked\r\nContent-Length: 5\r\n\r\n" + chunk + last), 0},
        {"body without an end", raw(ok + "\r\n", QByteArray(60'000, 'x')), 1008},
        {"byte without a body", raw(ok + "Content-Length: 1\r\n\r\n"), 1008},
    };
}

Rows chunks() {
    return {
        {"chunks", raw(chunked + chunk + last), 0},
        {"chunk size too large", raw(chunked + "fff\r\n" + feed + "\r\n" + last), 1008},
        {"chunk size too small", raw(chunked + "5\r\n" + feed + "\r\n" + last), 1008},
        {"chunk size beyond 64 bits", raw(chunked + "fffffffffffffffff\r\n" + feed + "\r\n" + last),
         1008},
        {"chunk size of 8 EiB", raw(chunked + "7fffffffffffffff\r\n" + feed), 1008},
        {"chunk size negative", raw(chunked + "-5\r\n" + feed + "\r\n" + last), 1008},
        {"chunk size empty", raw(chunked + "\r\n" + feed + "\r\n" + last), 1008},
        {"chunk size of letters", raw(chunked + "xyz\r\n" + feed + "\r\n" + last), 1008},
        {"chunk size with 0x", raw(chunked + "0x" + chunk + last), 1008},
        {"chunk size with zeros", raw(chunked + "00000000" + chunk + last), 0},
        {"chunk size without an end", raw(chunked, QByteArray(60'000, '0')), 1008},
        {"chunk extension", raw(chunked + hexSize + ";a=\"b\"\r\n" + feed + "\r\n" + last), 0},
        {"chunk extension without an end", raw(chunked + "1;", QByteArray(60'000, 'x')), 1008},
        {"chunks of a byte without an end", raw(chunked, QByteArray("1\r\nx\r\n").repeated(5000)),
         1008},
        {"chunks with LF alone", raw(chunked + hexSize + '\n' + feed + "\n0\n\n"), 0},
        {"chunk without CRLF behind", raw(chunked + hexSize + "\r\n" + feed + last), 1008},
        {"no last chunk", raw(chunked + chunk), 1008},
        {"no end behind the last chunk", raw(chunked + chunk + "0\r\n"), 1008},
        {"trailers", raw(chunked + chunk + "0\r\nX: y\r\nContent-Length: 1\r\n\r\n"), 0},
        {"trailers without an end",
         raw(chunked + chunk + "0\r\n", QByteArray("X: y\r\n").repeated(5000)), 1008},
        {"trailer line without an end", raw(chunked + chunk + "0\r\nX: ", QByteArray(60'000, 'x')),
         1008},
        {"chunked in HTTP 1.0",
         raw("HTTP/1.0 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + chunk + last), 0},
        {"chunked twice", raw(ok + "Transfer-Encoding: chunked, chunked\r\n\r\n" + chunk + last),
         0},
        {"transfer identity", headed("Transfer-Encoding: identity\r\n"), 0},
        {"transfer unknown", headed("Transfer-Encoding: zip\r\n"), 1008},
    };
}

Rows headers() {
    const QByteArray line(60'000, 'x');
    const QByteArray hint = "HTTP/1.1 103 Early\r\nLink: <a>\r\n\r\n";
    return {
        {"headers without an end", raw(ok, QByteArray("X: y\r\n").repeated(5000)), 1008},
        {"header line without an end", raw(ok + "X: ", line), 1008},
        {"header name without an end", raw(ok, line), 1008},
        {"header of 90 kB", headed("X: " + QByteArray(90'000, 'x') + "\r\n"), 0},
        {"5000 headers", headed(QByteArray("X: y\r\n").repeated(5000)), 0},
        {"hints without an end", raw({}, hint.repeated(1000)), 1008},
        {"100 without an end", raw({}, QByteArray("HTTP/1.1 100 Continue\r\n\r\n").repeated(1000)),
         1008},
        {"hints alone", raw(hint), 1007},
        {"hints before", raw(hint.repeated(3) + ok + length + "\r\n" + feed), 0},
        {"switch to another protocol",
         raw("HTTP/1.1 101 Switch\r\nUpgrade: h2c\r\nConnection: Upgrade\r\n\r\n" + feed), 0},
        {"header without a colon", headed("nothing\r\n"), 1008},
        {"header without a name", headed(": x\r\n"), 0},
        {"header with a NUL", headed(QByteArray("X: a\0b\r\n", 8)), 1008},
        {"header name with a NUL", headed(QByteArray("X\0: b\r\n", 7)), 1008},
        {"headers of high bytes", headed("X\xFF: \x80\xFE\xC3\r\n"), 0},
        {"header with CR inside", headed("X: a\rY: b\r\n"), 0},
        {"header with blanks before the colon",
         raw(ok + "Content-Length : " + size + "\r\n\r\n" + feed), 0},
        {"header folded", headed("X: a\r\n b\r\n\tc\r\n"), 0},
        {"first header folded", raw(ok + " X: a\r\n" + length + "\r\n" + feed), 1008},
        {"lines with LF alone", raw("HTTP/1.1 200 OK\nContent-Length: " + size + "\n\n" + feed), 0},
        {"lines with CR alone", raw("HTTP/1.1 200 OK\rX: y\r\r" + feed), 1007},
        {"cookies",
         headed(QByteArray("Set-Cookie: a=" + QByteArray(4000, 'x') + "; Domain=.com\r\n")
                    .repeated(20)),
         0},
        {"other services and strict transport",
         headed("Alt-Svc: h3=\":1\", h2=\"localhost:1\"; ma=99\r\n"
                "Strict-Transport-Security: max-age=99999999; includeSubDomains\r\nUpgrade: h2c, "
                "TLS/1.0\r\n"),
         0},
        {"keep-alive without sense",
         headed("Connection: keep-alive, close, X\r\nKeep-Alive: timeout=-1, max=0\r\n"), 0},
        {"more behind the body",
         raw(ok + length + "\r\n" + feed + "junk" + ok + "\r\n", {}, Ending::Hold), 0},
        {"refresh to a file",
         headed("Refresh: 0; url=file:///etc/passwd\r\nLocation: file:///etc/passwd\r\n"), 0},
    };
}

Rows statusLines() {
    return {
        {"status without a reason", started("HTTP/1.1 200"), 0},
        {"status with two blanks", started("HTTP/1.1  200 OK"), 0},
        {"status of four digits", started("HTTP/1.1 2000 OK"), 1007},
        {"status of two digits", started("HTTP/1.1 20 OK"), 1007},
        {"status of letters", started("HTTP/1.1 abc OK"), 1007},
        {"status negative", started("HTTP/1.1 -200 OK"), 1007},
        {"status missing", started("HTTP/1.1"), 1007},
        {"status line of high bytes", started("HTTP/1.1 200 \xFF\xFE\x01"), 0},
        {"reason of 90 kB", started("HTTP/1.1 200 " + QByteArray(90'000, 'x')), 0},
        {"status line without an end", raw("HTTP/1.1 200 ", QByteArray(60'000, 'x')), 1007},
        {"version 9.9", started("HTTP/9.9 200 OK"), 1007},
        {"version 2", started("HTTP/2 200 OK"), 0},
        {"version 1.0", started("HTTP/1.0 200 OK"), 0},
        {"version in small letters", started("http/1.1 200 OK"), 0},
        {"version of another protocol", started("ICY 200 OK"), 1007},
        {"empty line before", raw("\r\n" + ok + "\r\n" + feed), 1007},
        {"HTTP 0.9", raw(feed), 1007},
        {"HTTP 2 frames", raw(QByteArray("\0\0\x12\4\0\0\0\0\0\0\3\0\0\0\x64", 15)), 1007},
        {"HTTP 2 preface", raw("PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n"), 1007},
        {"NULs", raw(QByteArray(1000, '\0')), 1007},
        {"NULs without an end", raw({}, QByteArray(60'000, '\0')), 1007},
    };
}

Rows statuses() {
    Rows rows{
        {"status 000", status("000"), 1007},
        {"status 099", status("099"), 1007},
        {"status 204 with a body", status("204"), 1009},
        {"status 205 with a body", status("205"), 0},
        {"status 206 unasked", status("206", "Content-Range: bytes 0-9/9999\r\n"), 0},
        {"status 304 unasked", status("304"), 1009},
        {"status 400 at once", raw("HTTP/1.1 400 Bad\r\nConnection: close\r\n\r\n" + text), 1002},
        {"status 401",
         status("401",
                "WWW-Authenticate: Basic realm=\"x\"\r\nWWW-Authenticate: Negotiate\r\n"
                "WWW-Authenticate: NTLM\r\n",
                text),
         1002},
        {"status 407", status("407", "Proxy-Authenticate: Digest realm=\"\r\n", text), 1002},
        {"status 600", status("600"), 0},
        {"status 999", status("999"), 0},
    };
    for (const char *const moment :
         {"", "-5", "99999999999999999999", "soon", "1e9", "Fri, 31 Dec 9999 23:59:59 GMT",
          "Thu, 01 Jan 1970 00:00:00 GMT", "0, 5"}) {
        for (const char *const code : {"429", "503"})
            rows.push_back({"status " + QByteArray(code) + " retry " + moment,
                            status(code, QByteArray("Retry-After: ") + moment + "\r\n", text), 1002,
                            false, 1009});
    }
    return rows;
}

Rows packings(const QByteArray &gzip, const QByteArray &bomb) {
    const QByteArray zlib = qCompress(feed).sliced(4);
    return {
        {"gzip", packed("gzip", gzip), 0},
        {"gzip in large letters", packed("GZIP", gzip), 0},
        {"x-gzip", packed("x-gzip", gzip), 0},
        {"gzip bomb", packed("gzip", bomb), 1008},
        {"gzip in chunks",
         raw(ok + "Content-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n\r\n" +
             QByteArray::number(gzip.size(), 16) + "\r\n" + gzip + "\r\n" + last),
         0},
        {"gzip as transfer", raw(ok + "Transfer-Encoding: gzip\r\n\r\n" + gzip), 0},
        {"gzip cut off", packed("gzip", gzip.first(gzip.size() / 2)), 1002},
        {"gzip without its sum", packed("gzip", gzip.chopped(8)), 0},
        {"gzip with a wrong sum", packed("gzip", gzip.chopped(8) + "12345678"), 1008},
        {"gzip with a wrong head", packed("gzip", "\x1F\x8B\x09" + gzip.sliced(3)), 1008},
        {"gzip that is none", packed("gzip", feed), 1008},
        {"gzip of nothing", packed("gzip", {}), 1009},
        {"gzip with more behind", packed("gzip", gzip + "more"), 1008},
        {"gzip in two members", packed("gzip", gzip + gzip), 1008},
        {"gzip twice", packed("gzip, gzip", gzip), 1008},
        {"gzip in two headers", packed("gzip\r\nContent-Encoding: gzip", gzip), 1008},
        {"gzip unsaid", raw(ok + "\r\n" + gzip), 1002},
        {"empty blocks without an end",
         raw(ok + "Content-Encoding: gzip\r\n\r\n\x1F\x8B\x08" + QByteArray(6, '\0') + '\3',
             QByteArray("\0\0\0\xFF\xFF", 5).repeated(10'000)),
         1008},
        {"deflate", packed("deflate", zlib), 0},
        {"deflate raw", packed("deflate", zlib.sliced(2).chopped(4)), 0},
        {"brotli unasked", packed("br", "\x0B\x02\x80"), 1008},
        {"zstd unasked", packed("zstd", "\x28\xB5\x2F\xFD"), 1008},
        {"compress", packed("compress", "\x1F\x9D\x90"), 1008},
        {"packing unknown", packed("utf-8", feed), 1008},
        {"packing empty", packed("", feed), 0},
        {"packing of commas", packed(QByteArray(80'000, ','), feed), 0},
        {"packing identity", packed("identity", feed), 0},
    };
}

Rows redirects(FeedServer &server) {
    const QByteArray good = server.url(u"/good").toUtf8();
    server.setAnswer(QStringLiteral("/good"), headed({}));
    for (int i = 1; i <= 11; ++i)
        server.setAnswer(QStringLiteral("/chain%1").arg(i),
                         redirect(i == 1 ? good : "/chain" + QByteArray::number(i - 1)));
    QByteArray userInfo = good;
    Rows rows{
        {"redirect", redirect("/good"), 0},
        {"redirect with 300", status("300", "Location: good\r\n", text), 0},
        {"redirect with 308", status("308", "Location: ../x/../good\r\n", text), 0},
        {"redirect ten times", redirect("/chain9"), 0},
        {"redirect eleven times", redirect("/chain10"), 1007},
        {"redirect to itself", redirect("redirect%20to%20itself"), 1007},
        {"redirect to itself, growing", redirect("?xxxx"), 1007},
        {"redirect without an address", status("302", {}, text), 1002},
        {"redirect to nothing", redirect(""), 1002},
        {"redirect to a user's name", redirect(userInfo.replace("://", "://a:b@")), 0},
        {"redirect of 90 kB", redirect("/good?" + QByteArray(90'000, 'x')), 0},
        {"redirect with a blank", redirect("/good?a b\xC3\xA9"), 0},
        {"redirect with a fragment", redirect("/good#x#y"), 0},
        {"redirect folded", redirect("\r\n /good"), 1002, false, 0},
        {"redirect twice in one answer", redirect("/good\r\nLocation: /chain11"), 0},
        {"redirect to a closed port", redirect("http://127.0.0.1:1/"), 1007},
        {"redirect to port 0", redirect("http://127.0.0.1:0/"), 1007},
        {"redirect to port 99999", redirect("http://127.0.0.1:99999/"), 1007},
        {"redirect without a host", redirect("http:///good"), 1007},
        {"redirect to an empty answer", redirect("/nothing%20Close"), 1007},
        {"redirect cut off",
         raw("HTTP/1.1 302 Found\r\nLocation: /good\r\nContent-Length: 99\r\n\r\nx"), 0},
        {"redirect's body without an end",
         raw("HTTP/1.1 302 Found\r\nLocation: /good\r\nContent-Length: "
             "9000000000\r\n\r\n",
             QByteArray(60'000, 'x')),
         1008},
    };
    for (const char *const scheme :
         {"file:///etc/passwd", "ftp://127.0.0.1/", "gopher://127.0.0.1:1/", "data:text/xml,<rss/>",
          "javascript:alert(1)", "ws://127.0.0.1/", "dict://127.0.0.1:1/", "about:blank"})
        rows.push_back({"redirect to " + QByteArray(scheme), redirect(scheme), 1007});
    return rows;
}

Rows texts() {
    Rows rows;
    for (const QByteArray &type :
         {QByteArray(), QByteArray(";;;="), QByteArray("text/html"), QByteArray("image/png; x"),
          QByteArray("text/xml; charset="), QByteArray("text/xml; charset=\"utf-8"),
          QByteArray("text/xml; charset=klingon"), QByteArray("text/xml; charset=utf-7"),
          QByteArray("text/xml; charset=utf-16"), QByteArray("text/xml; charset=\xFF\xFE"),
          QByteArray("a/b; charset=" + QByteArray(9000, 'x'))})
        rows.push_back({"type " + type.left(35), headed("Content-Type: " + type + "\r\n"), 0});
    for (const QByteArray &value :
         {QByteArray(), QByteArray("\""), QByteArray("\"'; DROP TABLE x --\""),
          QByteArray("W/\"\""), QByteArray("*"), QByteArray("\"\xFF\x80\""),
          QByteArray("\"a\rX-Split: b\""), QByteArray("\"a\tb\x01\""),
          QByteArray("\"a\r\n X-Folded: b\""), QByteArray(90'000, 'x')})
        rows.push_back(
            {"validators " + QByteArray::number(rows.size() - 10),
             headed("ETag: " + value + "\r\nETag: \"2\"\r\nLast-Modified: " + value + "\r\n"), 0});
    return rows;
}

/// An answer that ends early, in each way, in each of its phases.
Rows phases(const QByteArray &gzip) {
    struct Phase {
        const char *name;
        QByteArray sent;
        quint32 error; // where the connection is closed
    };
    const Phase all[]{
        {"nothing", {}, 1007},
        {"half a status line", "HTTP/1.1 2", 1007},
        {"a status line", ok, 1008},
        {"half a header", ok + "Content-Le", 1008},
        {"headers", ok + length + "\r\n", 1008},
        {"half a body", ok + length + "\r\n" + feed.first(40), 1008},
        {"half a chunk size", chunked + "1", 1008},
        {"a chunk size", chunked + hexSize + "\r\n", 1008},
        {"half a chunk", chunked + hexSize + "\r\n" + feed.first(40), 1008},
        {"a chunk", chunked + chunk, 1008},
        {"half a trailer", chunked + chunk + "0\r\nX", 1008},
        {"half of gzip",
         ok + "Content-Encoding: gzip\r\nContent-Length: 999\r\n\r\n" + gzip.first(30), 1008},
    };
    Rows rows;
    for (const Phase &phase : all) {
        const QByteArray name = phase.name;
        rows.push_back({name + " Close", raw(phase.sent), phase.error});
        rows.push_back({name + " Reset", raw(phase.sent, {}, Ending::Reset), phase.error});
        rows.push_back({name + " Hold", raw(phase.sent, {}, Ending::Hold), 1008, true});
    }
    rows.push_back({"slow bytes", slow(1ms, headed({})), 0});
    rows.push_back({"slow chunks", slow(1ms, raw(chunked + chunk + last)), 0});
    rows.push_back({"headers too slow", slow(100ms, headed({})), 1008, true});
    rows.push_back(
        {"a hint Hold", raw("HTTP/1.1 103 Early\r\n\r\n", {}, Ending::Hold), 1008, true});
    rows.push_back({"hints too slow",
                    slow(100ms, raw(QByteArray("HTTP/1.1 100 X\r\n\r\n").repeated(99))), 1008,
                    true});
    return rows;
}

} // namespace
} // namespace hostile

std::vector<HostileAnswer> serveHostileAnswers(FeedServer &server) {
    using namespace hostile;
    const QByteArray gzip = gzipped(hostileFeed);
    Rows rows;
    for (const Rows &some : {lengths(), chunks(), headers(), statusLines(), statuses(),
                             packings(gzip, gzipped(QByteArray(50'000'000, ' '))),
                             redirects(server), texts(), phases(gzip)})
        rows.insert(rows.end(), some.begin(), some.end());
    for (const HostileAnswer &row : rows)
        server.setAnswer(row.path(), row.answer);
    return rows;
}

} // namespace tidebrook
