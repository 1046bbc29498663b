#include "kit/message_box.h"

#include "kit/icon.h"
#include "kit/keys.h"
#include "kit/screen_stack.h"

#include <QDialogButtonBox>
#include <QFrame>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

#include <algorithm>

namespace tidebrook {

namespace {

constexpr QSize iconSize(40, 40);
constexpr int iconColumnGap = 12;
constexpr int widthUnits = 220;

QLabel *makeText(const QString &text, QWidget *parent) {
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

MessageBox::MessageBox(ScreenStack &stack, Kind kind, const QString &caption, const QString &text)
    : Layer(stack), frame_(new QFrame(this)) {
    setAccessibleName(caption);
    setAccessibleDescription(text);
    frame_->setFrameShape(QFrame::StyledPanel);
    frame_->setAutoFillBackground(true);

    auto *image = new QLabel(frame_);
    image->setPixmap(icon(kind == Kind::Error ? "error" : "warning", iconSize, palette()));
    image->setAlignment(Qt::AlignTop);
    QLabel *title = makeText(caption, frame_);
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);

    auto *buttons = new QDialogButtonBox(
        kind == Kind::Question ? QDialogButtonBox::Yes | QDialogButtonBox::No
                               : QDialogButtonBox::StandardButtons(QDialogButtonBox::Ok),
        frame_);
    buttons->setCenterButtons(true);
    default_ =
        buttons->button(kind == Kind::Question ? QDialogButtonBox::No : QDialogButtonBox::Ok);
    default_->setAutoDefault(true);
    default_->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { end(1); });
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { end(0); });

    auto *grid = new QGridLayout(frame_);
    grid->setHorizontalSpacing(iconColumnGap);
    grid->setColumnStretch(1, 1);
    grid->addWidget(title, 0, 0, 1, 2);
    grid->addWidget(image, 1, 0);
    grid->addWidget(makeText(text, frame_), 1, 1);
    grid->addWidget(buttons, 2, 0, 1, 2);
}

bool MessageBox::ask(ScreenStack &stack, Kind kind, const QString &caption, const QString &text) {
    MessageBox box(stack, kind, caption, text);
    return stack.run(box) == 1;
}

QWidget *MessageBox::firstFocus() { return default_; }

void MessageBox::paintEvent(QPaintEvent *) {
    constexpr QColor shade(0, 0, 0, 110);
    QPainter(this).fillRect(rect(), shade);
}

void MessageBox::resizeEvent(QResizeEvent *) {
    const int wanted =
        std::max(stack().units().pixels(widthUnits), frame_->minimumSizeHint().width());
    const int wide = std::min(width(), wanted);
    const int high = std::min(height(), frame_->layout()->totalHeightForWidth(wide));
    frame_->setGeometry((width() - wide) / 2, (height() - high) / 2, wide, high);
}

void MessageBox::keyPressEvent(QKeyEvent *event) {
    const int key = event->key();
    if (isBack(key)) {
        end(0);
    } else if (isEnter(key)) {
        if (auto *button = qobject_cast<QPushButton *>(focusWidget()))
            button->click();
    } else if (key == Qt::Key_Left || key == Qt::Key_Up) {
        focusNextPrevChild(false);
    } else if (key == Qt::Key_Right || key == Qt::Key_Down) {
        focusNextPrevChild(true);
    } else {
        Layer::keyPressEvent(event);
    }
}

} // namespace tidebrook
