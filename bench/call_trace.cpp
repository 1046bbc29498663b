#include "bench/call_trace.h"

#include "bench/runner.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QRegularExpression>

namespace tidebrook {

namespace {

QString callsIn(const QString &path) {
    static const QRegularExpression call(QStringLiteral("^\\d+ +(\\w+)\\("));
    QMap<QString, int> counts;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    while (!file.atEnd()) {
        const QRegularExpressionMatch match = call.match(QString::fromLocal8Bit(file.readLine()));
        if (match.hasMatch())
            ++counts[match.captured(1)];
    }
    QStringList calls;
    for (auto entry = counts.cbegin(); entry != counts.cend(); ++entry)
        calls.append(QStringLiteral("%1 %2").arg(entry.value()).arg(entry.key()));
    return calls.isEmpty() ? QStringLiteral("none") : calls.join(u", ");
}

} // namespace

CallTrace::CallTrace(pid_t process, const QString &folder)
    : path_(QDir(folder).filePath(QStringLiteral("calls"))) {
    try {
        tracer_ = std::make_unique<BackgroundProcess>(
            QStringLiteral("strace"),
            QStringList{QStringLiteral("-f"), QStringLiteral("-o"), path_, QStringLiteral("-p"),
                        QString::number(process)},
            QProcess::StandardError);
        tracer_->awaitLine("attached");
    } catch (const MeasurementError &error) {
        throwIfInterrupted();
        tracer_.reset();
        failure_ = QString::fromStdString(error.what());
    }
}

QString CallTrace::end() {
    if (!tracer_)
        return QStringLiteral("not traced: %1").arg(failure_);
    tracer_->end();
    return callsIn(path_);
}

} // namespace tidebrook
