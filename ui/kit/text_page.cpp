#include "ui/kit/text_page.h"

#include "ui/kit/touch_scrolling.h"

#include <QKeyEvent>

namespace tidebrook {

TextPage::TextPage(QWidget *parent) : QTextBrowser(parent) {
    setOpenLinks(false);
    setFrameShape(QFrame::NoFrame);
    setUndoRedoEnabled(false);
    scrollByTouch(*this);
    connect(this, &QTextBrowser::anchorClicked, this, &TextPage::follow);
}

QVariant TextPage::loadResource(int, const QUrl &) { return {}; }

// There is no history to walk; the keys for that leave the screen.
void TextPage::keyPressEvent(QKeyEvent *event) {
    if ((event->modifiers() & Qt::AltModifier) != 0)
        event->ignore();
    else
        QTextBrowser::keyPressEvent(event);
}

void TextPage::follow(const QUrl &link) {
    const QString target = link.toString();
    if (target.startsWith(QLatin1Char('#')))
        scrollToAnchor(target.mid(1));
    else
        Q_EMIT linkTapped(target);
}

} // namespace tidebrook
