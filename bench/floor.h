#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace tidebrook {

/// The floor: the least code that brings feeds into the article table, with no rules of its own.
/// What it does it does well: the document is read once, its texts are bound where they lie, and
/// the insert is prepared once.
class FloorStore {
public:
    struct Counts {
        int items = 0;
        int stored = 0; ///< those that no constraint refused
    };

    /// What every article of a feed gets.
    struct Channel {
        std::string name;
        std::string category;
        std::int64_t stamp = 0;
    };

    /// Opens the store of a device. Throws std::runtime_error on this and every other failure.
    explicit FloorStore(const std::string &device);
    ~FloorStore();
    FloorStore(const FloorStore &) = delete;
    FloorStore &operator=(const FloorStore &) = delete;

    void begin() { run("BEGIN IMMEDIATE"); }
    Counts insertFeed(const std::string &document, const Channel &channel);
    void commit() { run("COMMIT"); }

private:
    void run(const char *statement);

    sqlite3 *database_ = nullptr;
    sqlite3_stmt *insert_ = nullptr;
};

/// Fetches one address. Throws std::runtime_error.
std::string floorFetch(const std::string &url);

/// Fetches addresses, `parallel` at a time, and hands each body on as it is complete. Throws
/// std::runtime_error.
void floorFetchAll(const std::vector<std::string> &urls, std::size_t parallel,
                   const std::function<void(std::size_t, const std::string &)> &take);

} // namespace tidebrook
