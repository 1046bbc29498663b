#include "platform/network/network_watch.h"

#include "platform/base/clock.h"
#include "platform/network/daemon_replies.h"

#include <systemd/sd-bus.h>

#include <sys/epoll.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <string>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds timeToReconnect = 1min;
constexpr std::chrono::microseconds answerTimeout = 5s;

} // namespace

class NetworkWatch::Bus {
public:
    explicit Bus(std::chrono::milliseconds patience);
    ~Bus();
    Bus(const Bus &) = delete;
    Bus &operator=(const Bus &) = delete;

    int descriptor() const { return poll_; }
    void process();
    NetworkState state() const;
    bool isSettled() const;

private:
    /// A daemon, what it is asked, and what it has said.
    struct Daemon {
        const char *name;
        const char *path;
        const char *interface; // of the question, as the next two
        const char *question;
        const char *argument; // or none
        bool (*read)(sd_bus_message *);
        bool withoutIt; // what counts when it has been gone for long
        Bus *bus = nullptr;
        bool isAsked = false; // for the first time on this bus
        std::optional<bool> said = {};
        std::optional<std::chrono::milliseconds> lost = {}; // uptime
    };

    void connect();
    void disconnect();
    void follow(Daemon &daemon);
    bool match(Daemon &daemon, const std::string &rule, sd_bus_message_handler_t handler);
    bool ask(Daemon &daemon);
    void updatePoll();
    std::optional<bool> sayingOf(const Daemon &daemon) const;

    static void lose(Daemon &daemon);
    static int onAnswer(sd_bus_message *answer, void *daemon, sd_bus_error *);
    static int onChange(sd_bus_message *, void *daemon, sd_bus_error *);
    static int onOwner(sd_bus_message *signal, void *daemon, sd_bus_error *);

    const std::chrono::milliseconds patience_;
    const int poll_; // holds the connection's descriptor, which changes
    sd_bus *bus_ = nullptr;
    std::optional<std::chrono::milliseconds> connected_; // the last attempt; uptime
    Daemon network_{"org.freedesktop.NetworkManager",
                    "/org/freedesktop/NetworkManager",
                    "org.freedesktop.DBus.Properties",
                    "GetAll",
                    "org.freedesktop.NetworkManager",
                    isFreeNetwork,
                    true,
                    this};
    Daemon modems_{"org.freedesktop.ModemManager1",
                   "/org/freedesktop/ModemManager1",
                   "org.freedesktop.DBus.ObjectManager",
                   "GetManagedObjects",
                   nullptr,
                   isRoamingPhone,
                   false,
                   this};
};

NetworkWatch::Bus::Bus(std::chrono::milliseconds patience)
    : patience_(patience), poll_(epoll_create1(EPOLL_CLOEXEC)) {
    process();
}

NetworkWatch::Bus::~Bus() {
    sd_bus_close_unref(bus_);
    if (poll_ >= 0)
        close(poll_);
}

void NetworkWatch::Bus::process() {
    if (!bus_)
        connect();
    int result = 1;
    while (bus_ && result > 0)
        result = sd_bus_process(bus_, nullptr);
    if (result < 0)
        disconnect();
    updatePoll();
}

void NetworkWatch::Bus::connect() {
    if (connected_ && uptime() - *connected_ < timeToReconnect)
        return;
    connected_ = uptime();
    if (sd_bus_open_system(&bus_) < 0)
        return;
    sd_bus_set_method_call_timeout(bus_, static_cast<uint64_t>(answerTimeout.count()));
    epoll_event event{};
    const bool isPolled = epoll_ctl(poll_, EPOLL_CTL_ADD, sd_bus_get_fd(bus_), &event) == 0;
    follow(network_);
    follow(modems_);
    if (!isPolled)
        disconnect();
}

void NetworkWatch::Bus::disconnect() {
    bus_ = sd_bus_close_unref(bus_); // which takes its descriptor out of the poll
    lose(network_);
    lose(modems_);
}

