#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace tidebrook {

/// How the program ends.
enum ExitCode { ExitDone = 0, ExitFailed = 1, ExitUsage = 2 };

/// From now on no line of standard output is written but those of `printFault`, and no progress is
/// shown.
void beQuiet();
bool isQuiet();

/// Writes a line, or a line of tab-separated fields, to standard output as UTF-8. Control
/// characters become blanks: no text of a feed breaks the lines or speaks to the terminal.
void printLine(const QString &line);
void printFields(const QStringList &fields);
/// The same for a line that says what failed or is wrong.
void printFault(const QStringList &fields);
/// The same as `printLine` for a text of several lines, which may have line ends and tabs.
void printText(const QString &text);
/// The text as `printText` writes it, with the line end behind it.
QByteArray printableText(const QString &text);
/// Writes a document to standard output as it is.
void printDocument(const QByteArray &document);
/// A text as `printLine` shows it.
QString printable(const QString &text);

/// Unread and total articles as they are shown everywhere.
QString counts(int unread, int total);

/// A moment as it is shown everywhere: local time to the minute; "never" for an invalid one.
QString displayedMoment(const QDateTime &moment);

/// Keeps what is printed from now on in memory until `flushOutput`: where the reader of a pipe
/// stops, others do not wait for a lock that is held meanwhile.
void holdOutput();
/// Writes what was printed so far. False when standard output did not take it.
bool flushOutput();

/// Tells a failure on standard error, and gives the exit code for it.
int fail(const QString &message);
int failUsage(const QString &message);

/// Asks a question on standard error, where standard input is a terminal. True for yes, and where
/// there is no terminal.
bool confirm(const QString &question);

/// The system's message for an error code, with the code.
QString messageWithCode(quint32 code);

/// A line on standard error that each call writes over, while that is a terminal.
class ConsoleProgress {
public:
    ConsoleProgress();
    ~ConsoleProgress();
    ConsoleProgress(const ConsoleProgress &) = delete;
    ConsoleProgress &operator=(const ConsoleProgress &) = delete;

    void show(const QString &text);

private:
    const bool isTerminal_;
};

} // namespace tidebrook
