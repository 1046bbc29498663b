#include "ctl/arguments.h"

#include <QCommandLineParser>

namespace tidebrook {

std::optional<Arguments> parseArguments(const QStringList &commandLine, QString *error) {
    const QCommandLineOption help(QStringList{QStringLiteral("help"), QStringLiteral("h")});
    const QCommandLineOption version(QStringLiteral("version"));
    const QCommandLineOption home(QStringLiteral("home"), {}, QStringLiteral("DIR"));
    const QCommandLineOption order(QStringLiteral("order"), {}, QStringLiteral("ORDER"));
    const QCommandLineOption jobs(QStringLiteral("jobs"), {}, QStringLiteral("N"));
    const QCommandLineOption pauses(QStringLiteral("pauses"));
    const QCommandLineOption timeout(QStringLiteral("timeout"), {}, QStringLiteral("SECONDS"));
    const QCommandLineOption today(QStringLiteral("today"));
    const QCommandLineOption all(QStringLiteral("all"));
    const QCommandLineOption create(QStringLiteral("create"));
    const QCommandLineOption dryRun(QStringList{QStringLiteral("dry-run"), QStringLiteral("n")});
    const QCommandLineOption yes(QStringList{QStringLiteral("yes"), QStringLiteral("y")});
    const QCommandLineOption category(QStringLiteral("category"), {}, QStringLiteral("NAME"));
    QCommandLineParser parser;
    parser.addOptions({help, version, home, order, jobs, pauses, timeout, today, all, create,
                       dryRun, yes, category});
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
    for (const QCommandLineOption &option :
         {order, jobs, pauses, timeout, today, all, create, dryRun, yes, category}) {
        if (parser.isSet(option))
            arguments.options.append(option.names().first());
    }
    arguments.order = parser.value(order);
    arguments.jobs = parser.value(jobs);
    arguments.timeout = parser.value(timeout);
    arguments.category = parser.value(category);
    arguments.wantsHelp = parser.isSet(help);
    arguments.wantsVersion = parser.isSet(version);
    return arguments;
}

} // namespace tidebrook
