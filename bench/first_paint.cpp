// What a program costs until its list is painted; linked into the reader and into the bare window.
//
// It ends as soon as a list of at least BENCH_ROWS rows was first painted, and prints what it had
// cost until then: "at", the moment of the steady clock, "cpu" and "Pss". With BENCH_STAY it stays
// behind that. The reader takes no arguments, so these are variables of the environment. A program
// without such a list ends by a signal.

#include "bench/figures.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QEvent>

#include <unistd.h>

namespace tidebrook {

namespace {

class FirstPaint : public QObject {
public:
    explicit FirstPaint(QCoreApplication *application)
        : QObject(application), rows_(qEnvironmentVariableIntValue("BENCH_ROWS")) {
        alarm(120);
        application->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override {
        if (event->type() != QEvent::Paint)
            return false;
        const auto *view = qobject_cast<QAbstractItemView *>(watched->parent());
        const bool isList = view && view->viewport() == watched && view->model();
        if (isList && view->model()->rowCount() >= rows_) {
            QCoreApplication::instance()->removeEventFilter(this);
            // Behind this event it is painted, and what was painted is on the screen.
            QCoreApplication::postEvent(this, new QEvent(QEvent::User));
        }
        return false;
    }

    // Closing down is no part of a start.
    void customEvent(QEvent * /*event*/) override {
        printFigures("work", {{"at", secondsOf(CLOCK_MONOTONIC)},
                              {"cpu", secondsOf(CLOCK_PROCESS_CPUTIME_ID)},
                              {"Pss", procFigure("self/smaps_rollup", "Pss")}});
        if (qEnvironmentVariableIsSet("BENCH_STAY"))
            pause();
        _exit(0);
    }

private:
    const int rows_;
};

void watchFirstPaint() { new FirstPaint(QCoreApplication::instance()); }

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchFirstPaint)

} // namespace tidebrook
