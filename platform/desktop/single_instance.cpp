#include "platform/desktop/single_instance.h"

#include "platform/base/plain_file.h"
#include "platform/base/replace_file.h"

#include <QFile>

#include <unistd.h>

#include <thread>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

// There is no notification when a lock is released or an event is reset.
constexpr std::chrono::milliseconds lookPause = 10ms;
constexpr qint64 tokenLimit = 4096; // bytes; far more than a compositor gives

QString lockPathOf(const DeviceRoot &device, QStringView name) {
    return device.path() + u"/run/" + name + u".lock";
}

QByteArray ownToken() {
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token;
}

} // namespace

SingleInstance::SingleInstance(const DeviceRoot &device, QStringView name)
    : lockPath_(lockPathOf(device, name)), tokenPath_(device.path() + u"/run/" + name + u".token"),
      request_(device, name, NamedEvent::Reset::Manual) {}

bool SingleInstance::isRunning(const DeviceRoot &device) {
    return ProcessLock::holder(lockPathOf(device, readerName)).has_value();
}

SingleInstance::Claim SingleInstance::claim(std::chrono::milliseconds timeout) {
    const auto end = std::chrono::steady_clock::now() + timeout;
    if (take())
        return Claim::Mine;
    if (!isLockable() || !ask())
        return Claim::Failed;
    for (;;) {
        if (!request_.test())
            return Claim::BroughtForward;
        if (take())
            return Claim::Mine;
        if (std::chrono::steady_clock::now() >= end)
            return Claim::NoAnswer;
        std::this_thread::sleep_for(lookPause);
    }
}

bool SingleInstance::take() {
    if (lock_)
        return true;
    if (!request_.isOpen() || !lock_.emplace(lockPath_).isHeld()) {
        lock_.reset();
        return false;
    }
    // Of the instance before. The reset also answers others that wait for that one.
    forgetToken();
    request_.reset();
    return true;
}

// Some compositors raise a window without a token, too.
bool SingleInstance::ask() {
    const QByteArray token = ownToken();
    if (!token.isEmpty())
        replaceFile(tokenPath_, token);
    return request_.set();
}

bool SingleInstance::isLockable() const {
    return fileKindAt(lockPath_) == FileKind::Plain &&
           access(QFile::encodeName(lockPath_).constData(), R_OK | W_OK) == 0;
}

std::optional<QString> SingleInstance::takeRequest() {
    if (!lock_ || !request_.test())
        return std::nullopt;
    // In this order, since a token is written before the event is set.
    request_.reset();
    const std::optional<QByteArray> token = readPlainFile(tokenPath_, tokenLimit);
    forgetToken();
    return QString::fromLocal8Bit(token.value_or(QByteArray()));
}

void SingleInstance::forgetToken() {
    if (fileKindAt(tokenPath_) == FileKind::Plain)
        QFile::remove(tokenPath_);
}

} // namespace tidebrook
