#pragma once

#include <QCheckBox>

namespace tidebrook {

/// A check box whose text goes on in further lines where one is too short for it.
class WrappingCheckBox : public QCheckBox {
    Q_OBJECT

public:
    using QCheckBox::QCheckBox;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }
};

} // namespace tidebrook
