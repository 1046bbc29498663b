// Linked into the Today item: prints "shown" as soon as a headline was painted. Takes the pointer,
// which would hold the headlines still, off the place where Qt's offscreen platform puts a window.

#include "today/headline_strip.h"

#include <QCoreApplication>
#include <QCursor>

#include <cstdio>

namespace tidebrook {

namespace {

class FirstHeadline : public QObject {
public:
    explicit FirstHeadline(QCoreApplication *application) : QObject(application) {
        QCursor::setPos(700, 700);
        application->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override {
        const auto *strip = qobject_cast<HeadlineStrip *>(watched);
        if (event->type() == QEvent::Paint && strip && strip->headline()) {
            QCoreApplication::instance()->removeEventFilter(this);
            std::puts("shown");
            std::fflush(stdout);
        }
        return false;
    }
};

void watchFirstHeadline() { new FirstHeadline(QCoreApplication::instance()); }

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchFirstHeadline)

} // namespace tidebrook
