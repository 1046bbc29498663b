#pragma once

#include "kit/row_delegate.h"

namespace tidebrook {

/// The images of the rows of the channel and the article list.
enum RowImage : int { UnreadImage, ReadImage, ChannelImage };

/// Paints the rows of the channel and the article list: the icon, the name or title, and at the
/// bottom right the counts or the date. The counts of a channel with unread articles are bold, and
/// so is an unread title. Titles wrap, except in the biggest size; what does not fit is elided.
class RowPainter : public RowDelegate {
    Q_OBJECT

public:
    using RowDelegate::RowDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
};

} // namespace tidebrook
