#include "today/headline_strip.h"

#include "kit/icon.h"
#include "platform/sync/pause.h"
#include "res/strings.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QStyleHints>
#include <QStyleOptionFocusRect>

#include <algorithm>
#include <array>

namespace tidebrook {

namespace {

constexpr int shortestStep = 50; // ms
constexpr int noteTime = 4000;   // ms
constexpr int padding = 7;       // pixels
constexpr int leastHeight = 32;
constexpr int leastWidth = 320;
constexpr int swipeWay = 40;
constexpr int wheelStep = 120;

struct Message {
    TodayState::News news;
    int stringId;
};
constexpr std::array messages{
    Message{TodayState::News::NoDevice, todayNoDeviceString},
    Message{TodayState::News::Unreadable, todayUnreadableString},
    Message{TodayState::News::NoChannel, todayNoChannelString},
    Message{TodayState::News::NothingUnread, todayNothingUnreadString},
};

/// Draws parts of one line, one after the other in the direction of reading.
class LinePainter {
public:
    LinePainter(QWidget &widget, const QRect &room)
        : painter_(&widget), isMirrored_(widget.layoutDirection() == Qt::RightToLeft), room_(room) {
    }

    void draw(const QPixmap &pixmap) {
        const QSize size = pixmap.deviceIndependentSize().toSize();
        const QRect place = take(size.width());
        painter_.drawPixmap(place.left(), place.center().y() - size.height() / 2, pixmap);
    }
    void draw(const QString &text, bool isBold) {
        QFont font = painter_.font();
        font.setBold(isBold);
        painter_.setFont(font);
        const QFontMetrics metrics(font);
        const QString fitting = metrics.elidedText(text, Qt::ElideRight, room_.width());
        painter_.drawText(take(metrics.horizontalAdvance(fitting)),
                          Qt::AlignVCenter | Qt::AlignLeading | Qt::TextSingleLine, fitting);
    }

private:
    QRect take(int width) {
        QRect taken = room_;
        if (isMirrored_) {
            taken.setLeft(room_.right() + 1 - width);
            room_.setRight(taken.left() - 1 - padding);
        } else {
            taken.setRight(room_.left() - 1 + width);
            room_.setLeft(taken.right() + 1 + padding);
        }
        return taken;
    }

