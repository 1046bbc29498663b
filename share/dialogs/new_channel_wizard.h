#pragma once

#include "app/data_jobs.h"

namespace tidebrook {

/// Leads the user through adding channels: a feed or a list of channels from an address, or a list
/// from a file. Returns 0 when the user has finished, and another number when he cancels. The
/// channels are added after that; then `added` gets 0, or the string that says why the first one
/// that failed was not stored. It is not called without channels, or when the receiver is gone.
int runNewChannelWizard(AppState &state, QObject *receiver, const JobEnd &added);

} // namespace tidebrook
