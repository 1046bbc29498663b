#pragma once

namespace tidebrook {

/// How long a test waits for what must happen, however busy the machine is, in milliseconds.
constexpr int patienceLimit = 20'000;

} // namespace tidebrook
