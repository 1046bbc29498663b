// What it costs to import a list of channels, and to export a category.

#include "bench/screen_driver.h"
#include "bench/sharing_cases.h"
#include "kit/files/file_name.h"
#include "kit/layer.h"
#include "kit/list_view.h"
#include "kit/progress_line.h"
#include "res/commands.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QScrollBar>

#include <algorithm>
#include <thread>

namespace tidebrook {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Cost = ScreenDriver::Cost;
using Costs = ScreenDriver::Costs;

constexpr auto timeout = 60s;
constexpr auto quiet = 20ms; // several times what a window puts its painting off

struct Import {
    ScreenDriver &driver;
    Layer *channels = nullptr; ///< the screen that the wizard is opened from
    int rowsBefore = 0;
};

void await(ScreenDriver &driver, const QString &what, const std::function<bool()> &isThere) {
    const auto end = std::chrono::steady_clock::now() + timeout;
    for (bool isSo = false; !isSo; driver.look([&] { isSo = isThere(); })) {
        driver.require(std::chrono::steady_clock::now() < end, what);
        std::this_thread::sleep_for(2ms);
    }
}

bool isAtWork(ScreenDriver &driver) { return driver.state().stack.progressLine().isAtWork(); }

/// What lies on top has a list with so many rows, and nothing is at work.
void awaitRows(ScreenDriver &driver, int count) {
    await(driver, u"%1 rows"_s.arg(count), [&] {
        const auto *list = driver.state().stack.top()->findChild<ListView *>();
        return list != nullptr && list->rowCount() == count && !isAtWork(driver);
    });
}

QAbstractButton *findButton(ScreenDriver &driver, const QString &text) {
    const auto buttons = driver.state().stack.top()->findChildren<QAbstractButton *>();
    const auto found =
        std::find_if(buttons.begin(), buttons.end(),
                     [&](const QAbstractButton *button) { return button->text() == text; });
    return found == buttons.end() ? nullptr : *found;
}

void click(ScreenDriver &driver, const QString &text) {
    await(driver, text, [&] { return findButton(driver, text) != nullptr; });
    driver.look([&] { findButton(driver, text)->click(); });
}

// --- bringing in ---

/// Into the category that the wizard proposes, which is the middle one.
Import openWizard(ScreenDriver &driver) {
    Import import{driver};
    driver.look([&] { driver.list().selectRow(driver.list().rowCount() / 2); });
    const ListView *list = nullptr;
    driver.measure({u"channels"_s, [&] { driver.press(Qt::Key_Return); },
                    [&] {
                        list = driver.state().lists[ChannelScreen];
                        return list != nullptr && list->isVisible() && list->rowCount() > 0;
                    }});
    import.channels = driver.state().stack.top();
    import.rowsBefore = list->rowCount();
    driver.post(CommandNewChannel);
    click(driver, u"Import from a file"_s);
    driver.press(Qt::Key_Return);
    awaitRows(driver, 2); // the folder above, and the list
    driver.press(Qt::Key_Down);
    return import;
}

/// From the file that is chosen to the last page.
void goThroughWizard(ScreenDriver &driver) {
    driver.press(Qt::Key_Return);
    awaitRows(driver, importedChannels);
    click(driver, u"All"_s);
    driver.press(Qt::Key_Return);
    await(driver, u"categories"_s, [&] {
        const auto *box = driver.state().stack.top()->findChild<QComboBox *>();
        return box != nullptr && box->count() > 0 && !isAtWork(driver);
    });
}

bool isDone(const Import &import) {
    ScreenDriver &driver = import.driver;
    return driver.state().stack.top() == import.channels && !isAtWork(driver) &&
           driver.list().rowCount() == import.rowsBefore + importedChannels;
}

void measureImport(ScreenDriver &driver) {
    const Import import = openWizard(driver);
    const Cost fileChosen = driver.now();
    goThroughWizard(driver);
    const Cost finished = driver.now();
    driver.press(Qt::Key_Return);
    await(driver, u"all channels"_s, [&] { return isDone(import); });
    driver.rest(quiet);
    driver.require(isDone(import), u"all channels, and no more"_s);
    printCosts("from-file", {driver.since(fileChosen)});
    printCosts("from-Finish", {driver.since(finished)});
}

// A list that is filled anew goes back to its top, from where the wheel can only turn it down: so
// the way is not chosen before the screens' thread has come to it.
Cost turnWheel(ScreenDriver &driver) {
    const auto isTurned = std::make_shared<bool>(false);
    const auto turn = [&driver, isTurned] {
        const QScrollBar &bar = *driver.list().verticalScrollBar();
        const int before = bar.value();
        turnWheelOver(driver.list(), before == 0 ? 1 : -1);
        driver.require(bar.value() != before, u"the wheel turns the list"_s);
        *isTurned = true;
    };
    return driver.answer(
        {u"a turn of the wheel"_s, [&] { driver.look(turn); }, [isTurned] { return *isTurned; }});
}

void measureAnswers(ScreenDriver &driver) {
    const Import import = openWizard(driver);
    goThroughWizard(driver);
    auto next = std::chrono::steady_clock::now();
    Costs costs{driver.answer({u"the channels again"_s, [&] { driver.press(Qt::Key_Return); },
                               [&] { return driver.state().stack.top() == import.channels; }})};
    for (bool isOver = false; !isOver; driver.look([&] { isOver = isDone(import); })) {
        next += 20ms;
        std::this_thread::sleep_until(next);
        costs.push_back(turnWheel(driver));
    }
    printCosts("answer", costs);
}

// --- bringing out ---

void measureExport(ScreenDriver &driver) {
    Layer *categories = nullptr;
    QString path;
    driver.look([&] {
        ListView &list = driver.list();
        list.selectRow(list.rowCount() - 1);
        categories = driver.state().stack.top();
        path = QDir(documentsFolder()).filePath(list.rowText(list.rowCount() - 1) + u".opml");
    });
    driver.post(CommandExportCategory);
    awaitRows(driver, 2);
    driver.rest(quiet);
    driver.require(!QFile::exists(path), u"no such file yet"_s);
    const Cost begin = driver.now();
    driver.press(Qt::Key_Return);
    await(driver, path, [&] {
        return QFile::exists(path) && driver.state().stack.top() == categories && !isAtWork(driver);
    });
    printCosts("export", {driver.since(begin)});
    QFile file(path);
    driver.require(file.open(QIODevice::ReadOnly) &&
                       file.readAll().count("type=\"link\"") == exportedChannels,
                   u"all channels in the file"_s);
}

} // namespace

} // namespace tidebrook

// On a copy of the store: "bench_sharing HOME import|watch|export".
int main(int argc, char **argv) {
    return tidebrook::runDriven(argc, argv,
                                [](tidebrook::ScreenDriver &driver, const QString &what) {
                                    if (what == u"import")
                                        tidebrook::measureImport(driver);
                                    else if (what == u"watch")
                                        tidebrook::measureAnswers(driver);
                                    else
                                        tidebrook::measureExport(driver);
                                });
}
