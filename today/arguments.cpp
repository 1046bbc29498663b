#include "today/arguments.h"

#include <QCommandLineParser>

#include <cstdio>

namespace tidebrook {

namespace {

constexpr char help[] = R"(Usage: tidebrook-today [--strip | --tray | --window] [--home DIR]

Shows how many articles are unread, and one headline after another; a click or a
tap on a headline opens it in Tidebrook. One runs for each device; a second one
shows the first again and ends.

  --strip      only a strip at the top of the screen
  --tray       only an icon in the tray
  --window     an ordinary small window
  --home DIR   the device root; else $TIDEBROOK_HOME or $XDG_DATA_HOME/tidebrook
  --help       print this
  --version    print the version

Without an option it is a strip, and an icon where there is a tray. Where the
desktop has no place for a strip, that is an ordinary small window.
Whether it is shown, and how fast it steps, is set in Tidebrook: Menu, Setting.
Exit status: 0 ended or already running, 1 failed, 2 wrong usage.
)";

constexpr int usageStatus = 2;

int failUsage(const QString &message) {
    std::fprintf(stderr, "tidebrook-today: %s\nTry 'tidebrook-today --help'.\n",
                 qUtf8Printable(message));
    return usageStatus;
}

} // namespace

std::optional<TodayArguments> readArguments(const QStringList &commandLine, int &status) {
    const QCommandLineOption helpOption(QStringList{QStringLiteral("help"), QStringLiteral("h")});
    const QCommandLineOption version(QStringLiteral("version"));
    const QCommandLineOption home(QStringLiteral("home"), {}, QStringLiteral("DIR"));
    const QCommandLineOption strip(QStringLiteral("strip"));
    const QCommandLineOption tray(QStringLiteral("tray"));
    const QCommandLineOption window(QStringLiteral("window"));
    QCommandLineParser parser;
    parser.addOptions({helpOption, version, home, strip, tray, window});
    const auto fail = [&status](const QString &message) {
        status = failUsage(message);
        return std::nullopt;
    };
    if (!parser.parse(commandLine))
        return fail(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return fail(QStringLiteral("it takes options only"));
    if (parser.isSet(home) && parser.value(home).isEmpty())
        return fail(QStringLiteral("--home takes a folder"));
    if (parser.isSet(strip) + parser.isSet(tray) + parser.isSet(window) > 1)
        return fail(QStringLiteral("it stands in one place"));
    if (parser.isSet(helpOption) || parser.isSet(version)) {
        std::fputs(parser.isSet(helpOption) ? help : "tidebrook-today " TIDEBROOK_VERSION "\n",
                   stdout);
        status = 0;
        return std::nullopt;
    }
    TodayArguments arguments;
    if (parser.isSet(home))
        arguments.device = DeviceRoot(parser.value(home));
    arguments.place = parser.isSet(strip)    ? Place::Strip
                      : parser.isSet(tray)   ? Place::Tray
                      : parser.isSet(window) ? Place::Window
                                             : Place::Everywhere;
    return arguments;
}

} // namespace tidebrook
