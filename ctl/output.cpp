#include "ctl/output.h"

#include "platform/text.h"
#include "res/strings.h"

#include <unistd.h>

#include <cstdio>

namespace tidebrook {

namespace {

void write(std::FILE *stream, const QString &text) {
    const QByteArray utf8 = text.toUtf8();
    std::fwrite(utf8.constData(), 1, static_cast<std::size_t>(utf8.size()), stream);
}

QString withLayoutAlone(QString text) {
    for (QChar &c : text) {
        const bool isLayout = c == u'\n' || c == u'\t';
        if (c.category() == QChar::Other_Control && !isLayout)
            c = u' ';
    }
    return text;
}

} // namespace

void printLine(const QString &line) { printFields({line}); }

void printFields(const QStringList &fields) {
    QStringList clean;
    for (const QString &field : fields)
        clean.append(withoutControls(field));
    write(stdout, clean.join(u'\t') + u'\n');
}

QString printable(const QString &text) { return withoutControls(text); }

void printText(const QString &text) { write(stdout, withLayoutAlone(text) + u'\n'); }

QString counts(int unread, int total) {
    return QString::number(unread) + u'/' + QString::number(total);
}

bool flushOutput() { return std::fflush(stdout) == 0 && std::ferror(stdout) == 0; }

int fail(const QString &message) {
    write(stderr, u"tidebrookctl: " + withoutControls(message) + u'\n');
    return ExitFailed;
}

int failUsage(const QString &message) {
    fail(message);
    write(stderr, QStringLiteral("Try 'tidebrookctl --help'.\n"));
    return ExitUsage;
}

QString messageWithCode(quint32 code) {
    return QStringLiteral("%1 (%2)").arg(errorMessage(code)).arg(code);
}

ProgressLine::ProgressLine() : isTerminal_(isatty(STDERR_FILENO) == 1) {}

ProgressLine::~ProgressLine() { show({}); }

void ProgressLine::show(const QString &text) {
    if (isTerminal_)
        write(stderr, u"\r\x1b[K" + cutText(withoutControls(text), 70));
}

} // namespace tidebrook
