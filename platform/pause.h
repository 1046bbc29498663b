#pragma once

namespace tidebrook {

/// Sleeps for one of the system's fixed pauses, given in milliseconds and scaled by
/// `setPauseScale`. Never call it on the user-interface thread.
void Pause(int milliseconds);

/// Scales every later pause to this many percent. The scale starts at the environment's
/// TIDEBROOK_PAUSES, or at 100 where that is not set or no number. Thread-safe.
void setPauseScale(int percent);

} // namespace tidebrook
