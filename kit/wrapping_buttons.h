#pragma once

#include <QCheckBox>
#include <QRadioButton>

namespace tidebrook {

/// Draws the outline of a check mark's box, which the styles draw darker than the ground: on dark
/// ground nobody would see it.
void paintBoxOutline(QPainter &painter, const QRect &box, const QPalette &palette);

/// A check box whose text goes on in further lines where one is too short for it. All of its area
/// can be tapped.
class WrappingCheckBox : public QCheckBox {
    Q_OBJECT

public:
    using QCheckBox::QCheckBox;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }
};

/// The same for a radio button.
class WrappingRadioButton : public QRadioButton {
    Q_OBJECT

public:
    using QRadioButton::QRadioButton;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }
};

} // namespace tidebrook
