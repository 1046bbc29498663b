#include "kit/header_bar.h"

#include "kit/icon.h"
#include "kit/keys.h"
#include "kit/list_view.h"
#include "res/commands.h"
#include "res/strings.h"

#include <QApplication>
#include <QEvent>
#include <QFocusEvent>
#include <QPainter>
#include <QStyle>
#include <QToolButton>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr int iconUnits = 24;
constexpr int marginUnits = 6;
constexpr int keyUnits = 41;

// The caption of the bar shows through the key.
class CaptionKey : public QToolButton {
public:
    using QToolButton::QToolButton;

protected:
    void paintEvent(QPaintEvent *) override {
        if (!isDown())
            return;
        QColor shade = palette().color(QPalette::Highlight);
        shade.setAlphaF(0.3F);
        QPainter(this).fillRect(rect(), shade);
    }
};

bool isStep(Qt::FocusReason reason) {
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
}

} // namespace

HeaderBar::HeaderBar(QWidget *dialog) : QWidget(dialog) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);
}

void HeaderBar::setCaption(const QString &caption) {
    caption_ = caption;
    nameAll();
}

void HeaderBar::setNote(const QString &note) {
    note_ = note;
    nameAll();
}

void HeaderBar::nameAll() {
    const QString name = note_.isEmpty() ? caption_ : QString(caption_ + u", " + note_);
    setAccessibleName(name);
    parentWidget()->setAccessibleName(name);
    if (captionKey_ != nullptr)
        captionKey_->setAccessibleName(name);
    update();
}

void HeaderBar::setSteppable() {
    captionKey_ = new CaptionKey(this);
    previous_ = new QToolButton(this);
    next_ = new QToolButton(this);
    prepareKey(*captionKey_, caption_, CommandShowChoices);
    prepareKey(*previous_, resourceString(previousString), CommandPrevious);
    prepareKey(*next_, resourceString(nextString), CommandNext);
    choices_ = new ListView(parentWidget());
    choices_->hide();
    choices_->setFrameShape(QFrame::Box);
    connect(choices_, &ListView::tapped, this, &HeaderBar::handleChoice);
    connect(choices_, &ListView::keyPressed, this, [this](int key, bool &isTaken) {
        // Delete is meant for the list below.
        isTaken = isBack(key) || isEnter(key) || key == Qt::Key_Delete;
        if (isBack(key))
            Q_EMIT chosen(CommandHideChoices);
        else if (isEnter(key))
            handleChoice(SelectedRow(choices_));
    });
    arrange();
}

void HeaderBar::handleChoice(int row) {
    if (row >= 0)
        Q_EMIT choiceTaken(row);
    else
        Q_EMIT chosen(CommandHideChoices);
}

void HeaderBar::prepareKey(QToolButton &key, const QString &name, int command) {
    key.setAutoRaise(true);
    key.setFocusPolicy(Qt::NoFocus);
    key.setAccessibleName(name);
    connect(&key, &QToolButton::clicked, this, [this, command] { Q_EMIT chosen(command); });
    key.show();
}

void HeaderBar::setChoices(const QStringList &names, int current) {
    QList<ListRow> rows;
    rows.reserve(names.size());
    for (const QString &name : names)
        rows.append({name});
    choices_->setAccessibleName(caption_);
    choices_->setRows(rows);
    choices_->selectRow(current);
}

bool HeaderBar::isBesideChoices(const QObject *watched) const {
    const auto *target = qobject_cast<const QWidget *>(watched);
    return target != nullptr && parentWidget()->isAncestorOf(target) && target != captionKey_ &&
           target != choices_ && !choices_->isAncestorOf(target);
}

bool HeaderBar::eventFilter(QObject *watched, QEvent *event) {
    if (watched == choices_ && event->type() == QEvent::FocusOut &&
        isStep(static_cast<QFocusEvent *>(event)->reason()))
        Q_EMIT chosen(CommandHideChoices);
    if (!isBesideChoices(watched))
        return false;
    const bool isPress = event->type() == QEvent::MouseButtonPress;
    if (!isPress && event->type() != QEvent::MouseButtonRelease)
        return false;
    if (!isPress)
        Q_EMIT chosen(CommandHideChoices);
    return true;
}

