#include "ui/kit/text_page.h"

#include "ui/kit/touch_scrolling.h"

namespace tidebrook {

TextPage::TextPage(QWidget *parent) : QTextBrowser(parent) {
    setOpenLinks(false);
    setFrameShape(QFrame::NoFrame);
    setUndoRedoEnabled(false);
    scrollByTouch(*this);
    connect(this, &QTextBrowser::anchorClicked, this, &TextPage::follow);
}

QVariant TextPage::loadResource(int, const QUrl &) { return {}; }

void TextPage::follow(const QUrl &link) {
    const QString target = link.toString();
    if (target.startsWith(QLatin1Char('#')))
        scrollToAnchor(target.mid(1));
    else
        Q_EMIT linkTapped(target);
}

} // namespace tidebrook
