#pragma once

#include "app/fill_jobs.h"
#include "app/update_jobs.h"
#include "platform/sync/named_mutex.h"
#include "platform/sync/tasks.h"
#include "subscriptions/device.h"
#include "update/today_tap.h"

#include <QFont>
#include <QPointer>
#include <QStringList>

#include <array>
#include <optional>

namespace tidebrook {

class ListView;
class ScreenStack;

/// The list screens, in the order of `AppState::lists`.
enum ListScreen : std::size_t { CategoryScreen, ChannelScreen, ArticleScreen, ListScreenCount };

/// The sizes of the lists' font in points: Small, Normal, Big.
inline constexpr std::array fontSizes{9, 11, 13};

/// What the screens share. It belongs to the user-interface thread; work that may wait is given to
/// its queues, and gets values.
struct AppState {
    /// While something is at work, the stack's progress line shows it.
    AppState(Device &parts, ScreenStack &screenStack);
    AppState(const AppState &) = delete;
    AppState &operator=(const AppState &) = delete;

    Device &device;
    NamedMutex dbMutex; ///< "RSSMutex"
    ScreenStack &stack;

    /// Changes of the categories, channels and articles, and what must see them done.
    Tasks changes{Tasks::Serial};
    /// Reading and writing settings, which need not wait for that.
    Tasks settings{Tasks::Serial};
    /// What waits for servers, and for files that the user has named.
    Tasks blockingTasks{Tasks::Concurrent};
    FillJobs fills;
    /// What the screens have asked the downloader for. One that fails is told to the user.
    UpdateJobs updates;

    /// Ends all that works for the screens: what fills a list, reads a setting or waits for the
    /// downloader or a server at once, what changes data or writes a file when it is done.
    void finish();

    /// The list of each list screen that is open.
    std::array<QPointer<ListView>, ListScreenCount> lists;

    QStringList categories;   ///< as the category list shows them
    int currentCategory = -1; ///< the row that was opened
    QStringList channels;     ///< as the channel list shows them
    int channelIndex = -1;    ///< the row that was opened
    int articleRow = -1;      ///< the row that was opened

    SortMode sortMode = SortMode::Date;

    // The article that is shown, and its channel.
    QString fillChannel;
    QString fillTitle;

    int fontSize = fontSizes[0];
    bool isFontSizeKnown = false; ///< it was read, or chosen
    QFont listFont;

    /// A tapped headline that no screen has led to yet.
    std::optional<TodayTap> tap;

    // The tapped headline that the screens are to lead to; empty when there is none.
    QString todayCategory;
    QString todayChannel;
    QString todayTitle;
};

} // namespace tidebrook
