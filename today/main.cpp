#include "kit/touch_style.h"
#include "platform/sync/interrupt.h"
#include "res/strings.h"
#include "today/arguments.h"
#include "today/desktop/dock.h"
#include "today/today_item.h"

#include <QApplication>
#include <QSocketNotifier>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace tidebrook {

namespace {

constexpr int touchHeight = 40; // pixels

// Qt says why there is no display, and would abort.
void endWithoutDisplay(QtMsgType type, const QMessageLogContext &, const QString &text) {
    std::fprintf(stderr, "tidebrook-today: %s\n", qUtf8Printable(text.section(u'\n', 0, 0)));
    if (type == QtFatalMsg)
        ::_exit(EXIT_FAILURE);
}

int run(int argc, char **argv) {
    QStringList commandLine;
    for (int i = 0; i < argc; ++i)
        commandLine.append(QString::fromLocal8Bit(argv[i]));
    int status = 0;
    const std::optional<TodayArguments> arguments = readArguments(commandLine, status);
    if (!arguments)
        return status;
    prepareDock();
    QApplication::setApplicationName(QStringLiteral("tidebrook-today"));
    QApplication::setApplicationDisplayName(resourceString(programNameString));
    QApplication::setApplicationVersion(QStringLiteral(TIDEBROOK_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("tidebrook-today"));
    QApplication::setQuitOnLastWindowClosed(false); // it waits for the setting
    const QtMessageHandler handler = qInstallMessageHandler(endWithoutDisplay);
    const QApplication application(argc, argv);
    qInstallMessageHandler(handler);
    installTouchStyle();
    setTouchHeight(touchHeight);
    Interrupt stop; // by the system, which asks the program to end
    const TerminationSignals signals(stop);
    QSocketNotifier stops(stop.descriptor(), QSocketNotifier::Read);
    QObject::connect(&stops, &QSocketNotifier::activated, &application, &QApplication::quit);
    const TodayItem item(*arguments);
    return item.isSecond() ? EXIT_SUCCESS : QApplication::exec();
}

} // namespace

} // namespace tidebrook

int main(int argc, char **argv) { return tidebrook::run(argc, argv); }