    QPainter painter_;
    const bool isMirrored_;
    QRect room_;
};

} // namespace

HeadlineStrip::HeadlineStrip() {
    setFocusPolicy(Qt::StrongFocus);
    setWindowTitle(resourceString(programNameString));
    setFixedHeight(HeadlineStrip::sizeHint().height());
}

void HeadlineStrip::setState(const TodayState &state) {
    const std::optional<Headline> before = headline();
    state_ = state;
    const qsizetype kept = before ? state_.headlines.indexOf(*before) : -1;
    shown_ = kept >= 0 ? kept : std::clamp<qsizetype>(shown_, 0, state_.headlines.size());
    if (shown_ == state_.headlines.size())
        shown_ = 0;
    step_.stop(); // the pace may be another one
    updateText();
    updateStepping();
}

void HeadlineStrip::setStepping(bool isStepping) {
    isStepping_ = isStepping;
    updateStepping();
}

void HeadlineStrip::showNote(const QString &text) {
    note_ = text;
    noteEnd_.start(noteTime, this);
    updateText();
}

std::optional<Headline> HeadlineStrip::headline() const {
    if (state_.news != TodayState::News::Unread)
        return std::nullopt;
    return state_.headlines.value(shown_);
}

QSize HeadlineStrip::sizeHint() const {
    return {leastWidth, std::max(leastHeight, fontMetrics().height() + 2 * padding)};
}

bool HeadlineStrip::event(QEvent *event) {
    const bool isHandled = QAbstractButton::event(event);
    if (event->type() == QEvent::Enter || event->type() == QEvent::Leave)
        updateStepping();
    else if (event->type() == QEvent::FontChange)
        setFixedHeight(HeadlineStrip::sizeHint().height());
    return isHandled;
}

QString HeadlineStrip::message() const {
    const auto *found = std::ranges::find(messages, state_.news, &Message::news);
    return found != messages.end() ? resourceString(found->stringId) : QString();
}

void HeadlineStrip::updateText() {
    const std::optional<Headline> shown = headline();
    const QString text = !note_.isEmpty() ? note_ : shown ? shownHeadline(*shown) : message();
    setAccessibleName(resourceString(todayUnreadString).arg(state_.total) + u". " + text);
    update();
}

void HeadlineStrip::updateStepping() {
    const bool isWanted = isStepping_ && !underMouse() && !isDown() && state_.headlines.size() > 1;
    if (!isWanted)
        step_.stop();
    else if (!step_.isActive())
        step_.start(std::max(scaledPause(static_cast<int>(state_.step.count())), shortestStep),
                    this);
}

void HeadlineStrip::step(int by) {
    const qsizetype count = state_.headlines.size();
    if (count == 0)
        return;
    shown_ = ((shown_ + by) % count + count) % count;
    updateText();
}

void HeadlineStrip::timerEvent(QTimerEvent *event) {
    if (event->timerId() == step_.timerId()) {
        step(1);
    } else if (event->timerId() == noteEnd_.timerId()) {
        noteEnd_.stop();
        note_.clear();
        updateText();
    } else if (event->timerId() == hold_.timerId()) {
        wantMenu(mapToGlobal(*pressed_));
    }
}

void HeadlineStrip::wantMenu(const QPoint &position) {
    hold_.stop();
    pressed_.reset();
    setDown(false); // so that lifting the finger is no click
    Q_EMIT menuWanted(position);
}

void HeadlineStrip::paintEvent(QPaintEvent *) {
    LinePainter line(*this, rect().adjusted(padding, 0, -padding, 0));
    const int iconSize = fontMetrics().height() + padding / 2;
    line.draw(tidebrook::icon("tidebrook", QSize(iconSize, iconSize), palette()));
    if (state_.total > 0)
        line.draw(locale().toString(state_.total), true);
    const std::optional<Headline> shown = note_.isEmpty() ? headline() : std::nullopt;
    if (!shown)
        return line.draw(note_.isEmpty() ? message() : note_, false);
    line.draw(shownLine(shown->channel), true);
    line.draw(shownLine(shown->title), false);
}

void HeadlineStrip::keyPressEvent(QKeyEvent *event) {
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    switch (event->key()) {
    case Qt::Key_Up:
        return step(-1);
    case Qt::Key_Down:
        return step(1);
    case Qt::Key_Left:
        return step(isMirrored ? 1 : -1);
    case Qt::Key_Right:
        return step(isMirrored ? -1 : 1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return click();
    default:
        QAbstractButton::keyPressEvent(event);
    }
}

void HeadlineStrip::wheelEvent(QWheelEvent *event) {
    turned_ += event->angleDelta().y();
    const int steps = turned_ / wheelStep;
    turned_ %= wheelStep;
    if (steps != 0)
        step(-steps);
}

void HeadlineStrip::mousePressEvent(QMouseEvent *event) {
    QAbstractButton::mousePressEvent(event);
    if (event->button() != Qt::LeftButton)
        return;
    pressed_ = event->position().toPoint();
    hold_.start(QGuiApplication::styleHints()->mousePressAndHoldInterval(), this);
    updateStepping();
}

void HeadlineStrip::mouseMoveEvent(QMouseEvent *event) {
    if (!pressed_)
        return; // the press has led to the menu, and is to be no click any more
    QAbstractButton::mouseMoveEvent(event);
    const QPoint way = event->position().toPoint() - *pressed_;
    if (way.manhattanLength() >= QGuiApplication::styleHints()->startDragDistance())
        hold_.stop();
}

void HeadlineStrip::mouseReleaseEvent(QMouseEvent *event) {
    hold_.stop();
    const int end = qRound(event->position().x());
    const int way = end - std::exchange(pressed_, std::nullopt).value_or(QPoint(end, 0)).x();
    if (std::abs(way) >= swipeWay) {
        setDown(false);
        step((way < 0) != (layoutDirection() == Qt::RightToLeft) ? 1 : -1);
    }
    QAbstractButton::mouseReleaseEvent(event);
    updateStepping();
}

void HeadlineStrip::contextMenuEvent(QContextMenuEvent *event) {
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    wantMenu(isByKey ? mapToGlobal(rect().bottomLeft()) : event->globalPos());
}

} // namespace tidebrook

#include "moc_headline_strip.cpp"
