#include "ctl/output.h"

#include "ctl/columns.h"
#include "platform/base/text.h"
#include "res/strings.h"

#include <QFile>

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace tidebrook {

namespace {

void write(std::FILE *stream, const QByteArray &bytes) {
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}
void write(std::FILE *stream, const QString &text) { write(stream, text.toUtf8()); }

bool hasBecomeQuiet = false;
bool isHolding = false;
QByteArray held;

void print(const QByteArray &bytes) {
    if (isHolding)
        held += bytes;
    else
        write(stdout, bytes);
}

// A terminal may wrap behind its last column.
int lineColumns() { return terminalColumns(STDERR_FILENO) - 1; }

} // namespace

void beQuiet() { hasBecomeQuiet = true; }

bool isQuiet() { return hasBecomeQuiet; }

void printLine(const QString &line) { printFields({line}); }

void printFields(const QStringList &fields) {
    if (!isQuiet())
        printFault(fields);
}

void printFault(const QStringList &fields) {
    QStringList clean;
    for (const QString &field : fields)
        clean.append(printable(field));
    print(QString(clean.join(u'\t') + u'\n').toUtf8());
}

void printDocument(const QByteArray &document) { print(document); }

QString printable(const QString &text) { return withoutHidden(text, joinersAndMarks); }

void printText(const QString &text) {
    if (!isQuiet())
        print(printableText(text));
}

QByteArray printableText(const QString &text) {
    return QString(withoutHidden(text, QString(u"\n\t" + joinersAndMarks)) + u'\n').toUtf8();
}

QString counts(int unread, int total) {
    return QString::number(unread) + u'/' + QString::number(total);
}

QString displayedMoment(const QDateTime &moment) {
    return moment.isValid() ? moment.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"))
                            : QStringLiteral("never");
}

void holdOutput() { isHolding = true; }

bool flushOutput() {
    isHolding = false;
    write(stdout, std::exchange(held, {}));
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

int fail(const QString &message) {
    write(stderr, u"tidebrookctl: " + printable(message) + u'\n');
    return ExitFailed;
}

int failUsage(const QString &message) {
    fail(message);
    write(stderr, QStringLiteral("Try 'tidebrookctl --help'.\n"));
    return ExitUsage;
}

bool confirm(const QString &question) {
    if (isatty(STDIN_FILENO) != 1)
        return true;
    write(stderr, printable(question) + u" [y/N] ");
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return false;
    const QByteArray answer = input.readLine().trimmed().toLower();
    return answer == "y" || answer == "yes";
}

QString messageWithCode(quint32 code) {
    return QStringLiteral("%1 (%2)").arg(errorMessage(code)).arg(code);
}

ConsoleProgress::ConsoleProgress() : isTerminal_(!isQuiet() && isatty(STDERR_FILENO) == 1) {}

ConsoleProgress::~ConsoleProgress() { show({}); }

void ConsoleProgress::show(const QString &text) {
    if (isTerminal_)
        write(stderr, u"\r\x1b[K" + cutToColumns(printable(text), lineColumns()));
}

} // namespace tidebrook
