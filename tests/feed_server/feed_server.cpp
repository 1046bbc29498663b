#include "feed_server/feed_server.h"

#include "feed_server/generated_feed.h"

#include <httplib.h>
#include <zlib.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <future>
#include <mutex>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>

namespace tidebrook {

namespace {

using std::chrono::milliseconds;

constexpr size_t simultaneousConnections = 64;
constexpr int waitingConnections = 128;
constexpr milliseconds idleTime{5000};
constexpr int largestGeneratedFeed = 1'000'000;

struct Answer {
    enum class Manner { Whole, Half, Trickled, Endless, Never };
    Manner manner = Manner::Whole;
    QByteArray body;
    QByteArray contentType = "text/xml";
    int status = 200;
    FeedServer::Headers headers;
    milliseconds interval{0};
};

void describeEndpoint(const sockaddr_in &address, std::string &ip, int &port) {
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
    ip = text;
    port = ntohs(address.sin_port);
}

// The library's own stream waits for seconds on a silent client and cannot be woken. This one
// ends as soon as its socket is shut down from another thread.
class Connection final : public httplib::Stream {
public:
    explicit Connection(int socket) : socket_(socket) {}

    bool is_readable() const override { return begin_ < end_ || waitFor(POLLIN, milliseconds(0)); }

    bool is_writable() const override { return waitFor(POLLOUT, milliseconds(-1)); }

    ssize_t read(char *data, size_t size) override {
        if (begin_ == end_ && !fill())
            return -1;
        const size_t taken = std::min(size, end_ - begin_);
        std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_), taken, data);
        begin_ += taken;
        return static_cast<ssize_t>(taken);
    }

    ssize_t write(const char *data, size_t size) override {
        return send(socket_, data, size, MSG_NOSIGNAL);
    }

    void get_remote_ip_and_port(std::string &ip, int &port) const override {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        getpeername(socket_, reinterpret_cast<sockaddr *>(&address), &size);
        describeEndpoint(address, ip, port);
    }

    void get_local_ip_and_port(std::string &ip, int &port) const override {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        getsockname(socket_, reinterpret_cast<sockaddr *>(&address), &size);
        describeEndpoint(address, ip, port);
    }

    int socket() const override { return socket_; }

    bool hasRequest() const { return begin_ < end_ || waitFor(POLLIN, idleTime); }

    // Returns when the client has closed its side, or when this side was shut down.
    void waitUntilLeft() const { waitFor(POLLRDHUP, milliseconds(-1)); }

    void drop() const { shutdown(socket_, SHUT_RDWR); }

private:
    bool waitFor(short event, milliseconds limit) const {
        pollfd watched{socket_, event, 0};
        int ready = 0;
        do {
            ready = poll(&watched, 1, static_cast<int>(limit.count()));
        } while (ready < 0 && errno == EINTR);
        return ready > 0 && (watched.revents & event) != 0;
    }

    bool fill() {
        if (!waitFor(POLLIN, idleTime))
            return false;
        const ssize_t size = recv(socket_, buffer_.data(), buffer_.size(), 0);
        begin_ = 0;
        end_ = size > 0 ? static_cast<size_t>(size) : 0;
        return size > 0;
    }

    int socket_;
    std::array<char, 4096> buffer_;
    size_t begin_ = 0;
    size_t end_ = 0;
};

thread_local const Connection *servedConnection = nullptr;

