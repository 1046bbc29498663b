#pragma once

#include <QObject>

namespace tidebrook {

/// Ends the program, with the exit status 0, as soon as a list of at least so many rows was first
/// painted in one of its windows. What it had cost until then goes to standard output, as one line:
/// the moment (of the steady clock, in seconds), the CPU time in seconds, and the Pss in KiB. A
/// program that comes to no such list is ended by a signal after two minutes.
///
/// With `TIDEBROOK_BENCH_STAY` in the environment it stays as it is behind that line, and ends on a
/// signal. To be made when the application object is there.
class FirstPaint : public QObject {
public:
    explicit FirstPaint(int rows);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void customEvent(QEvent *event) override;

private:
    const int rows_;
};

} // namespace tidebrook
