#pragma once

#include "ctl/device.h"

#include <QString>

#include <optional>

namespace tidebrook {

/// The address of the feed that `address` leads to: itself, unless a web page is there. Of a page
/// it is the feed that the page names, or of several the one of this number, from 1. Empty where
/// there is no such feed, or the choice is open; then the failure is reported, and the feeds are
/// listed.
///
/// Waits for the network, for 10 seconds at most, while the subscriptions are not locked. Where it
/// reaches nothing, the address is taken as it is; for 0 it is, too, and nothing is waited for.
QString feedAddress(CommandDevice &device, const QString &address, std::optional<uint> number);

} // namespace tidebrook
