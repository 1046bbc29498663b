#pragma once

namespace tidebrook {

/// Gives memory back to the system that a process which is going to sleep does not need: what was
/// freed, and the code of the program and its libraries, which comes back from their files as
/// soon as it is run again. Thread-safe, but not free: for the end of some work.
void giveBackMemory();

} // namespace tidebrook
