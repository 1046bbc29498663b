#include "bench/cases.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <optional>

namespace tidebrook {

namespace {

void describe(QCommandLineParser &parser) {
    parser.setApplicationDescription(QStringLiteral(
        "Measures refreshes beside a floor, which does the same work with ready-made parts and no\n"
        "rules, the list of channels, the background downloader, the reader's start, its\n"
        "screens, and bringing channels in and out. Exit status: 0 all was measured, 1 something\n"
        "could not be, 2 wrong usage."));
    parser.addOptions({
        {QStringLiteral("counts"), QStringLiteral("Count instructions, too; takes minutes.")},
        {QStringLiteral("idle"),
         QStringLiteral("Count the wake-ups of the sleeping service, too, as the case \"service\" "
                        "does when it is named; takes two minutes.")},
        {QStringLiteral("runs"), QStringLiteral("Make each measurement N times (5)."),
         QStringLiteral("N"), QStringLiteral("5")},
        {QStringLiteral("profiles"),
         QStringLiteral("Keep callgrind's files in DIR; with --counts."), QStringLiteral("DIR")},
    });
    parser.addPositionalArgument(QStringLiteral("case"),
                                 Cases::names().join(u", ") + u"; all by default.",
                                 QStringLiteral("[case...]"));
    parser.addHelpOption();
}

std::optional<Options> read(const QCommandLineParser &parser) {
    Options options;
    options.counts = parser.isSet(QStringLiteral("counts"));
    options.runs = parser.value(QStringLiteral("runs")).toInt();
    options.profiles = parser.value(QStringLiteral("profiles"));
    options.cases = parser.positionalArguments();
    options.idle =
        parser.isSet(QStringLiteral("idle")) || options.cases.contains(QStringLiteral("service"));
    const bool areKnown =
        std::all_of(options.cases.cbegin(), options.cases.cend(),
                    [](const QString &name) { return Cases::names().contains(name); });
    return options.runs > 0 && areKnown ? std::optional(options) : std::nullopt;
}

int run(const Options &options) {
    const QTemporaryDir folder(QDir::temp().filePath(QStringLiteral("tidebrook-bench-XXXXXX")));
    if (!folder.isValid()) {
        std::fprintf(stderr, "bench: there is no temporary folder to be had\n");
        return 1;
    }
    try {
        Cases(options, folder.path()).run();
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench: %s\n", error.what());
        return 1;
    }
}

} // namespace

} // namespace tidebrook

int main(int argc, char **argv) {
    const QCoreApplication application(argc, argv);
    qputenv("no_proxy", "127.0.0.1"); // also for the programs that are run
    QCommandLineParser parser;
    tidebrook::describe(parser);
    parser.process(application);
    const std::optional<tidebrook::Options> options = tidebrook::read(parser);
    if (!options) {
        std::fprintf(stderr, "%s", parser.helpText().toLocal8Bit().constData());
        return 2;
    }
    return tidebrook::run(*options);
}
