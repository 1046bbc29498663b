// What it costs to read channels and articles, also while they are updated.

#include "bench/screen_cases.h"
#include "bench/screen_driver.h"
#include "kit/layer.h"
#include "kit/list_view.h"
#include "kit/page/text_page.h"
#include "res/commands.h"

#include <QApplication>
#include <QScrollBar>

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;
using Step = ScreenDriver::Step;

constexpr int rowsInSight = 5;

using Begin = std::function<void()>;

Begin press(ScreenDriver &driver, int key) {
    return [&driver, key] { driver.press(key); };
}

Begin tap(ScreenDriver &driver, int row) {
    return [&driver, row] { driver.tapRow(row); };
}

void select(ScreenDriver &driver, int row) {
    driver.look([&] { driver.list().selectRow(row); });
}

// --- the steps, each by what the user sees of it ---

Step listed(ScreenDriver &driver, ListScreen screen, int rows, const Begin &begin) {
    return {QStringLiteral("list %1 with %2 rows").arg(screen).arg(rows), begin, [=, &driver] {
                const ListView *list = driver.state().lists[screen];
                return list != nullptr && list->isVisible() && list->rowCount() == rows;
            }};
}

Step channels(ScreenDriver &driver, int key, int rows = channelsToRead) {
    return listed(driver, ChannelScreen, rows, press(driver, key));
}

Step articles(ScreenDriver &driver, const Begin &begin) {
    return listed(driver, ArticleScreen, articlesToRead, begin);
}

Step article(ScreenDriver &driver, const Begin &begin) {
    return {QStringLiteral("the page of an article"), begin, [&driver] {
                const auto *page = driver.state().stack.top()->findChild<TextPage *>();
                return page != nullptr && !page->document()->isEmpty();
            }};
}

// The article on the screen is the only one of its channel that was read.
void requireRead(ScreenDriver &driver) {
    const AppState &state = driver.state();
    ReadFlagCounts counts;
    state.device.store->CountReadFlags(state.categories.value(state.currentCategory),
                                       state.fillChannel, counts);
    driver.require(counts.unread == articlesToRead - 1 && counts.total == articlesToRead,
                   QStringLiteral("one article of the channel is marked read"));
}

void measureSteps(ScreenDriver &driver) {
    const int categories = driver.list().rowCount();
    std::map<std::string, ScreenDriver::Costs> costs;
    for (int i = 0; i < 20; ++i) {
        select(driver, i);
        costs["category"].push_back(driver.measure(channels(driver, Qt::Key_Return)));
        select(driver, i % channelsToRead);
        costs["channel"].push_back(driver.measure(articles(driver, press(driver, Qt::Key_Return))));
        costs["article"].push_back(driver.measure(article(driver, press(driver, Qt::Key_Return))));
        requireRead(driver);
        driver.measure(articles(driver, press(driver, Qt::Key_Escape)));
        costs["next-channel"].push_back(
            driver.measure(articles(driver, press(driver, Qt::Key_Right))));
        driver.measure(channels(driver, Qt::Key_Escape));
        driver.measure(listed(driver, CategoryScreen, categories, press(driver, Qt::Key_Escape)));
    }
    for (const auto &[name, ofStep] : costs)
        printCosts(name.c_str(), ofStep);
}

void printFigures(ScreenDriver &driver, const char *name) {
    driver.rest(500ms);
    const auto entries = [](const char *folder) {
        return std::distance(std::filesystem::directory_iterator(folder), {});
    };
    long size = 0;
    long resident = 0; // pages, both
    std::ifstream("/proc/self/statm") >> size >> resident;
    std::printf("%s Rss/KiB=%ld threads=%td descriptors=%td\n", name,
                resident * sysconf(_SC_PAGESIZE) / 1024, entries("/proc/self/task"),
                entries("/proc/self/fd"));
    std::fflush(stdout);
}

void measureOpenings(ScreenDriver &driver) {
    driver.measure(channels(driver, Qt::Key_Return));
    for (int i = 1; i <= 1'000; ++i) {
        for (const Step &step :
             {articles(driver, tap(driver, i % rowsInSight)),
              article(driver, tap(driver, i / rowsInSight % rowsInSight)),
              articles(driver, press(driver, Qt::Key_Escape)), channels(driver, Qt::Key_Escape)}) {
            driver.answer(step);
            driver.rest(2ms);
        }
        if (i == 100)
            printFigures(driver, "warm");
    }
    printFigures(driver, "end");
}

// From the updated category, which is the last one, into the first and back.
QList<Step> walk(ScreenDriver &driver) {
    const Step menu{QStringLiteral("a menu"), press(driver, Qt::Key_F10),
                    [] { return QApplication::activePopupWidget() != nullptr; }};
    const Step selected{QStringLiteral("the menu goes, and another row is selected"),
                        [&driver] {
                            driver.press(Qt::Key_Escape);
                            driver.press(Qt::Key_Down);
                        },
                        [&driver] { return SelectedRow(&driver.list()) == 1; }};
    return {menu,
            selected,
            channels(driver, Qt::Key_Right),
            articles(driver, tap(driver, 2)),
            article(driver, tap(driver, 1)),
            articles(driver, press(driver, Qt::Key_Escape)),
            channels(driver, Qt::Key_Escape),
            channels(driver, Qt::Key_Left, channelsToUpdate)};
}

Step turned(ScreenDriver &driver, int direction) {
    return {QStringLiteral("a turn of the wheel"), [=, &driver] { driver.turnWheel(direction); },
            [=, &driver] {
                return (driver.list().verticalScrollBar()->value() == 0) == (direction < 0);
            }};
}

// The wheel is the one thing that a user can do without ending the wait for a channel.
void measureUpdate(ScreenDriver &driver, bool isByWheel) {
    int counted = 0;
    UpdateJobs &updates = driver.state().updates;
    QObject::connect(&updates, &UpdateJobs::channelCounted, &updates, [&] { ++counted; });
    QObject::connect(&updates, &UpdateJobs::failed, &updates,
                     [] { ScreenDriver::require(false, QStringLiteral("the update succeeds")); });
    select(driver, driver.list().rowCount() - 1);
    driver.measure(channels(driver, Qt::Key_Return, channelsToUpdate));
    const QList<Step> steps =
        isByWheel ? QList<Step>{turned(driver, 1), turned(driver, -1)} : walk(driver);
    driver.post(CommandUpdateAll);
    bool isUpdating = true;
    ScreenDriver::Costs costs;
    for (auto next = std::chrono::steady_clock::now(); isUpdating; next += 100ms) {
        std::this_thread::sleep_until(next);
        costs.push_back(driver.answer(steps[std::ssize(costs) % steps.size()]));
        driver.look([&] { isUpdating = updates.isUpdating(); });
    }
    driver.require(!isByWheel || counted == channelsToUpdate, QStringLiteral("all are counted"));
    printCosts(isByWheel ? "wheel" : "taps", costs);
}

} // namespace

} // namespace tidebrook

// On a copy of the store: "bench_reading HOME steps|openings|taps|wheel".
int main(int argc, char **argv) {
    return tidebrook::runDriven(argc, argv,
                                [](tidebrook::ScreenDriver &driver, const QString &what) {
                                    if (what == u"steps")
                                        tidebrook::measureSteps(driver);
                                    else if (what == u"openings")
                                        tidebrook::measureOpenings(driver);
                                    else
                                        tidebrook::measureUpdate(driver, what == u"wheel");
                                });
}
