#pragma once

#include <QObject>
#include <QRect>

class QWidget;

namespace tidebrook {

/// The on-screen keyboard, where the desktop has one that lies over the window.
class InputPanel : public QObject {
    Q_OBJECT

public:
    explicit InputPanel(QWidget *window);

    void putDown();
    /// What it covers of the window's lower part, in pixels; 0 when it is down.
    int coveredHeight() const;

Q_SIGNALS:
    /// It came up, went down, or changed its size.
    void changed();

private:
    QWidget *window_;
};

} // namespace tidebrook
