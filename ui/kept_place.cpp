#include "ui/kept_place.h"

#include "kit/list_view.h"
#include "kit/screen_menu.h"

#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace tidebrook {

void selectPlace(ListView &list, const Place &place) {
    int row = place.row;
    if (!place.text.isNull() && list.rowText(row) != place.text) {
        if (const int found = list.findRow(place.text); found >= 0)
            row = found;
    }
    list.selectRow(std::clamp(row, 0, std::max(0, list.rowCount() - 1)));
}

void followRows(ListView &list, QList<ListRow> rows) {
    if (list.updateRows(rows))
        return;
    const Place selected{SelectedRow(&list), list.rowText(SelectedRow(&list))};
    const bool isOneSelected = selected.row >= 0 || list.rowCount() == 0;
    const int first = list.indexAt({0, 0}).row(); // in sight
    const QString firstText = list.rowText(first);
    QScrollBar &bar = *list.verticalScrollBar();
    int scrolled = bar.value();
    list.setRows(std::move(rows));
    list.doItemsLayout();
    if (isOneSelected)
        selectPlace(list, selected);
    if (const int now = list.findRow(firstText); first >= 0 && now >= 0)
        scrolled += (now - first) * list.rowHeight();
    bar.setValue(scrolled);
}

void keepRow(ScreenMenu &menu, ListView &list) {
    const auto selectAgain = [&list, text = list.rowText(SelectedRow(&list))] {
        if (list.rowText(SelectedRow(&list)) != text)
            list.selectRow(list.findRow(text));
    };
    // Commands are sent by the event loop, and what was to be shown before is shown by then.
    QObject::connect(&menu, &ScreenMenu::chosen, &list, selectAgain, Qt::QueuedConnection);
}

} // namespace tidebrook
