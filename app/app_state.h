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

/// What works for the screens. Work that may wait is given to it, and gets values.
struct Queues {
    explicit Queues(Device &device);

    /// Changes of the categories, channels and articles, and what must see them done.
    Tasks changes{Tasks::Serial};
    /// Reading and writing settings, which need not wait for that.
    Tasks settings{Tasks::Serial};
    /// What waits for servers, and for files that the user has named.
    Tasks blockingTasks{Tasks::Concurrent};
    NamedMutex dbMutex; ///< "RSSMutex", of the fills
    FillJobs fills;
    /// What the screens have asked the downloader for. A failure is shown to the user.
    UpdateJobs updates;

    /// Ends all of them: what fills a list or waits for the downloader or a server at once, what
    /// changes data, reads or stores a setting or writes a file when it is done.
    void finish();
};

/// The lists' font, in the size that the user has chosen.
struct ListFont {
    int fontSize = fontSizes[0];
    bool isFontSizeKnown = false; ///< it was read, or chosen
    QFont listFont;
};

/// The headline of the Today item that was tapped.
struct TappedHeadline {
    /// It is waiting: no screen leads to it yet.
    std::optional<Headline> tap;

    // The screens are to lead to it; empty when there is none.
    QString todayCategory;
    QString todayChannel;
    QString todayTitle;
};

/// What the screens share. Belongs to the user-interface thread.
struct AppState : Queues, ListFont, TappedHeadline {
    /// While something is at work, the stack's progress line shows it.
    AppState(Device &parts, ScreenStack &screenStack);
    AppState(const AppState &) = delete;
    AppState &operator=(const AppState &) = delete;

    Device &device;
    ScreenStack &stack;

    /// The list of each list screen that is open.
    std::array<QPointer<ListView>, ListScreenCount> lists;

    QStringList categories;   ///< as the category list shows them
    int currentCategory = -1; ///< the row that was opened
    QStringList channels;     ///< as the channel list shows them
    int channelIndex = -1;    ///< the row that was opened
    int articleRow = -1;      ///< the row that was opened

    SortMode sortMode = SortMode::Date;
    bool areSettingsShown = false;

    // The article that is shown, and its channel.
    QString fillChannel;
    QString fillTitle;
};

} // namespace tidebrook
