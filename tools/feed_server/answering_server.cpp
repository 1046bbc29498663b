#include "feed_server/answering_server.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <future>
#include <stdexcept>

namespace tidebrook {

namespace {

using std::chrono::milliseconds;

constexpr size_t simultaneousConnections = 64;
constexpr int waitingConnections = 128;
constexpr size_t largestSlice = 65536;

thread_local const Connection *servedConnection = nullptr;

// The library decodes percent signs in the values of headers, and adds headers of its own.
httplib::Headers headersAsSent(const QByteArray &request) {
    httplib::Headers headers;
    const QList<QByteArray> lines = request.split('\n');
    for (const QByteArray &line : lines.sliced(1)) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0)
            headers.emplace(line.first(colon).toStdString(),
                            line.sliced(colon + 1).trimmed().toStdString());
    }
    return headers;
}

FeedServer::Request recorded(const httplib::Request &request) {
    FeedServer::Request record;
    record.method = QByteArray::fromStdString(request.method);
    record.path = QByteArray::fromStdString(request.target);
    for (const auto &[name, value] : request.headers)
        record.headers.append({QByteArray::fromStdString(name), QByteArray::fromStdString(value)});
    return record;
}

// A date counts only for a client that has no ETag, even if that is another.
bool hasAlready(const httplib::Request &request, const Answer &answer) {
    const bool hasTag = request.has_header("If-None-Match");
    const QByteArray &current = hasTag ? answer.etag : answer.lastModified;
    const char *const name = hasTag ? "If-None-Match" : "If-Modified-Since";
    return !current.isEmpty() && current.toStdString() == request.get_header_value(name);
}

void setHeaders(const Answer &answer, httplib::Response &response) {
    for (const auto &[name, value] : answer.headers)
        response.set_header(name.toStdString(), value.toStdString());
    if (!answer.etag.isEmpty())
        response.set_header("ETag", answer.etag.toStdString());
    if (!answer.lastModified.isEmpty())
        response.set_header("Last-Modified", answer.lastModified.toStdString());
}

bool sendSlice(httplib::DataSink &sink, const QByteArray &body, size_t offset, size_t end) {
    return sink.write(body.constData() + offset, std::min(largestSlice, end - offset));
}

void sendHalf(const Answer &answer, httplib::Response &response) {
    const auto size = static_cast<size_t>(answer.body.size());
    response.set_content_provider(
        size, answer.contentType.toStdString(),
        [body = answer.body, half = size / 2](size_t offset, size_t, httplib::DataSink &sink) {
            return offset < half && sendSlice(sink, body, offset, half);
        });
}

void sendEndlessly(const Answer &answer, httplib::Response &response) {
    static const std::string beginning =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rss version=\"2.0\"><channel>"
        "<title>Endless</title><link>http://example.org/</link><description>No end</description>\n";
    static const std::string item = "<item><title>Again</title><description>" +
                                    std::string(16000, '.') + "</description></item>\n";
    response.set_chunked_content_provider(answer.contentType.toStdString(),
                                          [](size_t offset, httplib::DataSink &sink) {
                                              const std::string &next = offset ? item : beginning;
                                              return sink.write(next.data(), next.size());
                                          });
}

} // namespace

AnsweringServer::AnsweringServer(int port) {
    set_socket_options([this](int socket) {
        // Not the library's own options: they would let two servers share one port.
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        listeningSocket_ = socket;
    });
    set_tcp_nodelay(true);
    set_keep_alive_max_count(1000); // only announced: connections are kept for as long as wanted
    set_pre_routing_handler([this](const httplib::Request &request, httplib::Response &response) {
        respond(request, response);
        return HandlerResponse::Handled;
    });
    // The length that the library announces would be taken for that of the unchanged body.
    set_post_routing_handler([](const httplib::Request &, httplib::Response &response) {
        if (response.status == 304)
            response.headers.erase("Content-Length");
    });
    bind(port);
    start();
}

AnsweringServer::~AnsweringServer() {
    dropConnections();
    stop();
    thread_.join();
}

QList<FeedServer::Request> AnsweringServer::requests() const {
    // A shared list would be grown in place while its reader, who holds no lock, lets go of it.
    const std::lock_guard lock(requestsMutex_);
    return {requests_.begin(), requests_.end()};
}

void AnsweringServer::clearRequests() {
    const std::lock_guard lock(requestsMutex_);
    requests_.clear();
}

void AnsweringServer::bind(int port) {
    const std::string host = "127.0.0.1";
    const bool isBound =
        port == 0 ? (port_ = bind_to_any_port(host)) > 0 : bind_to_port(host, (port_ = port));
    if (!isBound)
        throw std::runtime_error("cannot listen on port " + std::to_string(port));
    // The library lets only five connections wait, and those beyond would be tried again by their
    // clients' kernel only a second later.
    ::listen(listeningSocket_, waitingConnections);
}

