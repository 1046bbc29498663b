#include "bench/floor.h"

#include <curl/curl.h>
#include <libxml/parser.h>
#include <sqlite3.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace tidebrook {

namespace {

constexpr long receiveBuffer = 128 * 1024;
constexpr long redirectLimit = 10;
constexpr long timeLimit = 60'000; // ms
constexpr int pollTime = 1000;     // ms

struct DocumentFree {
    void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};
struct TextFree {
    void operator()(xmlChar *text) const { xmlFree(text); }
};
using Document = std::unique_ptr<xmlDoc, DocumentFree>;
using OwnedText = std::unique_ptr<xmlChar, TextFree>;

std::string_view nameOf(const xmlNode *node) { return reinterpret_cast<const char *>(node->name); }

// The parameters that an item's elements go to.
struct Column {
    std::string_view element;
    int parameter;
};
constexpr std::array columns{Column{"guid", 2}, Column{"title", 3}, Column{"link", 4},
                             Column{"description", 5}, Column{"pubDate", 6}};

constexpr char insertText[] = "INSERT INTO RSSRecord VALUES (?, ?, ?, ?, ?, ?, 0, ?, ?)";

bool isOneText(const xmlNode *node) { return node && !node->next && (node->type == XML_TEXT_NODE); }

void bindText(sqlite3_stmt *statement, int parameter, xmlNode *element) {
    if (isOneText(element->children)) { // lies in the document, which outlives the insert
        sqlite3_bind_text(statement, parameter,
                          reinterpret_cast<const char *>(element->children->content), -1,
                          SQLITE_STATIC);
        return;
    }
    const OwnedText text(xmlNodeGetContent(element));
    sqlite3_bind_text(statement, parameter, reinterpret_cast<const char *>(text.get()), -1,
                      SQLITE_TRANSIENT);
}

void bindItem(sqlite3_stmt *statement, xmlNode *item) {
    for (xmlNode *node = item->children; node; node = node->next) {
        if (node->type != XML_ELEMENT_NODE)
            continue;
        for (const Column &column : columns) {
            if (column.element == nameOf(node)) {
                bindText(statement, column.parameter, node);
                break;
            }
        }
    }
}

xmlNode *channelOf(const Document &document) {
    const xmlNode *root = xmlDocGetRootElement(document.get());
    xmlNode *channel = root ? root->children : nullptr;
    while (channel && nameOf(channel) != "channel")
        channel = channel->next;
    if (!channel)
        throw std::runtime_error("a document has no channel");
    return channel;
}

} // namespace

FloorStore::FloorStore(const std::string &path) {
    xmlInitParser();
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(path.c_str(), &database_, flags, nullptr) != SQLITE_OK) {
        sqlite3_close(database_);
        throw std::runtime_error("cannot open " + path);
    }
    run("PRAGMA journal_mode = WAL");
    run("PRAGMA synchronous = FULL");
    run("SELECT count(*) FROM sqlite_master");
}

FloorStore::~FloorStore() {
    sqlite3_finalize(insert_);
    sqlite3_close(database_);
}

