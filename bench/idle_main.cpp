#include <QLibrary>

#include <unistd.h>

#include <cstdio>

// The least that a process with the service's shared libraries is: it starts, and sleeps. With an
// argument it has loaded libcurl, too, as the service does for its first download.
int main(int argc, char ** /*argv*/) {
    constexpr int interfaceVersion = 4;
    if (argc > 1)
        QLibrary(QStringLiteral("curl"), interfaceVersion).load();
    std::puts("ready");
    std::fflush(stdout);
    pause();
}
