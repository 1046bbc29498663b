// What the screens cost the thread that shows them.

#include "bench/screen_driver.h"
#include "kit/list_view.h"
#include "res/commands.h"

#include <QScrollBar>

namespace tidebrook {

namespace {

constexpr int refreshCount = 20;

using Times = ScreenDriver::Costs;

/// Whether all of a row can be seen.
bool showsRow(const ListView &list, int row) {
    return list.viewport()->rect().contains(list.visualRect(list.model()->index(row, 0)));
}

Times fillCategories(ScreenDriver &driver, int count) {
    ListView &list = driver.list();
    const QStringList names =
        driver.state().device.categoryStore.listedCategories().value_or(QStringList());
    driver.require(names.size() == count, QStringLiteral("%1 categories").arg(count));
    Times times;
    for (int i = 0; i < refreshCount; ++i) {
        driver.measure({QStringLiteral("an emptied list"),
                        [&] { driver.look([&] { list.setRows({}); }); },
                        [&] { return list.rowCount() == 0; }});
        times.push_back(driver.measure({QStringLiteral("a refreshed list"),
                                        [&] { driver.post(CommandRefreshCategories); },
                                        [&] { return list.rowCount() == count; }}));
        driver.require(list.rowTexts() == names, QStringLiteral("the categories in the list"));
    }
    return times;
}

Times scrollByWheel(ScreenDriver &driver) {
    const ListView &list = driver.list();
    const QScrollBar &bar = *list.verticalScrollBar();
    driver.require(bar.maximum() > 0 && showsRow(list, 0),
                   QStringLiteral("scrolling from the top"));
    Times times;
    while (bar.value() < bar.maximum()) {
        const int before = bar.value();
        times.push_back(
            driver.measure({QStringLiteral("a turn of the wheel"), [&] { driver.turnWheel(1); },
                            [&] { return bar.value() > before; }}));
    }
    driver.require(showsRow(list, list.rowCount() - 1), QStringLiteral("the wheel at the end"));
    return times;
}

Times scrollByPages(ScreenDriver &driver) {
    const ListView &list = driver.list();
    driver.measure({QStringLiteral("a refresh that leads to the top"),
                    [&] { driver.post(CommandRefreshCategories); },
                    [&] { return showsRow(list, 0); }});
    driver.require(SelectedRow(&list) == 0, QStringLiteral("turning pages from the first row"));
    Times times;
    while (SelectedRow(&list) < list.rowCount() - 1) {
        const int before = SelectedRow(&list);
        times.push_back(driver.measure({QStringLiteral("a page further"),
                                        [&] { driver.press(Qt::Key_PageDown); },
                                        [&] { return SelectedRow(&list) > before; }}));
        driver.require(showsRow(list, SelectedRow(&list)), QStringLiteral("a page's last row"));
    }
    return times;
}

void measureCategories(ScreenDriver &driver, int count) {
    printCosts("refreshed", fillCategories(driver, count));
    printCosts("wheel", scrollByWheel(driver));
    printCosts("PageDown", scrollByPages(driver));
}

} // namespace

} // namespace tidebrook

// On a device with so many categories: "bench_screens HOME CATEGORIES".
int main(int argc, char **argv) {
    return tidebrook::runDriven(
        argc, argv, [](tidebrook::ScreenDriver &driver, const QString &categories) {
            driver.require(categories.toInt() > 0, QStringLiteral("a number of categories"));
            tidebrook::measureCategories(driver, categories.toInt());
        });
}