void FloorStore::run(const char *statement) {
    if (sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(std::string(statement) + ": " + sqlite3_errmsg(database_));
}

void FloorStore::prepareInsert() {
    if (!insert_ && sqlite3_prepare_v3(database_, insertText, -1, SQLITE_PREPARE_PERSISTENT,
                                       &insert_, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database_));
}

void FloorStore::begin() { run("BEGIN IMMEDIATE"); }

void FloorStore::commit() { run("COMMIT"); }

FloorStore::Counts FloorStore::insertFeed(const std::string &body, const Channel &channel) {
    constexpr int options = XML_PARSE_HUGE | XML_PARSE_NOBLANKS | XML_PARSE_NOCDATA |
                            XML_PARSE_NONET | XML_PARSE_COMPACT;
    const Document document(
        xmlReadMemory(body.data(), static_cast<int>(body.size()), nullptr, nullptr, options));
    if (!document)
        throw std::runtime_error("a document cannot be read");
    prepareInsert();
    sqlite3_bind_text(insert_, 1, channel.name.c_str(), -1, SQLITE_STATIC);
    sqlite3_bind_int64(insert_, 7, channel.stamp);
    sqlite3_bind_text(insert_, 8, channel.category.c_str(), -1, SQLITE_STATIC);
    Counts counts;
    for (xmlNode *node = channelOf(document)->children; node; node = node->next) {
        if (nameOf(node) != "item")
            continue;
        ++counts.items;
        for (const Column &column : columns)
            sqlite3_bind_null(insert_, column.parameter);
        bindItem(insert_, node);
        const int code = sqlite3_step(insert_);
        sqlite3_reset(insert_);
        if (code == SQLITE_DONE)
            ++counts.stored;
        else if (code != SQLITE_CONSTRAINT)
            throw std::runtime_error(sqlite3_errmsg(database_));
    }
    sqlite3_clear_bindings(insert_); // they point into the document
    return counts;
}

namespace {

/// One transfer into memory.
class FloorTransfer {
public:
    FloorTransfer() : easy_(curl_easy_init()) {
        curl_easy_setopt(easy_, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(easy_, CURLOPT_FOLLOWLOCATION, 1L);
        curl_easy_setopt(easy_, CURLOPT_MAXREDIRS, redirectLimit);
        curl_easy_setopt(easy_, CURLOPT_TIMEOUT_MS, timeLimit);
        curl_easy_setopt(easy_, CURLOPT_ACCEPT_ENCODING, "");
        curl_easy_setopt(easy_, CURLOPT_FAILONERROR, 1L);
        curl_easy_setopt(easy_, CURLOPT_BUFFERSIZE, receiveBuffer);
        curl_easy_setopt(easy_, CURLOPT_PRIVATE, this);
        curl_easy_setopt(easy_, CURLOPT_WRITEDATA, this);
        curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, &FloorTransfer::receive);
    }
    ~FloorTransfer() { curl_easy_cleanup(easy_); }
    FloorTransfer(const FloorTransfer &) = delete;
    FloorTransfer &operator=(const FloorTransfer &) = delete;

    void aim(const std::string &url, std::size_t index) {
        curl_easy_setopt(easy_, CURLOPT_URL, url.c_str());
        index_ = index;
        body_.clear();
    }

    CURL *easy() const { return easy_; }
    std::size_t index() const { return index_; }
    std::string takeBody() { return std::move(body_); }

private:
    static size_t receive(char *data, size_t, size_t size, void *self) {
        auto *transfer = static_cast<FloorTransfer *>(self);
        if (transfer->body_.empty())
            transfer->reserveBody();
        transfer->body_.append(data, size);
        return size;
    }

    void reserveBody() {
        curl_off_t length = -1;
        curl_easy_getinfo(easy_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
        if (length > 0)
            body_.reserve(static_cast<std::size_t>(length));
    }

    CURL *easy_;
    std::string body_;
    std::size_t index_ = 0;
};

void check(CURLcode code, const char *url) {
    if (code != CURLE_OK)
        throw std::runtime_error(std::string(url) + ": " + curl_easy_strerror(code));
}

/// Several transfers at a time; each is aimed at the next address when it is done.
class FloorTransfers {
public:
    FloorTransfers(const std::vector<std::string> &urls, std::size_t parallel)
        : urls_(urls), multi_(curl_multi_init()) {
        for (std::size_t i = 0; i < parallel && i < urls.size(); ++i)
            startNext(*transfers_.emplace_back(std::make_unique<FloorTransfer>()));
    }
    ~FloorTransfers() {
        for (const auto &transfer : transfers_)
            curl_multi_remove_handle(multi_, transfer->easy());
        transfers_.clear();
        curl_multi_cleanup(multi_);
    }
    FloorTransfers(const FloorTransfers &) = delete;
    FloorTransfers &operator=(const FloorTransfers &) = delete;

    struct Body {
        std::size_t index;
        std::string text;
    };

    /// The bodies that are complete; none when all have been given out. The requests that follow
    /// them are on their way already.
    std::vector<Body> take() {
        std::vector<Body> bodies;
        int running = 0;
        while (bodies.empty() && taken_ < urls_.size()) {
            curl_multi_perform(multi_, &running);
            collect(bodies);
            if (bodies.empty())
                curl_multi_poll(multi_, nullptr, 0, pollTime, nullptr);
        }
        curl_multi_perform(multi_, &running);
        return bodies;
    }

private:
    void collect(std::vector<Body> &bodies) {
        int left = 0;
        while (const CURLMsg *message = curl_multi_info_read(multi_, &left)) {
            FloorTransfer *transfer = nullptr;
            curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
            check(message->data.result, urls_[transfer->index()].c_str());
            bodies.push_back({transfer->index(), transfer->takeBody()});
            ++taken_;
            curl_multi_remove_handle(multi_, transfer->easy());
            startNext(*transfer);
        }
    }

    void startNext(FloorTransfer &transfer) {
        if (next_ == urls_.size())
            return;
        transfer.aim(urls_[next_], next_);
        ++next_;
        curl_multi_add_handle(multi_, transfer.easy());
    }

    const std::vector<std::string> &urls_;
    CURLM *multi_;
    std::vector<std::unique_ptr<FloorTransfer>> transfers_;
    std::size_t next_ = 0;
    std::size_t taken_ = 0;
};

} // namespace

std::string floorFetch(const std::string &url) {
    FloorTransfer transfer;
    transfer.aim(url, 0);
    check(curl_easy_perform(transfer.easy()), url.c_str());
    return transfer.takeBody();
}

void floorFetchAll(const std::vector<std::string> &urls, std::size_t parallel,
                   const std::function<void(std::size_t, const std::string &)> &take) {
    FloorTransfers transfers(urls, parallel);
    for (auto bodies = transfers.take(); !bodies.empty(); bodies = transfers.take()) {
        for (const FloorTransfers::Body &body : bodies)
            take(body.index, body.text);
    }
}

} // namespace tidebrook
