#include "ctl/pager.h"

#include "ctl/columns.h"
#include "ctl/output.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace tidebrook {

namespace {

constexpr int mostColumns = 80;
constexpr int notExecutable = 126; // as a shell exits for a program
constexpr int notFound = 127;

bool isTerminal() { return isatty(STDOUT_FILENO) == 1; }

QByteArray chosenPager() {
    for (const char *name : {"TIDEBROOK_PAGER", "PAGER"}) {
        if (qEnvironmentVariableIsSet(name))
            return qgetenv(name).trimmed();
    }
    return "less";
}

/// Ignores a signal while it lives.
class IgnoredSignal {
public:
    explicit IgnoredSignal(int number) : number_(number), before_(std::signal(number, SIG_IGN)) {}
    ~IgnoredSignal() { std::signal(number_, before_); }
    IgnoredSignal(const IgnoredSignal &) = delete;
    IgnoredSignal &operator=(const IgnoredSignal &) = delete;

private:
    const int number_;
    void (*const before_)(int);
};

// Whether the pager could be started, be it to the text's end or not.
bool pageText(const QByteArray &pager, const QByteArray &text) {
    if (!qEnvironmentVariableIsSet("LESS"))
        qputenv("LESS", "FRX");
    if (!flushOutput())
        return false;
    std::FILE *pipe = popen(pager.constData(), "w");
    if (pipe == nullptr)
        return false;
    // Only now, since the pager would inherit them. A pager may end before it has read everything,
    // and the keys that interrupt are its own.
    const IgnoredSignal broken(SIGPIPE);
    const IgnoredSignal interrupted(SIGINT);
    const IgnoredSignal stopped(SIGQUIT);
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), pipe);
    // A write error is a pager that has ended, and none of ours.
    const int status = pclose(pipe);
    return !WIFEXITED(status) ||
           (WEXITSTATUS(status) != notExecutable && WEXITSTATUS(status) != notFound);
}

} // namespace

int outputColumns() { return isTerminal() ? qMin(mostColumns, terminalColumns(STDOUT_FILENO)) : 0; }

void printPaged(const QString &text) {
    const QByteArray pager = chosenPager();
    const bool isPaged = isTerminal() && !isQuiet() && !pager.isEmpty() && pager != "cat";
    if (!isPaged || !pageText(pager, printableText(text)))
        printText(text);
}

} // namespace tidebrook
