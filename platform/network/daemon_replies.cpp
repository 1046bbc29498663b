#include "platform/network/daemon_replies.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <functional>
#include <string_view>

namespace tidebrook {

namespace {

// NetworkManager
constexpr std::uint32_t connectedState = 50; // locally; higher ones are connected farther
bool isMeteredKind(std::uint32_t kind) { return kind == 1 || kind == 3; } // known, and guessed

// ModemManager
constexpr std::uint32_t connectedModem = 11;
bool isRoamingRegistration(std::uint32_t state) {
    return state == 5 || state == 7 || state == 10; // for everything, for SMS, for data
}

/// Enters the entries of a container one after another. Stops at what cannot be read.
void forEachEntry(sd_bus_message *message, const char *array, const char *entry,
                  const std::function<bool()> &read) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, array) <= 0)
        return;
    while (sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, entry) > 0) {
        if (!read() || sd_bus_message_exit_container(message) < 0)
            return;
    }
    sd_bus_message_exit_container(message);
}

/// Reads the properties that are numbers, and passes over the others.
void readNumbers(sd_bus_message *message,
                 const std::function<void(std::string_view name, std::uint32_t value)> &take) {
    forEachEntry(message, "{sv}", "sv", [&] {
        const char *name = nullptr;
        const char *type = nullptr;
        if (sd_bus_message_read(message, "s", &name) < 0 ||
            sd_bus_message_peek_type(message, nullptr, &type) < 0)
            return false;
        const std::string_view kind(type);
        if (kind != "u" && kind != "i")
            return sd_bus_message_skip(message, "v") >= 0;
        std::uint32_t value = 0; // both kinds are of this size
        if (sd_bus_message_read(message, "v", type, &value) < 0)
            return false;
        take(name, value);
        return true;
    });
}

struct Modem {
    bool isConnected = false;
    bool isRoaming = false;
};

/// Reads the interfaces of an object.
Modem readModem(sd_bus_message *message) {
    Modem modem;
    forEachEntry(message, "{sa{sv}}", "sa{sv}", [&] {
        const char *text = nullptr;
        if (sd_bus_message_read(message, "s", &text) < 0)
            return false;
        const std::string_view interface(text);
        readNumbers(message, [&](std::string_view name, std::uint32_t value) {
            if (interface == "org.freedesktop.ModemManager1.Modem" && name == "State")
                modem.isConnected = value == connectedModem;
            if (interface == "org.freedesktop.ModemManager1.Modem.Modem3gpp" &&
                name == "RegistrationState")
                modem.isRoaming = isRoamingRegistration(value);
        });
        return true;
    });
    return modem;
}

} // namespace

bool isFreeNetwork(sd_bus_message *properties) {
    bool isConnected = false;
    bool isMetered = false;
    readNumbers(properties, [&](std::string_view name, std::uint32_t value) {
        if (name == "State")
            isConnected = value >= connectedState;
        if (name == "Metered")
            isMetered = isMeteredKind(value);
    });
    return isConnected && !isMetered;
}

bool isRoamingPhone(sd_bus_message *objects) {
    bool isAnyConnected = false;
    bool isConnectedRoaming = false;
    bool isAnyRoaming = false;
    forEachEntry(objects, "{oa{sa{sv}}}", "oa{sa{sv}}", [&] {
        const char *path = nullptr;
        if (sd_bus_message_read(objects, "o", &path) < 0)
            return false;
        const Modem modem = readModem(objects);
        isAnyConnected = isAnyConnected || modem.isConnected;
        isConnectedRoaming = isConnectedRoaming || (modem.isConnected && modem.isRoaming);
        isAnyRoaming = isAnyRoaming || modem.isRoaming;
        return true;
    });
    return isAnyConnected ? isConnectedRoaming : isAnyRoaming;
}

} // namespace tidebrook