void AnsweringServer::start() {
    // The library asks for its threads once it can be stopped again.
    const auto isReady = std::make_shared<std::promise<void>>();
    std::future<void> ready = isReady->get_future();
    new_task_queue = [isReady] {
        isReady->set_value();
        return new httplib::ThreadPool(simultaneousConnections);
    };
    thread_ = std::thread([this] { listen_after_bind(); });
    ready.wait();
}

void AnsweringServer::dropConnections() {
    const std::lock_guard lock(connectionsMutex_);
    isStopping_ = true;
    stopping_.notify_all();
    for (const Connection *connection : connections_)
        connection->drop();
}

bool AnsweringServer::process_and_close_socket(int socket) {
    ++connectionCount;
    Connection connection(socket, bytes);
    if (add(connection)) {
        servedConnection = &connection;
        converse(connection);
        requestCounts.end(connection);
        servedConnection = nullptr;
        remove(connection);
    }
    connection.drop();
    close(socket);
    return true;
}

bool AnsweringServer::add(const Connection &connection) {
    const std::lock_guard lock(connectionsMutex_);
    if (!isStopping_)
        connections_.insert(&connection);
    return !isStopping_;
}

void AnsweringServer::remove(const Connection &connection) {
    const std::lock_guard lock(connectionsMutex_);
    connections_.erase(&connection);
}

void AnsweringServer::converse(Connection &connection) {
    bool isClosed = false;
    while (!isClosed && connection.awaitRequest()) {
        const bool isAnswered = process_request(
            connection, false, isClosed,
            [this, &connection](httplib::Request &request) { prepare(connection, request); });
        if (!isAnswered)
            return;
    }
}

void AnsweringServer::prepare(const Connection &connection, httplib::Request &request) {
    request.headers = headersAsSent(connection.readSoFar());
    FeedServer::Request record = recorded(request);
    record.arrived = connection.arrived();
    requestCounts.begin(connection, record.header("Host"));
    {
        const std::lock_guard lock(requestsMutex_);
        requests_.append(std::move(record));
    }
    // Otherwise the library would compress answers of its own accord.
    request.headers.erase("Accept-Encoding");
    waitUnlessStopped(delay.load());
}

bool AnsweringServer::waitUnlessStopped(milliseconds time) {
    std::unique_lock lock(connectionsMutex_);
    return !stopping_.wait_for(lock, time, [this] { return isStopping_; });
}

void AnsweringServer::respond(const httplib::Request &request, httplib::Response &response) {
    const Answer answer = book.find(QString::fromStdString(request.path));
    setHeaders(answer, response);
    if (hasAlready(request, answer)) {
        response.status = 304;
        requestCounts.end(*servedConnection);
        return;
    }
    response.status = answer.status;
    sendBody(answer, response);
}

void AnsweringServer::sendBody(const Answer &answer, httplib::Response &response) {
    switch (answer.manner) {
    case Answer::Manner::Whole:
        return sendWhole(answer, response);
    case Answer::Manner::Half:
        return sendHalf(answer, response);
    case Answer::Manner::Trickled:
        return sendTrickled(answer, response);
    case Answer::Manner::Endless:
        return sendEndlessly(answer, response);
    case Answer::Manner::Never:
        servedConnection->waitUntilLeft();
        servedConnection->drop();
        return;
    }
}

void AnsweringServer::sendWhole(const Answer &answer, httplib::Response &response) {
    const std::string type = answer.contentType.toStdString();
    if (answer.body.isEmpty()) {
        requestCounts.end(*servedConnection);
        response.set_content(std::string(), type);
        return;
    }
    const auto size = static_cast<size_t>(answer.body.size());
    response.set_content_provider(
        size, type,
        [this, body = answer.body, size](size_t offset, size_t, httplib::DataSink &sink) {
            if (size - offset <= largestSlice)
                requestCounts.end(*servedConnection);
            return sendSlice(sink, body, offset, size);
        });
}

void AnsweringServer::sendTrickled(const Answer &answer, httplib::Response &response) {
    const auto size = static_cast<size_t>(answer.body.size());
    response.set_content_provider(
        size, answer.contentType.toStdString(),
        [this, answer, size](size_t offset, size_t, httplib::DataSink &sink) {
            if (offset + 1 == size)
                requestCounts.end(*servedConnection);
            return sink.write(answer.body.constData() + offset, 1) &&
                   waitUnlessStopped(answer.interval);
        });
}

} // namespace tidebrook