// The signals first, so that no change is missed between an answer and them.
void NetworkWatch::Bus::follow(Daemon &daemon) {
    const std::string from = "type='signal',sender='" + std::string(daemon.name) + "',";
    match(daemon,
          "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
          "member='NameOwnerChanged',arg0='" +
              std::string(daemon.name) + "'",
          onOwner);
    const std::string changed =
        from + "interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',arg0='";
    if (&daemon == &network_) {
        match(daemon, changed + daemon.name + "',path='" + daemon.path + "'", onChange);
    } else {
        // Not of all its properties: the strength of the signal changes every few seconds.
        match(daemon, changed + "org.freedesktop.ModemManager1.Modem.Modem3gpp'", onChange);
        match(daemon,
              from + "interface='org.freedesktop.ModemManager1.Modem',member='StateChanged'",
              onChange);
        match(daemon, from + "interface='org.freedesktop.DBus.ObjectManager'", onChange);
    }
    daemon.isAsked = ask(daemon);
}

bool NetworkWatch::Bus::match(Daemon &daemon, const std::string &rule,
                              sd_bus_message_handler_t handler) {
    return sd_bus_add_match_async(bus_, nullptr, rule.c_str(), handler, nullptr, &daemon) >= 0;
}

bool NetworkWatch::Bus::ask(Daemon &daemon) {
    sd_bus_message *question = nullptr;
    const bool isSent =
        sd_bus_message_new_method_call(bus_, &question, daemon.name, daemon.path, daemon.interface,
                                       daemon.question) >= 0 &&
        (!daemon.argument || sd_bus_message_append(question, "s", daemon.argument) >= 0) &&
        sd_bus_message_set_auto_start(question, 0) >= 0 &&
        sd_bus_call_async(bus_, nullptr, question, onAnswer, &daemon, 0) >= 0;
    sd_bus_message_unref(question);
    return isSent;
}

void NetworkWatch::Bus::lose(Daemon &daemon) {
    daemon.isAsked = false;
    if (daemon.said && !daemon.lost)
        daemon.lost = uptime();
}

int NetworkWatch::Bus::onAnswer(sd_bus_message *answer, void *data, sd_bus_error *) {
    Daemon &daemon = *static_cast<Daemon *>(data);
    daemon.isAsked = false;
    if (sd_bus_message_is_method_error(answer, nullptr) > 0)
        return 0; // it does not run, which its name's owner says, or is too slow
    daemon.said = daemon.read(answer);
    daemon.lost = std::nullopt;
    return 0;
}

int NetworkWatch::Bus::onChange(sd_bus_message *, void *data, sd_bus_error *) {
    Daemon &daemon = *static_cast<Daemon *>(data);
    daemon.bus->ask(daemon);
    return 0;
}

int NetworkWatch::Bus::onOwner(sd_bus_message *signal, void *data, sd_bus_error *) {
    Daemon &daemon = *static_cast<Daemon *>(data);
    const char *name = nullptr;
    const char *before = nullptr;
    const char *owner = nullptr;
    if (sd_bus_message_read(signal, "sss", &name, &before, &owner) < 0)
        return 0;
    if (std::strlen(owner) == 0)
        lose(daemon);
    else
        daemon.bus->ask(daemon);
    return 0;
}

void NetworkWatch::Bus::updatePoll() {
    if (!bus_)
        return;
    const int events = sd_bus_get_events(bus_);
    epoll_event event{};
    event.events = static_cast<std::uint32_t>(events); // EPOLLIN is POLLIN, and EPOLLOUT POLLOUT
    if (events < 0 || epoll_ctl(poll_, EPOLL_CTL_MOD, sd_bus_get_fd(bus_), &event) != 0)
        disconnect();
}

std::optional<bool> NetworkWatch::Bus::sayingOf(const Daemon &daemon) const {
    const bool isGone = daemon.lost && uptime() - *daemon.lost >= patience_;
    return isGone ? daemon.withoutIt : daemon.said;
}

NetworkState NetworkWatch::Bus::state() const { return {sayingOf(network_), sayingOf(modems_)}; }

bool NetworkWatch::Bus::isSettled() const { return !network_.isAsked && !modems_.isAsked; }

NetworkWatch::NetworkWatch(std::chrono::milliseconds patience)
    : bus_(std::make_unique<Bus>(patience)) {}

NetworkWatch::~NetworkWatch() = default;

int NetworkWatch::descriptor() const { return bus_->descriptor(); }

void NetworkWatch::process() { bus_->process(); }

NetworkState NetworkWatch::state() const { return bus_->state(); }

bool NetworkWatch::isSettled() const { return bus_->isSettled(); }

} // namespace tidebrook
