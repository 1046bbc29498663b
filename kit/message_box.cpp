#include "kit/message_box.h"

#include "kit/icon.h"
#include "kit/keys.h"
#include "kit/list_view.h"
#include "kit/screen_stack.h"
#include "platform/base/text.h"

#include <QDialogButtonBox>
#include <QFrame>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTextLayout>

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

QLabel *makeBoldText(const QString &text, QWidget *parent) {
    QLabel *label = makeText(text, parent);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    return label;
}

// Labels wrap at blanks alone, which a name need not have.
QString wrappedAnywhere(const QString &text, const QFont &font, int width) {
    constexpr int mostLines = 4;
    QTextOption wrapping;
    wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QTextLayout layout(text, font);
    layout.setTextOption(wrapping);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (lines.size() + 1 == mostLines) {
            const QString rest = text.mid(line.textStart());
            lines.append(QFontMetrics(font).elidedText(rest, Qt::ElideRight, width));
            break;
        }
        lines.append(text.mid(line.textStart(), line.textLength()));
    }
    layout.endLayout();
    return lines.join(u'\n');
}

/// The selected row of the list that the box lies over, on the screen; none is empty.
QRect selectedRow(const QWidget &screen) {
    for (const auto *list : screen.findChildren<ListView *>()) {
        if (!list->isVisible() || !list->looksFocused())
            continue;
        const QRect row = list->visualRect(list->currentIndex());
        return {list->viewport()->mapTo(&screen, row.topLeft()), row.size()};
    }
    return {};
}

// The middle or, if there is room, beside the row.
int topBeside(const QRect &row, int boxHeight, int screenHeight) {
    const int middle = (screenHeight - boxHeight) / 2;
    if (middle > row.bottom() || middle + boxHeight <= row.top())
        return middle;
    if (screenHeight - row.bottom() > boxHeight)
        return row.bottom() + 1;
    return row.top() >= boxHeight ? row.top() - boxHeight : middle;
}

} // namespace

// Joiners and their opposites are a part of the spelling of some languages.
MessageBox::MessageBox(ScreenStack &stack, Kind kind, const QString &caption, const QString &text,
                       const QString &subject)
    : Layer(stack), subject_(withoutHidden(subject, joinersAndMarks)), frame_(new QFrame(this)),
      subjectLabel_(makeBoldText({}, frame_)) {
    setAccessibleName(caption);
    setAccessibleDescription(subject_.isEmpty() ? text : QString(text + u'\n' + subject_));
    frame_->setFrameShape(QFrame::StyledPanel);
    frame_->setAutoFillBackground(true);

    auto *image = new QLabel(frame_);
    image->setPixmap(icon(kind == Kind::Error ? "error" : "warning", iconSize, palette()));
    image->setAlignment(Qt::AlignTop);
    subjectLabel_->setWordWrap(false);
    subjectLabel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    subjectLabel_->setVisible(!subject_.isEmpty());

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
    grid->addWidget(makeBoldText(caption, frame_), 0, 0, 1, 2);
    grid->addWidget(image, 1, 0, 2, 1);
    grid->addWidget(makeText(text, frame_), 1, 1);
    grid->addWidget(subjectLabel_, 2, 1);
    grid->addWidget(buttons, 3, 0, 1, 2);
}

bool MessageBox::ask(ScreenStack &stack, Kind kind, const QString &caption, const QString &text,
                     const QString &subject) {
    MessageBox box(stack, kind, caption, text, subject);
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
    wrapSubject(wide);
    const int high = std::min(height(), frame_->layout()->totalHeightForWidth(wide));
    const QRect row = subject_.isEmpty() ? QRect() : selectedRow(stack());
    frame_->setGeometry((width() - wide) / 2, topBeside(row, high, height()), wide, high);
}

void MessageBox::wrapSubject(int width) {
    const QMargins margins = frame_->layout()->contentsMargins() + frame_->contentsMargins();
    const int room = width - margins.left() - margins.right() - iconSize.width() - iconColumnGap;
    subjectLabel_->setText(wrappedAnywhere(subject_, subjectLabel_->font(), room));
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

#include "moc_message_box.cpp"
