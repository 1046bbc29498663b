#pragma once

#include "platform/desktop/single_instance.h"
#include "platform/sync/tasks.h"
#include "today/arguments.h"
#include "today/desktop/sight.h"
#include "today/headline_strip.h"
#include "today/headline_tray.h"
#include "today/item_menu.h"
#include "today/notifications.h"
#include "today/reader_start.h"
#include "today/today_news.h"

#include <QObject>

#include <memory>
#include <optional>

class QSocketNotifier;

namespace tidebrook {

/// The running Today item: the strip and the icon, and what their menus do. There is one in a
/// program, and one on a device.
class TodayItem : public QObject {
    Q_OBJECT

public:
    explicit TodayItem(const TodayArguments &arguments);
    ~TodayItem() override;

    /// Whether another one runs on the device, which shows itself now.
    bool isSecond() const { return isSecond_; }

    HeadlineStrip &strip() { return strip_; }
    ItemMenu &menu() { return menu_; } ///< of the strip

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void claimDevice();
    void connectStrip();
    void connectMenu(ItemMenu &menu);
    void show();
    void showStrip(bool isShown);
    void followSight();
    void hide();
    void comeBack();
    void openHeadline();
    void updateChannels();
    void markHeadline();
    void notify(quint32 articles, quint32 channels);

    const DeviceRoot device_;
    const Place place_;
    bool isHidden_ = false; // as the user wished
    bool isSecond_ = false;

    TodayNews news_;
    ReaderStart reader_;
    std::optional<Notifications> notifications_; // when there is one to show
    HeadlineStrip strip_;
    ItemMenu menu_;                    // of the strip
    std::optional<Headline> markable_; // what the strip showed when its menu was asked for
    std::optional<HeadlineTray> tray_;
    std::optional<Sight> sight_; // of the strip; once that was shown

    std::optional<SingleInstance> single_;
    std::unique_ptr<QSocketNotifier> requests_;
    Tasks errands_{Tasks::Concurrent}; // the first to end
};

} // namespace tidebrook
