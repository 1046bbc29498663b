#pragma once

#include "platform/desktop/device_watch.h"
#include "platform/sync/tasks.h"
#include "today/today_state.h"

#include <QTimer>

#include <memory>

class QSocketNotifier;

namespace tidebrook {

class NamedEvent;

/// Follows what there is to show of a device. It reads on a thread of its own, when something was
/// written or set, and wakes for nothing else. Belongs to the user-interface thread.
class TodayNews : public QObject {
    Q_OBJECT

public:
    explicit TodayNews(const DeviceRoot &device);
    ~TodayNews() override;

    const TodayState &state() const { return state_; }

    /// Whether the news are on show. If not, only the settings are followed.
    void setShown(bool isShown);

    /// Reads everything now.
    void refresh();

Q_SIGNALS:
    /// The state is another one, or is known for the first time.
    void changed();
    /// Another folder, or none, is the device now.
    void moved();
    /// A round of the downloader has brought articles.
    void arrived(quint32 articles, quint32 channels);

private:
    struct Watched;

    void takeUpDevice();
    void watchEvents();
    void watchArrivals();
    void note();
    void take(const TodayState &state);
    void readArrivals();

    const DeviceRoot device_;
    TodayState state_;
    bool isKnown_ = false; // the device has been read
    bool isShown_ = true;
    bool isReading_ = false;
    bool isDue_ = false; // to be read once more
    int failures_ = 0;   // in a row
    QTimer soon_;        // what was written can be read, a moment after it was noticed
    QTimer later_;       // a slow writer has let go by then
    std::unique_ptr<Watched> settings_;
    std::unique_ptr<Watched> arrivals_;
    DeviceWatch watch_;
    Tasks tasks_{Tasks::Serial}; // the first to end
};

} // namespace tidebrook
