#pragma once

#include "platform/base/device_root.h"
#include "platform/sync/tasks.h"
#include "store/headlines.h"

#include <QObject>
#include <QTimer>

#include <memory>

namespace tidebrook {

class TodayOffer;

/// Has the reader start, or come forward, for what the user has chosen here. Belongs to the
/// user-interface thread, which it never holds up.
class ReaderStart : public QObject {
    Q_OBJECT

public:
    explicit ReaderStart(const DeviceRoot &device);
    ~ReaderStart() override;

    void open();
    /// It opens this article. After 10 seconds it opens it no more.
    void open(const Headline &headline);
    /// It opens its settings, within the same time.
    void openSettings();

Q_SIGNALS:
    /// The reader could not be started.
    void failed();

private:
    using Offering = bool (*)(TodayOffer &offer, const Headline &headline);

    void start(Offering offering, const Headline &headline);
    void withdraw();

    const DeviceRoot device_;
    std::shared_ptr<TodayOffer> offer_; // for the reader that was started last
    QTimer end_;
    Tasks tasks_{Tasks::Serial}; // the first to end
};

} // namespace tidebrook
