#include "kit/page/text_page.h"

#include "kit/page/page_document.h"

#include <QAbstractTextDocumentLayout>
#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QScroller>
#include <QStyleHints>
#include <QTextDocumentFragment>
#include <QTextFrame>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tidebrook {

namespace {

constexpr int mostLetters = 75;    // of a line
constexpr int leastMargin = 12;    // in pixels
constexpr int leastSidewards = 48; // in pixels, that a finger has to move

bool isByTouch(const QMouseEvent &event) { return event.source() != Qt::MouseEventNotSynthesized; }

bool isKeyOfPages(const QKeyEvent &event) {
    if ((event.modifiers() & Qt::AltModifier) != 0)
        return false;
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Select:
        return true;
    default:
        return event.matches(QKeySequence::Copy) || event.matches(QKeySequence::SelectAll);
    }
}

} // namespace

TextPage::TextPage(QWidget *parent) : QTextBrowser(parent) {
    setDocument(new PageDocument(this));
    setOpenLinks(false);
    setFrameShape(QFrame::NoFrame);
    setUndoRedoEnabled(false);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(this, &QTextBrowser::anchorClicked, this, &TextPage::follow);
    connect(this, &QTextBrowser::sourceChanged, this, &TextPage::left);
    // A page is as wide as the screen. But from right to left Qt adds the margin beside a first
    // line that stands out into it, and a finger could move the page by that.
    connect(horizontalScrollBar(), &QScrollBar::rangeChanged, this,
            [this] { horizontalScrollBar()->setRange(0, 0); });
}

void TextPage::setPage(const QString &html) {
    html_ = html;
    QScroller::scroller(viewport())->stop(); // a finger moved the page before
    build();
    verticalScrollBar()->setValue(0);
}

void TextPage::setZoom(int level) {
    const int zoom = std::clamp(level, 2, 4);
    if (std::exchange(zoom_, zoom) != zoom)
        buildKeepingPlace();
}

QVariant TextPage::loadResource(int, const QUrl &) { return {}; }

void TextPage::keyPressEvent(QKeyEvent *event) {
    if (isKeyOfPages(*event))
        QTextBrowser::keyPressEvent(event);
    else
        event->ignore();
}

void TextPage::changeEvent(QEvent *event) {
    QTextBrowser::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        buildKeepingPlace();
}

// Qt's menu would copy the anchor instead of the target.
void TextPage::contextMenuEvent(QContextMenuEvent *event) {
    const QPoint inDocument = event->pos() + QPoint(0, verticalScrollBar()->value());
    QMenu *menu = createStandardContextMenu(inDocument);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (auto *copyLink = menu->findChild<QAction *>(QStringLiteral("link-copy"))) {
        const qsizetype link = QUrl(anchorAt(event->pos())).path().toLongLong();
        copyLink->disconnect();
        connect(copyLink, &QAction::triggered, this,
                [target = links_.value(link)] { QGuiApplication::clipboard()->setText(target); });
    }
    menu->popup(event->globalPos());
}

// Only as plain text: the anchors mean nothing elsewhere.
QMimeData *TextPage::createMimeDataFromSelection() const {
    auto *copied = new QMimeData;
    copied->setText(textCursor().selection().toPlainText());
    return copied;
}

void TextPage::build() {
    const qreal points = 5 + 2 * zoom_;
    PageLook look{font(), points / 9, palette().color(QPalette::Base),
                  palette().color(QPalette::Link)};
    look.body.setPointSizeF(points);
    links_ = showPage(*document(), html_, look);
    setMargins();
    setTextCursor(QTextCursor(document())); // no link has the focus
}

void TextPage::setMargins() {
    const qreal letter = QFontMetricsF(document()->defaultFont()).averageCharWidth();
    const int beside = viewport()->width() - static_cast<int>(mostLetters * letter);
    const int margin = std::max(leastMargin, (beside + 1) / 2);
    QTextFrameFormat format = document()->rootFrame()->frameFormat();
    if (margin == qRound(format.leftMargin()))
        return;
    format.setLeftMargin(margin);
    format.setRightMargin(margin);
    document()->rootFrame()->setFrameFormat(format);
}

void TextPage::buildKeepingPlace() {
    if (!html_.isEmpty())
        keepPlace([this] { build(); });
}

void TextPage::resizeEvent(QResizeEvent *event) {
    keepPlace([this, event] {
        setMargins();
        QTextBrowser::resizeEvent(event);
    });
}

void TextPage::keepPlace(const std::function<void()> &change) {
    const bool isAtTop = verticalScrollBar()->value() == 0;
    const int position = cursorForPosition({0, 0}).position();
    change();
    if (isAtTop)
        return verticalScrollBar()->setValue(0);
    document()->documentLayout()->documentSize(); // lays it all out, else the end is out of reach
    QTextCursor place(document());
    place.setPosition(std::min(position, document()->characterCount() - 1));
    verticalScrollBar()->setValue(verticalScrollBar()->value() + cursorRect(place).top());
}

void TextPage::mousePressEvent(QMouseEvent *event) {
    pressedAt_ = event->position();
    QTextBrowser::mousePressEvent(event);
}

// A finger scrolls and turns, and selects nothing.
void TextPage::mouseMoveEvent(QMouseEvent *event) {
    if (!isByTouch(*event))
        QTextBrowser::mouseMoveEvent(event);
}

void TextPage::mouseReleaseEvent(QMouseEvent *event) {
    const QPointF way = event->position() - pressedAt_;
    if (isByTouch(*event) &&
        way.manhattanLength() >= QGuiApplication::styleHints()->startDragDistance())
        endTouch(*event);
    else
        QTextBrowser::mouseReleaseEvent(event);
}

void TextPage::endTouch(const QMouseEvent &release) {
    // The link under the finger is not meant.
    QMouseEvent beside(release.type(), QPointF(-1, -1), release.globalPosition(), release.button(),
                       release.buttons(), release.modifiers());
    QTextBrowser::mouseReleaseEvent(&beside);
    const QPointF way = release.position() - pressedAt_;
    if (std::abs(way.x()) >= leastSidewards && std::abs(way.x()) > 2 * std::abs(way.y()))
        Q_EMIT turned((way.x() < 0) == (layoutDirection() == Qt::LeftToRight) ? 1 : -1);
}

void TextPage::follow(const QUrl &link) {
    Q_EMIT linkTapped(links_.value(link.path().toLongLong()));
}

} // namespace tidebrook

#include "moc_text_page.cpp"
