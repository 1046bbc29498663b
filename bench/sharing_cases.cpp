#include "bench/sharing_cases.h"

#include "bench/cases.h"
#include "bench/step_report.h"
#include "bench/store_maker.h"

#include <QDir>
#include <QFile>

namespace tidebrook {

namespace {

constexpr int categoryCount = 12;
constexpr int channelsPerCategory = 50;
constexpr int articlesPerChannel = 10;
constexpr double importAllowed = 1000; // ms
constexpr double exportAllowed = 200;  // ms
constexpr double answer = 50;          // ms

QStringList exportedNames() {
    QStringList names;
    for (int i = 0; i < exportedChannels; ++i)
        names.append(QStringLiteral("Letters from harbour %1").arg(i));
    return names;
}

QByteArray importedList() {
    QByteArray outlines;
    for (int i = 0; i < importedChannels; ++i) {
        const QByteArray number = QByteArray::number(i);
        outlines += "<outline type=\"rss\" text=\"Notes from valley " + number +
                    "\" xmlUrl=\"http://notes.example.org/" + number + "/rss.xml\"/>\n";
    }
    return "<?xml version=\"1.0\"?><opml version=\"2.0\"><body>" + outlines + "</body></opml>\n";
}

void writeFile(const QString &path, const QByteArray &bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        throw MeasurementError(QStringLiteral("%1 cannot be written").arg(path));
}

} // namespace

SharingCases::SharingCases(const Options &options, const QString &folder, const Runner &runner,
                           Report &report)
    : options_(options), folder_(folder), store_(QDir(folder).filePath(QStringLiteral("sharing"))),
      documents_(QDir(folder).filePath(QStringLiteral("documents"))), runner_(runner),
      report_(report) {}

void SharingCases::run() {
    makeDocuments();
    makeStore(store_, {.filledChannels = categoryCount * channelsPerCategory,
                       .articlesPerChannel = articlesPerChannel,
                       .categories = categoryCount,
                       .emptyChannels = exportedNames()});
    report_.section(QStringLiteral("223 channels imported from a file by the wizard: the process, "
                                   "from choosing the file and from Finish until all are listed"),
                    QStringLiteral("tidebrook"), QStringLiteral("allowed"));
    const QList<QByteArray> imports = share(QStringLiteral("import"));
    for (const char *begin : {"from-file", "from-Finish"})
        reportStep(report_, imports, begin, "process", importAllowed);
    reportStep(report_, imports, "from-Finish", "wall", importAllowed, std::nullopt);

    report_.section(QStringLiteral("The same, with Finish and, from then on, the wheel: wall time "
                                   "to the picture"),
                    QStringLiteral("tidebrook"), QStringLiteral("allowed"));
    const QList<QByteArray> answers = share(QStringLiteral("watch"));
    reportStep(report_, answers, "answer", "wall", answer);
    report_.note(QStringLiteral("  %1 of these events in a run, one every 20 ms")
                     .arg(figureOf(lineOf(answers.first(), "answer"), "count")));

    report_.section(QStringLiteral("A category of 600 channels exported: from confirming the "
                                   "name until the file is there and nothing is at work"),
                    QStringLiteral("tidebrook"), QStringLiteral("allowed"));
    const QList<QByteArray> exports = share(QStringLiteral("export"));
    for (const char *figure : {"wall", "process"})
        reportStep(report_, exports, "export", figure, exportAllowed);
}

void SharingCases::makeDocuments() const {
    if (!QDir().mkpath(documents_))
        throw MeasurementError(QStringLiteral("%1 cannot be made").arg(documents_));
    writeFile(QDir(documents_).filePath(QStringLiteral("list.opml")), importedList());
    writeFile(QDir(folder_).filePath(QStringLiteral("user-dirs.dirs")),
              "XDG_DOCUMENTS_DIR=\"" + documents_.toLocal8Bit() + "\"\n");
    qputenv("XDG_CONFIG_HOME", folder_.toLocal8Bit()); // for the programs that are run
}

QList<QByteArray> SharingCases::share(const QString &what) const {
    QList<QByteArray> outputs(options_.runs);
    for (QByteArray &output : outputs) {
        onCopy(store_, [&](const QString &home) {
            runner_.runWhole(QStringLiteral("bench_sharing"), {home, what}, output);
        });
        QFile::remove(QDir(documents_).filePath(benchCategory + u".opml"));
    }
    return outputs;
}

} // namespace tidebrook
