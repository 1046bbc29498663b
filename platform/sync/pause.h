#pragma once

namespace tidebrook {

class StopSignal;

/// Sleeps for one of the system's fixed pauses, given in milliseconds and scaled by
/// `setPauseScale`; a `stop` that is raised ends it at once. False when `stop` is raised
/// afterwards. Never call it on the user-interface thread.
bool Pause(int milliseconds, const StopSignal *stop = nullptr);

/// Such a pause as a timer on the user-interface thread has it, in milliseconds.
int scaledPause(int milliseconds);

/// Scales every later pause to this many percent. The scale starts at the environment's
/// TIDEBROOK_PAUSES, or at 100 where that is not set or no number. Thread-safe.
void setPauseScale(int percent);

} // namespace tidebrook
