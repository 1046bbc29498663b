#include "bench/floor.h"

#include <curl/curl.h>
#include <libxml/parser.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace tidebrook {

namespace {

constexpr long receiveBuffer = 128 * 1024;
constexpr long redirectLimit = 10;
constexpr long timeLimit = 60'000; // ms
constexpr int pollTime = 1000;     // ms

using Document = std::unique_ptr<xmlDoc, void (*)(xmlDoc *)>;

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
    const std::unique_ptr<xmlChar, xmlFreeFunc> text(xmlNodeGetContent(element), xmlFree);
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

FloorStore::FloorStore(const std::string &device) {
    const std::string path = device + "/RSSVault.sdf";
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

FloorStore::Counts FloorStore::insertFeed(const std::string &body, const Channel &channel) {
    constexpr int options = XML_PARSE_HUGE | XML_PARSE_NOBLANKS | XML_PARSE_NOCDATA |
                            XML_PARSE_NONET | XML_PARSE_COMPACT;
    const Document document(
        xmlReadMemory(body.data(), static_cast<int>(body.size()), nullptr, nullptr, options),
        xmlFreeDoc);
    if (!document)
        throw std::runtime_error("a document cannot be read");
    if (!insert_ && sqlite3_prepare_v3(database_, insertText, -1, SQLITE_PREPARE_PERSISTENT,
                                       &insert_, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database_));
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
struct FloorTransfer {
    FloorTransfer() : easy(curl_easy_init()) {
        curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
        curl_easy_setopt(easy, CURLOPT_MAXREDIRS, redirectLimit);
        curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, timeLimit);
        curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
        curl_easy_setopt(easy, CURLOPT_FAILONERROR, 1L);
        curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, receiveBuffer);
        curl_easy_setopt(easy, CURLOPT_PRIVATE, this);
        curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &FloorTransfer::receive);
    }
    ~FloorTransfer() { curl_easy_cleanup(easy); }
    FloorTransfer(const FloorTransfer &) = delete;
    FloorTransfer &operator=(const FloorTransfer &) = delete;

    void aim(const std::string &url, std::size_t index) {
        curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
        urlIndex = index;
        body.clear();
    }

    static size_t receive(char *data, size_t, size_t size, void *self) {
        auto *transfer = static_cast<FloorTransfer *>(self);
        curl_off_t length = -1;
        if (transfer->body.empty())
            curl_easy_getinfo(transfer->easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
        if (length > 0)
            transfer->body.reserve(static_cast<std::size_t>(length));
        transfer->body.append(data, size);
        return size;
    }

    CURL *easy;
    std::string body;
    std::size_t urlIndex = 0;
};

void check(CURLcode code, const char *url) {
    if (code != CURLE_OK)
        throw std::runtime_error(std::string(url) + ": " + curl_easy_strerror(code));
}

} // namespace

std::string floorFetch(const std::string &url) {
    FloorTransfer transfer;
    transfer.aim(url, 0);
    check(curl_easy_perform(transfer.easy), url.c_str());
    return std::move(transfer.body);
}

void floorFetchAll(const std::vector<std::string> &urls, std::size_t parallel,
                   const std::function<void(std::size_t, const std::string &)> &take) {
    CURLM *multi = curl_multi_init();
    std::size_t next = 0;
    const auto startNext = [&](FloorTransfer &transfer) {
        if (next == urls.size())
            return;
        transfer.aim(urls[next], next);
        ++next;
        curl_multi_add_handle(multi, transfer.easy);
    };
    std::vector<FloorTransfer> transfers(std::min(parallel, urls.size()));
    for (FloorTransfer &transfer : transfers)
        startNext(transfer);
    int running = 0;
    for (std::size_t taken = 0; taken < urls.size();) {
        std::vector<std::pair<std::size_t, std::string>> bodies;
        curl_multi_perform(multi, &running);
        for (int left = 0; const CURLMsg *message = curl_multi_info_read(multi, &left);) {
            FloorTransfer *transfer = nullptr;
            curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
            check(message->data.result, urls[transfer->urlIndex].c_str());
            bodies.emplace_back(transfer->urlIndex, std::move(transfer->body));
            curl_multi_remove_handle(multi, transfer->easy);
            startNext(*transfer);
        }
        if (bodies.empty())
            curl_multi_poll(multi, nullptr, 0, pollTime, nullptr);
        else
            curl_multi_perform(multi, &running); // the next requests are on their way meanwhile
        for (const auto &[index, body] : bodies)
            take(index, body);
        taken += bodies.size();
    }
    curl_multi_cleanup(multi);
}

} // namespace tidebrook
