#pragma once

namespace tidebrook {

/// Returns memory to the system before the process sleeps: what was freed, and the code of the
/// program and its libraries, which is read from their files again when it runs. Thread-safe, but
/// slow.
void giveBackMemory();

} // namespace tidebrook
