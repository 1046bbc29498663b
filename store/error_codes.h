#pragma once

#include <QtGlobal>

namespace tidebrook {

/// Why something failed, as the registry's "ERRORNO", the store's error field and the messages
/// number it. 0 is no failure.
enum ErrorCode : quint32 {
    HttpMissing = 1000,    ///< the library for it cannot be loaded
    DatabaseFailed = 1001, ///< opening, reading or writing it; also: an item cannot be stored
    FeedNotXml = 1002, ///< not even when it was downloaded again; also: a list that cannot be read
    FeedNotRss = 1003, ///< XML, but of another kind; or nothing at all; also: no list of channels
    FileNotWritten = 1004,  ///< one that was downloaded, or saved for the user; also: the registry
    SeedFileMissing = 1006, ///< while the database was to be created
    FeedNotSent = 1007,     ///< no server was reached
    FeedNotComplete = 1008, ///< the answer did not come whole
    FeedNotDownloaded = 1009,
    NoMemory = 1010,     ///< nor a thread
    NothingKnown = 1012, ///< nothing to ask for, or nothing more particular is known
};

} // namespace tidebrook
