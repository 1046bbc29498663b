#include "bench/bench.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSet>
#include <QTemporaryDir>

#include <cstdio>
#include <exception>

namespace tidebrook {

using namespace Qt::StringLiterals;

namespace {

const struct {
    QString name;
    void (*measure)(Bench &bench);
} cases[]{
    {u"one"_s, refreshOneFeed},     {u"held"_s, refreshBesideOthers},
    {u"many"_s, refreshManyFeeds},  {u"channels"_s, listChannels},
    {u"service"_s, measureService}, {u"reader"_s, measureReader},
    {u"screens"_s, measureScreens}, {u"sharing"_s, measureSharing},
    {u"today"_s, measureToday},     {u"publisher"_s, measurePublisher},
};

void describe(QCommandLineParser &parser, const QStringList &names) {
    parser.setApplicationDescription(
        u"Measures Tidebrook beside a floor, which does the same work with ready-made parts and\n"
        "no rules, or beside what is allowed. Exit status: 0 all was measured, 1 something could\n"
        "not be, 2 wrong usage."_s);
    parser.addOptions(
        {{u"counts"_s, u"Count instructions, too; takes minutes."_s},
         {u"runs"_s, u"Make each measurement N times (5)."_s, u"N"_s, u"5"_s},
         {u"profiles"_s, u"Keep callgrind's files in DIR; with --counts."_s, u"DIR"_s}});
    parser.addPositionalArgument(
        u"case"_s,
        names.join(u", ") + u"; all by default. Only a \"service\" that is named is watched while "
                            "it sleeps, too, for two minutes, and only a \"publisher\" that is "
                            "named is simulated, which takes minutes.",
        u"[case...]"_s);
    parser.addHelpOption();
}

int run(Bench &bench) {
    try {
        for (const auto &[name, measure] : cases) {
            if (bench.named.isEmpty() || bench.named.contains(name))
                measure(bench);
        }
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench: %s\n", error.what());
        return 1;
    }
    std::printf(
        "\nMedians of %d runs, taken in turns; %s.\n%d targets met, %d not met.\n", bench.runs,
        bench.areCounted ? "instructions of one run more" : "instructions only with --counts",
        bench.report.metTargets, bench.report.missedTargets);
    return 0;
}

} // namespace

} // namespace tidebrook

int main(int argc, char **argv) {
    using namespace tidebrook;
    const QCoreApplication application(argc, argv);
    // For the programs that are run.
    qputenv("no_proxy", "127.0.0.1,localhost");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStringList names;
    for (const auto &each : cases)
        names.append(each.name);
    QCommandLineParser parser;
    describe(parser, names);
    parser.process(application);
    const QStringList named = parser.positionalArguments();
    const int runs = parser.value(u"runs"_s).toInt();
    if (runs <= 0 || !QSet(names.begin(), names.end()).contains({named.begin(), named.end()}))
        parser.showHelp(2);
    const QTemporaryDir folder(QDir::temp().filePath(u"tidebrook-bench-XXXXXX"_s));
    const QDir profiles(parser.isSet(u"profiles"_s) ? parser.value(u"profiles"_s) : folder.path());
    profiles.mkpath(u"."_s);
    Bench bench{runs, parser.isSet(u"counts"_s), named, folder.path(), profiles};
    return run(bench);
}
