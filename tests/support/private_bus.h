#pragma once

#include "support/waiting.h"

#include <QProcess>

#include <gtest/gtest.h>

namespace tidebrook {

/// A message bus of a test's own.
class PrivateBus {
public:
    PrivateBus() {
        using namespace Qt::StringLiterals;
        daemon_.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
        EXPECT_TRUE(daemon_.waitForReadyRead(patienceLimit));
        address_ = daemon_.readLine().trimmed();
    }
    ~PrivateBus() {
        daemon_.kill();
        daemon_.waitForFinished();
    }
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    QByteArray address() const { return address_; }

private:
    QProcess daemon_;
    QByteArray address_;
};

} // namespace tidebrook
