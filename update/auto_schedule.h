#pragma once

#include "platform/sql/registry.h"

#include <QDateTime>

#include <chrono>
#include <optional>

namespace tidebrook {

/// The bit of the platform's value "Status" that is set while the phone roams.
inline constexpr quint32 roamingBit = 0x200;

/// The settings of the automatic updates, with the state of the platform that they depend on.
struct AutoUpdateSettings {
    enum Mode : quint32 { Never = 0, Interval = 1, Daily = 2 };

    quint32 mode = Never;
    quint32 interval = 0;           ///< 1 to 6: half an hour, then 1, 2, 4, 8, 16 hours
    quint32 hour = 0;               ///< of the day, local time, for the daily mode
    std::chrono::seconds offset{0}; ///< from its beginning to the round, below `offsetSpan`
    bool onlyCradled = false;
    bool isCradled = false;
    bool neverRoaming = false;
    bool isRoaming = false;

    /// A device that has no offset yet, or one out of range, draws one in the daily mode and keeps
    /// it (in the registry, as "UpdateOffset").
    static AutoUpdateSettings read(Registry &registry);

    bool isDaily() const { return mode == Daily; }
    /// Whether a round that is due now has to wait until these values change.
    bool isBarred() const { return (onlyCradled && !isCradled) || (neverRoaming && isRoaming); }
};

/// The part of the daily hour that devices spread their rounds over, lest a publisher meets all of
/// them in the same second.
inline constexpr std::chrono::seconds offsetSpan{600};

/// An offset for a device, at random.
std::chrono::seconds drawOffset();

/// When the round behind `lastRound` (invalid: there was none) is due. One in the past is due now,
/// once for all that were missed. Nothing when there are no automatic updates.
std::optional<QDateTime> nextRound(const AutoUpdateSettings &settings, const QDateTime &lastRound,
                                   const QDateTime &now);

/// Keeps the time of the last round through restarts (in the registry, as "LastAutoUpdate") and
/// through changes of the clock: none of them skips a round or has it run twice. For one thread.
class AutoSchedule {
public:
    explicit AutoSchedule(Registry &registry) : registry_(registry) {}

    struct Round {
        /// Channels that were tried since then have had their turn in this round.
        QDateTime since;
        bool isDaily = false;
        bool isBarred = false; ///< it stays due until it is allowed, or the settings change
    };

    /// The round that is due, if one is. Reads the settings anew. `uptime` counts on through
    /// suspends and changes of the clock. Call it every minute or so.
    std::optional<Round> dueRound(const QDateTime &now, std::chrono::milliseconds uptime);

    /// The round that began at `start` is over.
    void endRound(const QDateTime &start) { store(start); }

    /// When the next round is due, as the settings were last time; nothing for never.
    std::optional<QDateTime> next() const { return next_; }

private:
    QDateTime recordedRound() const;
    QDateTime lastRound(const QDateTime &now, const AutoUpdateSettings &settings);
    void beginAnewAt(const QDateTime &now, const AutoUpdateSettings &settings);
    void followClock(const QDateTime &now, std::chrono::milliseconds uptime, bool isInterval);
    void store(const QDateTime &lastRound);

    Registry &registry_;
    QDateTime lastNow_; // at the last call, with the uptime then
    std::chrono::milliseconds lastUptime_{0};
    std::optional<AutoUpdateSettings> lastSettings_;
    QDateTime unstored_; // the last round, where the registry did not take it
    std::optional<QDateTime> next_;
};

/// The time of the last round as the registry has it; invalid when there was none.
QDateTime storedLastRound(Registry &registry);

} // namespace tidebrook
