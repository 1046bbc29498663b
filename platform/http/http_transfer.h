#pragma once

#include "platform/http/curl_library.h"
#include "platform/http/http.h"

#include <array>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>

namespace tidebrook {

// What the transports of this module share over libcurl. No other module includes this.

/// How many redirects a request follows.
inline constexpr long redirectLimit = 10;

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

/// One transfer: hands the body on piece by piece and keeps its size within the limit. Of headers,
/// trailers and redirects it takes no more than a feed can have any use for.
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

    /// Why it is not complete, in libcurl's words where libcurl found that out.
    QString failure(CURLcode code) const;
    /// Whether the empty line behind the headers has come. libcurl takes an answer that ends before
    /// it for one with an empty body.
    bool hasWholeHead() const { return hasWholeHead_; }
    /// The value of a header of the answer, or nothing.
    QByteArray header(const char *name) const;
    qint64 number(CURLINFO what) const { return info<curl_off_t>(what); }
    std::chrono::microseconds duration() const {
        return std::chrono::microseconds(number(CURLINFO_TOTAL_TIME_T));
    }
    long status() const { return info<long>(CURLINFO_RESPONSE_CODE); }
    /// The address of the answer, behind the redirects that were followed.
    QString address() const {
        return QString::fromUtf8(info<const char *>(CURLINFO_EFFECTIVE_URL));
    }
    /// The address that the answer redirects to, whose body need not have come whole; empty when it
    /// is no redirect.
    QString redirect() const;

private:
    template <typename Value> Value info(CURLINFO what) const {
        Value value{};
        if (easy_)
            curl().curl_easy_getinfo(easy_, what, &value);
        return value;
    }
    void setAuthorities();
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
    qint64 wireLeft_; // of all that comes, unpacked or not, read or not
    std::array<char, CURL_ERROR_SIZE> failure_{};
    bool hasWholeHead_ = false;
    int packingCount_ = 0; // how often the answer being read is packed
    bool isPackingRefused_ = false;
};

/// Runs transfers on one thread, side by side.
class CurlLoop {
public:
    /// Keeps up to `connections` open. `stop` may be null.
    CurlLoop(const StopSignal *stop, int connections);

    /// False when nothing can be run.
    bool isOpen() const { return multi_ != nullptr; }

    /// Has the transfer run; it must be removed before it ends. False when that is not possible.
    bool add(const HttpTransfer &transfer);
    /// Changes nothing when it was not added.
    void remove(const HttpTransfer &transfer);

    struct Ended {
        CURL *handle; ///< of the transfer
        CURLcode code;
    };
    /// Runs until a transfer has ended. Nothing when the stop was raised or libcurl failed.
    std::optional<Ended> takeEnded();

private:
    const StopSignal *const stop_;
    const CurlMulti multi_;
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

    HttpTransfer transfer_;
    HttpAnswer answer_;
    bool isOpened_ = false;
    const bool isConditional_;
};

} // namespace tidebrook
