#pragma once

#include "kit/list_rows.h"

namespace tidebrook {

class ListView;
class ScreenMenu;

/// A row of a list: the one with this text, which may have moved, or the one with this number when
/// the text is null.
struct Place {
    int row;
    QString text;
};

/// Of several rows with the text the one at the old place is selected; without any, the row that is
/// now at that place.
void selectPlace(ListView &list, const Place &place);

/// Shows rows that have changed without the user's doing. What is selected stays selected and what
/// is in sight stays there.
void followRows(ListView &list, QList<ListRow> rows);

/// Has a menu that is about to open act on the row that is selected now. Where other rows were
/// shown meanwhile it is selected again, or nothing is when it has gone.
void keepRow(ScreenMenu &menu, ListView &list);

} // namespace tidebrook