void HeaderBar::showChoices() {
    arrange();
    qApp->installEventFilter(this);
    choices_->show();
    choices_->raise();
    choices_->setFocus();
}

void HeaderBar::hideChoices() {
    qApp->removeEventFilter(this);
    choices_->hide();
}

bool HeaderBar::areChoicesVisible() const { return choices_ != nullptr && choices_->isVisible(); }

DialogUnits HeaderBar::units() const { return DialogUnits(parentWidget()->size()); }

void HeaderBar::arrange() {
    if (choices_ == nullptr)
        return;
    const int keyWidth = units().pixels(keyUnits);
    next_->setGeometry(mirrored({width() - keyWidth, 0, keyWidth, height()}));
    previous_->setGeometry(mirrored({width() - 2 * keyWidth, 0, keyWidth, height()}));
    captionKey_->setGeometry(mirrored({0, 0, width() - 2 * keyWidth, height()}));
    captionKey_->lower();
    const QSize iconSize(units().pixels(iconUnits), units().pixels(iconUnits));
    const int side = std::min(iconSize.width(), iconSize.height());
    for (QToolButton *key : {previous_, next_}) {
        key->setIconSize(QSize(side, side));
        key->setIcon(icon((key == next_) != isRightToLeft() ? "next" : "previous", key->iconSize(),
                          palette()));
    }
    choices_->setUnits(units());
    const int frame = 2 * choices_->frameWidth();
    const int room = parentWidget()->height() - height() - units().pixels(menuBarUnits);
    const int needed = choices_->rowCount() * choices_->rowHeight() + frame;
    choices_->setGeometry(0, height(), width(), std::min(room, needed));
}

QRect HeaderBar::mirrored(const QRect &place) const {
    return QStyle::visualRect(layoutDirection(), rect(), place);
}

QRect HeaderBar::captionPlace() const {
    const int margin = units().pixels(marginUnits);
    const int start = units().pixels(iconUnits) + 2 * margin;
    const int end = captionKey_ != nullptr ? captionKey_->width() - units().pixels(iconUnits)
                                           : width() - margin;
    return {start, 0, std::max(0, end - start), height()};
}

void HeaderBar::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const QSize iconSize(units().pixels(iconUnits),
                         std::min(units().pixels(iconUnits), height() - 2));
    const int middle = (height() - iconSize.height()) / 2;
    const QRect mark(QPoint(units().pixels(marginUnits), middle), iconSize);
    painter.drawPixmap(mirrored(mark).topLeft(), icon("header", iconSize, palette()));

    const QRect place = captionPlace();
    paintCaption(painter, mirrored(place));
    if (captionKey_ != nullptr)
        painter.drawPixmap(mirrored({QPoint(place.right(), middle), iconSize}).topLeft(),
                           icon("choices", iconSize, palette()));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(0, height() - 1, width(), height() - 1);
}

void HeaderBar::paintCaption(QPainter &painter, const QRect &place) const {
    constexpr int line = Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine;
    QFont bold = font();
    bold.setBold(true);
    QRect captionLine = place;
    painter.setPen(palette().color(QPalette::WindowText));
    if (!note_.isEmpty()) {
        captionLine.setBottom(place.center().y());
        painter.setFont(font());
        painter.drawText(place.adjusted(0, captionLine.height(), 0, 0), line, note_);
    }
    const QString shown = QFontMetrics(bold).elidedText(caption_, Qt::ElideRight, place.width());
    painter.setFont(bold);
    painter.drawText(captionLine, line, shown);
}

void HeaderBar::resizeEvent(QResizeEvent *) { arrange(); }

void HeaderBar::changeEvent(QEvent *event) {
    if (event->type() == QEvent::PaletteChange)
        arrange(); // which colours the keys' icons anew
    QWidget::changeEvent(event);
}

} // namespace tidebrook

#include "moc_header_bar.cpp"