QByteArray compressed(const QByteArray &body) {
    constexpr int gzipWrapper = 16;
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, MAX_WBITS + gzipWrapper, 8,
                     Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::runtime_error("zlib cannot be used");
    QByteArray input = body;
    QByteArray output(
        static_cast<qsizetype>(deflateBound(&stream, static_cast<uLong>(body.size()))),
        Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef *>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef *>(output.data());
    stream.avail_out = static_cast<uInt>(output.size());
    const int result = deflate(&stream, Z_FINISH);
    output.resize(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    if (result != Z_STREAM_END)
        throw std::runtime_error("a body cannot be compressed");
    return output;
}

QByteArray contentTypeOf(const QString &fileName) {
    static const QHash<QString, QByteArray> types{
        {QStringLiteral("xml"), "text/xml"},     {QStringLiteral("rss"), "application/rss+xml"},
        {QStringLiteral("html"), "text/html"},   {QStringLiteral("txt"), "text/plain"},
        {QStringLiteral("png"), "image/png"},    {QStringLiteral("jpg"), "image/jpeg"},
        {QStringLiteral("opml"), "text/x-opml"},
    };
    return types.value(QFileInfo(fileName).suffix().toLower(), "application/octet-stream");
}

// What comes behind `prefix`, without its slash; null if the path is not below it.
QString below(const QString &prefix, const QString &path) {
    const QString folder = prefix.endsWith(u'/') ? prefix : prefix + u'/';
    return path.startsWith(folder) ? path.sliced(folder.size()) : QString();
}

std::optional<Answer> fileAnswer(const QString &directory, const QString &relativePath) {
    const QString root = QFileInfo(directory).canonicalFilePath();
    const QString wanted = QFileInfo(QDir(root).filePath(relativePath)).canonicalFilePath();
    if (root.isEmpty() || below(root, wanted).isEmpty())
        return std::nullopt;
    QFile file(wanted);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    Answer answer;
    answer.body = file.readAll();
    answer.contentType = contentTypeOf(wanted);
    return answer;
}

Answer notFound() {
    Answer answer;
    answer.status = 404;
    answer.contentType = "text/plain";
    answer.body = "There is nothing here.\n";
    return answer;
}

bool sendSlice(httplib::DataSink &sink, const QByteArray &body, size_t offset, size_t end) {
    constexpr size_t slice = 65536;
    return sink.write(body.constData() + offset, std::min(slice, end - offset));
}

void sendWhole(const Answer &answer, httplib::Response &response) {
    const std::string type = answer.contentType.toStdString();
    if (answer.body.isEmpty()) {
        response.set_content(std::string(), type);
        return;
    }
    const auto size = static_cast<size_t>(answer.body.size());
    response.set_content_provider(
        size, type, [body = answer.body, size](size_t offset, size_t, httplib::DataSink &sink) {
            return sendSlice(sink, body, offset, size);
        });
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

FeedServer::Request recorded(const httplib::Request &request) {
    FeedServer::Request record;
    record.method = QByteArray::fromStdString(request.method);
    record.path = QByteArray::fromStdString(request.target);
    for (const auto &[name, value] : request.headers)
        record.headers.append({QByteArray::fromStdString(name), QByteArray::fromStdString(value)});
    return record;
}

// The library ignores SIGPIPE for the whole process. The code under test must not be shielded by
// that: where it runs without this server, nobody ignores the signal for it.
class SigPipeKeeper {
public:
    SigPipeKeeper() { sigaction(SIGPIPE, nullptr, &kept_); }
    ~SigPipeKeeper() { sigaction(SIGPIPE, &kept_, nullptr); }
    SigPipeKeeper(const SigPipeKeeper &) = delete;
    SigPipeKeeper &operator=(const SigPipeKeeper &) = delete;

private:
    struct sigaction kept_ {};
};

} // namespace

class FeedServer::Private final : public httplib::Server {
public:
    explicit Private(int port);
    ~Private() override;
    Private(const Private &) = delete;
    Private &operator=(const Private &) = delete;

    void setAnswer(const QString &path, const Answer &answer);

    using Directories = QList<std::pair<QString, QString>>; // prefixes and folders

    int port_ = 0;
    std::atomic<milliseconds> delay_{milliseconds(0)};

    mutable std::mutex mutex_; // guards what follows
    QHash<QString, Answer> answers_;
    Directories directories_; // the last one first
    QStringList generatedPrefixes_;
    QHash<std::pair<int, quint32>, QByteArray> generatedFeeds_;
    QList<Request> requests_;

private:
    void bind(int port);
    void start();
    void dropConnections();

    bool process_and_close_socket(int socket) override;
    bool add(const Connection &connection);
    void remove(const Connection &connection);
    void converse(Connection &connection);
    void prepare(httplib::Request &request);
    bool waitUnlessStopped(milliseconds time);

    void respond(const QString &path, httplib::Response &response);
    void sendTrickled(const Answer &answer, httplib::Response &response);
    Answer answerFor(const QString &path);
    std::optional<Answer> generatedAnswer(const QString &path);

    int listeningSocket_ = -1;
    std::mutex connectionsMutex_; // guards what follows
    std::condition_variable stopping_;
    bool isStopping_ = false;
    std::set<const Connection *> connections_;

    std::thread thread_;
};

FeedServer::Private::Private(int port) {
    set_socket_options([this](int socket) {
        // Not the library's own options: they would let two servers share one port.
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        listeningSocket_ = socket;
    });
    set_tcp_nodelay(true);
    set_keep_alive_max_count(1000); // only announced: connections are kept for as long as wanted
    set_pre_routing_handler([this](const httplib::Request &request, httplib::Response &response) {
        respond(QString::fromStdString(request.path), response);
        return HandlerResponse::Handled;
    });
    bind(port);
    start();
}

FeedServer::Private::~Private() {
    dropConnections();
    stop();
    thread_.join();
}

void FeedServer::Private::bind(int port) {
    const std::string host = "127.0.0.1";
    const bool isBound =
        port == 0 ? (port_ = bind_to_any_port(host)) > 0 : bind_to_port(host, (port_ = port));
    if (!isBound)
        throw std::runtime_error("cannot listen on port " + std::to_string(port));
    // The library lets only five connections wait, and those beyond would be tried again by their
    // clients' kernel only a second later.
    ::listen(listeningSocket_, waitingConnections);
}

void FeedServer::Private::start() {
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

void FeedServer::Private::dropConnections() {
    const std::lock_guard lock(connectionsMutex_);
    isStopping_ = true;
    stopping_.notify_all();
    for (const Connection *connection : connections_)
        connection->drop();
}

bool FeedServer::Private::process_and_close_socket(int socket) {
    Connection connection(socket);
    if (add(connection)) {
        servedConnection = &connection;
        converse(connection);
        servedConnection = nullptr;
        remove(connection);
    }
    connection.drop();
    close(socket);
    return true;
}

bool FeedServer::Private::add(const Connection &connection) {
    const std::lock_guard lock(connectionsMutex_);
    if (!isStopping_)
        connections_.insert(&connection);
    return !isStopping_;
}

void FeedServer::Private::remove(const Connection &connection) {
    const std::lock_guard lock(connectionsMutex_);
    connections_.erase(&connection);
}

void FeedServer::Private::converse(Connection &connection) {
    bool isClosed = false;
    while (!isClosed && connection.hasRequest()) {
        const bool isAnswered = process_request(
            connection, false, isClosed, [this](httplib::Request &request) { prepare(request); });
        if (!isAnswered)
            return;
    }
}

void FeedServer::Private::prepare(httplib::Request &request) {
    {
        const std::lock_guard lock(mutex_);
        requests_.append(recorded(request));
    }
    // Otherwise the library would compress answers of its own accord.
    request.headers.erase("Accept-Encoding");
    waitUnlessStopped(delay_.load());
}

bool FeedServer::Private::waitUnlessStopped(milliseconds time) {
    std::unique_lock lock(connectionsMutex_);
    return !stopping_.wait_for(lock, time, [this] { return isStopping_; });
}

void FeedServer::Private::respond(const QString &path, httplib::Response &response) {
    const Answer answer = answerFor(path);
    response.status = answer.status;
    for (const auto &[name, value] : answer.headers)
        response.set_header(name.toStdString(), value.toStdString());
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

void FeedServer::Private::sendTrickled(const Answer &answer, httplib::Response &response) {
    response.set_content_provider(static_cast<size_t>(answer.body.size()),
                                  answer.contentType.toStdString(),
                                  [this, answer](size_t offset, size_t, httplib::DataSink &sink) {
                                      return sink.write(answer.body.constData() + offset, 1) &&
                                             waitUnlessStopped(answer.interval);
                                  });
}

void FeedServer::Private::setAnswer(const QString &path, const Answer &answer) {
    const std::lock_guard lock(mutex_);
    answers_.insert(path, answer);
}

Answer FeedServer::Private::answerFor(const QString &path) {
    Directories directories;
    {
        const std::lock_guard lock(mutex_);
        const auto told = answers_.constFind(path);
        if (told != answers_.constEnd())
            return *told;
        directories = directories_;
    }
    for (const auto &[prefix, directory] : directories) {
        const QString relativePath = below(prefix, path);
        if (relativePath.isEmpty())
            continue;
        if (std::optional<Answer> file = fileAnswer(directory, relativePath))
            return *std::move(file);
    }
    return generatedAnswer(path).value_or(notFound());
}

std::optional<Answer> FeedServer::Private::generatedAnswer(const QString &path) {
    const std::lock_guard lock(mutex_);
    for (const QString &prefix : generatedPrefixes_) {
        const QStringList numbers = below(prefix, path).split(u'/');
        if (numbers.size() != 2)
            continue;
        bool isCount = false;
        bool isSeed = false;
        const int items = numbers[0].toInt(&isCount);
        const quint32 seed = numbers[1].toUInt(&isSeed);
        if (!isCount || !isSeed || items < 0 || items > largestGeneratedFeed)
            continue;
        QByteArray &feed = generatedFeeds_[{items, seed}];
        if (feed.isEmpty())
            feed = generatedFeed(items, seed);
        Answer answer;
        answer.body = feed;
        return answer;
    }
    return std::nullopt;
}

QByteArray FeedServer::Request::header(QByteArrayView name) const {
    for (const auto &[itsName, value] : headers) {
        if (name.compare(itsName, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

FeedServer::FeedServer(int port) {
    const SigPipeKeeper keeper;
    d_ = std::make_unique<Private>(port);
}

FeedServer::~FeedServer() = default;

int FeedServer::port() const { return d_->port_; }

QString FeedServer::url(QStringView path) const {
    return QStringLiteral("http://127.0.0.1:%1%2").arg(port()).arg(path);
}

void FeedServer::serve(const QString &path, const QByteArray &body, const QByteArray &contentType) {
    Answer answer;
    answer.body = body;
    answer.contentType = contentType;
    d_->setAnswer(path, answer);
}

void FeedServer::serveGzip(const QString &path, const QByteArray &body,
                           const QByteArray &contentType) {
    Answer answer;
    answer.body = compressed(body);
    answer.contentType = contentType;
    answer.headers = {{"Content-Encoding", "gzip"}};
    d_->setAnswer(path, answer);
}

void FeedServer::serveDirectory(const QString &prefix, const QString &directory) {
    const std::lock_guard lock(d_->mutex_);
    d_->directories_.prepend({prefix, directory});
}

void FeedServer::serveGenerated(const QString &prefix) {
    const std::lock_guard lock(d_->mutex_);
    d_->generatedPrefixes_.append(prefix);
}

void FeedServer::setDelay(std::chrono::milliseconds delay) { d_->delay_ = delay; }

void FeedServer::answerStatus(const QString &path, int status, const QByteArray &body,
                              const Headers &headers) {
    Answer answer;
    answer.status = status;
    answer.body = body;
    answer.contentType = "text/plain";
    for (const auto &header : headers) {
        if (header.first.compare("Content-Type", Qt::CaseInsensitive) == 0)
            answer.contentType = header.second;
        else
            answer.headers.append(header);
    }
    d_->setAnswer(path, answer);
}

void FeedServer::redirect(const QString &path, const QByteArray &location, int status) {
    answerStatus(path, status, {}, {{"Location", location}});
}

void FeedServer::hang(const QString &path) {
    Answer answer;
    answer.manner = Answer::Manner::Never;
    d_->setAnswer(path, answer);
}

void FeedServer::resetHalfWay(const QString &path, const QByteArray &body) {
    Answer answer;
    answer.manner = Answer::Manner::Half;
    answer.body = body;
    d_->setAnswer(path, answer);
}

void FeedServer::trickle(const QString &path, const QByteArray &body,
                         std::chrono::milliseconds interval) {
    Answer answer;
    answer.manner = Answer::Manner::Trickled;
    answer.body = body;
    answer.interval = interval;
    d_->setAnswer(path, answer);
}

void FeedServer::endless(const QString &path) {
    Answer answer;
    answer.manner = Answer::Manner::Endless;
    d_->setAnswer(path, answer);
}

QList<FeedServer::Request> FeedServer::requests() const {
    const std::lock_guard lock(d_->mutex_);
    return d_->requests_;
}

void FeedServer::clearRequests() {
    const std::lock_guard lock(d_->mutex_);
    d_->requests_.clear();
}

} // namespace tidebrook
