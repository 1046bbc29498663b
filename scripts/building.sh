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
