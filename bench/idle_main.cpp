#include <unistd.h>

#include <cstdio>

// The least that a process with the service's shared libraries is: it starts, and sleeps.
int main() {
    std::puts("ready");
    std::fflush(stdout);
    pause();
}
