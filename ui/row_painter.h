#pragma once

#include "kit/row_delegate.h"

#include <QList>

namespace tidebrook {

struct AppState;

/// What the rows of the channel and the article list show, by the number of its image.
enum RowImage : int { UnreadImage, ReadImage, ChannelImage };
const QList<const char *> &rowImages();

/// Paints the rows of the channel and the article list: the icon, the name or title, and at the
/// bottom right the counts or the date. What is unread is bold: a channel's counts, an article's
/// title. Titles wrap, but in the biggest size, where they have one line; what does not fit ends in
/// an ellipsis.
class RowPainter : public RowDelegate {
    Q_OBJECT

public:
    RowPainter(const AppState &state, ListView &list);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

private:
    const AppState &state_;
};

} // namespace tidebrook
