#pragma once

#include "support/text_printing.h"

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace tidebrook {

/// What a run of the command line ended with.
struct CtlRun {
    int exitCode;
    QString out;
    QString err;

    QStringList lines() const { return out.split(u'\n', Qt::SkipEmptyParts); }
};

/// Runs the real command line on a device root of its own, which has an empty seed file.
class CtlProcess {
public:
    CtlProcess();

    QString root() const { return folder_.filePath(QStringLiteral("device")); }
    QString filePath(const QString &name) const { return root() + u'/' + name; }
    void setEnvironment(const QString &name, const QString &value);

    /// Lets everybody read the device and nobody but root write it, and undoes that.
    void makeReadOnly();
    void makeWritable();

    CtlRun run(const QStringList &arguments);
    /// Runs the command line in a shell behind `prelude`, such as a limit.
    CtlRun runBehind(const QString &prelude, const QStringList &arguments);
    /// Starts the command line; the caller ends it.
    std::unique_ptr<QProcess> start(const QStringList &arguments);

private:
    CtlRun finish(QProcess &process);

    QTemporaryDir folder_;
    QProcessEnvironment environment_;
};

} // namespace tidebrook
