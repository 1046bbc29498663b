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
            option(QLatin1String("feed"), QStringLiteral("N")),
            option(QLatin1String("dry-run n")),
            option(QLatin1String("yes y")),
            option(QLatin1String("json")),
            option(QLatin1String("header")),
            option(QLatin1String("unread u")),
            option(QLatin1String("html")),
            option(QLatin1String("link l"))};
}

QList<QCommandLineOption> generalOptions() {
    return {option(QLatin1String("help h")), option(QLatin1String("version V")),
            option(QLatin1String("quiet q")), option(QLatin1String("home"), QStringLiteral("DIR"))};
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
    arguments.feed = parser.value(QStringLiteral("feed"));
}

} // namespace

std::optional<Arguments> parseArguments(const QStringList &commandLine, QString *error) {
    const QString home = QStringLiteral("home");
    QCommandLineParser parser;
    parser.addOptions(generalOptions() + commandOptions());
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
    arguments.isQuiet = parser.isSet(QStringLiteral("quiet"));
    arguments.wantsHelp = parser.isSet(QStringLiteral("help"));
    arguments.wantsVersion = parser.isSet(QStringLiteral("version"));
    return arguments;
}

QStringList optionsOfAllCommands() {
    QStringList names;
    for (const QCommandLineOption &option : generalOptions())
        names.append(option.names().first());
    return names;
}

QString optionBeforeValue(const QString &word) {
    const qsizetype dashes = word.startsWith(QLatin1String("--")) ? 2 : 1;
    for (const QCommandLineOption &option : generalOptions() + commandOptions()) {
        for (const QString &name : option.names()) {
            const bool isGiven = word == QString(dashes, u'-') + name;
            if (isGiven && (name.size() == 1) == (dashes == 1) && !option.valueName().isEmpty())
                return option.names().first();
        }
    }
    return {};
}

} // namespace tidebrook
