#include "ctl/hostile_answers.h"

#include <initializer_list>
#include <tuple>

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
const QByteArray chunking = "Transfer-Encoding: chunked\r\n\r\n";
const QByteArray chunked = ok + chunking;
const QByteArray line(60'000, 'x'); // or a part of one
const QByteArray fields = QByteArray("X: y\r\n").repeated(5000);
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
Answer started(const QByteArray &first) { return raw(first + "\r\n\r\n" + feed); }
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

/// A feed behind these sayings of one thing.
Answer ofLength(const QByteArray &value) {
    return raw(ok + "Content-Length: " + value + "\r\n\r\n" + feed);
}
Answer ofChunk(const QByteArray &value) {
    return raw(chunked + value + "\r\n" + feed + "\r\n" + last);
}
Answer withHeader(const QByteArray &value) { return headed(value + "\r\n"); }
Answer ofType(const QByteArray &value) { return headed("Content-Type: " + value + "\r\n"); }
Answer withValidators(const QByteArray &value) {
    return headed("ETag: " + value + "\r\nETag: \"2\"\r\nLast-Modified: " + value + "\r\n");
}
Answer plainStatus(const QByteArray &code) { return status(code); }

using Rows = std::vector<HostileAnswer>;

/// Rows whose answers differ in one text.
void addEach(Rows &rows, const QByteArray &what, Answer (*make)(const QByteArray &), quint32 error,
             std::initializer_list<QByteArray> values) {
    for (const QByteArray &value : values)
        rows.push_back({what + ' ' + value.left(40).toPercentEncoding(" "), make(value), error});
}

Rows lengths() {
    Rows rows{
        {"no length", raw(ok + "\r\n" + feed), 0},
        {"length twice", headed(length), 0},
        {"lengths that differ", headed("Content-Length: 20\r\n"), 1002},
        {"length before chunks", raw(ok + "Content-Length: 5\r\n" + chunking + chunk + last), 0},
        {"body without an end", raw(ok + "\r\n", line), 1008},
    };
    addEach(rows, "length", ofLength, 0, {"99999999999999999999"});
    addEach(rows, "length", ofLength, 1002, {"20", "20, " + size});
    addEach(rows, "length", ofLength, 1008, {"9999", "-1", "many", "", "9223372036854775807"});
    addEach(rows, "length", ofLength, 1009, {"0"});
    return rows;
}

Rows chunks() {
    Rows rows{
        {"length behind chunks",
         raw(ok + chunking.chopped(2) + "Content-Length: 5\r\n\r\n" + chunk + last), 0},
        {"chunk size without an end", raw(chunked, QByteArray(60'000, '0')), 1008},
        {"chunk extension without an end", raw(chunked + "1;", line), 1008},
        {"chunks of a byte without an end", raw(chunked, QByteArray("1\r\nx\r\n").repeated(5000)),
         1008},
        {"chunks with LF alone", raw(chunked + hexSize + '\n' + feed + "\n0\n\n"), 0},
        {"chunk without CRLF behind", raw(chunked + hexSize + "\r\n" + feed + last), 1008},
        {"no end behind the last chunk", raw(chunked + chunk + "0\r\n"), 1008},
        {"trailers", raw(chunked + chunk + "0\r\nX: y\r\nContent-Length: 1\r\n\r\n"), 0},
        {"trailers without an end", raw(chunked + chunk + "0\r\n", fields), 1008},
        {"trailer line without an end", raw(chunked + chunk + "0\r\nX: ", line), 1008},
        {"chunked in HTTP 1.0", raw("HTTP/1.0 200 OK\r\n" + chunking + chunk + last), 0},
        {"chunked twice", raw(ok + "Transfer-Encoding: chunked\r\n" + chunking + chunk + last), 0},
        {"transfer identity", headed("Transfer-Encoding: identity\r\n"), 0},
        {"transfer unknown", headed("Transfer-Encoding: zip\r\n"), 1008},
    };
    addEach(rows, "chunk size", ofChunk, 0, {hexSize, "00000000" + hexSize, hexSize + ";a=\"b\""});
    addEach(rows, "chunk size", ofChunk, 1008,
            {"fff", "5", "fffffffffffffffff", "7fffffffffffffff", "-5", "", "xyz", "0x" + hexSize});
    return rows;
}

Rows headers() {
    const QByteArray hint = "HTTP/1.1 103 Early\r\nLink: <a>\r\n\r\n";
    Rows rows{
        {"headers without an end", raw(ok, fields), 1008},
        {"header line without an end", raw(ok + "X: ", line), 1008},
        {"header name without an end", raw(ok, line), 1008},
        {"header of 60 kB", headed("X: " + line + "\r\n"), 0},
        {"5000 headers", headed(fields), 0},
        {"hints without an end", raw({}, hint.repeated(1000)), 1008},
        {"100 without an end", raw({}, QByteArray("HTTP/1.1 100 X\r\n\r\n").repeated(1000)), 1008},
        {"hints alone", raw(hint), 1007},
        {"hints before", raw(hint.repeated(3) + ok + length + "\r\n" + feed), 0},
        {"another protocol", started("HTTP/1.1 101 X\r\nUpgrade: h2c\r\nConnection: Upgrade"), 0},
        {"first header folded", raw(ok + " X: a\r\n" + length + "\r\n" + feed), 1008},
        {"lines with LF alone", raw("HTTP/1.1 200 OK\nX: y\n\n" + feed), 0},
        {"lines with CR alone", raw("HTTP/1.1 200 OK\rX: y\r\r" + feed), 1007},
        {"cookies",
         headed(QByteArray("Set-Cookie: a=" + line.first(4000) + "; Domain=.com\r\n").repeated(20)),
         0},
        {"more behind the body", raw(ok + length + "\r\n" + feed + "junk" + ok, {}, Ending::Hold),
         0},
    };
    addEach(rows, "header", withHeader, 1008,
            {"nothing", QByteArray("X: a\0b", 6), QByteArray("X\0: b", 5)});
    addEach(rows, "header", withHeader, 0,
            {": x", "X\xFF: \x80\xFE\xC3", "X: a\rY: b", "Content-Length : 1", "X: a\r\n b\r\n\tc",
             "Alt-Svc: h3=\":1\", h2=\"localhost:1\"; ma=99", "Upgrade: h2c, TLS/1.0",
             "Strict-Transport-Security: max-age=99999999; includeSubDomains",
             "Connection: keep-alive, close, X\r\nKeep-Alive: timeout=-1, max=0",
             "Refresh: 0; url=file:///etc/passwd\r\nLocation: file:///etc/passwd"});
    return rows;
}

Rows statusLines() {
    Rows rows{
        {"reason of 60 kB", started("HTTP/1.1 200 " + line), 0},
        {"status line without an end", raw("HTTP/1.1 200 ", line), 1007},
        {"HTTP 0.9", raw(feed), 1007},
        {"HTTP 2 frames", raw(QByteArray("\0\0\x12\4\0\0\0\0\0\0\3\0\0\0\x64", 15)), 1007},
        {"HTTP 2 preface", raw("PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n"), 1007},
        {"NULs", raw(QByteArray(1000, '\0')), 1007},
        {"NULs without an end", raw({}, QByteArray(60'000, '\0')), 1007},
    };
    addEach(rows, "status line", started, 0,
            {"HTTP/1.1 200", "HTTP/1.1  200 OK", "HTTP/1.1 200 \xFF\xFE\x01", "HTTP/2 200 OK",
             "HTTP/1.0 200 OK", "http/1.1 200 OK"});
    addEach(rows, "status line", started, 1007,
            {"HTTP/1.1 2000 OK", "HTTP/1.1 20 OK", "HTTP/1.1 abc OK", "HTTP/1.1 -200 OK",
             "HTTP/1.1", "HTTP/9.9 200 OK", "ICY 200 OK", "\r\nHTTP/1.1 200 OK"});
    return rows;
}

Rows statuses() {
    Rows rows{
        {"status 206", status("206", "Content-Range: bytes 0-9/9999\r\n"), 0},
        {"status 400 at once", raw("HTTP/1.1 400 Bad\r\nConnection: close\r\n\r\n" + text), 1002},
        {"status 401",
         status("401", "WWW-Authenticate: Basic realm=\"x\"\r\nWWW-Authenticate: Negotiate\r\n",
                text),
         1002},
        {"status 407", status("407", "Proxy-Authenticate: Digest realm=\"\r\n", text), 1002},
    };
    addEach(rows, "status", plainStatus, 0, {"205", "600", "999"});
    addEach(rows, "status", plainStatus, 1007, {"000", "099"});
    addEach(rows, "status", plainStatus, 1009, {"204", "304"});
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
    Rows rows{
        {"gzip in chunks",
         raw(ok + "Content-Encoding: gzip\r\n" + chunking + QByteArray::number(gzip.size(), 16) +
             "\r\n" + gzip + "\r\n" + last),
         0},
        {"gzip as transfer", raw(ok + "Transfer-Encoding: gzip\r\n\r\n" + gzip), 0},
        {"gzip in gzip",
         raw(ok + "Transfer-Encoding: gzip\r\nContent-Encoding: gzip\r\nContent-Length: 0\r\n\r\n"),
         1008},
        {"gzip unsaid", raw(ok + "\r\n" + gzip), 1002},
        {"empty blocks without an end",
         raw(ok + "Content-Encoding: gzip\r\n\r\n\x1F\x8B\x08" + QByteArray(6, '\0') + '\3',
             QByteArray("\0\0\0\xFF\xFF", 5).repeated(10'000)),
         1008},
        {"deflate", packed("deflate", zlib), 0},
        {"deflate raw", packed("deflate", zlib.sliced(2).chopped(4)), 0},
    };
    const std::tuple<const char *, QByteArray, quint32> gzips[]{
        {"right", gzip, 0},
        {"of much", bomb, 1008},
        {"cut off", gzip.first(gzip.size() / 2), 1002},
        {"without its sum", gzip.chopped(8), 0},
        {"with a wrong sum", gzip.chopped(8) + "12345678", 1008},
        {"with a wrong head", "\x1F\x8B\x09" + gzip.sliced(3), 1008},
        {"that is none", feed, 1008},
        {"of nothing", {}, 1009},
        {"with more behind", gzip + "more", 1008},
        {"in two members", gzip + gzip, 1008}};
    for (const auto &[what, body, error] : gzips)
        rows.push_back({QByteArray("gzip ") + what, packed("gzip", body), error});
    const std::tuple<QByteArray, QByteArray, quint32> methods[]{
        {"GZIP", gzip, 0},
        {"x-gzip", gzip, 0},
        {"gzip, gzip", gzipped(gzip), 1008},
        {"gzip\r\nContent-Encoding: gzip", gzipped(gzip), 1008},
        {"br", "\x0B\x02\x80", 1008},
        {"zstd", "\x28\xB5\x2F\xFD", 1008},
        {"compress", "\x1F\x9D\x90", 1008},
        {"utf-8", feed, 1008},
        {"", feed, 0},
        {"identity", feed, 0},
        {QByteArray(80'000, ','), feed, 0}};
    for (const auto &[method, body, error] : methods)
        rows.push_back({"packing " + method.left(20).simplified(), packed(method, body), error});
    return rows;
}

Rows redirects(FeedServer &server) {
    const QByteArray good = server.url(u"/good").toUtf8();
    server.setAnswer(QStringLiteral("/good"), headed({}));
    for (int i = 1; i <= 11; ++i)
        server.setAnswer(QStringLiteral("/chain%1").arg(i),
                         redirect(i == 1 ? good : "/chain" + QByteArray::number(i - 1)));
    Rows rows{
        {"redirect with 300", status("300", "Location: good\r\n", text), 0},
        {"redirect with 308", status("308", "Location: ../x/../good\r\n", text), 0},
        {"redirect to itself", redirect("redirect%20to%20itself"), 1007},
        {"redirect without an address", status("302", {}, text), 1002},
        {"redirect to nothing", redirect(""), 1002},
        {"redirect to a user's name", redirect(QByteArray(good).replace("://", "://a:b@")), 0},
        {"redirect folded", redirect("\r\n /good"), 1002, false, 0},
        {"redirect cut off",
         raw("HTTP/1.1 302 Found\r\nLocation: /good\r\nContent-Length: 99\r\n\r\nx"), 0},
        {"redirect's body without an end",
         raw("HTTP/1.1 302 Found\r\nLocation: /good\r\nContent-Length: "
             "9000000000\r\n\r\n",
             line),
         1008},
    };
    addEach(rows, "redirect to", redirect, 1007,
            {"file:///etc/passwd", "ftp://127.0.0.1/", "gopher://127.0.0.1:1/",
             "data:text/xml,<rss/>", "http://127.0.0.1:1/", "http://127.0.0.1:0/",
             "http://127.0.0.1:99999/", "http:///good", "javascript:alert(1)", "ws://127.0.0.1/",
             "dict://127.0.0.1:1/", "about:blank", "/nothing%20Close", "?xxxx", "/chain10"});
    addEach(rows, "redirect to", redirect, 0,
            {"/good", "/chain9", "/good?a b\xC3\xA9", "/good#x#y", "/good\r\nLocation: /chain11",
             "/good?" + line});
    return rows;
}

Rows texts() {
    Rows rows;
    addEach(rows, "type", ofType, 0,
            {"", ";;;=", "text/html", "image/png; x",
             "text/xml; charset=", "text/xml; charset=\"utf-8", "text/xml; charset=klingon",
             "text/xml; charset=utf-7", "text/xml; charset=utf-16", "text/xml; charset=\xFF\xFE",
             "a/b; charset=" + line.first(9000)});
    addEach(rows, "validators", withValidators, 0,
            {"", "\"", "\"'; DROP TABLE x --\"", "W/\"\"", "*", "\"\xFF\x80\"", "\"a\rX-Split: b\"",
             "\"a\tb\x01\"", "\"a\r\n X-Folded: b\"", line});
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
