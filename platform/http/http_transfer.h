#pragma once

#include "platform/http/curl_library.h"
#include "platform/http/http.h"

#include <functional>
#include <initializer_list>
#include <memory>

namespace tidebrook {

// What the transports of this module share over libcurl. No other module includes this.

/// How many times a request is sent on to another address.
inline constexpr long redirectLimit = 10;
inline constexpr int longestPoll = 60'000; // ms; curl asks for less when it has to do something

struct CurlMultiCleanup {
    void operator()(CURLM *multi) const { curl().curl_multi_cleanup(multi); }
};
struct CurlListFree {
    void operator()(curl_slist *list) const { curl().curl_slist_free_all(list); }
};
struct CurlUrlCleanup {
    void operator()(CURLU *url) const { curl().curl_url_cleanup(url); }
};
using CurlMulti = std::unique_ptr<CURLM, CurlMultiCleanup>;
using CurlList = std::unique_ptr<curl_slist, CurlListFree>;
using CurlUrl = std::unique_ptr<CURLU, CurlUrlCleanup>;

/// Null for a text that is no address.
CurlUrl parseUrl(const QString &text);
QByteArray partOf(const CurlUrl &url, CURLUPart part);
/// Whether an address is one of http or https.
bool hasWebScheme(const CurlUrl &url);
CurlList headerList(std::initializer_list<QByteArray> headers);
CurlMulti newMulti();

/// One transfer: hands the body on piece by piece and keeps its size within the limit. Of headers,
/// trailers and redirects it takes no more than a feed can have any use for. It is on its way
/// between its curl handle's being added to a multi handle and being taken out of it.
class HttpTransfer {
public:
    using Sink = std::function<bool(const char *, qint64)>;

    HttpTransfer(Sink sink, qint64 bodyLimit);
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer &) = delete;
    HttpTransfer &operator=(const HttpTransfer &) = delete;

    CURL *handle() const { return easy_; }

    template <typename Value> void set(CURLoption option, Value value) {
        curl().curl_easy_setopt(easy_, option, value);
    }
    void setTimeLimits(const HttpLimits &limits, std::chrono::milliseconds whole);
    /// libcurl does not copy the list, so this keeps it.
    void setHeaders(CurlList headers);

    /// Runs it on this thread to its end, or until `stop` is raised.
    CURLcode perform(const StopSignal *stop);

    /// The value of a header of the answer, or nothing.
    QByteArray header(const char *name) const;
    qint64 number(CURLINFO info) const;
    long status() const;
    /// Where the answer sends on to; empty when it is no redirect.
    QString redirect() const;

private:
    static size_t receive(char *data, size_t, size_t size, void *self);
    static size_t receiveHeader(char *line, size_t, size_t size, void *self);
    static int countWire(CURL *, curl_infotype type, char *, size_t size, void *self);
    static int checkWire(void *self, curl_off_t, curl_off_t, curl_off_t, curl_off_t);
    bool isTakenPacking(const QByteArray &header);

    CURL *easy_;
    CurlList headers_;
    Sink sink_;
    qint64 bodyLeft_;
    qint64 headersLeft_;
    qint64 wireLeft_;      // of all that comes, unpacked or not, read or not
    int packingCount_ = 0; // how often the answer being read is packed
};

/// How far a transfer got that has ended so.
HttpProgress progressOf(CURLcode code, const HttpTransfer &transfer);

/// A GET with the settings of the system's request object.
class HttpGet {
public:
    HttpGet(const HttpRequest &request, const HttpLimits &limits);

    /// False when the address is none that can be requested; then there is nothing to run.
    bool isOpened() const { return isOpened_; }
    HttpTransfer &transfer() { return transfer_; }
    /// The answer, once the transfer has ended so.
    HttpAnswer takeAnswer(CURLcode code);

private:
    bool keep(const char *data, qint64 size);

    const HttpLimits limits_;
    HttpTransfer transfer_;
    HttpAnswer answer_;
    bool isOpened_ = false;
    const bool isConditional_;
};

} // namespace tidebrook
