#pragma once

#include "app/data_jobs.h"

namespace tidebrook {

/// Leads the user through adding channels: a feed or a list of channels from an address, or a list
/// from a file. Returns 0 when the user has finished, whose channels are added after that, and
/// another number when he has given up. `added` is told once they are, unless the receiver is gone
/// by then or nothing is added: 0, or the string that tells why the first channel that was not
/// stored was not.
int runNewChannelWizard(AppState &state, QObject *receiver, const JobEnd &added);

} // namespace tidebrook
