#include "ctl/arguments.h"

#include <QCommandLineParser>

namespace tidebrook {

namespace {

QCommandLineOption option(QLatin1String names, const QString &value = {}) {
    return QCommandLineOption(QString(names).split(u' '), {}, value);
}

// Each belongs to some of the commands.
QList<QCommandLineOption> commandOptions() {
    return {option(QLatin1String("order o"), QStringLiteral("ORDER")),
            option(QLatin1String("jobs j"), QStringLiteral("N")),
            option(QLatin1String("full")),
            option(QLatin1String("pauses")),
            option(QLatin1String("timeout t"), QStringLiteral("SECONDS")),
            option(QLatin1String("today")),
            option(QLatin1String("all a")),
            option(QLatin1String("category c"), QStringLiteral("NAME")),
            option(QLatin1String("create")),
            option(QLatin1String("dry-run n")),
            option(QLatin1String("yes y")),
            option(QLatin1String("json")),
            option(QLatin1String("header")),
            option(QLatin1String("unread u")),
            option(QLatin1String("html")),
            option(QLatin1String("link l"))};
}

void takeOptions(const QCommandLineParser &parser, Arguments &arguments) {
    for (const QCommandLineOption &option : commandOptions()) {
        if (parser.isSet(option))
            arguments.options.append(option.names().first());
    }
    arguments.order = parser.value(QStringLiteral("order"));
    arguments.jobs = parser.value(QStringLiteral("jobs"));
    arguments.timeout = parser.value(QStringLiteral("timeout"));
    arguments.category = parser.value(QStringLiteral("category"));
}

} // namespace

std::optional<Arguments> parseArguments(const QStringList &commandLine, QString *error) {
    const QCommandLineOption help = option(QLatin1String("help h"));
    const QCommandLineOption version = option(QLatin1String("version V"));
    const QCommandLineOption quiet = option(QLatin1String("quiet q"));
    const QCommandLineOption home = option(QLatin1String("home"), QStringLiteral("DIR"));
    QCommandLineParser parser;
    parser.addOptions(QList{help, version, quiet, home} + commandOptions());
    if (!parser.parse(commandLine)) {
        *error = parser.errorText();
        return std::nullopt;
    }
    Arguments arguments;
    arguments.home = parser.value(home);
    // An unset variable in a script must not lead to the user's own device.
    if (parser.isSet(home) && arguments.home.isEmpty()) {
        *error = QStringLiteral("--home takes a folder");
        return std::nullopt;
    }
    arguments.operands = parser.positionalArguments();
    if (!arguments.operands.isEmpty())
        arguments.command = arguments.operands.takeFirst();
    takeOptions(parser, arguments);
    if (arguments.has(u"json") && arguments.has(u"header")) {
        *error = QStringLiteral("--json goes without --header");
        return std::nullopt;
    }
    arguments.isQuiet = parser.isSet(quiet);
    arguments.wantsHelp = parser.isSet(help);
    arguments.wantsVersion = parser.isSet(version);
    return arguments;
}

} // namespace tidebrook
