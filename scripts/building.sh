# shellcheck shell=bash

jobLimit() {
    echo "${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}"
}

# build PRESET [TARGET...]: configures build/PRESET and builds everything in it, or these targets.
build() {
    local preset=$1
    shift
    cmake --preset "$preset" &&
        cmake --build --preset "$preset" --parallel "$(jobLimit)" ${1:+--target "$@"}
}

# underThreadSanitizer COMMAND...: runs a command whose programs are built with it. Tests start
# programs while their feed server's threads run, which ThreadSanitizer would take for a reason to
# give up. And with more random bits than these in its addresses, the kernel puts libraries where
# ThreadSanitizer expects none.
underThreadSanitizer() {
    local launcher=() bits options=die_after_fork=0:halt_on_error=1:second_deadlock_stack=1
    options+=:suppressions=$PWD/tests/tsan_suppressions.txt
    bits=$(cat /proc/sys/vm/mmap_rnd_bits 2>/dev/null || echo 28)
    if ((bits > 28)); then
        launcher=(setarch --addr-no-randomize)
    fi
    "${launcher[@]}" env TSAN_OPTIONS="$options" "$@"
}
