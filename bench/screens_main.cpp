// What it costs to use the screens: "bench_screens HOME MEASUREMENT".

#include "bench/step_user.h"
#include "bench/store_maker.h"
#include "kit/dialog.h"
#include "kit/files/file_name.h"
#include "kit/page/text_page.h"
#include "kit/touch_style.h"
#include "res/commands.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QScrollBar>

#include <filesystem>
#include <thread>

namespace tidebrook {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Step = StepUser::Step;

Hand posting(int command) {
    return [command](User &user) {
        user.act([&user, command] { qobject_cast<Dialog *>(user.stack().top())->post(command); });
    };
}

Hand tappingRow(int row) {
    return [row](User &user) { user.tapRow(row); };
}

Hand turningWheel(int direction) {
    return [direction](User &user) { user.turnWheel(direction); };
}

void select(StepUser &steps, int row) {
    steps.user.look([&] { steps.user.list()->selectRow(row); });
}

// --- the list of categories ---

void refill(StepUser &steps, ListView &list) {
    const int count = list.rowCount();
    const auto emptying = [&](User &user) { user.look([&] { list.setRows({}); }); };
    for (int i = 0; i < 20; ++i) {
        steps.measure({u"an emptied list"_s, emptying, [&] { return list.rowCount() == 0; }});
        printFigures("refreshed",
                     steps.measure({u"a refreshed list"_s, posting(CommandRefreshCategories),
                                    [&] { return list.rowCount() == count; }}));
    }
}

/// Does this again and again until the position, which is 0 at first, is the last.
void repeat(StepUser &steps, const char *name, const Hand &begin, int last,
            const std::function<int()> &position) {
    StepUser::require(position() == 0 && last > 0, u"a way from the top"_s);
    while (position() < last) {
        const int before = position();
        const auto isThere = [&] { return position() > before; };
        printFigures(name, steps.measure({u"a step further"_s, begin, isThere}));
    }
}

void measureCategories(StepUser &steps) {
    ListView &list = *steps.user.list();
    const QScrollBar &bar = *list.verticalScrollBar();
    refill(steps, list);
    repeat(steps, "wheel", turningWheel(1), bar.maximum(), [&] { return bar.value(); });
    steps.measure({u"a refresh that leads to the top"_s, posting(CommandRefreshCategories),
                   [&] { return bar.value() == 0; }});
    const int last = list.rowCount() - 1;
    repeat(steps, "PageDown", pressing(Qt::Key_PageDown), last, [&] { return SelectedRow(&list); });
}

// --- reading ---

bool isListed(const AppState &state, ListScreen screen, int rows) {
    const ListView *list = state.lists[screen];
    return list != nullptr && list->isVisible() && list->rowCount() == rows;
}

Step listed(StepUser &steps, ListScreen screen, int rows, const Hand &begin) {
    return {u"list %1 with %2 rows"_s.arg(screen).arg(rows), begin,
            [=, &steps] { return isListed(steps.state, screen, rows); }};
}

Step channels(StepUser &steps, int key, int rows = channelsToRead) {
    return listed(steps, ChannelScreen, rows, pressing(key));
}

Step articles(StepUser &steps, const Hand &begin) {
    return listed(steps, ArticleScreen, articlesToRead, begin);
}

Step article(StepUser &steps, const Hand &begin) {
    return {u"the page of an article"_s, begin, [&steps] {
                const auto *page = steps.state.stack.top()->findChild<TextPage *>();
                return page != nullptr && !page->document()->isEmpty();
            }};
}

void measureReading(StepUser &steps) {
    for (int i = 0; i < 20; ++i) {
        select(steps, i);
        printFigures("category", steps.measure(channels(steps, Qt::Key_Return)));
        select(steps, i % channelsToRead);
        printFigures("channel", steps.measure(articles(steps, pressing(Qt::Key_Return))));
        printFigures("article", steps.measure(article(steps, pressing(Qt::Key_Return))));
        steps.measure(articles(steps, pressing(Qt::Key_Escape)));
        printFigures("next-channel", steps.measure(articles(steps, pressing(Qt::Key_Right))));
        steps.measure(channels(steps, Qt::Key_Escape));
        steps.measure(listed(steps, CategoryScreen, readCategories + 1, pressing(Qt::Key_Escape)));
    }
}

void printResources(StepUser &steps, const char *name) {
    steps.rest(500ms);
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    printFigures(name, {{"Rss", procFigure("self/status", "VmRSS")},
                        {"threads", procFigure("self/status", "Threads")},
                        {"descriptors", static_cast<double>(std::distance(descriptors, {}))}});
}

void measureOpenings(StepUser &steps) {
    constexpr int rowsInSight = 5;
    steps.measure(channels(steps, Qt::Key_Return));
    for (int i = 1; i <= 1'000; ++i) {
        for (const Step &step :
             {articles(steps, tappingRow(i % rowsInSight)),
              article(steps, tappingRow(i / rowsInSight % rowsInSight)),
              articles(steps, pressing(Qt::Key_Escape)), channels(steps, Qt::Key_Escape)}) {
            steps.answer(step);
            steps.rest(2ms);
        }
        if (i == 100)
            printResources(steps, "warm");
    }
    printResources(steps, "end");
}

// --- while channels are updated ---

/// Makes these steps in turns, one every 100 ms, until all channels are updated.
void measureUpdate(StepUser &steps, const char *name, const std::vector<Step> &made) {
    UpdateJobs &updates = steps.state.updates;
    QObject::connect(&updates, &UpdateJobs::failed, &updates,
                     [] { StepUser::require(false, u"the update succeeds"_s); });
    select(steps, readCategories);
    steps.measure(channels(steps, Qt::Key_Return, channelsToUpdate));
    posting(CommandUpdateAll)(steps.user);
    bool isUpdating = true;
    auto next = std::chrono::steady_clock::now();
    for (std::size_t i = 0; isUpdating; ++i) {
        std::this_thread::sleep_until(next);
        next += 100ms;
        printFigures(name, steps.answer(made[i % made.size()]));
        steps.user.look([&] { isUpdating = updates.isUpdating(); });
    }
}

// From the updated category, which is the last one, into the first and back.
void measureTaps(StepUser &steps) {
    const Step menu{u"a menu"_s, pressing(Qt::Key_F10),
                    [] { return QApplication::activePopupWidget() != nullptr; }};
    const Step selected{u"the menu goes, and another row is selected"_s,
                        [](User &user) {
                            user.press(Qt::Key_Escape);
                            user.press(Qt::Key_Down);
                        },
                        [&] { return SelectedRow(steps.user.list()) == 1; }};
    measureUpdate(steps, "taps",
                  {menu, selected, channels(steps, Qt::Key_Right), articles(steps, tappingRow(2)),
                   article(steps, tappingRow(1)), articles(steps, pressing(Qt::Key_Escape)),
                   channels(steps, Qt::Key_Escape),
                   channels(steps, Qt::Key_Left, channelsToUpdate)});
}

// The wheel is the one thing that a user can do without ending the wait for a channel.
void measureWheel(StepUser &steps) {
    const auto turned = [&](int direction) -> Step {
        return {u"a turn of the wheel"_s, turningWheel(direction), [&steps, direction] {
                    const int place = steps.user.list()->verticalScrollBar()->value();
                    return (place == 0) == (direction < 0);
                }};
    };
    measureUpdate(steps, "wheel", {turned(1), turned(-1)});
}

// --- bringing in and out ---

void awaitRows(StepUser &steps, int count) {
    steps.await(u"%1 rows"_s.arg(count), [&] {
        const auto *list = steps.state.stack.top()->findChild<ListView *>();
        return list != nullptr && list->rowCount() == count;
    });
}

/// Comes to the list of files in the wizard, into the category that it proposes: the middle one.
void openWizard(StepUser &steps) {
    select(steps, steps.user.list()->rowCount() / 2);
    steps.measure(channels(steps, Qt::Key_Return, channelsToShare));
    posting(CommandNewChannel)(steps.user);
    steps.user.seesQuiet();
    steps.user.tap(u"Import from a file"_s);
    steps.user.press(Qt::Key_Return);
    awaitRows(steps, 2); // the folder above, and the list
    steps.user.press(Qt::Key_Down);
}

/// From the file that is chosen to the last page.
void goThroughWizard(StepUser &steps) {
    steps.user.press(Qt::Key_Return);
    awaitRows(steps, importedChannels);
    steps.user.tap(u"All"_s);
    steps.user.press(Qt::Key_Return);
    steps.await(u"categories"_s, [&] {
        const auto *box = steps.state.stack.top()->findChild<QComboBox *>();
        return box != nullptr && box->count() > 0;
    });
}

bool isImported(const AppState &state) {
    return isListed(state, ChannelScreen, channelsToShare + importedChannels);
}

void measureImport(StepUser &steps) {
    openWizard(steps);
    const Figures fileChosen = steps.now();
    goThroughWizard(steps);
    const Figures finished = steps.now();
    steps.user.press(Qt::Key_Return);
    steps.await(u"all channels"_s, [&] { return isImported(steps.state); });
    steps.rest();
    printFigures("from-file", steps.since(fileChosen));
    printFigures("from-Finish", steps.since(finished));
}

// A list that is filled anew goes back to its top, from where the wheel can only turn it down: so
// the way is not chosen before the screens' thread has come to it.
Figures turnEitherWay(StepUser &steps) {
    bool isTurned = false;
    const auto turn = [&] {
        ListView &list = *steps.user.list();
        const int before = list.verticalScrollBar()->value();
        turnWheelOver(list, before == 0 ? 1 : -1);
        isTurned = list.verticalScrollBar()->value() != before;
    };
    return steps.answer(
        {u"a turn of the wheel"_s, [&](User &user) { user.look(turn); }, [&] { return isTurned; }});
}

void measureAnswers(StepUser &steps) {
    openWizard(steps);
    goThroughWizard(steps);
    auto next = std::chrono::steady_clock::now();
    const auto isBack = [&] { return steps.state.lists[ChannelScreen]->isVisible(); };
    const Step back{u"the channels again"_s, pressing(Qt::Key_Return), isBack};
    printFigures("answer", steps.answer(back));
    const auto isOver = [&] { return isImported(steps.state) && !steps.isAtWork(); };
    for (bool isDone = false; !isDone; steps.user.look([&] { isDone = isOver(); })) {
        next += 20ms;
        std::this_thread::sleep_until(next);
        printFigures("answer", turnEitherWay(steps));
    }
}

void measureExport(StepUser &steps) {
    const ListView &categories = *steps.user.list();
    const int last = categories.rowCount() - 1;
    const QString path = QDir(documentsFolder()).filePath(categories.rowText(last) + u".opml");
    select(steps, last);
    posting(CommandExportCategory)(steps.user);
    awaitRows(steps, 2);
    steps.rest();
    StepUser::require(!QFile::exists(path), u"no such file yet"_s);
    const Figures begin = steps.now();
    steps.user.press(Qt::Key_Return);
    steps.await(path, [&] { return QFile::exists(path) && categories.isVisible(); });
    printFigures("export", steps.since(begin));
}

const struct {
    QStringView name;
    void (*measure)(StepUser &steps);
} measurements[]{
    {u"categories", measureCategories}, {u"steps", measureReading},
    {u"openings", measureOpenings},     {u"taps", measureTaps},
    {u"wheel", measureWheel},           {u"import", measureImport},
    {u"watch", measureAnswers},         {u"export", measureExport},
};

} // namespace

} // namespace tidebrook

int main(int argc, char **argv) {
    using namespace tidebrook;
    installTouchStyle();
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    Session session(DeviceRoot(QString::fromLocal8Bit(argv[1])), {480, 640},
                    [](const QString &text) { StepUser::require(false, text); });
    StepUser steps(session);
    session.run([&](User &) {
        steps.rest();
        for (const auto &[name, measure] : measurements) {
            if (name == QString::fromLocal8Bit(argv[2]))
                measure(steps);
        }
    });
}
